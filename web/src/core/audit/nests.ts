// Formulas that call functions inside functions too deep to be read. One clue for all formulas of a
// sheet that have the same form.

import { areaAddress, cellCount, type Area } from '../address/area';
import { count } from '../format/words';
import { children, plainName, type Node } from '../formula/syntax';
import { atATime, type Evidence } from './Evidence';
import type { Clue } from './Finding';

/** So many calls in each other are too deep, or so many of one function that chooses. */
const deepest = 7;
const deepestChoice = 5;
const choices = new Set(['IF', 'IFERROR', 'IFNA']);

type Nest = { calls: string[]; depth: number; choices: number };
type Group = Nest & { sheet: number; formula: number; areas: Area[] };

export function* nestClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const { index } = evidence;
  const groups = new Map<string, Group>();
  const known = new Map<number, Nest | undefined>();
  for (let region = 0; region < index.regionCount; region++) {
    if (region % atATime === 0) yield undefined;
    const formula = index.formulaOf(region);
    if (!known.has(formula)) known.set(formula, nestOf(evidence, formula));
    const nest = known.get(formula);
    if (!nest) continue;
    const sheet = index.sheetOf(region);
    const key = `${String(sheet)} ${String(evidence.form(formula))}`;
    const group = groups.get(key);
    if (group) group.areas.push(index.areaOf(region));
    else groups.set(key, { ...nest, sheet, formula, areas: [index.areaOf(region)] });
  }
  return [...groups.values()].map((group) => clueOf(evidence, group));
}

/** As many brackets as are open at once, without those in texts: a call needs one. */
function bracketsIn(text: string): number {
  let at = -1;
  for (let i = 0; i < deepestChoice; i++) {
    at = text.indexOf('(', at + 1);
    if (at < 0) return i;
  }
  let open = 0;
  let most = 0;
  let isText = false;
  for (const letter of text) {
    if (letter === '"') isText = !isText;
    else if (isText) continue;
    else if (letter === '(') most = Math.max(most, ++open);
    else if (letter === ')') open--;
  }
  return most;
}

function nestOf(evidence: Evidence, formula: number): Nest | undefined {
  if (bracketsIn(evidence.text(formula)) < deepestChoice) return undefined;
  let best: Nest = { calls: [], depth: 0, choices: 0 };
  const stack: { node: Node; calls: string[] }[] = [
    { node: evidence.shapes.of(formula).root, calls: [] },
  ];
  for (let next = stack.pop(); next; next = stack.pop()) {
    const { node } = next;
    const calls = node.kind === 'call' ? [...next.calls, plainName(node.name)] : next.calls;
    if (calls.length > best.depth) {
      const chosen = calls.filter((name) => choices.has(name)).length;
      best = { calls, depth: calls.length, choices: Math.max(best.choices, chosen) };
    }
    for (const child of children(node)) stack.push({ node: child, calls });
  }
  return best.depth >= deepest || best.choices >= deepestChoice ? best : undefined;
}

/** "IF in IF in VLOOKUP": from the outside, the same one behind the other once. */
function said(calls: readonly string[]): string {
  const parts: { name: string; times: number }[] = [];
  for (const name of calls) {
    const last = parts.at(-1);
    if (last?.name === name) last.times += 1;
    else parts.push({ name, times: 1 });
  }
  const words = parts.map(({ name, times }) => (times > 1 ? `${String(times)} × ${name}` : name));
  const shown = words.length > 8 ? [...words.slice(0, 7), '…'] : words;
  return shown.join(', then ');
}

function clueOf(evidence: Evidence, { sheet, formula, areas, calls, depth }: Group): Clue {
  const [first] = areas as [Area];
  const rest = areas.reduce((sum, area) => sum + cellCount(area), -cellCount(first));
  const more = rest > 0 ? ` and ${count(rest, 'other cell')} of the same form` : '';
  const references = evidence.shapes
    .of(formula)
    .slots.filter(({ kind }) => kind === 'reference').length;
  const isOne = cellCount(first) + rest === 1;
  return {
    kind: 'nest',
    sheet,
    areas,
    sentence: `${areaAddress(first)}${more} ${isOne ? 'calls' : 'call'} ${String(depth)} functions in each other (${said(calls)}) over ${count(references, 'reference')}.`,
    expected: '',
    weight: Math.min(2, depth / 8),
    level: 'style',
  };
}
