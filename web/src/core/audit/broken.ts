// What is gone or leads out of the workbook: #REF! in a formula, names that nothing has, links to
// other workbooks. One clue for each sheet, however many of its cells it is.

import { areaAddress, cellCount, type Area } from '../address/area';
import { formulaInFirst } from '../formula/relative';
import { count } from '../format/words';
import { cut, atATime, type Evidence } from './Evidence';
import type { Clue } from './Finding';

type Group = { sheet: number; formula: number; areas: Area[]; kind: 'broken' | 'link' };

export function* brokenClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const { index } = evidence;
  const groups = new Map<string, Group>();
  let linked = 0;
  for (let region = 0; region < index.regionCount; region++) {
    const oddity = index.definitions.oddity(index.definitionOf(region));
    if (oddity?.broken === true || oddity?.external === true) {
      const [sheet, formula] = [index.sheetOf(region), index.formulaOf(region)];
      const isGone = evidence.text(formula).includes('#REF!');
      if (oddity.external) linked++;
      if (isGone || oddity.external) {
        const kind = isGone ? 'broken' : 'link';
        const key = `${String(sheet)} ${kind}`;
        const group = groups.get(key);
        if (group) group.areas.push(index.areaOf(region));
        else groups.set(key, { sheet, formula, areas: [index.areaOf(region)], kind });
      }
    }
    if (region % atATime === 0) yield undefined;
  }
  return [...groups.values()].map((group) => clueOf(evidence, group, linked));
}

function clueOf(evidence: Evidence, { sheet, formula, areas, kind }: Group, linked: number): Clue {
  const [first] = areas as [Area];
  const text = cut(formulaInFirst(evidence.text(formula), first));
  const rest = areas.reduce((sum, area) => sum + cellCount(area), -cellCount(first));
  const more = rest > 0 ? ` and ${count(rest, 'other cell')} of the sheet` : '';
  const isOne = cellCount(first) === 1 && rest === 0;
  if (kind === 'broken') {
    return {
      kind,
      sheet,
      areas,
      sentence: `${areaAddress(first)}${more} ${isOne ? 'refers' : 'refer'} to cells that were deleted: ${text}.`,
      expected: '',
      weight: 9,
      level: 'fact',
    };
  }
  // A workbook that is made of links has them on purpose; a single one was left behind.
  const weight = linked <= 3 ? 7 : linked <= 20 ? 4 : 2;
  const few = linked <= 3 ? '; hardly any other formula here does' : '';
  return {
    kind,
    sheet,
    areas,
    sentence: `${areaAddress(first)}${more} ${isOne ? 'takes' : 'take'} cells of another workbook: ${text}${few}.`,
    expected: '',
    weight,
    level: linked <= 3 ? 'fact' : 'doubt',
  };
}
