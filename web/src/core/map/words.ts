// The map in words: what a sheet holds, what a cell is, what it is tied to. Pure.

import { areaAddress, cellCount, covers, type Area } from '../address/area';
import { count, grouped } from '../format/words';
import type { Cells } from '../model/messages';
import type { HiddenTracks } from '../scan/hiddenTracks';
import { kindName } from '../review/kinds';
import { valueText } from '../workbook/rows';
import type { Break, CellTold, Flow, SheetFacts, TiedSheet, Ties } from './told';

/** "A1:N48 · 1,204 formulas, 31 of them distinct · 12 inputs · 2 errors". */
export function factsText(facts: SheetFacts): string {
  const { area, formulas, distinctFormulas, inputs, errors, links } = facts;
  if (facts.cells === 0) return 'Empty';
  const distinct = formulas > 0 ? ` (${grouped(String(distinctFormulas))} distinct)` : '';
  const parts = [
    area,
    formulas === 0 ? 'no formulas' : `${count(formulas, 'formula')}${distinct}`,
    inputs > 0 ? count(inputs, 'input') : '',
    errors > 0 ? count(errors, 'error') : '',
    links > 0 ? `${count(links, 'link')} to other workbooks` : '',
  ];
  return parts.filter(Boolean).join(' · ');
}

/** "3 hidden rows, 1 hidden column"; empty where there are none. */
export function hiddenText(tracks: HiddenTracks | undefined): string {
  if (!tracks) return '';
  const sum = (spans: HiddenTracks['rows']) =>
    spans.reduce((all, { first, last }) => all + last - first + 1, 0);
  const rows = sum(tracks.rows);
  const cols = sum(tracks.cols);
  const parts = [
    rows > 0 ? count(rows, 'hidden row') : '',
    cols > 0 ? count(cols, 'hidden column') : '',
  ].filter(Boolean);
  if (tracks.partly) parts.push('not all looked for');
  return parts.join(', ');
}

/** "takes from Inputs (12 cells), gives to Summary (3 cells)"; empty where it does neither. */
export function flowsText(sheet: string, flows: readonly Flow[]): string {
  const named = (verb: string, others: readonly (readonly [string, number])[]): string => {
    if (others.length === 0) return '';
    const first = others.slice(0, 4).map(([name, cells]) => `${name} (${count(cells, 'cell')})`);
    const more = others.length > 4 ? ` and ${count(others.length - 4, 'more sheet')}` : '';
    return `${verb} ${first.join(', ')}${more}`;
  };
  const takes = flows.filter(({ to }) => to === sheet);
  const gives = flows.filter(({ from }) => from === sheet);
  return [
    named(
      'takes from',
      takes.map(({ from, cells }) => [from, cells] as const),
    ),
    named(
      'gives to',
      gives.map(({ to, cells }) => [to, cells] as const),
    ),
  ]
    .filter(Boolean)
    .join('; ');
}

function sumOf(tied: readonly TiedSheet[]): number {
  return tied.reduce((sum, { cells }) => sum + cells, 0);
}

function elsewhere(tied: readonly TiedSheet[], sheet: string): string {
  const others = tied.filter((one) => one.sheet !== sheet);
  if (others.length === 0) return '';
  const named = others.slice(0, 3).map((one) => `${grouped(String(one.cells))} on ${one.sheet}`);
  const more = others.length > 3 ? `, and on ${count(others.length - 3, 'more sheet')}` : '';
  return ` (${named.join(', ')}${more})`;
}

/** "F12 uses 3 cells (2 on Inputs); 12 cells use it (4 on Summary)." */
export function tiesText({ sheet, area }: Cells, { uses, users }: Ties): string {
  const address = areaAddress(area);
  const used = sumOf(uses);
  const using = sumOf(users);
  const it = cellCount(area) === 1 ? 'it' : 'them';
  const first = used === 0 ? `${address} uses no cell` : `${address} uses ${count(used, 'cell')}`;
  const verb = using === 1 ? 'uses' : 'use';
  const second = using === 0 ? `no cell uses ${it}` : `${count(using, 'cell')} ${verb} ${it}`;
  return `${first}${elsewhere(uses, sheet)}; ${second}${elsewhere(users, sheet)}.`;
}

export type CellText = { address: string; label: string; content: string; more: string[] };

/** What is said of a cell that is pointed at. */
export function cellText(
  cell: { row: number; col: number },
  told: CellTold | undefined,
  breaks: readonly Break[],
): CellText {
  const area: Area = { top: cell.row, left: cell.col, bottom: cell.row, right: cell.col };
  const address = areaAddress(area);
  if (!told) return { address, label: '', content: '', more: [] };
  const value = valueText(told.value);
  const shown = told.formula === '' ? value : `${told.formula}  ${value}`;
  const content = told.read ? shown || 'blank' : 'not read';
  const more: string[] = [];
  if (told.region && cellCount(told.region) > 1) {
    more.push(`Like all of ${areaAddress(told.region)}`);
  }
  const found = breaks.filter(({ areas }) => areas.some((one) => covers(one, area)));
  for (const { kind } of found.slice(0, 3)) more.push(`Finding: ${kindName(kind)}`);
  if (found.length > 3) more.push(`and ${count(found.length - 3, 'more finding')}`);
  return { address, label: told.label, content, more };
}
