// What does not work at all: errors by their first cause, circles, names that lead nowhere.

import { areaAddress, cellCount, union, type Area } from '../address/area';
import { count } from '../format/words';
import { formulaInFirst } from '../formula/relative';
import { findErrorCauses, type ErrorCause } from '../model/errors';
import { cut, type Evidence } from './Evidence';
import type { Clue } from './Finding';

/** More circles than anybody looks at one by one. */
const circlesLimit = 50;
/** Among more regions looking for circles takes longer than all the rest. */
const regionsLimit = 100_000;

/** One clue for all first causes of an error on a sheet that have the same form. */
export function* errorClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const groups = new Map<string, ErrorCause[]>();
  const { causes } = yield* findErrorCauses(evidence.index);
  for (const cause of causes) {
    // A reference that is gone is told as that.
    if (evidence.text(cause.formula).includes('#REF!')) continue;
    const form = cause.formula === 0 ? 0 : evidence.form(cause.formula);
    const key = `${String(cause.sheet)} ${cause.text} ${String(form)}`;
    const group = groups.get(key);
    if (group) group.push(cause);
    else groups.set(key, [cause]);
  }
  return [...groups.values()].map((group) => errorClue(evidence, group));
}

function errorClue(evidence: Evidence, group: ErrorCause[]): Clue {
  const [first] = group as [ErrorCause];
  const cells = group.reduce((sum, { area }) => sum + cellCount(area), 0);
  const spoils = group.reduce((sum, cause) => sum + (cause.spoils ?? 0), 0);
  const formula =
    first.formula === 0 ? '' : formulaInFirst(evidence.text(first.formula), first.area);
  const typed = formula === '' ? 'was typed in' : `comes of ${cut(formula)}`;
  const more = cells > 1 ? ` and in ${count(cells - 1, 'other cell')} alike` : '';
  return {
    kind: 'error',
    sheet: first.sheet,
    areas: group.map(({ area }) => area),
    sentence: `${first.text} in ${areaAddress(first.area)}${more} ${typed}; it uses no other error, and ${count(spoils, 'error')} come of it.`,
    expected: '',
    weight: 2.6 + Math.min(2, Math.log10(1 + spoils)),
    level: 'doubt',
  };
}

export function* circleClues(evidence: Evidence): Generator<undefined, Clue[]> {
  if (evidence.index.regionCount > regionsLimit) return [];
  const { circles } = yield* evidence.model.circlesOf(evidence.index);
  return circles.slice(0, circlesLimit).map((circle): Clue => {
    const [first] = circle as [(typeof circle)[number]];
    const own = circle.filter(({ sheet }) => sheet === first.sheet);
    // Cells of a column are one after the other: their rectangle says it as well.
    const around = own.reduce<Area>((all, { area }) => union(all, area), first.area);
    const isWhole = cellCount(around) === own.length;
    const other = circle.length - own.length;
    const elsewhere = other > 0 ? `, ${String(other)} of them on other sheets` : '';
    return {
      kind: 'circle',
      sheet: first.sheet,
      areas: isWhole ? [around] : own.map(({ area }) => area).slice(0, 200),
      sentence: `${areaAddress(first.area)} rests on itself by way of ${count(circle.length, 'cell')}${elsewhere}.`,
      expected: '',
      weight: 7,
      level: 'fact',
    };
  });
}
