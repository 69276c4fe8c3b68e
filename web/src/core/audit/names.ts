// Defined names that lead nowhere, and names that nothing uses. One clue for each of the two, however
// many names it is.

import { cellCount, unquoted, type Area } from '../address/area';
import { count } from '../format/words';
import { parse } from '../formula/Parser';
import { readReference } from '../formula/reference';
import { walk } from '../formula/syntax';
import type { SheetArea } from '../model/Index';
import { areaFrom } from './difference';
import { atATime, type Evidence } from './Evidence';
import type { Clue } from './Finding';

/** Names that the spreadsheet itself makes and uses. */
const reserved = /^(?:_+xl|print_(?:area|titles)$|_filterdatabase$|criteria$|extract$|solver_)/;
/** So many are told by name. */
const toldNames = 12;
/** So many formulas that use names are listed. */
const usersLimit = 200;

type Name = {
  /** As it is defined, with the sheet that it belongs to. */
  written: string;
  refersTo: string;
  /** Without its sheet, in small letters. */
  key: string;
  /** The sheet that it belongs to; nothing for one of the whole workbook. */
  sheet: number | undefined;
};

export function* nameClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const names = namesOf(evidence);
  if (names.length === 0) return [];
  const used = yield* usedNames(evidence, names);
  const broken = names.filter(({ refersTo }) => refersTo.includes('#REF!'));
  const clues = broken.length > 0 ? [yield* brokenClue(evidence, broken, used)] : [];
  // What leads nowhere is told as that.
  const unused = names.filter((name) => !used.has(name.key) && !broken.includes(name));
  if (unused.length > 0) clues.push(unusedClue(evidence, unused, names.length));
  return clues;
}

function namesOf({ model }: Evidence): Name[] {
  return model.entry.names.flatMap(({ name, refersTo }) => {
    const at = name.lastIndexOf('!');
    const key = name.slice(at + 1).toLowerCase();
    if (reserved.test(key)) return [];
    const sheet = at < 0 ? undefined : model.sheetNumber(unquoted(name.slice(0, at)));
    return [{ written: name, refersTo, key, sheet }];
  });
}

/** Words of a formula that may be names; also in its texts, where INDIRECT finds them. */
function wordsOf(text: string): string[] {
  return text.toLowerCase().match(/[\p{L}_\\][\p{L}\p{N}_.\\?]*/gu) ?? [];
}

/** The names that any formula or other name uses, with the formulas' numbers, the first ones. */
function* usedNames(
  { model }: Evidence,
  names: readonly Name[],
): Generator<undefined, Map<string, number[]>> {
  const keys = new Set(names.map(({ key }) => key));
  const used = new Map<string, number[]>();
  const note = (key: string): number[] => {
    const known = used.get(key) ?? [];
    used.set(key, known);
    return known;
  };
  for (let formula = 1; formula < model.formulas.count; formula++) {
    if (formula % (atATime * 10) === 0) yield undefined;
    for (const word of wordsOf(model.formulas.at(formula))) {
      if (!keys.has(word)) continue;
      const formulas = note(word);
      if (formulas.length < usersLimit && formulas.at(-1) !== formula) formulas.push(formula);
    }
  }
  for (const { key, refersTo } of names) {
    for (const word of wordsOf(refersTo)) if (word !== key && keys.has(word)) note(word);
  }
  return used;
}

/** "Rate, Growth and 3 others" */
function listed(names: readonly Name[]): string {
  const told = names.slice(0, toldNames).map(({ written }) => written);
  const more = names.length - told.length;
  return told.join(', ') + (more > 0 ? ` and ${count(more, 'other')}` : '');
}

function* brokenClue(
  evidence: Evidence,
  broken: readonly Name[],
  used: ReadonlyMap<string, number[]>,
): Generator<undefined, Clue> {
  const usersOf = ({ key }: Name) =>
    (used.get(key) ?? []).filter((formula) => isNamed(evidence, formula, key));
  const uses = broken.filter((name) => usersOf(name).length > 0);
  const formulas = new Set(uses.flatMap(usersOf));
  const [place] = yield* placesOf(evidence, formulas);
  const [first] = broken as [Name];
  const cells = place?.areas.reduce((sum, area) => sum + cellCount(area), 0) ?? 0;
  const lead = broken.length === 1 ? 'The name leads' : `${count(broken.length, 'name')} lead`;
  const users =
    cells === 0
      ? `no formula uses ${broken.length === 1 ? 'it' : 'them'}`
      : `${listed(uses)} ${uses.length > 1 ? 'are' : 'is'} used in ${count(cells, 'cell')} of ${evidence.model.sheetName(place?.sheet ?? 0)}`;
  return {
    kind: 'name',
    sheet: place?.sheet ?? -1,
    areas: place?.areas ?? [],
    sentence: `${lead} to cells that were deleted: ${listed(broken)} (${first.refersTo}); ${users}.`,
    expected: '',
    weight: cells > 0 ? 7 : 2.5,
    level: cells > 0 ? 'fact' : 'style',
  };
}

/** True if it is a name in the formula, and no word of a text. */
function isNamed(evidence: Evidence, formula: number, key: string): boolean {
  let is = false;
  walk(evidence.shapes.of(formula).root, (node) => {
    is ||= (node.kind === 'name' || node.kind === 'call') && node.name.toLowerCase() === key;
  });
  return is;
}

/** Where formulas stand, by sheet, the sheet with most regions first. */
function* placesOf(
  { index }: Evidence,
  formulas: ReadonlySet<number>,
): Generator<undefined, { sheet: number; areas: Area[] }[]> {
  const bySheet = new Map<number, { sheet: number; areas: Area[] }>();
  for (let region = 0; formulas.size > 0 && region < index.regionCount; region++) {
    if (region % (atATime * 10) === 0) yield undefined;
    if (!formulas.has(index.formulaOf(region))) continue;
    const sheet = index.sheetOf(region);
    const place = bySheet.get(sheet) ?? { sheet, areas: [] };
    bySheet.set(sheet, place);
    place.areas.push(index.areaOf(region));
  }
  return [...bySheet.values()].sort((a, b) => b.areas.length - a.areas.length);
}

/** Where the name's cells are; nothing where it stands for anything else than cells of one sheet. */
function cellsOf({ model }: Evidence, { refersTo }: Name): SheetArea | undefined {
  const { root } = parse(refersTo, 'a1');
  if (root.kind !== 'reference') return undefined;
  const { prefix, text } = root;
  const shape = readReference(text, 'a1');
  const sheet = model.sheetNumber(unquoted(prefix.slice(0, -1)));
  if (!shape || sheet === undefined) return undefined;
  return { sheet, area: areaFrom({ kind: 'reference', prefix, text, shape }, { row: 1, col: 1 }) };
}

/** The cells are those of the names on the sheet of the first that has any. */
function unusedClue(evidence: Evidence, unused: readonly Name[], all: number): Clue {
  const places = unused.flatMap((name) => cellsOf(evidence, name) ?? []);
  const sheet = places[0]?.sheet ?? -1;
  return {
    kind: 'unused-name',
    sheet,
    areas: places.filter((place) => place.sheet === sheet).map(({ area }) => area),
    sentence: `${String(unused.length)} of ${count(all, 'name')} ${unused.length === 1 ? 'is' : 'are'} in no cell's formula and in no other name: ${listed(unused)}. Charts, conditional formats and lists of choices were not looked at.`,
    expected: '',
    weight: 2,
    level: 'style',
  };
}
