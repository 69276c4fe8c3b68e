// Asks for one part of a formula by its route, and makes of the answer what the page can show.

import type { Area } from '../address/area';
import type { Json } from '../protocol/json';
import { notRunningCode, onlyWhenAskedCode, type Failure, type Outcome } from '../protocol/Outcome';
import type { RangeTooBig, RangeValues } from '../protocol/verbs';
import { readArea } from './rangeReader';
import { keyOf, onlyInFront, toldOf, type Bound, type FrontQuestions } from './front';
import { isErrorText, resultOfCells, resultOfJson, type Result } from './Result';
import type { ResultCache } from './ResultCache';
import type { TextQuestions } from './ShownTexts';
import { expressionLimit, type Route } from './routes';

export type EvaluationQuestions = FrontQuestions &
  TextQuestions & {
    /** `asked`: the user asked for this very part, so that it may reach out of the workbook. */
    evaluate(expression: string, asked?: boolean): Promise<Outcome<Json>>;
    readRange(address: string, asked?: boolean): Promise<Outcome<RangeValues | RangeTooBig>>;
    deepEval(plan: readonly string[], asked?: boolean): Promise<Outcome<Json>>;
  };

export type Answer =
  | { result: Result }
  /** It cannot be had. */
  | Refusal;

type Refusal = {
  reason: string;
  /** It may be had another time. */
  later: boolean;
  /** Nothing can be had now. */
  halt: boolean;
  /** It can be had while the formula's sheet is in front. */
  away?: boolean;
  /** It reaches out of the workbook, and is asked for when the user wants that. */
  reaches?: boolean;
};

type AskedRoute = Route & { by: 'range' | 'expression' | 'scratch' };

/** ERROR.TYPE's numbers, from 1. */
const errorsByType = '#NULL! #DIV/0! #VALUE! #REF! #NAME? #NUM! #N/A #GETTING_DATA'.split(' ');

function refused(failure: Failure): Refusal {
  if (failure.code === onlyWhenAskedCode) {
    const reason = failure.message.replace(/^.* got an error: /, '');
    return { reason, later: false, halt: false, reaches: true };
  }
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

const isError = ({ kind }: Result): boolean => kind === 'error';

const unusable: Refusal = {
  reason: 'The spreadsheet gives no value for this part.',
  later: false,
  halt: false,
};

function keyOfRoute(route: AskedRoute): string {
  return route.by === 'scratch' ? route.plan.join('\n') : keyOf(route.text, route.bound?.home);
}

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
      case 'scratch':
        return this.cache.find(keyOfRoute(route));
      case 'nothing':
        return undefined;
    }
  }

  /** `asked`: the user asked for this very part, whatever it reaches. */
  async ask(route: Route, asked = false): Promise<Answer> {
    switch (route.by) {
      case 'cells':
        return this.cells(route.sheet, route.area);
      case 'range':
        return this.kept(
          route,
          this.of(route, (text) => this.range(text, asked)),
        );
      case 'expression':
        return this.kept(
          route,
          this.of(route, (text) => this.expression(text, asked)),
        );
      case 'scratch':
        return this.kept(route, this.scratch(route.plan, asked));
      case 'text':
      case 'size':
        return { result: route.result };
      case 'nothing':
        return { reason: route.reason, later: false, halt: false };
    }
  }

  /** Keeps what is told as long as nothing can have changed. */
  private async kept(route: AskedRoute, asking: Promise<Answer>): Promise<Answer> {
    const { epoch } = this.cache;
    const answer = await asking;
    const lasts = route.by === 'range' || !route.volatile;
    if ('result' in answer && lasts && epoch === this.cache.epoch) {
      this.cache.keep(keyOfRoute(route), answer.result);
    }
    return answer;
  }

  /** What is told of the formula's own sheet. */
  private async of(
    { text, bound }: { text: string; bound?: Bound },
    ask: (text: string) => Promise<Answer>,
  ): Promise<Answer> {
    if (!bound) return ask(text);
    const told = await toldOf(bound, text, this.questions, ask);
    // An error of the longer words may be theirs alone.
    const isOwn = told && !(told.isFar && 'result' in told.answer && isError(told.answer.result));
    if (isOwn) return told.answer;
    return { reason: onlyInFront(bound.home), later: false, halt: false, away: true };
  }

  private async cells(sheet: string, area: Area): Promise<Answer> {
    const { epoch } = this.cache;
    const outcome = await readArea(this.readRange, sheet, area);
    if (!outcome.ok) return refused(outcome.failure);
    if (epoch === this.cache.epoch) this.cache.keepCells(sheet, area, outcome.value);
    return { result: resultOfCells(outcome.value) };
  }

  private readonly readRange = (address: string) => this.questions.readRange(address);

  private async range(text: string, asked: boolean): Promise<Answer> {
    const outcome = await this.questions.readRange(text, asked);
    if (!outcome.ok) {
      const answer = refused(outcome.failure);
      return answer.later || answer.reaches ? answer : this.expression(text, asked);
    }
    const { value } = outcome;
    if ('tooBig' in value) {
      return { result: { kind: 'array', rows: value.rows, cols: value.cols } };
    }
    return { result: resultOfCells(value.values) };
  }

  private async expression(text: string, asked: boolean): Promise<Answer> {
    const outcome = await this.questions.evaluate(text, asked);
    if (outcome.ok) {
      const result = resultOfJson(outcome.value);
      return result ? { result } : unusable;
    }
    const { failure } = outcome;
    if (failure.kind !== 'excelError') return refused(failure);
    if (failure.message.startsWith('#'))
      return { result: { kind: 'error', text: failure.message } };
    return this.errorOf(text, asked);
  }

  /** Too long for the native side to learn which error it is: the type alone is shorter. */
  private async errorOf(text: string, asked: boolean): Promise<Answer> {
    const question = `ERROR.TYPE(${text})`;
    if (question.length > expressionLimit) return unusable;
    const outcome = await this.questions.evaluate(question, asked);
    if (!outcome.ok || typeof outcome.value !== 'number') return unusable;
    return { result: { kind: 'error', text: errorsByType[outcome.value - 1] ?? '#UNKNOWN!' } };
  }

  private async scratch(plan: readonly string[], asked: boolean): Promise<Answer> {
    const outcome = await this.questions.deepEval(plan, asked);
    if (!outcome.ok) return refused(outcome.failure);
    if (isErrorText(outcome.value)) return { result: { kind: 'error', text: outcome.value } };
    const result = resultOfJson(outcome.value);
    return result ? { result } : unusable;
  }
}
