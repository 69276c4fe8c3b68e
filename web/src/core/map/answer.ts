// The map's questions to the model, answered: in a worker, or on the page's own thread.

import { cellCount, type Area } from '../address/area';
import type { Findings } from '../audit/answer';
import { formulaInFirst } from '../formula/relative';
import type { Question } from '../model/messages';
import type { SheetCells } from '../model/SheetCells';
import type { WorkbookModel } from '../model/WorkbookModel';
import { sheetsTold } from './facts';
import { Hues } from './Hues';
import { frameOf, samplesOf, type Frame } from './tiles';
import { tiesOf } from './ties';
import type { Break, CellTold, MapQuestions } from './told';

export type MapQuestion = Extract<Question, { ask: keyof MapQuestions }>;

/** More of a formula is not read beside a pointer. */
const formulaLimit = 240;
/** Marks of so many findings are told for a sheet. */
const breaksLimit = 2_000;

export class MapAnswers {
  private readonly frames = new WeakMap<SheetCells, Frame>();
  private readonly hues = new WeakMap<WorkbookModel, Hues>();
  private stamp = 0;

  constructor(private readonly findings: Findings) {}

  *answer(model: WorkbookModel, question: MapQuestion): Generator<undefined, unknown> {
    switch (question.ask) {
      case 'mapSheets':
        return yield* sheetsTold(model);
      case 'mapFrame': {
        const cells = cellsOf(model, question.args.sheet);
        return cells && (yield* this.frameOf(model, cells));
      }
      case 'mapTile': {
        const { sheet, stamp, tile } = question.args;
        const cells = cellsOf(model, sheet);
        const frame = cells && (yield* this.frameOf(model, cells));
        if (!cells || frame?.stamp !== stamp) return undefined;
        return yield* samplesOf(cells, frame, tile, this.huesOf(model));
      }
      case 'mapCell': {
        const { sheet, row, col } = question.args;
        return cellTold(model, sheet, row, col);
      }
      case 'mapTies': {
        const index = yield* model.index();
        const place = model.place(question.args);
        return place ? tiesOf(model, index, place) : { uses: [], users: [] };
      }
      case 'mapBreaks':
        return yield* this.breaksOf(model, question.args.sheet);
    }
  }

  /** Which hue each formula has, on the map as in a report. */
  huesOf(model: WorkbookModel): Hues {
    let hues = this.hues.get(model);
    if (!hues) {
      hues = new Hues();
      this.hues.set(model, hues);
    }
    return hues;
  }

  private *frameOf(model: WorkbookModel, cells: SheetCells): Generator<undefined, Frame> {
    let frame = this.frames.get(cells);
    if (!frame) {
      yield* this.huesOf(model).add(cells, model.formulas.count);
      this.stamp += 1;
      frame = yield* frameOf(cells, this.stamp);
      this.frames.set(cells, frame);
    }
    return frame;
  }

  private *breaksOf(model: WorkbookModel, sheet: string): Generator<undefined, Break[]> {
    const breaks: Break[] = [];
    for (const finding of yield* this.findings.of(model)) {
      const areas = finding.cells.filter((cells) => cells.sheet === sheet).map(({ area }) => area);
      if (areas.length === 0) continue;
      const { rank, kind, confidence, sentence } = finding;
      breaks.push({ rank, kind, confidence, sentence, areas });
      if (breaks.length === breaksLimit) break;
    }
    return breaks;
  }
}

/** Nothing where there is no such sheet. */
function cellsOf(model: WorkbookModel, sheet: string): SheetCells | undefined {
  const number = model.sheetNumber(sheet);
  return number === undefined ? undefined : model.cellsOf(number);
}

function cellTold(model: WorkbookModel, sheet: string, row: number, col: number): CellTold {
  const area: Area = { top: row, left: col, bottom: row, right: col };
  const place = model.place({ sheet, area });
  const cells = cellsOf(model, sheet);
  if (!place || !cells) {
    return { label: '', formula: '', value: null, region: undefined, read: false };
  }
  const number = cells.formulaAt(row, col);
  const text = number === 0 ? '' : formulaInFirst(model.formulas.at(number), area);
  return {
    label: model.label(place),
    formula: text.length > formulaLimit ? `${text.slice(0, formulaLimit)}…` : text,
    value: model.value(place),
    region: number === 0 ? undefined : grown(cells, row, col, number),
    read: cells.hasRead(area),
  };
}

/** So far at most is looked for more cells like one. */
const growLimit = 20_000;

/** The rectangle around the cell with the same formula: along its column first, then its row. */
function grown(cells: SheetCells, row: number, col: number, formula: number): Area {
  const area = { top: row, left: col, bottom: row, right: col };
  const has = (part: Area): boolean => {
    for (let at = part.top; at <= part.bottom; at++) {
      for (let to = part.left; to <= part.right; to++) {
        if (cells.formulaAt(at, to) !== formula) return false;
      }
    }
    return true;
  };
  const more = () => cellCount(area) < growLimit;
  while (more() && has({ ...area, top: area.top - 1, bottom: area.top - 1 })) area.top -= 1;
  while (more() && has({ ...area, top: area.bottom + 1, bottom: area.bottom + 1 }))
    area.bottom += 1;
  while (more() && has({ ...area, left: area.left - 1, right: area.left - 1 })) area.left -= 1;
  while (more() && has({ ...area, left: area.right + 1, right: area.right + 1 })) area.right += 1;
  return area;
}
