// Reads a workbook through quorinctl with the page's own scan, and tells the direct users of given
// cells as the page's model has them.
//
//     node out/bench/dependents.js QUORINCTL WORKBOOK < cells.json
//
// The cells: [{"sheet": …, "row": …, "col": …}, …]. Prints one JSON object. Whoever compares shares
// nothing with the page (tests/witness/dependents.py).

import { spawn } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { createInterface } from 'node:readline';
import { CarriedModel, SlicedCarrier } from '../src/core/model/ModelClient';
import { ProtocolClient } from '../src/core/protocol/ProtocolClient';
import { BookScan } from '../src/core/scan/BookScan';
import type { Clock } from '../src/core/time/Clock';

const [program = '', workbook = ''] = process.argv.slice(2);
const cells = JSON.parse(readFileSync(0, 'utf8')) as { sheet: string; row: number; col: number }[];

const clock: Clock = {
  after(milliseconds, action) {
    const timer = setTimeout(action, milliseconds);
    return () => {
      clearTimeout(timer);
    };
  },
};

const tool = spawn(program, ['--workbook', workbook], { stdio: ['pipe', 'pipe', 'inherit'] });
tool.on('exit', (status) => {
  if (status !== 0) process.exit(1);
});
let questions = 0;
const client = new ProtocolClient({
  post(request) {
    questions += 1;
    tool.stdin.write(`${JSON.stringify(request)}\n`);
  },
  clock,
  report: (where, error) => {
    console.error(where, error);
  },
  firstId: 1,
});
createInterface({ input: tool.stdout }).on('line', (line) => {
  const reply = JSON.parse(line) as { id: unknown };
  client.resolve(reply.id, reply);
});

async function scanned(book: string, model: CarriedModel): Promise<BookScan> {
  return new Promise((resolve, reject) => {
    const scan: BookScan = new BookScan(book, {
      questions: {
        workbookMap: () => client.ask('workbookMap'),
        readFormulas: (address) => client.ask('readFormulas', address, 'r1c1', false),
        evaluate: (expression) => client.ask('evaluate', expression),
        pollCell: () => client.ask('pollCell'),
      },
      model,
      clock,
      time: () => '',
      inFront: () => true,
      changed: () => {
        const { status, reason } = scan.state;
        if (status === 'asking') {
          // The user's answer to the button that tells how many cells there are.
          clock.after(0, () => {
            scan.go();
          });
        } else if (status === 'done') resolve(scan);
        else if (status === 'failed') reject(new Error(reason));
      },
    });
    scan.begin();
  });
}

// Private offices take a while to open a large workbook.
const front = await client.ask('pollCell');
if (!front.ok) throw new Error(front.failure.message);
const { book } = front.value;
const model = new CarriedModel(new SlicedCarrier(clock, Date.now), () => undefined);
const scan = await scanned(book, model);
const asked = questions;
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
tool.stdin.end();
