// Formulas whose result, or whose cells, nobody can tell from the workbook as it was read: functions
// that give another value at every calculation, and references that are put together at run time. One
// clue for each function of a sheet.

import { areaAddress, cellCount, type Area } from '../address/area';
import { count } from '../format/words';
import { formulaInFirst } from '../formula/relative';
import { plainName, walk } from '../formula/syntax';
import { cut, atATime, type Evidence } from './Evidence';
import type { Clue } from './Finding';

/** What each of them means for whoever checks the formula. */
const meanings: Record<string, string | undefined> = {
  NOW: 'gives another time whenever the workbook is calculated',
  TODAY: 'gives another date on another day',
  RAND: 'gives another number whenever the workbook is calculated',
  RANDBETWEEN: 'gives another number whenever the workbook is calculated',
  RANDARRAY: 'gives other numbers whenever the workbook is calculated',
  INDIRECT: 'takes cells by a text, which no inserted or deleted row mends',
  OFFSET: 'takes cells at a distance that is worked out',
  CELL: 'tells of a cell how it looks or where it stands, not only what it holds',
  INFO: 'tells of the machine that calculates',
};
const called = new RegExp(`\\b(?:${Object.keys(meanings).join('|')})\\(`, 'i');

type Group = { sheet: number; name: string; formula: number; areas: Area[] };

export function* runTimeClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const { index } = evidence;
  const groups = new Map<string, Group>();
  const known = new Map<number, string[]>();
  for (let region = 0; region < index.regionCount; region++) {
    if (region % (atATime * 10) === 0) yield undefined;
    const formula = index.formulaOf(region);
    let names = known.get(formula);
    if (!names) known.set(formula, (names = namesIn(evidence, formula)));
    const sheet = index.sheetOf(region);
    for (const name of names) {
      const key = `${String(sheet)} ${name}`;
      const group = groups.get(key);
      if (group) group.areas.push(index.areaOf(region));
      else groups.set(key, { sheet, name, formula, areas: [index.areaOf(region)] });
    }
  }
  return [...groups.values()].map((group) => clueOf(evidence, group));
}

function namesIn(evidence: Evidence, formula: number): string[] {
  const text = evidence.text(formula);
  if (!text.includes('(') || !called.test(text)) return none;
  const names = new Set<string>();
  walk(evidence.shapes.of(formula).root, (node) => {
    const name = node.kind === 'call' ? plainName(node.name) : '';
    if (meanings[name] !== undefined) names.add(name);
  });
  return [...names];
}

const none: string[] = [];

function clueOf(evidence: Evidence, { sheet, name, formula, areas }: Group): Clue {
  const [first] = areas as [Area];
  const cells = areas.reduce((sum, area) => sum + cellCount(area), 0);
  const where =
    cells === 1
      ? areaAddress(first)
      : areas.length === 1
        ? areaAddress(first)
        : `${areaAddress(first)} and ${count(cells - cellCount(first), 'other cell')} of the sheet`;
  const text = cut(formulaInFirst(evidence.text(formula), first));
  return {
    kind: 'run-time',
    sheet,
    areas,
    sentence: `${name} in ${where} ${meanings[name] ?? ''}: ${text}.`,
    expected: '',
    weight: 1 + Math.min(1, Math.log10(cells) / 4),
    level: 'style',
  };
}
