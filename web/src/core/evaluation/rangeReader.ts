// Reads a range whole. A range of several columns with an error in its first one is refused as a
// grid; its first column alone is not, so such a range is read in two parts.

import { type Area, areaAddress, qualified } from '../address/area';
import type { Grid } from '../protocol/json';
import { failed, succeeded, type Outcome } from '../protocol/Outcome';
import type { RangeTooBig, RangeValues } from '../protocol/verbs';

export type ReadRange = (address: string) => Promise<Outcome<RangeValues | RangeTooBig>>;

/** How the native side words that refusal. */
const firstColumnRefusal = /error in its first column/;

export async function readArea(read: ReadRange, sheet: string, area: Area): Promise<Outcome<Grid>> {
  const outcome = await read(qualified(sheet, areaAddress(area)));
  if (outcome.ok) {
    if ('tooBig' in outcome.value) return failed('refused', 'The range is too large to be read.');
    const { values } = outcome.value;
    const rows = area.bottom - area.top + 1;
    const cols = area.right - area.left + 1;
    // Values of some other range would be shown as those of the cells in this one.
    if (values.length !== rows || values.some((row) => row.length !== cols)) {
      return failed('malformed', 'The range that was read has another size.');
    }
    return succeeded(values);
  }
  if (area.left === area.right || !firstColumnRefusal.test(outcome.failure.message)) return outcome;
  const first = await readArea(read, sheet, { ...area, right: area.left });
  if (!first.ok) return first;
  const rest = await readArea(read, sheet, { ...area, left: area.left + 1 });
  if (!rest.ok) return rest;
  return succeeded(first.value.map((row, i) => [...row, ...(rest.value[i] ?? [])]));
}
