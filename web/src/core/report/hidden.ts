// Which rows and columns of a workbook are hidden, as a report lists them; asked of the spreadsheet
// sheet by sheet. Whether a sheet is hidden no question tells.

import { columnLetters, parseArea } from '../address/area';
import type { HiddenTracks, Span } from '../scan/hiddenTracks';
import type { BookScan } from '../scan/BookScan';
import type { HiddenOn, SheetInventory } from './inventory';

/** Of more runs the first are told. */
const mostSpans = 20;

function spansText(spans: readonly Span[], name: (track: number) => string): string {
  const all = spans
    .slice(0, mostSpans)
    .map(({ first, last }) => (first === last ? name(first) : `${name(first)}:${name(last)}`));
  const left = spans.length - all.length;
  return left > 0 ? `${all.join(', ')} and ${String(left)} more` : all.join(', ');
}

function hiddenOn(sheet: string, { rows, cols, partly }: HiddenTracks): HiddenOn | undefined {
  if (rows.length === 0 && cols.length === 0 && !partly) return undefined;
  return { sheet, rows: spansText(rows, String), cols: spansText(cols, columnLetters), partly };
}

/** Of the sheets on which some are, and of those that were too much to ask all of. */
export async function hiddenTracksOf(
  scan: Pick<BookScan, 'hidden'>,
  sheets: readonly SheetInventory[],
): Promise<HiddenOn[]> {
  const found: HiddenOn[] = [];
  for (const { name, area: address, cells } of sheets) {
    const area = cells > 0 ? parseArea(address) : undefined;
    const told = area && (await scan.hidden(name, area));
    const one = told && hiddenOn(name, told);
    if (one) found.push(one);
  }
  return found;
}
