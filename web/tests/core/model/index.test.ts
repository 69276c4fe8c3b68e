import { describe, expect, test } from 'vitest';

import { findCircles } from '../../../src/core/model/circles';
import { restedOnBy, restingOn, type Reached } from '../../../src/core/model/closure';
import { directUsers, type Index } from '../../../src/core/model/Index';
import { waysBetween } from '../../../src/core/model/ways';
import type { WorkbookModel } from '../../../src/core/model/WorkbookModel';
import {
  cellsIn,
  drain,
  indexOf,
  keyOf,
  numbersFrom,
  RandomWorkbook,
  size,
  type CellKey,
} from './RandomWorkbook';

const sorted = (keys: Iterable<CellKey>) => [...new Set(keys)].sort();

function reachedCells(index: Index, reached: Reached): CellKey[] {
  return reached.steps.flatMap(({ region, area }) => cellsIn(index.sheetOf(region), area));
}

/** Who uses what, cell by cell. */
function bruteForce(workbook: RandomWorkbook) {
  const used = new Map([...workbook.cells.keys()].map((key) => [key, workbook.usedBy(key)]));
  const users = (key: CellKey) => [...used].filter(([, cells]) => cells.has(key)).map(([k]) => k);
  const closure = (start: CellKey, next: (key: CellKey) => Iterable<CellKey>): CellKey[] => {
    const found = new Set<CellKey>();
    const queue = [...next(start)];
    for (let key = queue.pop(); key !== undefined; key = queue.pop()) {
      if (found.has(key)) continue;
      found.add(key);
      queue.push(...next(key));
    }
    return sorted(found);
  };
  const formulasOf = (key: CellKey) => [...(used.get(key) ?? [])].filter((one) => used.has(one));
  return {
    users,
    restingOn: (key: CellKey) => closure(key, users),
    restedOnBy: (key: CellKey) => closure(key, formulasOf),
    circular: () =>
      sorted([...used.keys()].filter((key) => closure(key, formulasOf).includes(key))),
  };
}

type Truth = ReturnType<typeof bruteForce>;

function agrees(workbook: RandomWorkbook, model: WorkbookModel): void {
  const index = indexOf(model);
  const truth = bruteForce(workbook);
  for (let sheet = 0; sheet < 4; sheet++) {
    for (let row = 1; row <= size; row += 2) {
      for (let col = 1; col <= size; col += 3) {
        const key = keyOf(sheet, row, col);
        const start = { sheet, area: { top: row, left: col, bottom: row, right: col } };
        const direct = directUsers(index, start).flatMap(({ region, area }) =>
          cellsIn(index.sheetOf(region), area),
        );
        expect(sorted(direct), `users of ${key}`).toEqual(sorted(truth.users(key)));
        const forward = drain(restingOn(index, start));
        expect(sorted(reachedCells(index, forward)), `resting on ${key}`).toEqual(
          truth.restingOn(key),
        );
        expect(forward.cells).toBe(truth.restingOn(key).length);
        const back = drain(restedOnBy(index, start, () => undefined));
        const own = workbook.cells.has(key) ? [key] : [];
        expect(sorted(reachedCells(index, back)), `what ${key} rests on`).toEqual(
          sorted([...truth.restedOnBy(key), ...own]),
        );
      }
    }
  }
  const { circles, cut } = drain(findCircles(index));
  expect(cut).toBe(false);
  const circular = circles.flat().flatMap(({ sheet, area }) => cellsIn(sheet, area));
  expect(sorted(circular), 'circles').toEqual(truth.circular());
}

/** Each way begins at what uses the start, goes on from user to user and ends at the end. */
function leads(truth: Truth, model: WorkbookModel, from: CellKey, to: CellKey): void {
  const index = indexOf(model);
  const place = (key: CellKey) => {
    const [sheet = 0, row = 0, col = 0] = key.split(/[!,]/).map(Number);
    return { sheet, area: { top: row, left: col, bottom: row, right: col } };
  };
  const reached = drain(restingOn(index, place(from)));
  const { ways } = drain(waysBetween(index, reached, place(from), place(to)));
  const what = `from ${from} to ${to}`;
  const resting = truth.restingOn(from);
  expect(ways.length > 0, what).toBe(resting.includes(to));
  for (const way of ways) {
    let before = [from];
    for (const { region, area } of way) {
      const cells = cellsIn(index.sheetOf(region), area);
      expect(
        before.flatMap(truth.users).some((user) => cells.includes(user)),
        what,
      ).toBe(true);
      expect(
        cells.filter((cell) => !resting.includes(cell)),
        what,
      ).toEqual([]);
      before = cells;
    }
    expect(before, what).toContain(to);
  }
  const isDirect = truth.users(from).includes(to);
  if (isDirect) expect(ways[0]?.length, what).toBe(1);
}

describe('ways from cell to cell', () => {
  test.each(Array.from({ length: 4 }, (_, i) => i + 1))(
    'are chains of users, and there is one wherever a cell rests on another (seed %i)',
    (seed) => {
      const number = numbersFrom(seed);
      const workbook = new RandomWorkbook(number);
      const model = workbook.model();
      const formulas = [...workbook.cells.keys()];
      const truth = bruteForce(workbook);
      for (let i = 0; i < 8; i++) {
        const from = keyOf(number(4), 1 + number(size), 1 + number(size));
        const to = formulas[number(formulas.length)];
        if (to !== undefined) leads(truth, model, from, to);
      }
    },
  );
});

describe('the index', () => {
  test.each(Array.from({ length: 12 }, (_, i) => i + 1))(
    'tells what a cell by cell search tells, also after a sheet changed (seed %i)',
    (seed) => {
      const number = numbersFrom(seed);
      const workbook = new RandomWorkbook(number);
      const model = workbook.model();
      agrees(workbook, model);
      workbook.redraw(number(4));
      for (let sheet = 0; sheet < 4; sheet++) workbook.readInto(model, sheet);
      agrees(workbook, model);
    },
  );
});
