// Formulas of one form on a sheet, wherever they stand: lookups under each other and in the next
// column, totals of several tables. What nearly all of them have in common (the same fixed row, the
// cell before, ranges of one length, the same dollar signs) and one has not is told.

import { cellCount, type Area } from '../address/area';
import type { Coordinate } from '../formula/reference';
import { count } from '../format/words';
import { address, atATime, type Evidence } from './Evidence';
import { beginsChain } from './chains';
import type { Clue } from './Finding';
import { corners, type ReferenceSlot, type Slot } from './shape';

type Kin = { region: number; area: Area; formula: number; slots: Slot[] };

/** Ways to say where one thing of a formula is; the steadiest of them is looked at. */
type Feature = {
  /** "begins in row 3", of several "begin in row 3". */
  say: (value: number | string, isOne: boolean) => string;
  of: (kin: Kin) => number | string;
};

const fewest = 4;
/** Of more nobody can say that one is unlike all the others. */
const most = 1_500;
const steady = 0.8;

export function* kinClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const { index, shapes } = evidence;
  const families = new Map<number, Kin[]>();
  for (let region = 0; region < index.regionCount; region++) {
    if (region % atATime === 0) yield undefined;
    if (evidence.isIrregular(index.sheetOf(region))) continue;
    const formula = index.formulaOf(region);
    const area = index.areaOf(region);
    const form = evidence.form(formula);
    const kin = { region, area, formula, slots: shapes.of(formula).slots };
    const own = (form * 1_024 + index.sheetOf(region)) * 4;
    // On the whole sheet, and of the same column or row alone.
    for (const [which, track] of [0, area.left, area.top].entries()) {
      const key = (own + which) * 2 ** 20 + (track % 2 ** 20);
      const family = families.get(key);
      if (!family) families.set(key, [kin]);
      else if (family.length <= most) family.push(kin);
    }
  }
  const clues: Clue[] = [];
  for (const family of families.values()) {
    if (family.length < fewest || family.length > most) continue;
    for (const clue of inFamily(evidence, family)) clues.push(clue);
    yield undefined;
  }
  return clues;
}

function inFamily(evidence: Evidence, family: Kin[]): Clue[] {
  const odd = new Map<Kin, { words: string[]; weight: number }>();
  const [first] = family as [Kin];
  first.slots.forEach((slot, i) => {
    for (const alternatives of featuresOf(slot, i)) judge(family, alternatives, odd);
  });
  const clues: Clue[] = [];
  for (const [kin, { words, weight }] of odd) {
    const { top, left } = kin.area;
    if (weight < 2) continue;
    const sheet = evidence.index.sheetOf(kin.region);
    const grid = evidence.grids[sheet];
    if (grid && beginsChain(evidence, grid, { row: top, col: left }, kin.formula)) continue;
    clues.push({
      kind: 'kin',
      sheet,
      areas: [kin.area],
      sentence: `${address(top, left)} ${words.slice(0, 2).join(', and ')}: ${evidence.shown(kin.formula, top, left)}.`,
      expected: '',
      weight: Math.min(6, weight),
      level: 'doubt',
    });
  }
  return clues;
}

function judge(
  family: Kin[],
  alternatives: Feature[],
  odd: Map<Kin, { words: string[]; weight: number }>,
): void {
  let best: { feature: Feature; value: number | string; agree: number } | undefined;
  for (const feature of alternatives) {
    const counts = new Map<number | string, number>();
    for (const kin of family) {
      const value = feature.of(kin);
      counts.set(value, (counts.get(value) ?? 0) + 1);
    }
    for (const [value, agree] of counts) {
      if (!best || agree > best.agree) best = { feature, value, agree };
    }
  }
  if (!best) return;
  const { feature, value, agree } = best;
  const others = family.length - agree;
  if (others === 0 || others > 2 || agree < 3 || agree / (family.length - 1) < steady) return;
  for (const kin of family) {
    const own = feature.of(kin);
    if (own === value) continue;
    const weight =
      Math.log2(1 + Math.min(agree, 40)) * 1.2 -
      (others - 1) * 1.2 -
      Math.log2(cellCount(kin.area)) * 0.3;
    const words = `${feature.say(own, true)}, ${String(agree)} formulas of the same form ${feature.say(value, false)}`;
    const known = odd.get(kin);
    if (known) {
      if (!known.words.includes(words)) known.words.push(words);
      known.weight = Math.max(known.weight, weight) + 0.3;
    } else odd.set(kin, { words: [words], weight });
  }
}

/** Groups of features: each group is one thing, said in several ways. */
function featuresOf(slot: Slot, at: number): Feature[][] {
  if (slot.kind === 'number') {
    return [
      [
        {
          say: (value, isOne) => `${isOne ? 'has' : 'have'} ${String(value)}`,
          of: ({ slots }) => slots[at]?.text ?? '',
        },
      ],
    ];
  }
  if (slot.kind !== 'reference') return [];
  const reference = ({ slots }: Kin) => slots[at] as ReferenceSlot;
  const corner = (kin: Kin, which: number) => corners(reference(kin))[which];
  const groups: Feature[][] = [
    [
      {
        say: (value, isOne) =>
          `${String(value) === '....' ? `${isOne ? 'fixes' : 'fix'} nothing` : `${isOne ? 'fixes' : 'fix'} ${fixedWords(String(value))}`} of ${ordinal(at)} reference`,
        of: (kin) =>
          corners(reference(kin))
            .map((one) => (one?.fixed === true ? '$' : '.'))
            .join(''),
      },
    ],
    [
      {
        say: (value, isOne) =>
          `${isOne ? 'takes' : 'take'} cells of ${value === '' ? 'its own sheet' : String(value).slice(0, -1)}`,
        of: (kin) => reference(kin).prefix,
      },
    ],
  ];
  const words = ['row', 'column', 'row', 'column'] as const;
  for (let which = 0; which < 4; which++) {
    const word = words[which] ?? 'row';
    const base = ({ area }: Kin) => (which % 2 === 0 ? area.top : area.left);
    const track = (one: Coordinate | undefined, kin: Kin) =>
      one ? (one.fixed ? one.at : one.at + base(kin)) : 0;
    const verb = (isOne: boolean) => `${which < 2 ? 'begin' : 'end'}${isOne ? 's' : ''} in`;
    const places: Feature[] = [
      {
        say: (value, isOne) => `${verb(isOne)} the ${word} ${distance(Number(value), word)}`,
        of: (kin) => track(corner(kin, which), kin) - base(kin),
      },
      {
        say: (value, isOne) => `${verb(isOne)} ${word} ${String(value)}`,
        of: (kin) => track(corner(kin, which), kin),
      },
    ];
    if (which >= 2) {
      places.push({
        say: (value, isOne) => `${isOne ? 'takes' : 'take'} ${count(Number(value), word)}`,
        of: (kin) => track(corner(kin, which), kin) - track(corner(kin, which - 2), kin) + 1,
      });
    }
    groups.push(places);
  }
  return groups;
}

function distance(tracks: number, word: 'row' | 'column'): string {
  if (tracks === 0) return 'of the cell itself';
  const [before, after] = word === 'row' ? ['above', 'below'] : ['to the left', 'to the right'];
  return `${String(Math.abs(tracks))} ${tracks < 0 ? before : after}`;
}

function ordinal(at: number): string {
  return at === 0 ? 'the first' : `the ${String(at + 1)}.`;
}

function fixedWords(signs: string): string {
  const row = signs[0] === '$' || signs[2] === '$';
  const col = signs[1] === '$' || signs[3] === '$';
  return row && col ? 'row and column' : row ? 'the row' : 'the column';
}
