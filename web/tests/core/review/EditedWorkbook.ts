// A workbook that is edited as people do, in which every cell keeps an identity of its own: so a test
// knows where what was said must go, and where it must not. Formulas hold cells, not addresses; they
// are written down anew after each edit.

import { areaAddress } from '../../../src/core/address/area';
import type { FindingRow } from '../../../src/core/model/messages';
import { SheetCells, Texts } from '../../../src/core/model/SheetCells';
import { sketchOf, type SheetSketch } from '../../../src/core/model/sketch';
import type { Scalar } from '../../../src/core/protocol/json';

type Place = { sheet: EditedSheet; row: Track; col: Track };
/** A track that was deleted is in no list any more. */
type Track = { id: number };
/** `{0}`, `{1}` in the text stand for the cells; two joined by a colon for a range. */
export type Formula = { text: string; cells: Place[] };
type Content = { value: Scalar } | { formula: Formula };

let tracks = 0;
const newLine = (): Track => ({ id: (tracks += 1) });

export class EditedSheet {
  readonly rows: Track[] = [];
  readonly cols: Track[] = [];
  private readonly cells = new Map<string, Content>();

  constructor(
    readonly name: string,
    height: number,
    width: number,
  ) {
    for (let i = 0; i < height; i++) this.rows.push(newLine());
    for (let i = 0; i < width; i++) this.cols.push(newLine());
  }

  put(row: Track, col: Track, content: Content): void {
    this.cells.set(`${String(row.id)} ${String(col.id)}`, content);
  }

  at(row: Track, col: Track): Content | undefined {
    return this.cells.get(`${String(row.id)} ${String(col.id)}`);
  }

  insert(of: 'rows' | 'cols', at: number): Track {
    const track = newLine();
    this[of].splice(at, 0, track);
    return track;
  }

  delete(of: 'rows' | 'cols', at: number): void {
    this[of].splice(at, 1);
  }

  /** A row with everything in it, formulas that stay in the row taken along. */
  copyRow(from: number, to: number): void {
    const source = this.rows[from] as Track;
    const row = this.insert('rows', to);
    for (const col of this.cols) {
      const content = this.at(source, col);
      if (!content) continue;
      const own = (place: Place) => (place.row === source ? { ...place, row } : place);
      const moved =
        'formula' in content
          ? { formula: { ...content.formula, cells: content.formula.cells.map(own) } }
          : content;
      this.put(row, col, moved);
    }
  }
}

export class EditedWorkbook {
  readonly sheets: EditedSheet[] = [];

  /** As a scan gives it to the sketch; what formulas show never matters here. */
  sketches(): SheetSketch[] {
    return this.sheets.map((sheet) => {
      const formulas = new Texts();
      const cells = new SheetCells(formulas, new Texts());
      const height = Math.max(1, sheet.rows.length);
      const width = Math.max(1, sheet.cols.length);
      const contents = sheet.rows.map((row) => sheet.cols.map((col) => sheet.at(row, col)));
      cells.add(
        { top: 1, left: 1, bottom: height, right: width },
        contents.map((row) => row.map((one) => (one && 'formula' in one ? one.formula.text : ''))),
        contents.map((row) => row.map((one) => (one ? ('formula' in one ? 1 : one.value) : null))),
      );
      return sketchOf(sheet.name, cells, formulas);
    });
  }

  /** "#REF!" for a cell that is gone. */
  written({ text, cells }: Formula, home: EditedSheet): string {
    return text.replace(/\{(\d)\}/g, (_, index: string) => {
      const place = cells[Number(index)];
      if (!place) throw new Error(`no cell ${index} in ${text}`);
      const { sheet, row, col } = place;
      const at = { row: sheet.rows.indexOf(row) + 1, col: sheet.cols.indexOf(col) + 1 };
      if (at.row === 0 || at.col === 0 || !this.sheets.includes(sheet)) return '#REF!';
      const address = areaAddress({ top: at.row, left: at.col, bottom: at.row, right: at.col });
      // The end of a range has its beginning's sheet.
      const isEnd = text.includes(`:{${index}}`);
      return sheet === home || isEnd ? address : `'${sheet.name}'!${address}`;
    });
  }

  /** One for every formula that has a finding by the text `odd`, with the place as its identity. */
  findings(odd: string): { finding: FindingRow; identity: string }[] {
    const found: { finding: FindingRow; identity: string }[] = [];
    for (const sheet of this.sheets) {
      for (const [i, row] of sheet.rows.entries()) {
        for (const [j, col] of sheet.cols.entries()) {
          const content = sheet.at(row, col);
          if (!content || !('formula' in content) || !content.formula.text.includes(odd)) continue;
          const area = { top: i + 1, left: j + 1, bottom: i + 1, right: j + 1 };
          const { formula } = content;
          found.push({
            identity: `${sheet.name} ${String(row.id)} ${String(col.id)}`,
            finding: {
              rank: 1,
              kind: 'differs',
              level: 'fact',
              cells: [{ sheet: sheet.name, area }],
              sentence: '',
              expected: this.written({ ...formula, text: formula.text.replace(odd, '*2') }, sheet),
              confidence: 'high',
              reach: 0,
              areas: 1,
              size: 1,
              formula: this.written(formula, sheet),
              value: 1,
              label: '',
              print: 'same',
            },
          });
        }
      }
    }
    return found;
  }
}
