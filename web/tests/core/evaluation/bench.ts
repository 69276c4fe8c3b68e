// A formula on the bench: its items, evaluated by a fake workbook.

import { Evaluator } from '../../../src/core/evaluation/Evaluator';
import { ResultCache } from '../../../src/core/evaluation/ResultCache';
import type { Result } from '../../../src/core/evaluation/Result';
import { parse } from '../../../src/core/formula/Parser';
import { outlineOf, type Item } from '../../../src/core/outline/Item';
import { Conveyor } from '../../../src/core/protocol/Conveyor';
import { FakeClock } from '../../fakes/FakeClock';
import { FakeWorkbook } from '../../fakes/FakeWorkbook';

export const home = { book: 'Model.xlsx', sheet: 'Summary', row: 12, col: 6 };

/** Everything that hangs on answers has run once some full turns of the loop have passed. */
export async function settled(): Promise<void> {
  for (let turn = 0; turn < 3; turn++) await new Promise((resolve) => setImmediate(resolve));
}

export class Bench {
  readonly workbook = new FakeWorkbook();
  readonly cache = new ResultCache();
  changes = 0;
  text = '';
  items: Item[] = [];
  readonly evaluator = new Evaluator(this.workbook, this.cache, () => {
    this.changes += 1;
  });
  readonly conveyor = new Conveyor([this.evaluator], {
    clock: new FakeClock(),
    slow: () => undefined,
    report: (where, error) => {
      throw new Error(`${where}: ${String(error)}`);
    },
  });

  show(text: string, result: Result = { kind: 'value', value: 0 }): void {
    this.text = text;
    const outline = outlineOf(parse(text).root);
    this.items = outline.items;
    this.evaluator.show({ home, outline, result });
  }

  /** Shows the formula with every item visible, and lets everything be answered. */
  async run(text: string, result?: Result): Promise<void> {
    this.show(text, result);
    this.evaluator.look(this.items);
    await this.finish();
  }

  async finish(): Promise<void> {
    this.conveyor.wake();
    for (let before = -1; before !== this.changes;) {
      before = this.changes;
      await settled();
    }
  }

  item(text: string): Item {
    const found = this.items.find(({ node }) => this.text.slice(node.start, node.end) === text);
    if (!found) throw new Error(`no item ${text}`);
    return found;
  }

  /** What is known of the part of the formula that reads `text`, in short. */
  of(text: string): unknown {
    const state = this.evaluator.stateOf(this.item(text));
    if (state.status !== 'known')
      return 'reason' in state ? `${state.status}: ${state.reason}` : state.status;
    const { result } = state;
    if (result.kind === 'value') return result.value;
    if (result.kind === 'error') return result.text;
    return result.kind === 'array' ? `${String(result.rows)}×${String(result.cols)}` : 'function';
  }
}
