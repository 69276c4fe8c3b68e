// How cells get into others: the chains of formulas from some cells to others that rest on them, the
// shortest first. Two chains are told apart by the formulas they go through, not by cells: the forty
// months of a roll-forward are one way. Their number and length are bounded. Pure.

import { covers, meet, union, type Area } from '../address/area';
import { along, type Reached } from './closure';
import type { Index, Part, SheetArea } from './Index';

export type Ways = {
  /** Each from the cell that uses the beginning to the end itself. */
  ways: Part[][];
  /** True if there are further ways, or may be. */
  more: boolean;
  /** True if one of them led back to where it had been. */
  returned: boolean;
};

const waysLimit = 50;
/** So many beginnings of ways are followed, and so many kept to be followed. */
const followedLimit = 20_000;
const keptLimit = 100_000;
/** So many are followed before whoever waits may take a turn. */
const turn = 200;

/** A way as far as it was followed, back from its end. */
type Trace = {
  part: Part;
  next: Trace | undefined;
  length: number;
  /** The regions that it went through, each once. */
  through: string;
};

/** How many formulas lie between reached cells and the beginning, at least. */
class Distances {
  private readonly byRegion = new Map<number, { area: Area; steps: number }[]>();

  constructor(reached: Reached) {
    const depths: number[] = [];
    for (const { region, area, from } of reached.steps) {
      const steps = from < 0 ? 0 : (depths[from] as number) + 1;
      depths.push(steps);
      const known = this.byRegion.get(region);
      if (known) known.push({ area, steps });
      else this.byRegion.set(region, [{ area, steps }]);
    }
  }

  /** Nothing where the cells do not rest on the beginning. */
  of({ region, area }: Part): number | undefined {
    // In the order in which they were reached, the nearest first.
    return this.byRegion.get(region)?.find((one) => meet(one.area, area))?.steps;
  }
}

/** Those to be followed: the ones that can be shortest first, of these the one put last. */
class Queue {
  private readonly byLength: Trace[][] = [];
  private least = 0;
  kept = 0;

  add(trace: Trace, left: number): void {
    const length = trace.length + left;
    (this.byLength[length] ??= []).push(trace);
    this.least = Math.min(this.least, length);
    this.kept += 1;
  }

  take(): Trace | undefined {
    while (this.least < this.byLength.length) {
      const trace = this.byLength[this.least]?.pop();
      if (trace) return trace;
      this.least += 1;
    }
    return undefined;
  }
}

/** `reached`: what rests on `start`. */
export function* waysBetween(
  index: Index,
  reached: Reached,
  start: SheetArea,
  end: SheetArea,
): Generator<undefined, Ways> {
  const distances = new Distances(reached);
  const queue = new Queue();
  const found: Ways = { ways: [], more: false, returned: false };
  const seen = new Set<string>();
  const told = new Set<string>();
  const put = (part: Part, next: Trace | undefined, before: string, isRun: boolean): void => {
    const name = `${String(part.region)}${isRun ? '+' : ''}`;
    const isNew = !before.split(' ').includes(name);
    const through = isNew ? `${before} ${name}` : before;
    const { top, left, bottom, right } = part.area;
    const key = `${through}|${[part.region, top, left, bottom, right].join()}`;
    const away = distances.of(part);
    if (away === undefined || seen.has(key)) return;
    if (queue.kept >= keptLimit) {
      found.more = true;
      return;
    }
    seen.add(key);
    queue.add({ part, next, length: (next?.length ?? 0) + 1, through }, away);
  };
  index.formulasIn(end, (part) => {
    for (const both of restingIn(reached, part)) put(both, undefined, '', false);
  });
  let followed = 0;
  for (let trace = queue.take(); trace; trace = queue.take()) {
    followed += 1;
    if (found.ways.length >= waysLimit || followed > followedLimit) {
      found.more = true;
      break;
    }
    const at = trace;
    const { region, area } = at.part;
    let isThere = false;
    index.usedBy(at.part, (cells, reference) => {
      if (cells.sheet === start.sheet && meet(cells.area, start.area)) isThere = true;
      index.formulasIn(cells, (used) => {
        if (used.region === region) {
          const longer = along(index, used, reference, area);
          for (const part of longer.flatMap((one) => restingIn(reached, one))) {
            const whole = { region, area: union(area, part.area) };
            if (!covers(area, part.area)) put(whole, at.next, at.through, true);
          }
          if (longer.length > 0) return;
        }
        for (const part of restingIn(reached, used)) {
          if (wasThere(at, part)) found.returned = true;
          else put(part, at, at.through, false);
        }
      });
    });
    if (isThere && !told.has(at.through)) {
      told.add(at.through);
      found.ways.push(partsOf(at));
    }
    if (followed % turn === 0) yield undefined;
  }
  return found;
}

/** What of the part was reached. */
function restingIn(reached: Reached, { region, area }: Part): Part[] {
  return reached.areasOf(region).flatMap((known) => {
    const both = meet(known, area);
    return both ? [{ region, area: both }] : [];
  });
}

function wasThere(trace: Trace, part: Part): boolean {
  for (let at: Trace | undefined = trace; at; at = at.next) {
    if (at.part.region === part.region && covers(at.part.area, part.area)) return true;
  }
  return false;
}

function partsOf(trace: Trace): Part[] {
  const parts: Part[] = [];
  for (let at: Trace | undefined = trace; at; at = at.next) parts.push(at.part);
  return parts;
}
