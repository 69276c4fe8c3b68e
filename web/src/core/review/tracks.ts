// Which track of a sheet is which after tracks were inserted and deleted. Tracks are known by their
// prints; where these do not tell for sure, a track counts as gone: what was said of it is asked
// again, and never goes to another track. Pure.

/** A track as it was, to where it is now; nothing for one that is gone or not to be told. */
export type TrackMap = (track: number) => number | undefined;

/** Nine characters for a track, or "." for a blank one. */
export function tracksOf(text: string): string[] {
  return text.match(/\.|[^.]{9}/g) ?? [];
}

const blank = '.';

/** By all three prints, by those of values, by that of the first value. */
const lengths = [9, 6, 3];

type Part = { from: number; to: number };
type Pair = readonly [before: number, now: number];

class Alignment {
  readonly to: Int32Array;

  constructor(
    private readonly before: readonly string[],
    private readonly now: readonly string[],
  ) {
    this.to = new Int32Array(before.length).fill(-1);
    this.solve({ from: 0, to: before.length }, { from: 0, to: now.length });
    this.fillBlanks();
  }

  /** `a` of the tracks before became `b` of those now. */
  private solve(a: Part, b: Part): void {
    if (a.from === a.to || b.from === b.to) return;
    const anchors = this.anchors(a, b);
    if (anchors.length === 0) {
      this.between(a, b);
      return;
    }
    let from = a.from;
    let fromNow = b.from;
    for (const [i, j] of anchors) {
      this.to[i] = j;
      this.solve({ from, to: i }, { from: fromNow, to: j });
      from = i + 1;
      fromNow = j + 1;
    }
    this.solve({ from, to: a.to }, { from: fromNow, to: b.to });
  }

  /** Blank tracks are told where as many stand between the same two tracks. */
  private fillBlanks(): void {
    let last = -1;
    for (const [i, j] of [...this.to.entries(), [this.before.length, this.now.length] as const]) {
      if (j < 0) continue;
      const lastNow = last < 0 ? -1 : (this.to[last] as number);
      const isAlike = (at: number) =>
        this.before[at] === blank && this.now[lastNow + at - last] === blank;
      if (i - last === j - lastNow) {
        for (let at = last + 1; at < i; at++) if (isAlike(at)) this.to[at] = lastNow + at - last;
      }
      last = i;
    }
  }

  /** The most tracks in one order that alone have their name on both sides. */
  private anchors(a: Part, b: Part): Pair[] {
    const alone = namedAlone(this.now, b);
    const pairs: Pair[] = [];
    for (const [name, i] of namedAlone(this.before, a)) {
      const j = alone.get(name);
      if (j !== undefined) pairs.push([i, j]);
    }
    return longestRise(pairs.sort(([i], [j]) => i - j));
  }

  /** Tracks of numbers, and those that have one name together: all of them fit, or none is told. */
  private between(a: Part, b: Part): void {
    const pairs =
      lengths.map((length) => this.inOrder(a, b, length)).find((found) => found) ??
      this.inPlace(a, b);
    for (const [i, j] of pairs ?? []) this.to[i] = j;
  }

  /** All tracks of one side in their order among those of the other. */
  private inOrder(a: Part, b: Part, length: number): Pair[] | undefined {
    const one = filled(this.before, a);
    const other = filled(this.now, b);
    const prints = (tracks: readonly string[], which: readonly number[]) =>
      new Set(which.map((i) => (tracks[i] as string).slice(0, length)));
    const [before, now] = [prints(this.before, one), prints(this.now, other)];
    const own = one.filter((i) => now.has((this.before[i] as string).slice(0, length)));
    const theirs = other.filter((j) => before.has((this.now[j] as string).slice(0, length)));
    if (own.length !== theirs.length || own.length === 0) return undefined;
    if (own.length !== Math.min(one.length, other.length)) return undefined;
    const pairs = own.map((i, n): Pair => [i, theirs[n] as number]);
    const fits = ([i, j]: Pair) =>
      (this.before[i] as string).slice(0, length) === (this.now[j] as string).slice(0, length);
    return pairs.every(fits) ? this.unlessShifted(pairs, a) : undefined;
  }

  /** As many tracks as before, of which numbers were typed anew. */
  private inPlace(a: Part, b: Part): Pair[] | undefined {
    if (a.to - a.from !== b.to - b.from) return undefined;
    const pairs = Array.from({ length: a.to - a.from }, (_, n): Pair => [a.from + n, b.from + n]);
    const fits = ([i, j]: Pair) => {
      const [one, other] = [this.before[i] as string, this.now[j] as string];
      return one === blank || other === blank
        ? one === other
        : one.slice(0, 3) === other.slice(0, 3) || (isNumber(one) && isNumber(other));
    };
    return pairs.every(fits) ? this.unlessShifted(pairs, a) : undefined;
  }

  /** Nothing where a track is now what another one was. */
  private unlessShifted(pairs: Pair[], a: Part): Pair[] | undefined {
    const before = new Set(filled(this.before, a).map((i) => this.before[i]));
    const isShifted = ([i, j]: Pair) => {
      const now = this.now[j] as string;
      return now !== blank && now !== this.before[i] && before.has(now);
    };
    return pairs.some(isShifted) ? undefined : pairs;
  }
}

function filled(tracks: readonly string[], { from, to }: Part): number[] {
  const found: number[] = [];
  for (let i = from; i < to; i++) if (tracks[i] !== blank) found.push(i);
  return found;
}

/** Of the tracks that begin with a text those that no other one begins with. */
function namedAlone(tracks: readonly string[], { from, to }: Part): Map<string, number> {
  const found = new Map<string, number>();
  const several = new Set<string>();
  for (let i = from; i < to; i++) {
    const track = tracks[i] as string;
    if (track === blank || isNumber(track)) continue;
    const name = track.slice(0, 3);
    if (found.has(name)) several.add(name);
    else found.set(name, i);
  }
  for (const name of several) found.delete(name);
  return found;
}

/** True if the track's first value is no text. */
function isNumber(track: string): boolean {
  return /^[a-z]/.test(track);
}

/** The longest part of the pairs, which are in order by the first, that is so by the second too. */
function longestRise(pairs: readonly Pair[]): Pair[] {
  const ends: number[] = [];
  const previous: number[] = [];
  for (const [at, [, j]] of pairs.entries()) {
    let low = 0;
    let high = ends.length;
    while (low < high) {
      const middle = (low + high) >> 1;
      if ((pairs[ends[middle] as number] as Pair)[1] < j) low = middle + 1;
      else high = middle;
    }
    previous.push(low > 0 ? (ends[low - 1] as number) : -1);
    ends[low] = at;
  }
  const rise: Pair[] = [];
  for (let at = ends.at(-1) ?? -1; at >= 0; at = previous[at] as number) {
    rise.push(pairs[at] as Pair);
  }
  return rise.reverse();
}

/** `total` and `totalNow`: the tracks that there are, also those that have no print. */
export function trackMap(before: string, total: number, now: string, totalNow: number): TrackMap {
  if (before === now && total === totalNow) return (track) => track;
  const tracks = tracksOf(before);
  const { to } = new Alignment(tracks, tracksOf(now));
  return (track) => {
    if (track > tracks.length) {
      // Behind all that is filled, or behind the last track that has a print.
      const isSame = total === totalNow;
      return isSame ? track : undefined;
    }
    const found = to[track - 1] ?? -1;
    return found < 0 ? undefined : found + 1;
  };
}
