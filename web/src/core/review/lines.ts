// Which line of a sheet is which after lines were inserted and deleted. Lines are known by their
// prints; where these do not tell for sure, a line counts as gone: what was said of it is asked
// again, and never goes to another line. Pure.

/** A line as it was, to where it is now; nothing for one that is gone or not to be told. */
export type LineMap = (line: number) => number | undefined;

/** "ABCabc" for the first two values, or "." for a blank line. */
export function linesOf(text: string): string[] {
  return text.match(/\.|[^.]{6}/g) ?? [];
}

const blank = '.';

/** By both values, then by the first alone. */
const keys: readonly ((line: string) => string)[] = [
  (line) => line,
  (line) => (line === blank ? blank : line.slice(0, 3)),
];

type Part = { from: number; to: number };

class Alignment {
  readonly to: Int32Array;

  constructor(
    private readonly before: readonly string[],
    private readonly now: readonly string[],
  ) {
    this.to = new Int32Array(before.length).fill(-1);
    this.solve({ from: 0, to: before.length }, { from: 0, to: now.length }, 0);
  }

  /** `a` of the lines before became `b` of those now. */
  private solve(a: Part, b: Part, level: number): void {
    if (a.from === a.to || b.from === b.to) return;
    const key = keys[level];
    if (!key) {
      this.byPlace(a, b);
      return;
    }
    const anchors = this.anchors(a, b, key);
    if (anchors.length > 0) this.between(a, b, anchors, level);
    else this.between(a, b, this.inOrder(a, b, key), level + 1);
  }

  /** What lies between lines that are known is told by itself. */
  private between(a: Part, b: Part, known: readonly [number, number][], level: number): void {
    let from = a.from;
    let fromNow = b.from;
    for (const [i, j] of known) {
      this.to[i] = j;
      this.solve({ from, to: i }, { from: fromNow, to: j }, level);
      from = i + 1;
      fromNow = j + 1;
    }
    this.solve({ from, to: a.to }, { from: fromNow, to: b.to }, level);
  }

  /** The most lines in one order that are alone of their kind on both sides. */
  private anchors(a: Part, b: Part, key: (line: string) => string): [number, number][] {
    const alone = this.alone(this.now, b, key);
    const pairs: [number, number][] = [];
    for (const [text, i] of this.alone(this.before, a, key)) {
      const j = alone.get(text);
      if (j !== undefined) pairs.push([i, j]);
    }
    return longestRise(pairs.sort(([i], [j]) => i - j));
  }

  private alone(
    lines: readonly string[],
    { from, to }: Part,
    key: (line: string) => string,
  ): Map<string, number> {
    const found = new Map<string, number>();
    const several = new Set<string>();
    for (let i = from; i < to; i++) {
      const text = key(lines[i] as string);
      if (found.has(text)) several.add(text);
      else found.set(text, i);
    }
    for (const text of several) found.delete(text);
    return found;
  }

  /** Lines that come several times, where all of them follow each other on both sides alike. */
  private inOrder(a: Part, b: Part, key: (line: string) => string): [number, number][] {
    const kindsOf = (lines: readonly string[], { from, to }: Part) =>
      new Set(lines.slice(from, to).map(key));
    const shared = kindsOf(this.now, b);
    const before = kindsOf(this.before, a);
    shared.delete(blank);
    const those = (lines: readonly string[], { from, to }: Part) => {
      const found: number[] = [];
      for (let i = from; i < to; i++) {
        const text = key(lines[i] as string);
        if (shared.has(text) && before.has(text)) found.push(i);
      }
      return found;
    };
    const one = those(this.before, a);
    const other = those(this.now, b);
    const isAlike =
      one.length === other.length &&
      one.every(
        (i, n) => key(this.before[i] as string) === key(this.now[other[n] as number] as string),
      );
    return isAlike ? one.map((i, n) => [i, other[n] as number]) : [];
  }

  /** As many lines as before: numbers may have changed, names may not. */
  private byPlace(a: Part, b: Part): void {
    if (a.to - a.from !== b.to - b.from) return;
    for (let i = a.from; i < a.to; i++) {
      const j = b.from + i - a.from;
      const [one, other] = [this.before[i] as string, this.now[j] as string];
      if (one === other || (isNumber(one) && isNumber(other))) this.to[i] = j;
    }
  }
}

/** Whether the line's first value is no text. */
function isNumber(line: string): boolean {
  return /^[a-z]/.test(line);
}

/** The longest part of the pairs, which are in order by the first, that is so by the second too. */
function longestRise(pairs: readonly [number, number][]): [number, number][] {
  const ends: number[] = [];
  const previous: number[] = [];
  for (const [at, [, j]] of pairs.entries()) {
    let low = 0;
    let high = ends.length;
    while (low < high) {
      const middle = (low + high) >> 1;
      if ((pairs[ends[middle] as number] as [number, number])[1] < j) low = middle + 1;
      else high = middle;
    }
    previous.push(low > 0 ? (ends[low - 1] as number) : -1);
    ends[low] = at;
  }
  const rise: [number, number][] = [];
  for (let at = ends.at(-1) ?? -1; at >= 0; at = previous[at] as number) {
    rise.push(pairs[at] as [number, number]);
  }
  return rise.reverse();
}

/** `total` and `totalNow`: the lines that there are, also those that have no print. */
export function lineMap(before: string, total: number, now: string, totalNow: number): LineMap {
  if (before === now && total === totalNow) return (line) => line;
  const lines = linesOf(before);
  const { to } = new Alignment(lines, linesOf(now));
  return (line) => {
    if (line > lines.length) {
      // Behind all that is filled, or behind the last line that has a print.
      const isSame = total === totalNow;
      return isSame ? line : undefined;
    }
    const found = to[line - 1] ?? -1;
    return found < 0 ? undefined : found + 1;
  };
}
