import type { Failure, Outcome } from '../../src/core/protocol/Outcome';
import type { Cell, Probe, RangeTooBig, RangeValues } from '../../src/core/protocol/verbs';
import type { SpreadsheetQuestions } from '../../src/core/selection/SelectionTracker';

type Asked = { verb: string; settle: (outcome: Outcome<never>) => void };

/** A spreadsheet whose answers the test gives, one by one. */
export class FakeSpreadsheet implements SpreadsheetQuestions {
  /** Every question so far, with its argument where it has one. */
  readonly asked: string[] = [];
  private waiting: Asked[] = [];

  get inFlight(): number {
    return this.waiting.length;
  }

  probe(): Promise<Outcome<Probe>> {
    return this.question('probe');
  }

  readCell(): Promise<Outcome<Cell>> {
    return this.question('readCell');
  }

  readRange(address: string): Promise<Outcome<RangeValues | RangeTooBig>> {
    return this.question('readRange', address);
  }

  /** Answers the oldest open question, which must be `verb`. */
  async answer(verb: string, value: unknown): Promise<void> {
    await this.settle(verb, { ok: true, value: value as never });
  }

  async fail(verb: string, failure: Failure): Promise<void> {
    await this.settle(verb, { ok: false, failure });
  }

  private question<T>(verb: string, ...args: string[]): Promise<Outcome<T>> {
    this.asked.push([verb, ...args].join(' '));
    return new Promise((resolve) => {
      this.waiting.push({ verb, settle: resolve as Asked['settle'] });
    });
  }

  private async settle(verb: string, outcome: Outcome<never>): Promise<void> {
    const oldest = this.waiting.shift();
    if (oldest?.verb !== verb) throw new Error(`${oldest?.verb ?? 'nothing'} waits, not ${verb}`);
    oldest.settle(outcome);
    // Every promise that hangs on the answer has run once a full turn of the loop has passed.
    await new Promise((resolve) => setImmediate(resolve));
  }
}

export function cell(addr: string, more: Partial<Cell> = {}): Cell {
  const formula = more.formula ?? '';
  const place = { book: 'Model.xlsx', sheet: 'Summary', addr, row: 1, col: 1 };
  return { ...place, formula, formulaLocal: formula, value: 1, ...more };
}
