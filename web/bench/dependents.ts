// Reads a workbook through quorinctl with the page's own scan, and tells the direct users of given
// cells as the page's model has them.
//
//     node out/bench/dependents.js QUORINCTL WORKBOOK < cells.json
//
// The cells: [{"sheet": …, "row": …, "col": …}, …]. Prints one JSON object. Whoever compares shares
// nothing with the page (tests/witness/dependents.py).

import { readFileSync } from 'node:fs';
import { CarriedModel, SlicedCarrier } from '../src/core/model/ModelClient';
import { readWhole } from '../src/core/scan/readWhole';
import { clock, openedBook, openTool } from './tool';

const [program = '', workbook = ''] = process.argv.slice(2);
const cells = JSON.parse(readFileSync(0, 'utf8')) as { sheet: string; row: number; col: number }[];

const tool = openTool(program, workbook);
const book = await openedBook(tool.client);
const model = new CarriedModel(new SlicedCarrier(clock, Date.now), () => undefined);
const scan = await readWhole(book, model, {
  client: tool.client,
  clock,
  progress: () => undefined,
});
const asked = tool.asked();
const answers = [];
for (const { sheet, row, col } of cells) {
  const area = { top: row, left: col, bottom: row, right: col };
  const { rows, left } = await model.ask(book, 'users', { sheet, area });
  const areas = rows.map((one) => [
    one.sheet,
    one.area.top,
    one.area.left,
    one.area.bottom,
    one.area.right,
  ]);
  answers.push({ areas, left });
}
const state = await model.ask(book, 'state', {});
const nowhere = { sheet: '', area: { top: 1, left: 1, bottom: 1, right: 1 } };
const { runTimeCells } = await model.ask(book, 'dependents', nowhere);
const { rows: runTime } = await model.ask(book, 'runTime', {});
/** Cells by why they are decided at run time. */
const reasons: Record<string, number> = {};
for (const row of runTime) {
  const why = row.reasons.join(', ');
  reasons[why] = (reasons[why] ?? 0) + row.cells;
}
const { formulas, unreadCells } = state;
console.log(
  JSON.stringify({
    questions: asked,
    formulas,
    unreadCells,
    runTimeCells,
    reasons,
    notRead: scan.state.notRead,
    answers,
  }),
);
tool.close();
