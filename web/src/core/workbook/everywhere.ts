// The model's answers as rows of a list: who uses the cell on every sheet, each opening to its own
// users; what rests on it in the end; what it rests on; where errors start.

import { cellCount, covers, meet, parseArea } from '../address/area';
import { count, grouped } from '../format/words';
import type {
  BookState,
  Cells,
  DependentsAnswer,
  DriverRow,
  ErrorsAnswer,
  Row,
} from '../model/messages';
import type { NotRead } from '../scan/BookScan';
import { closed, group, remark, type PlaceRow } from './PlaceList';
import { formulaRow, joined, placed, placeOfCells, times, valueText, type Asked } from './rows';
import { waysRows } from './ways';

const contains = (outer: Cells, inner: Cells) =>
  outer.sheet === inner.sheet && covers(outer.area, inner.area);
const touch = (one: Cells, other: Cells) =>
  one.sheet === other.sheet && meet(one.area, other.area) !== undefined;

function more(left: number): PlaceRow[] {
  return left > 0 ? [remark('…', `and ${count(left, 'more cell')}`)] : [];
}

type Way = {
  /** The rows that were opened. */
  through: readonly Cells[];
  /** The asked cells where coming back to them closes a circle: one of several may use another. */
  circle: Cells | undefined;
};

function userRow(asked: Asked, row: Row, home: string, { through, circle }: Way): PlaceRow {
  const shown = formulaRow(row, home);
  if (circle && touch(circle, row)) return { ...shown, tag: 'Circle' };
  if (through.some((cells) => contains(cells, row))) {
    return { ...shown, detail: joined('listed above', shown.detail) };
  }
  const way = { through: [...through, row], circle };
  return { ...shown, inner: () => usersOf(asked, row, way) };
}

async function usersOf(asked: Asked, of: Row, way: Way): Promise<PlaceRow[]> {
  const { sheet, area } = of;
  const { rows, left } = await asked.model.ask(asked.book, 'users', { sheet, area });
  if (rows.length === 0) return [remark('No cell uses it.')];
  return [...rows.map((row) => userRow(asked, row, sheet, way)), ...more(left)];
}

/** Direct users by sheet; those on sheets that `leave` names are left out. */
export function userGroups(
  asked: Asked,
  answer: DependentsAnswer,
  leave: (sheet: string) => boolean,
): PlaceRow[] {
  const bySheet = new Map<string, Row[]>();
  for (const row of answer.rows) {
    if (leave(row.sheet)) continue;
    const rows = bySheet.get(row.sheet);
    if (rows) rows.push(row);
    else bySheet.set(row.sheet, [row]);
  }
  const own = asked.cells.sheet;
  const isCircle = answer.circular || cellCount(asked.cells.area) === 1;
  const way = { through: [], circle: isCircle ? asked.cells : undefined };
  const sheets = [...bySheet].sort(([a], [b]) => Number(b === own) - Number(a === own));
  const groups = sheets.map(([sheet, rows]) => {
    const cells = rows.reduce((sum, row) => sum + row.cells, 0);
    const inner = rows.map((row) => userRow(asked, row, sheet, way));
    return group(sheet === own ? 'This sheet' : sheet, count(cells, 'cell'), inner);
  });
  return [...groups, ...more(answer.left)];
}

/** "1,204 cells on 5 sheets rest on it; 3 results that nothing else uses." */
export function impactText({ impact, circular }: DependentsAnswer): string {
  if (impact.cells === 0) return '';
  const verb = impact.cells === 1 ? 'rests' : 'rest';
  const results =
    impact.results === 0 ? '' : `; ${count(impact.results, 'result')} that nothing else uses`;
  const circle = circular ? ' It is in a circle.' : '';
  return `${count(impact.cells, 'cell')} on ${count(impact.sheets, 'sheet')} ${verb} on it${results}.${circle}`;
}

