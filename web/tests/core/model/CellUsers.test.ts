import { expect, test } from 'vitest';

import { restingOn } from '../../../src/core/model/closure';
import { directUsers } from '../../../src/core/model/Index';
import { WorkbookModel } from '../../../src/core/model/WorkbookModel';
import { cellsIn, drain, indexOf, keyOf, numbersFrom } from './RandomWorkbook';

const size = 14;
const sheets = ['S0', 'S1'];

/** Sheets of formulas of which hardly two are alike, and who uses what, cell by cell. */
function drawn(seed: number) {
  const number = numbersFrom(seed);
  const model = new WorkbookModel({ book: 'Model.xlsx', sheets, names: [] });
  const users = new Map<string, Set<string>>();
  const used = (sheet: number, row: number, col: number, by: string): void => {
    const key = keyOf(sheet, row, col);
    users.set(key, (users.get(key) ?? new Set()).add(by));
  };
  sheets.forEach((name, sheet) => {
    const formulas: string[][] = [];
    for (let row = 1; row <= size; row++) {
      const line: string[] = [];
      for (let col = 1; col <= size; col++) {
        const by = keyOf(sheet, row, col);
        const other = number(2);
        const to = { row: 1 + number(size), col: 1 + number(size) };
        const kind = number(10);
        if (kind < 4) line.push('');
        else if (kind < 8) {
          const at = `R[${String(to.row - row)}]C[${String(to.col - col)}]`;
          line.push(`=S${String(other)}!${at}*${String(row * 100 + col)}`);
          used(other, to.row, to.col, by);
        } else {
          // Two cells beside each other, and one that is fixed.
          const fixed = `R${String(to.row)}C${String(to.col)}`;
          line.push(`=SUM(S${String(other)}!${fixed}:R${String(to.row)}C${String(to.col + 1)},RC)`);
          used(other, to.row, to.col, by);
          used(other, to.row, to.col + 1, by);
          used(sheet, row, col, by);
        }
      }
      formulas.push(line);
    }
    model.beginSheet(name);
    const area = { top: 1, left: 1, bottom: size, right: size };
    model.piece(
      name,
      area,
      formulas,
      formulas.map((line) => line.map(() => 1)),
    );
    model.endSheet(name);
  });
  return { model, users };
}

test.each([1, 2, 3, 4])('what rests on cells of single formulas (seed %i)', (seed) => {
  const { model, users } = drawn(seed);
  const index = indexOf(model);
  let reaching = 0;
  for (let sheet = 0; sheet < 2; sheet++) {
    for (let row = 1; row <= size; row++) {
      for (let col = 1; col <= size; col++) {
        const found = new Set<string>();
        const queue = [keyOf(sheet, row, col)];
        for (let key = queue.pop(); key !== undefined; key = queue.pop()) {
          for (const user of users.get(key) ?? []) {
            if (!found.has(user)) queue.push(user);
            found.add(user);
          }
        }
        const start = { sheet, area: { top: row, left: col, bottom: row, right: col } };
        const reached = drain(restingOn(index, start));
        const cells = [...reached.regions].flatMap((region) =>
          reached.areasOf(region).flatMap((area) => cellsIn(index.sheetOf(region), area)),
        );
        expect(cells.sort()).toEqual([...found].sort());
        expect(reached.cells).toBe(found.size);
        const steps = reached.steps.flatMap(({ region, area }) =>
          cellsIn(index.sheetOf(region), area),
        );
        expect(steps.sort()).toEqual([...found].sort());
        const direct = directUsers(index, start).flatMap(({ region, area }) =>
          cellsIn(index.sheetOf(region), area),
        );
        expect(direct.sort()).toEqual([...(users.get(keyOf(sheet, row, col)) ?? [])].sort());
        reaching += found.size;
      }
    }
  }
  expect(reaching).toBeGreaterThan(500);
});
