// References whose row is called otherwise than the formula that takes it, where the formulas' siblings
// take rows that are called like them: a block that was copied and still takes another block's numbers.
// A formula is called by what stands before it, a block by a text some rows above, whichever names the
// rows that the siblings take best.

import { areaAddress, unquoted, type Area } from '../address/area';
import { areaFrom } from './difference';
import { address, cell, type Evidence } from './Evidence';
import type { Clue } from './Finding';
import type { SheetGrid } from './SheetGrid';

const colsAway = 60;
const rowsAbove = 40;
const fewest = 4;
/** So many of the siblings have to take rows that are called like them. */
const agreeing = 0.6;

type Member = {
  row: number;
  col: number;
  /** The taken cell with its sheet, and what its row is called. */
  taken: string;
  label: string;
};
type Title = { text: string; words: Map<string, number> };
type Odd = { member: Member; title: string; other: string; agree: number; of: number };

function wordsOf(text: string): string[] {
  return [...new Set(text.toLowerCase().match(/[\p{L}\p{N}]{2,}/gu) ?? [])];
}

function isMatch(one: string, other: string): boolean {
  if (one === other) return true;
  const [short, long] = one.length < other.length ? [one, other] : [other, one];
  return short.length >= 4 && long.includes(short);
}

/** The nearest text before a cell that has letters in it. */
export function rowLabel(grid: SheetGrid, row: number, col: number): string {
  for (let at = col - 1; at >= Math.max(1, col - colsAway); at--) {
    const text = grid.text(row, at);
    if (/\p{L}/u.test(text)) return text;
  }
  return '';
}

export function* labelClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const clues: Clue[] = [];
  for (const grid of evidence.grids) {
    if (evidence.isIrregular(grid.sheet)) continue;
    const found = new Map<string, Odd[]>();
    for (const family of familiesOf(evidence, grid)) {
      yield undefined;
      const odd = oddIn(grid, family);
      for (const one of odd) {
        const known = found.get(one.title);
        if (known) known.push(one);
        else found.set(one.title, [one]);
      }
    }
    for (const odd of found.values()) clues.push(clueOf(grid, odd));
    yield undefined;
  }
  return clues;
}

/** Cells of a column with the same text before them and the same form. */
function familiesOf(evidence: Evidence, grid: SheetGrid): Member[][] {
  const families = new Map<string, Member[]>();
  const { index } = evidence;
  index.formulasIn({ sheet: grid.sheet, area: grid.area }, ({ region, area }) => {
    const formula = index.formulaOf(region);
    for (let row = area.top; row <= Math.min(area.bottom, area.top + 400); row++) {
      const col = area.left;
      const before = rowLabel(grid, row, col);
      const member = before === '' ? undefined : memberAt(evidence, grid, row, col, formula);
      if (!member) continue;
      const form = String(evidence.form(formula));
      // Blocks repeat a row's name; in a plain list each row has its own.
      for (const key of [`block ${String(col)} ${form} ${before}`, `list ${String(col)} ${form}`]) {
        const family = families.get(key);
        if (family) family.push(member);
        else families.set(key, [member]);
      }
    }
  });
  return [...families.values()].filter((family) => family.length >= fewest && family.length <= 400);
}

function memberAt(
  evidence: Evidence,
  grid: SheetGrid,
  row: number,
  col: number,
  formula: number,
): Member | undefined {
  for (const slot of evidence.shapes.of(formula).slots) {
    if (slot.kind !== 'reference' || slot.shape.to || slot.prefix === '') continue;
    const number = evidence.model.sheetNumber(unquoted(slot.prefix.slice(0, -1)));
    const target = number === undefined ? undefined : evidence.grids[number];
    if (!target || target === grid) continue;
    const area = areaFrom(slot, { row, col });
    const label = rowLabel(target, area.top, area.left);
    if (label === '') continue;
    return { row, col, label, taken: slot.prefix + areaAddress(area) };
  }
  return undefined;
}

