// The inputs that some cells finally rest on: what was typed in, also as a formula that names no cell,
// and what is blank though a formula names it. The ones that matter come first. Pure.

import { cellCount, meet, type Area } from '../address/area';
import { restedOnBy, type Reached } from './closure';
import { directUsers, type Index, type SheetArea } from './Index';
import { AreaSet } from './rectangles';
import { Kind, type SheetCells } from './SheetCells';

export type Driver = SheetArea & {
  kind: 'number' | 'text' | 'blank';
  /** How many of the cells that the target rests on use it directly. */
  uses: number;
  /** How many formulas lie between it and the target on the shortest way found. */
  steps: number;
};

export type Drivers = {
  /** How many formula cells the target rests on, itself counted. */
  formulas: number;
  /** How many typed-in cells. */
  inputs: number;
  drivers: Driver[];
  /** Areas of inputs that are not listed. */
  left: number;
};

/** So many areas of inputs are listed. */
const listed = 300;

/** Blank ranges of more cells are nothing to wonder about. */
const blankLimit = 4;

type Found = { area: Area; kind: Driver['kind']; step: number };

export function* driversOf(
  index: Index,
  target: SheetArea,
): Generator<undefined, Drivers & { reached: Reached }> {
  const named = new Map<number, { area: Area; step: number }[]>();
  const seen = new Map<number, AreaSet>();
  const reached = yield* restedOnBy(index, target, ({ sheet, area }, step) => {
    const extent = index.sheets[sheet]?.extent;
    const inside = extent && meet(area, extent);
    // Beyond what is filled a formula may name single blank cells.
    const part = inside ?? (extent && cellCount(area) <= blankLimit ? area : undefined);
    if (!part) return;
    let set = seen.get(sheet);
    if (!set) {
      set = new AreaSet();
      seen.set(sheet, set);
    }
    const list = named.get(sheet) ?? [];
    for (const fresh of set.add(part)) list.push({ area: fresh, step });
    named.set(sheet, list);
  });
  const steps = depths(reached);
  const drivers: Driver[] = [];
  let inputs = 0;
  for (const [sheet, list] of named) {
    const cells = index.sheets[sheet];
    if (!cells) continue;
    const isInput = (formula: number) => formula === 0 || namesNothing(index, formula, sheet);
    for (const { area, step } of list) {
      for (const found of inputsIn(cells, area, step, isInput)) {
        if (found.kind !== 'blank') inputs += cellCount(found.area);
        const depth = (steps[step] ?? 0) + 1;
        drivers.push({ sheet, area: found.area, kind: found.kind, uses: 0, steps: depth });
      }
    }
    yield undefined;
  }
  // Numbers before texts, single cells and near ones first; how often they are used is worked out for
  // those alone that are listed.
  drivers.sort(
    (a, b) => order(a) - order(b) || a.steps - b.steps || cellCount(a.area) - cellCount(b.area),
  );
  const chosen = drivers.slice(0, listed);
  for (const driver of chosen) {
    driver.uses = usesWithin(index, driver, reached);
    yield undefined;
  }
  chosen.sort((a, b) => order(a) - order(b) || b.uses - a.uses || a.steps - b.steps);
  const left = drivers.length - chosen.length;
  return { formulas: reached.cells, inputs, drivers: chosen, left, reached };
}

function order({ kind }: Driver): number {
  return kind === 'number' ? 0 : kind === 'text' ? 1 : 2;
}

/** How many formulas lie between each step and the target. */
function depths(reached: Reached): number[] {
  const steps: number[] = [];
  for (const { from } of reached.steps) steps.push(from < 0 ? 0 : (steps[from] ?? 0) + 1);
  return steps;
}

function kindOf(kind: Kind): Driver['kind'] {
  return kind === Kind.Number || kind === Kind.Truth ? 'number' : 'text';
}

/** True if all that the formula gives is written in it, as in "=42.6/3.6". */
function namesNothing({ definitions }: Index, formula: number, sheet: number): boolean {
  const definition = definitions.of(formula, sheet);
  const [from, to] = definitions.range(definition);
  return from === to && definitions.oddity(definition) === undefined;
}

/** Typed-in cells of an area, row by row, those of one kind beside or under each other together. */
function inputsIn(
  cells: SheetCells,
  area: Area,
  step: number,
  isInput: (formula: number) => boolean,
): Found[] {
  const found: Found[] = [];
  const open = new Map<number, Found>();
  let row: Found | undefined;
  const close = (): void => {
    if (!row) return;
    const upper = open.get(row.area.left);
    const goesOn =
      upper?.area.right === row.area.right &&
      upper.area.bottom === row.area.top - 1 &&
      upper.kind === row.kind;
    if (upper && goesOn) upper.area.bottom = row.area.bottom;
    else {
      found.push(row);
      open.set(row.area.left, row);
    }
    row = undefined;
  };
  let filled = 0;
  cells.eachFilled(area, (r, c, kind, formula) => {
    filled++;
    if (!isInput(formula)) return;
    const own = kindOf(kind);
    if (row?.kind === own && row.area.top === r && row.area.right + 1 === c) row.area.right = c;
    else {
      close();
      row = { area: { top: r, left: c, bottom: r, right: c }, kind: own, step };
    }
  });
  close();
  // A whole range has blanks as a matter of course; a single cell that is named ought not to be one.
  if (filled === 0 && cellCount(area) <= blankLimit) found.push({ area, kind: 'blank', step });
  return found;
}

function usesWithin(index: Index, driver: SheetArea, reached: Reached): number {
  let uses = 0;
  for (const { region, area } of directUsers(index, driver)) {
    for (const own of reached.areasOf(region)) {
      const part = meet(own, area);
      if (part) uses += cellCount(part);
    }
  }
  return uses;
}
