import { parseArea } from '../../src/core/address/area';
import type { EvaluationQuestions } from '../../src/core/evaluation/Asker';
import type { Json, Scalar } from '../../src/core/protocol/json';
import { failed, succeeded, type Failure, type Outcome } from '../../src/core/protocol/Outcome';
import type { CellPlace, RangeTooBig, RangeValues, ShownGrid } from '../../src/core/protocol/verbs';

type Known = Json | Failure;

function isFailure(known: Known): known is Failure {
  return typeof known === 'object' && known !== null && 'kind' in known;
}

export const reaches = (name: string): Failure => ({
  kind: 'transport',
  message: `Microsoft Excel got an error: Runs “${name}”, so only when you ask.`,
  code: -9993,
});

export const excelError = (message: string): Failure => ({ kind: 'excelError', message });

/**
 * A workbook that answers what the test wrote into it, and notes every question. Cells that are not
 * written are blank; expressions that are not written are refused.
 */
export class FakeWorkbook implements EvaluationQuestions {
  readonly asked: string[] = [];
  /** By sheet and address: "Data!C7". */
  cells: Record<string, Scalar> = {};
  /** By text; a function answers for all the others. */
  expressions: Record<string, Known> = {};
  otherwise: (text: string) => Known = () => ({ kind: 'transport', message: 'not written' });
  /** What cells show, by the address that is asked about. */
  texts: Record<string, ShownGrid> = {};
  /** Every question for that, which is not among the others. */
  readonly textsAsked: string[] = [];
  /** Addresses that cannot be read, with the reason. */
  unreadable: Record<string, string> = {};
  /** Where the user is. Not noted among the questions. */
  front = { book: 'Model.xlsx', sheet: 'Summary', addr: 'A1' };

  evaluate(expression: string, asked = false): Promise<Outcome<Json>> {
    this.asked.push(`evaluate ${expression}${asked ? ' asked' : ''}`);
    return Promise.resolve(this.answer(expression));
  }

  pollCell(): Promise<Outcome<CellPlace>> {
    return Promise.resolve(succeeded(this.front));
  }

  deepEval(plan: readonly string[], asked = false): Promise<Outcome<Json>> {
    this.asked.push(`deepEval ${plan.join(' | ')}${asked ? ' asked' : ''}`);
    return Promise.resolve(this.answer(plan.at(-1) ?? ''));
  }

  readRange(address: string): Promise<Outcome<RangeValues | RangeTooBig>> {
    this.asked.push(`readRange ${address}`);
    const reason = this.unreadable[address];
    const [, sheet = '', text = ''] = /^'(.*)'!(.*)$/.exec(address) ?? [];
    const area = parseArea(text);
    if (reason !== undefined || !area) {
      return Promise.resolve(failed('transport', reason ?? `range does not exist: ${address}`));
    }
    const rows = area.bottom - area.top + 1;
    const cols = area.right - area.left + 1;
    if (rows * cols > 20_000) return Promise.resolve(succeeded({ rows, cols, tooBig: true }));
    const values = Array.from({ length: rows }, (_, row) =>
      Array.from({ length: cols }, (_, col) => {
        const letter = String.fromCharCode(64 + area.left + col);
        return this.cells[`${sheet}!${letter}${String(area.top + row)}`] ?? null;
      }),
    );
    return Promise.resolve(succeeded({ rows, cols, values }));
  }

  readTexts(addresses: readonly string[]): Promise<Outcome<{ texts: (ShownGrid | null)[] }>> {
    this.textsAsked.push(addresses.join(' '));
    return Promise.resolve(succeeded({ texts: addresses.map((one) => this.texts[one] ?? null) }));
  }

  private answer(text: string): Outcome<Json> {
    const known = this.expressions[text] ?? this.otherwise(text);
    return isFailure(known) ? { ok: false, failure: known } : succeeded(known);
  }
}
