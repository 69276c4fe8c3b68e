// The audit of workbooks written down by address.

import { areaAddress } from '../../../src/core/address/area';
import { audit } from '../../../src/core/audit/audit';
import type { Finding } from '../../../src/core/audit/Finding';
import type { NameEntry } from '../../../src/core/model/Names';
import { WorkbookModel } from '../../../src/core/model/WorkbookModel';
import { drain } from '../model/RandomWorkbook';
import { pieceOf, type Written } from '../model/written';

export function modelOf(sheets: Record<string, Written>, names: NameEntry[] = []): WorkbookModel {
  const model = new WorkbookModel({ book: 'Model.xlsx', sheets: Object.keys(sheets), names });
  for (const [sheet, cells] of Object.entries(sheets)) {
    const { area, formulas, values } = pieceOf(cells);
    model.beginSheet(sheet);
    model.piece(sheet, area, formulas, values);
    model.endSheet(sheet);
  }
  return model;
}

export function findingsOf(sheets: Record<string, Written>, names: NameEntry[] = []): Finding[] {
  return drain(audit(modelOf(sheets, names)));
}

function onSheet(cells: Written, isStyle: boolean): Finding[] {
  return findingsOf({ Sheet: cells }).filter(({ level }) => (level === 'style') === isStyle);
}

/** "differs B7 =A7*2": of each the kind, the cells of the one sheet, what is expected; not of style. */
export function told(cells: Written): string[] {
  return onSheet(cells, false).map(line);
}

export function toldOfStyle(cells: Written): string[] {
  return onSheet(cells, true).map(line);
}

export function line({ kind, cells, expected }: Finding): string {
  const places = cells.map(({ area }) => areaAddress(area)).join(' ');
  return `${kind} ${places}${expected === '' ? '' : ` ${expected}`}`;
}

export function sentences(cells: Written): string[] {
  return onSheet(cells, false).map(({ sentence }) => sentence);
}

export function sentencesOfStyle(cells: Written): string[] {
  return onSheet(cells, true).map(({ sentence }) => sentence);
}
