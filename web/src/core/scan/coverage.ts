// What a list made from a scan covers, in words: never more than was read. Pure.

import { count } from '../format/words';
import type { ScanState } from './BookScan';

/** The sentence under a list; `quick`: what the spreadsheet itself told stands in it, too. */
export function coverageOf(state: ScanState, quick: boolean): string {
  const parts: string[] = [];
  const { status, sheets, sheetsRead, notRead, changed, readAt } = state;
  if (sheetsRead === 0) {
    return quick
      ? 'As the spreadsheet tells it: cells of the same sheet that name this one. What other sheets, INDIRECT or OFFSET use is not listed.'
      : '';
  }
  if (sheetsRead < sheets) {
    parts.push(`So far ${String(sheetsRead)} of ${count(sheets, 'sheet')}.`);
  } else parts.push(sheets === 1 ? `The only sheet` : `All ${count(sheets, 'sheet')}`);
  if (sheetsRead >= sheets) parts[0] += readAt === '' ? '.' : `, as read at ${readAt}.`;
  if (isLookingUp(state)) parts.push('Cells used through tables are not listed yet.');
  if (notRead.length > 0) parts.push(`${count(notRead.length, 'area')} could not be read.`);
  if (changed.length > 0) {
    const names = changed.map((name) => `“${name}”`).join(', ');
    parts.push(`${names} ${changed.length === 1 ? 'has' : 'have'} changed since.`);
  }
  if (status === 'failed') parts.push(state.reason);
  return parts.join(' ');
}

/** All was read, but where the tables are that formulas name is still to be asked. */
function isLookingUp({ status, sheet, sheets, sheetsRead }: ScanState): boolean {
  return status === 'reading' && sheet === '' && sheetsRead >= sheets;
}

/** The line about the scan itself; empty when there is nothing to say. */
export function progressOf(state: ScanState): string {
  const { status, cells, read, sheet, waiting, sheets, sheetsLeft } = state;
  const share = cells === 0 ? 0 : Math.min(100, Math.floor((100 * read) / cells));
  switch (status) {
    case 'none':
    case 'done':
      return '';
    case 'starting':
      return waiting ? 'The spreadsheet is busy; reading waits.' : 'Looking at the workbook…';
    case 'asking':
      return `${count(cells, 'cell')} on ${count(sheets, 'sheet')} are to be read first.`;
    case 'reading':
      if (isLookingUp(state)) return 'Looking up where tables are…';
      if (waiting) return `The spreadsheet is busy; reading waits at “${sheet}”.`;
      return `Reading “${sheet}”, sheet ${String(sheets - sheetsLeft + 1)} of ${String(sheets)}: ${String(share)} %`;
    case 'stopped':
      return `Stopped at “${sheet}”, ${String(share)} % read.`;
    case 'failed':
      return `Reading ended: ${state.reason}`;
  }
}
