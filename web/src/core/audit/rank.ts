// From clues to findings: those of the same cells become one, those that break in the same way beside
// each other as well, and the most surprising stand first; style stands below fact.

import { cellCount, covers, union, type Area } from '../address/area';
import { count } from '../format/words';
import { formulaInFirst } from '../formula/relative';
import { restingOn } from '../model/closure';
import type { Evidence } from './Evidence';
import { confidenceOf, type Clue, type Finding, type Level } from './Finding';

const levels: Record<Level, number> = { fact: 0, doubt: 0, style: 1 };
/** For so many of the first it is counted what rests on them, each in so many turns at most. */
const followed = 60;
const turnsLimit = 8;
const agreement = 0.3;
/** So many clues are looked at before others may take a turn. */
const atATime = 500;

type Ranked = Clue & { kinds: number };

export function* ranked(
  evidence: Evidence,
  clues: readonly Clue[],
): Generator<undefined, Finding[]> {
  const found = yield* joined(evidence, yield* onePerCell(clues));
  found.sort(inOrder);
  const findings: { clue: Ranked; reach: number }[] = [];
  for (const [i, clue] of found.entries()) {
    const reach = i < followed ? yield* reachOf(evidence, clue) : 0;
    // What much rests on goes before its equals, never far.
    clue.weight += Math.min(0.8, Math.log10(1 + reach) * 0.2);
    findings.push({ clue, reach });
  }
  findings.sort((a, b) => inOrder(a.clue, b.clue));
  const all: Finding[] = [];
  for (const { clue, reach } of findings) {
    if (all.length % 50 === 0) yield undefined;
    all.push(told(evidence, clue, reach, all.length + 1));
  }
  return all;
}

function inOrder(one: Clue, other: Clue): number {
  return levels[one.level] - levels[other.level] || other.weight - one.weight;
}

function told({ model }: Evidence, clue: Clue, reach: number, rank: number): Finding {
  const { kind, level, sentence } = clue;
  const [first] = clue.areas as [Area];
  return {
    rank,
    kind,
    level,
    cells: clue.areas.map((area) => ({ sheet: model.sheetName(clue.sheet), area })),
    sentence,
    expected: clue.expected === '' ? '' : formulaInFirst(clue.expected, first),
    confidence: confidenceOf(clue),
    reach,
  };
}

/** What compares with other formulas tells more than what looks at one alone. */
function telling({ weight, expected }: Clue): number {
  return weight + (expected === '' ? 0 : 3);
}

/** Several clues of one cell strengthen the best of them. */
function* onePerCell(clues: readonly Clue[]): Generator<undefined, Ranked[]> {
  const byCell = new Map<string, Ranked>();
  const sorted = [...clues].sort((a, b) => telling(b) - telling(a));
  for (const [i, clue] of sorted.entries()) {
    if (i % atATime === 0) yield undefined;
    const [area] = clue.areas;
    // Of one cell several things may be a matter of style.
    const isAlone = clue.level === 'style' || !area;
    const key = [clue.sheet, area?.top, area?.left, isAlone ? clue.sentence : ''].join();
    const known = byCell.get(key);
    if (!known) {
      byCell.set(key, { ...clue, kinds: 1 });
      continue;
    }
    // What another detector expects as well is the surer for it; what fits, a little.
    const part =
      clue.expected === '' ? agreement / 3 : clue.expected === known.expected ? agreement : 0;
    known.weight += Math.min(2, clue.weight * part);
    known.kinds += 1;
    // One that says more cells takes them in.
    const [own] = known.areas as [Area];
    if (area && !covers(own, area) && known.areas.length === 1) known.areas = [union(own, area)];
  }
  return [...byCell.values()];
}

/** Cells that break in the same way: the same kind, and the same formula where another is expected. */
function* joined(evidence: Evidence, clues: readonly Ranked[]): Generator<undefined, Ranked[]> {
  const groups = new Map<string, Ranked>();
  for (const [i, clue] of clues.entries()) {
    if (i % atATime === 0) yield undefined;
    const [first] = clue.areas;
    const own = first ? (evidence.grids[clue.sheet]?.formula(first.top, first.left) ?? 0) : 0;
    const key = `${clue.kind} ${String(clue.sheet)} ${String(own)} ${clue.expected}`;
    const known = clue.expected === '' ? undefined : groups.get(key);
    if (!known) {
      groups.set(clue.expected === '' ? `${key}${String(groups.size)}` : key, {
        ...clue,
        areas: [...clue.areas],
      });
      continue;
    }
    known.areas.push(...clue.areas);
    known.weight = Math.max(known.weight, clue.weight);
  }
  for (const group of groups.values()) {
    if (group.areas.length > 1 && group.expected !== '')
      group.sentence += ` The same holds of ${count(cellsIn(group.areas) - 1, 'other cell')}.`;
  }
  return [...groups.values()];
}

function cellsIn(areas: readonly Area[]): number {
  return areas.reduce((sum, area) => sum + cellCount(area), 0);
}

function* reachOf({ index }: Evidence, { sheet, areas }: Clue): Generator<undefined, number> {
  const [area] = areas;
  if (!area) return 0;
  const work = restingOn(index, { sheet, area });
  for (let turn = 0; turn < turnsLimit; turn++) {
    const step = work.next();
    if (step.done === true) return step.value.cells;
    yield undefined;
  }
  // More than anybody waits for.
  return turnsLimit * 500;
}
