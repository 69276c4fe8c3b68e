// Two formulas side by side: which parts of each the other has not. Pure.

import { highlight, type TextClass } from '../formula/highlight';
import { Lexer } from '../formula/Lexer';

export type ComparedPart = { text: string; class: TextClass; differs: boolean };
export type Compared = { own: ComparedPart[]; expected: ComparedPart[] };

/** Beyond so many tokens on either side all between the same beginnings and ends counts as unlike. */
const tokensLimit = 400;

type Token = { start: number; end: number; key: string };

/** A range is its two ends; the blanks between tokens are no difference. */
function tokensOf(formula: string): Token[] {
  const tokens: Token[] = [];
  for (const lexer = new Lexer(formula, 'a1'); lexer.kind !== 'end'; lexer.advance()) {
    const { start, end, kind } = lexer;
    const colon = kind === 'reference' ? formula.slice(start, end).indexOf(':') : -1;
    const edges = colon < 0 ? [start, end] : [start, start + colon, start + colon + 1, end];
    for (const [i, from] of edges.entries()) {
      const to = edges[i + 1] ?? from;
      if (to > from)
        tokens.push({ start: from, end: to, key: formula.slice(from, to).toUpperCase() });
    }
  }
  return tokens;
}

/** Of each list the tokens that are in no longest common order of both. */
function unlike(own: readonly Token[], other: readonly Token[]): [Token[], Token[]] {
  let first = 0;
  const least = Math.min(own.length, other.length);
  while (first < least && own[first]?.key === other[first]?.key) first++;
  let last = 0;
  while (last < least - first && own.at(-1 - last)?.key === other.at(-1 - last)?.key) last++;
  const one = own.slice(first, own.length - last);
  const two = other.slice(first, other.length - last);
  if (one.length > tokensLimit || two.length > tokensLimit) return [one, two];
  const width = two.length + 1;
  // How many tokens the rests from there on have in common.
  const common = new Uint16Array((one.length + 1) * width);
  const at = (i: number, j: number) => common[i * width + j] ?? 0;
  for (let i = one.length - 1; i >= 0; i--) {
    for (let j = two.length - 1; j >= 0; j--) {
      common[i * width + j] =
        one[i]?.key === two[j]?.key ? at(i + 1, j + 1) + 1 : Math.max(at(i + 1, j), at(i, j + 1));
    }
  }
  const left: [Token[], Token[]] = [[], []];
  let i = 0;
  let j = 0;
  for (; i < one.length && j < two.length;) {
    if (one[i]?.key === two[j]?.key) {
      i++;
      j++;
    } else if (at(i + 1, j) >= at(i, j + 1)) left[0].push(one[i++] as Token);
    else left[1].push(two[j++] as Token);
  }
  left[0].push(...one.slice(i));
  left[1].push(...two.slice(j));
  return left;
}

/** The formula's coloured pieces, cut where a difference begins or ends. */
function partsOf(formula: string, differing: readonly Token[]): ComparedPart[] {
  const parts: ComparedPart[] = [];
  let start = 0;
  for (const piece of highlight(formula)) {
    const end = start + piece.text.length;
    const edges = new Set([start, end]);
    for (const token of differing) {
      if (token.start > start && token.start < end) edges.add(token.start);
      if (token.end > start && token.end < end) edges.add(token.end);
    }
    const sorted = [...edges].sort((a, b) => a - b);
    for (const [i, from] of sorted.entries()) {
      const to = sorted[i + 1];
      if (to === undefined) break;
      const differs = differing.some((token) => token.start <= from && token.end >= to);
      parts.push({ text: formula.slice(from, to), class: piece.class, differs });
    }
    start = end;
  }
  return parts;
}

export function compareFormulas(own: string, expected: string): Compared {
  const [mine, theirs] = unlike(tokensOf(own), tokensOf(expected));
  return { own: partsOf(own, mine), expected: partsOf(expected, theirs) };
}
