// How many questions a formula of the corpus needs: everything of it visible in a panel of ordinary
// height, against a workbook that answers at once and counts. The first trip is the reading of the
// cell, which already gives the tree its first value; it is not counted here.

import { Evaluator } from '../src/core/evaluation/Evaluator';
import { ResultCache } from '../src/core/evaluation/ResultCache';
import { parse } from '../src/core/formula/Parser';
import { outlineOf } from '../src/core/outline/Item';
import { FakeWorkbook } from '../tests/fakes/FakeWorkbook';
import { corpus } from './formulas';

const visibleRows = 20;
const formulas = corpus();

const home = { book: 'Model.xlsx', sheet: 'Summary', row: 12, col: 6 };
const kinds = ['readRange', 'evaluate', 'CELL', 'deepEval'] as const;

const isOfFormats = (question: string) => question.includes('CELL("format"');

async function tripsOf(text: string): Promise<Record<(typeof kinds)[number], number>> {
  const workbook = new FakeWorkbook();
  workbook.otherwise = (question) => (isOfFormats(question) ? 'G' : 1);
  const evaluator = new Evaluator(workbook, new ResultCache(), () => undefined);
  const outline = outlineOf(parse(text).root);
  evaluator.show({ home, outline, result: { kind: 'value', value: 1 } });
  evaluator.look(outline.items.slice(0, visibleRows));
  for (let job = evaluator.next(); job; job = evaluator.next()) await job();
  const count = { readRange: 0, evaluate: 0, CELL: 0, deepEval: 0 };
  for (const asked of workbook.asked) {
    const [verb = '', rest = ''] = asked.split(' ', 2);
    count[isOfFormats(rest) ? 'CELL' : (verb as 'evaluate')] += 1;
  }
  return count;
}

const all: Record<string, number>[] = [];
for (const formula of formulas) all.push(await tripsOf(formula));

function line(name: string, of: (one: Record<string, number>) => number): void {
  const sorted = all.map(of).sort((a, b) => a - b);
  const at = (share: number) => String(sorted[Math.floor((sorted.length - 1) * share)]).padStart(5);
  console.log(`${name.padEnd(24)}${at(0.5)}${at(0.9)}${at(0.99)}${at(1)}`);
}

console.log(`${String(formulas.length)} formulas             p50  p90  p99  most`);
line('all questions', (one) => kinds.reduce((sum, kind) => sum + (one[kind] ?? 0), 0));
line('  values of cells', (one) => one.readRange ?? 0);
line('  evaluations', (one) => one.evaluate ?? 0);
line('  formats of cells', (one) => one.CELL ?? 0);
