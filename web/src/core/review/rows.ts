// Findings as rows of a list: each opens to its areas where it has several.

import { count } from '../format/words';
import type { FindingRow } from '../model/messages';
import { remark, type PlaceRow } from '../workbook/PlaceList';
import { placeOfCells, shortSheet } from '../workbook/rows';

export class FindingRows {
  readonly findings: FindingRow[] = [];
  private readonly byRow = new Map<PlaceRow, FindingRow>();
  private readonly byFinding = new Map<FindingRow, PlaceRow>();

  /** A part of the findings; each row is made once, because thousands take longer than a frame. */
  add(findings: readonly FindingRow[]): void {
    for (const finding of findings) {
      this.findings.push(finding);
      this.byFinding.set(finding, this.rowOf(finding));
    }
  }

  rowsOf(findings: readonly FindingRow[]): PlaceRow[] {
    return findings.flatMap((finding) => this.byFinding.get(finding) ?? []);
  }

  /** The finding that the row is of, or one of its areas. */
  of(row: PlaceRow): FindingRow | undefined {
    return this.byRow.get(row);
  }

  /** The same, and nothing for an area. */
  ofRow(row: PlaceRow): FindingRow | undefined {
    const finding = this.byRow.get(row);
    return finding && this.byFinding.get(finding) === row ? finding : undefined;
  }

  private rowOf(finding: FindingRow): PlaceRow {
    const { cells, areas, sentence, confidence } = finding;
    const places = cells.map(placeOfCells);
    const [place] = places;
    const more = areas > 1 ? ` and ${count(areas - 1, 'more area')}` : '';
    const row: PlaceRow = {
      text: place ? `${shortSheet(place.sheet)}!${place.address}${more}` : '',
      detail: sentence,
      tag: confidence === 'high' ? 'High' : '',
      place,
      places,
    };
    this.byRow.set(row, finding);
    if (areas > 1) row.inner = () => this.areasOf(finding);
    return row;
  }

  private areasOf(finding: FindingRow): PlaceRow[] {
    const rows = finding.cells.map((cells): PlaceRow => {
      const place = placeOfCells(cells);
      return { text: place.address, detail: place.size, tag: '', place };
    });
    const left = finding.areas - finding.cells.length;
    if (left > 0) rows.push(remark('…', `and ${count(left, 'more area')}`));
    for (const row of rows) this.byRow.set(row, finding);
    return rows;
  }
}