function oddIn(grid: SheetGrid, family: Member[]): Odd[] {
  let best: { odd: Odd[]; agree: number } = { odd: [], agree: 0 };
  for (const titles of titlings(grid, family)) {
    const found = compared(family, titles);
    if (found.agree > best.agree) best = found;
  }
  const isRare = best.odd.length <= Math.max(1, family.length / 5);
  return isRare && best.agree / family.length >= agreeing ? best.odd : [];
}

/** What the members may be called by: the text before them, or one so many rows above. */
function* titlings(grid: SheetGrid, family: Member[]): Generator<Title[]> {
  const [first] = family as [Member];
  for (let up = 0; up <= rowsAbove; up++) {
    const from = up === 0 ? 1 : Math.max(1, first.col - 2);
    const to = up === 0 ? first.col - 1 : first.col;
    for (let col = from; col <= to; col++) {
      const texts = family.map(({ row }) => (row > up ? grid.text(row - up, col) : ''));
      const told = texts.filter((text) => text !== '');
      if (told.length < family.length || new Set(told).size < family.length * 0.6) continue;
      yield titlesOf(texts);
    }
  }
}

/** A word weighs the less the more titles have it; one that most have says nothing. */
function titlesOf(texts: string[]): Title[] {
  const times = new Map<string, number>();
  const all = texts.map(wordsOf);
  for (const words of all) for (const word of words) times.set(word, (times.get(word) ?? 0) + 1);
  return texts.map((text, i) => {
    const words = new Map<string, number>();
    for (const word of all[i] ?? []) {
      const count = times.get(word) ?? 1;
      if (count <= texts.length / 2) words.set(word, 1 / count);
    }
    return { text, words };
  });
}

/** How much of what a title says of its own is in the label, and which of the label's words. */
function coverage(
  { words }: Title,
  label: readonly string[],
): { share: number; matched: Set<string> } {
  let all = 0;
  let part = 0;
  const matched = new Set<string>();
  for (const [word, weight] of words) {
    all += weight;
    const hits = label.filter((one) => isMatch(one, word));
    if (hits.length > 0) part += weight;
    for (const hit of hits) matched.add(hit);
  }
  return { share: all === 0 ? 0 : part / all, matched };
}

function compared(family: Member[], titles: Title[]): { odd: Odd[]; agree: number } {
  const odd: Odd[] = [];
  let agree = 0;
  const labels = family.map(({ label }) => wordsOf(label));
  family.forEach((member, i) => {
    const label = labels[i] ?? [];
    const own = coverage(titles[i] as Title, label);
    let other: { share: number; title: string } | undefined;
    for (const [j, title] of titles.entries()) {
      if (j === i || title.text === titles[i]?.text) continue;
      const theirs = coverage(title, label);
      const isForeign = [...theirs.matched].some((word) => !own.matched.has(word));
      if (isForeign && theirs.share > own.share + 0.3 && theirs.share > (other?.share ?? 0.55)) {
        other = { share: theirs.share, title: title.text };
      }
    }
    if (other)
      odd.push({
        member,
        title: titles[i]?.text ?? '',
        other: other.title,
        agree: 0,
        of: family.length,
      });
    else if (own.share > 0.3) agree++;
  });
  for (const one of odd) one.agree = agree;
  return { odd, agree };
}

function short(text: string): string {
  return text.length > 60 ? `…${text.slice(-58)}` : text;
}

function clueOf(grid: SheetGrid, odd: Odd[]): Clue {
  odd.sort((a, b) => a.member.col - b.member.col || a.member.row - b.member.row);
  const [{ member, title, other, agree, of }] = odd as [Odd];
  const seen = new Set<string>();
  const areas: Area[] = [];
  for (const { member: one } of odd) {
    const key = address(one.row, one.col);
    if (!seen.has(key)) areas.push(cell(one.row, one.col));
    seen.add(key);
  }
  return {
    kind: 'label',
    sheet: grid.sheet,
    areas,
    sentence: `${address(member.row, member.col)} stands under “${short(title)}” and takes ${member.taken}, the row “${short(member.label)}”, which names “${short(other)}”; ${String(agree)} of ${String(of)} formulas like it take rows that are called like them.`,
    expected: '',
    weight: 4 + Math.log2(agree / 3) + Math.min(3, Math.log2(areas.length)),
    level: 'fact',
  };
}
