// Asks for one part of a formula by its route, and makes of the answer what the page can show.

import type { Json } from '../protocol/json';
import { notRunningCode, type Failure, type Outcome } from '../protocol/Outcome';
import type { RangeTooBig, RangeValues } from '../protocol/verbs';
import { readArea } from './rangeReader';
import { isErrorText, resultOfCells, resultOfJson, type Result } from './Result';
import type { ResultCache } from './ResultCache';
import { expressionLimit, type Route } from './routes';

export type EvaluationQuestions = {
  evaluate(expression: string): Promise<Outcome<Json>>;
  readRange(address: string): Promise<Outcome<RangeValues | RangeTooBig>>;
  deepEval(plan: readonly string[]): Promise<Outcome<Json>>;
};

export type Answer =
  | { result: Result }
  /** It cannot be had; `later`: it may be another time; `halt`: nothing can be had now. */
  | { reason: string; later: boolean; halt: boolean };

/** ERROR.TYPE's numbers, from 1. */
const errorsByType = '#NULL! #DIV/0! #VALUE! #REF! #NAME? #NUM! #N/A #GETTING_DATA'.split(' ');

function refused(failure: Failure): Answer {
  const halt = failure.code === notRunningCode || ['denied', 'detached'].includes(failure.kind);
  switch (failure.kind) {
    case 'timeout':
    case 'unanswered':
      return { reason: 'The spreadsheet took too long.', later: true, halt };
    case 'busy':
      return { reason: 'The spreadsheet is busy.', later: true, halt };
    case 'malformed':
      return { reason: 'The answer has an unexpected shape.', later: false, halt };
    default:
      return { reason: failure.message || 'The spreadsheet refused.', later: halt, halt };
  }
}

const unusable: Answer = {
  reason: 'The spreadsheet gives no value for this part.',
  later: false,
  halt: false,
};

export class Asker {
  constructor(
    private readonly questions: EvaluationQuestions,
    private readonly cache: ResultCache,
  ) {}

  /** What is known without asking. */
  known(route: Route): Result | undefined {
    switch (route.by) {
      case 'text':
      case 'size':
        return route.result;
      case 'cells': {
        const values = this.cache.cells(route.sheet, route.area);
        return values && resultOfCells(values);
      }
      case 'range':
      case 'expression':
        return this.cache.find(route.text);
      case 'scratch':
        return this.cache.find(route.plan.join('\n'));
      case 'nothing':
        return undefined;
    }
  }

  async ask(route: Route): Promise<Answer> {
    const { epoch } = this.cache;
    const keep = (text: string, answer: Answer): Answer => {
      if ('result' in answer && epoch === this.cache.epoch) this.cache.keep(text, answer.result);
      return answer;
    };
    switch (route.by) {
      case 'cells': {
        const outcome = await readArea(this.readRange, route.sheet, route.area);
        if (!outcome.ok) return refused(outcome.failure);
        if (epoch === this.cache.epoch) {
          this.cache.keepCells(route.sheet, route.area, outcome.value);
        }
        return { result: resultOfCells(outcome.value) };
      }
      case 'range':
        return keep(route.text, await this.range(route.text));
      case 'expression': {
        const answer = await this.expression(route.text);
        return route.volatile ? answer : keep(route.text, answer);
      }
      case 'scratch': {
        const answer = await this.scratch(route.plan);
        return route.volatile ? answer : keep(route.plan.join('\n'), answer);
      }
      case 'text':
      case 'size':
        return { result: route.result };
      case 'nothing':
        return { reason: route.reason, later: false, halt: false };
    }
  }

  private readonly readRange = (address: string) => this.questions.readRange(address);

  private async range(text: string): Promise<Answer> {
    const outcome = await this.questions.readRange(text);
    if (!outcome.ok) {
      const answer = refused(outcome.failure);
      return 'later' in answer && answer.later ? answer : this.expression(text);
    }
    const { value } = outcome;
    if ('tooBig' in value) {
      return { result: { kind: 'array', rows: value.rows, cols: value.cols } };
    }
    return { result: resultOfCells(value.values) };
  }

  private async expression(text: string): Promise<Answer> {
    const outcome = await this.questions.evaluate(text);
    if (outcome.ok) {
      const result = resultOfJson(outcome.value);
      return result ? { result } : unusable;
    }
    const { failure } = outcome;
    if (failure.kind !== 'excelError') return refused(failure);
    if (failure.message.startsWith('#'))
      return { result: { kind: 'error', text: failure.message } };
    return this.errorOf(text);
  }

  /** Too long for the native side to learn which error it is: the type alone is shorter. */
  private async errorOf(text: string): Promise<Answer> {
    const question = `ERROR.TYPE(${text})`;
    if (question.length > expressionLimit) return unusable;
    const outcome = await this.questions.evaluate(question);
    if (!outcome.ok || typeof outcome.value !== 'number') return unusable;
    return { result: { kind: 'error', text: errorsByType[outcome.value - 1] ?? '#UNKNOWN!' } };
  }

  private async scratch(plan: readonly string[]): Promise<Answer> {
    const outcome = await this.questions.deepEval(plan);
    if (!outcome.ok) return refused(outcome.failure);
    if (isErrorText(outcome.value)) return { result: { kind: 'error', text: outcome.value } };
    const result = resultOfJson(outcome.value);
    return result ? { result } : unusable;
  }
}
