// Everything that rests on some cells, and everything that some cells rest on: steps from rectangle
// to rectangle until nothing new is found. A column in which each cell uses the one above is one
// step, not a thousand. Pure.

import type { Area } from '../address/area';
import type { Index, Part, SheetArea } from './Index';
import { AreaSet } from './rectangles';
import type { Span } from './span';

export type Step = Part & {
  /** The number of the step that led here; -1 for the beginning. */
  from: number;
};

/** So many steps are taken before whoever waits may take a turn. */
const turn = 500;

/** Formula cells that were reached, and on which way. */
export class Reached {
  readonly steps: Step[] = [];
  /** Regions of several cells; those of one are reached or not. */
  private readonly byRegion = new Map<number, AreaSet>();
  private readonly single: Uint8Array;
  private readonly singles: number[] = [];

  constructor(private readonly index: Index) {
    this.single = new Uint8Array(index.regionCount);
  }

  get cells(): number {
    let sum = this.singles.length;
    for (const set of this.byRegion.values()) sum += set.size;
    return sum;
  }

  areasOf(region: number): readonly Area[] {
    if (this.single[region] === 1) return [this.index.areaOf(region)];
    return this.byRegion.get(region)?.areas ?? [];
  }

  get regions(): Iterable<number> {
    return [...this.byRegion.keys(), ...this.singles];
  }

  add(part: Part, from: number): void {
    if (this.index.isCell(part.region)) {
      this.addCell(part.region, from);
      return;
    }
    let set = this.byRegion.get(part.region);
    if (!set) {
      set = new AreaSet();
      this.byRegion.set(part.region, set);
    }
    for (const area of set.add(part.area)) this.steps.push({ region: part.region, area, from });
  }

  /** The same for a region that is a single cell. */
  addCell(region: number, from: number): void {
    if (this.single[region] === 1) return;
    this.single[region] = 1;
    this.singles.push(region);
    this.steps.push({ region, area: this.index.areaOf(region), from });
  }
}

/** The cells that rest on `start`, without `start` itself unless it rests on itself. */
export function* restingOn(index: Index, start: SheetArea): Generator<undefined, Reached> {
  const reached = new Reached(index);
  index.usersOf(start, (part) => {
    reached.add(part, -1);
  });
  let at = 0;
  const addCell = (region: number): void => {
    reached.addCell(region, at);
  };
  for (; at < reached.steps.length; at++) {
    const { region, area } = reached.steps[at] as Step;
    const add = (part: Part, reference: number): void => {
      if (part.region === region) {
        for (const longer of along(index, part, reference, area)) reached.add(longer, at);
      }
      reached.add(part, at);
    };
    if (index.isCell(region)) index.usersOfCell(region, addCell, add);
    else index.usersOf({ sheet: index.sheetOf(region), area }, add);
    if (at % turn === turn - 1) yield undefined;
  }
  return reached;
}

/**
 * Where cells of a region lead to the next cells of the same region, those lead to the next ones
 * again: all the way to the region's end.
 */
export function along(index: Index, part: Part, reference: number, from: Area): Part[] {
  const own = index.areaOf(part.region);
  const { area } = part;
  const isAlong = ({ aFixed, bFixed }: Span) => !aFixed && !bFixed;
  const found: Part[] = [];
  if (area.left <= from.left && area.right >= from.right) {
    if (isAlong(index.rowsOf(part.region, reference))) {
      const cols = { left: from.left, right: from.right };
      if (area.bottom > from.bottom && area.top <= from.bottom + 1) {
        found.push({ region: part.region, area: { ...cols, top: area.top, bottom: own.bottom } });
      }
      if (area.top < from.top && area.bottom >= from.top - 1) {
        found.push({ region: part.region, area: { ...cols, top: own.top, bottom: area.bottom } });
      }
    }
  }
  if (area.top <= from.top && area.bottom >= from.bottom) {
    if (isAlong(index.colsOf(part.region, reference))) {
      const rows = { top: from.top, bottom: from.bottom };
      if (area.right > from.right && area.left <= from.right + 1) {
        found.push({ region: part.region, area: { ...rows, left: area.left, right: own.right } });
      }
      if (area.left < from.left && area.right >= from.left - 1) {
        found.push({ region: part.region, area: { ...rows, left: own.left, right: area.right } });
      }
    }
  }
  return found;
}

/** What `start` rests on: the formulas, and `inputs` hears every area that a formula names. */
export function* restedOnBy(
  index: Index,
  start: SheetArea,
  inputs: (cells: SheetArea, step: number) => void,
): Generator<undefined, Reached> {
  const reached = new Reached(index);
  index.formulasIn(start, (part) => {
    reached.add(part, -1);
  });
  for (let at = 0; at < reached.steps.length; at++) {
    const step = reached.steps[at] as Step;
    index.usedBy(step, (cells, reference) => {
      index.formulasIn(cells, (part) => {
        if (part.region === step.region) {
          for (const longer of along(index, part, reference, step.area)) reached.add(longer, at);
        }
        reached.add(part, at);
      });
      inputs(cells, at);
    });
    if (at % turn === turn - 1) yield undefined;
  }
  return reached;
}