export function resultGroup(asked: Asked, { impact }: DependentsAnswer): PlaceRow[] {
  if (impact.results === 0) return [];
  const rows = () => [
    ...impact.rows.map((row): PlaceRow => {
      const shown = placed(row, joined(valueText(row.value), times(row.cells)), '');
      return { ...shown, inner: () => waysRows(asked, asked.cells, row, row.sheet) };
    }),
    ...more(impact.results - impact.rows.reduce((sum, row) => sum + row.cells, 0)),
  ];
  return [closed('Results that rest on it', count(impact.results, 'cell'), rows)];
}

export function driverGroup(asked: Asked): PlaceRow {
  return closed('What it rests on', 'inputs at the end of every way', async () => {
    const { sheet, area } = asked.cells;
    const answer = await asked.model.ask(asked.book, 'drivers', { sheet, area });
    if (answer.rows.length === 0) return [remark('It rests on no other cell.')];
    const { formulas, inputs, left } = answer;
    const all = remark(`${count(inputs, 'input')}, by way of ${count(formulas, 'formula')}`);
    const rows = answer.rows.map((row) => driverRow(asked, row));
    return [all, ...rows, ...(left > 0 ? [remark('…', `and ${count(left, 'more area')}`)] : [])];
  });
}

function driverRow(asked: Asked, row: DriverRow): PlaceRow {
  const value = row.kind === 'blank' ? 'blank' : row.cells === 1 ? valueText(row.value) : '';
  const uses = `used ${grouped(String(row.uses))}×`;
  const shown = placed(row, joined(value, times(row.cells), uses), asked.cells.sheet);
  return { ...shown, inner: () => waysRows(asked, row, asked.cells, row.sheet) };
}

export function runTimeGroup(asked: Asked, cells: number): PlaceRow[] {
  if (cells === 0) return [];
  const inner = async () => {
    const { rows, left } = await asked.model.ask(asked.book, 'runTime', {});
    const shown = rows.map((row) =>
      placed(row, joined(row.reasons.join(', '), row.formula, times(row.cells)), ''),
    );
    return [...shown, ...more(left)];
  };
  return [closed('Decided at run time', `${count(cells, 'cell')} that may use it`, inner)];
}

export function errorGroup({ total, rows, left, circular }: ErrorsAnswer): PlaceRow[] {
  if (total === 0) return [];
  const inner = (): PlaceRow[] => [
    ...rows.map((row) => {
      const spoils = row.spoils === undefined ? '' : `spoils ${count(row.spoils, 'more cell')}`;
      const shown = placed(row, joined(row.formula, times(row.cells), spoils), '');
      return { ...shown, tag: row.text };
    }),
    ...(circular > 0
      ? [remark(`${count(circular, 'error')} in circles, where none is the first`)]
      : []),
    ...(left > 0 ? [remark('…', `and ${count(left, 'more cause')}`)] : []),
  ];
  return [closed('Where errors start', `${count(total, 'error cell')} in the workbook`, inner)];
}

/** Areas that the spreadsheet did not tell, and formulas of which a part has no meaning to the model. */
export function notReadGroup(
  areas: readonly NotRead[],
  formulas: Pick<BookState, 'unread' | 'unreadCells'>,
): PlaceRow[] {
  const { unread, unreadCells } = formulas;
  if (areas.length === 0 && unreadCells === 0) return [];
  const inner = (): PlaceRow[] => [
    ...areas.map(({ sheet, address, reason }): PlaceRow => {
      const area = parseArea(address);
      const place = area && placeOfCells({ sheet, area });
      return { text: `${sheet}!${address}`, detail: reason, tag: '', place };
    }),
    ...unread.map((row) => placed(row, joined(row.formula, times(row.cells)), '')),
    ...more(unreadCells - unread.reduce((sum, row) => sum + row.cells, 0)),
  ];
  const parts = [
    areas.length > 0 ? count(areas.length, 'area') : '',
    unreadCells > 0 ? count(unreadCells, 'formula') : '',
  ];
  return [closed('What could not be read', parts.filter(Boolean).join(', '), inner)];
}
