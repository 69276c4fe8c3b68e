// How cells get into others, as rows of a list: a row for each way, which opens to its steps.

import { count } from '../format/words';
import type { Cells, WaysAnswer } from '../model/messages';
import { closed, group, remark, type PlaceRow } from './PlaceList';
import { formulaRow, placed, placeOfCells, type Asked } from './rows';

type Way = WaysAnswer['ways'][number];

/** Of a longer way the beginning and the end stand in its row. */
const shownSteps = 4;

function stepRows({ steps, left, leftAfter }: Way, home: string): PlaceRow[] {
  const rows = steps.map((step) => formulaRow(step, home));
  if (left > 0) rows.splice(leftAfter, 0, remark('…', `and ${count(left, 'more step')}`));
  return rows;
}

/** "F12 → G12:H12 → Summary!B2", which stands for all cells of the way. */
function wayRow(way: Way, home: string): PlaceRow {
  const { steps, left } = way;
  const names = steps.map((step) => placed(step, '', home).text);
  if (names.length > shownSteps) names.splice(2, names.length - shownSteps, '…');
  const places = steps.map(placeOfCells);
  const length = steps.length + left;
  return {
    text: names.join(' → '),
    detail: length === 1 ? 'directly' : count(length, 'step'),
    tag: '',
    place: places[0],
    places,
    inner: () => stepRows(way, home),
  };
}

/** Every way from some cells to others, with no sheet before cells of `home`; the steps themselves where there is only one. */
export async function waysRows(
  asked: Asked,
  from: Cells,
  to: Cells,
  home: string,
): Promise<PlaceRow[]> {
  const args = { from: cellsOf(from), to: cellsOf(to) };
  const { ways, more, circular } = await asked.model.ask(asked.book, 'ways', args);
  const [first] = ways;
  const rows =
    first && ways.length === 1 && !more
      ? stepRows(first, home)
      : ways.map((way) => wayRow(way, home));
  return [
    ...rows,
    ...(more ? [remark('…', 'and further ways, which are not listed')] : []),
    ...(circular ? [{ ...remark('A circle lies on these ways'), tag: 'Circle' }] : []),
  ];
}

/** The plain cells: what else a row holds need not go to the model. */
function cellsOf({ sheet, area }: Cells): Cells {
  return { sheet, area };
}

/** How the listed cells and others rest on each other; `other` is nothing as long as none are chosen. */
export function betweenGroup(asked: Asked, other: Cells | undefined): PlaceRow {
  if (!other) {
    const how = 'F stays with this cell; then select the other one in the spreadsheet.';
    return closed('Ways to another cell', '', () => [remark(how)]);
  }
  const home = asked.cells.sheet;
  const names = [other, asked.cells].map((cells) => {
    const { sheet, address } = placeOfCells(cells);
    return sheet === home ? address : `${sheet}!${address}`;
  });
  const title = `Ways between it and ${names[0] ?? ''}`;
  return closed(title, 'the cell that is selected', async () => {
    const into = await waysRows(asked, other, asked.cells, home);
    const from = await waysRows(asked, asked.cells, other, home);
    const headed = (rows: PlaceRow[], [start = '', end = '']: string[]): PlaceRow[] =>
      rows.length === 0 ? [] : [group(`From ${start} to ${end}`, '', rows)];
    const all = [...headed(into, names), ...headed(from, [...names].reverse())];
    return all.length > 0 ? all : [remark('Neither rests on the other.')];
  });
}
