// Between the page and a spreadsheet that calls whatever it is asked to evaluate, as Excel does: an
// expression goes there only when all that it calls is known to stay inside the workbook, by itself
// and by the names that it uses, and the names that these use. Anything else is refused with the
// code that LibreOffice's side refuses it with, unless the user asked for that very part.

import { parse } from '../formula/Parser';
import { traitOf } from '../formula/functions';
import { plainName, walk, type Node } from '../formula/syntax';
import type { Json } from '../protocol/json';
import { onlyWhenAskedCode, succeeded, type Outcome } from '../protocol/Outcome';
import type { RangeTooBig, RangeValues, WorkbookMap } from '../protocol/verbs';
import type { EvaluationQuestions } from './Asker';
import { runs } from './routes';

export type GuardedQuestions = EvaluationQuestions & {
  workbookMap(): Promise<Outcome<WorkbookMap>>;
};

/** So many names are looked at for one question; what uses more is only for the asking. */
const namesLimit = 2_000;

/** What a name is called without its sheet, for looking it up. */
const bare = (name: string) => name.slice(name.lastIndexOf('!') + 1).toUpperCase();

function refusal(reason: string): {
  ok: false;
  failure: { kind: 'transport'; message: string; code: number };
} {
  return { ok: false, failure: { kind: 'transport', message: reason, code: onlyWhenAskedCode } };
}

/** Whether a name may be one of another workbook: [Book.xlsx]Sheet!name, Book.xlsx!name. */
function isForeign(prefix: string, book: string): boolean {
  const place = prefix.replace(/^'|'?!$/g, '').replaceAll("''", "'");
  const [, named = place] = /\[([^\]]*)\]/.exec(place) ?? [];
  return /[[\].\\/]/.test(place) && named.toLowerCase() !== book.toLowerCase();
}

type Meanings = { book: string; byName: Map<string, Json[]> };

/** What an expression calls that is not known to be harmless, and the names that it uses. */
type Reach = { calls: string | undefined; names: { name: string; prefix: string }[] };

function reachOf(expression: string): Reach {
  const names: Reach['names'] = [];
  const parameters = new Set<string>();
  let calls: string | undefined;
  const { root } = parse(`=${expression.replace(/^\s*=/, '')}`);
  walk(root, (node: Node) => {
    if (node.kind === 'parameter') parameters.add(plainName(node.name));
    if (node.kind === 'name') names.push({ name: node.name, prefix: node.prefix });
    if (node.kind === 'invalid') calls ??= '?';
    if (node.kind !== 'call') return;
    const trait = node.prefix === '' ? traitOf(node.name) : 'unknown';
    if (trait === 'reaching' || (trait === 'unknown' && !parameters.has(plainName(node.name)))) {
      calls ??= node.name;
    }
  });
  return {
    calls,
    names: names.filter(({ name, prefix }) => prefix !== '' || !parameters.has(plainName(name))),
  };
}

export class ReachGuard implements EvaluationQuestions {
  private known: { epoch: number; meanings: Meanings } | undefined;

  constructor(
    private readonly questions: GuardedQuestions,
    /** Another number whenever the workbook may have changed. */
    private readonly epoch: () => number,
  ) {}

  pollCell() {
    return this.questions.pollCell();
  }

  async evaluate(expression: string, asked = false): Promise<Outcome<Json>> {
    const reason = asked ? undefined : await this.reason([expression]);
    return reason === undefined ? this.questions.evaluate(expression, asked) : refusal(reason);
  }

  /** An address may be a name, of which the spreadsheet works out which cells it stands for. */
  async readRange(address: string, asked = false): Promise<Outcome<RangeValues | RangeTooBig>> {
    const reason = asked ? undefined : await this.reason([address]);
    return reason === undefined ? this.questions.readRange(address, asked) : refusal(reason);
  }

  async deepEval(plan: readonly string[], asked = false): Promise<Outcome<Json>> {
    const reason = asked ? undefined : await this.reason(plan);
    return reason === undefined ? this.questions.deepEval(plan, asked) : refusal(reason);
  }

  /** Why these are only for the asking; nothing where they may be asked. */
  private async reason(expressions: readonly string[]): Promise<string | undefined> {
    const waiting: Reach[] = [];
    for (const expression of expressions) {
      const reach = reachOf(expression);
      if (reach.calls !== undefined) return runs(reach.calls);
      waiting.push(reach);
    }
    if (waiting.every(({ names }) => names.length === 0)) return undefined;
    const told = await this.meanings();
    if (!told.ok) return 'The names of the workbook cannot be read, so only when you ask.';
    const { book, byName } = told.value;
    const seen = new Set<string>();
    for (let reach = waiting.pop(); reach; reach = waiting.pop()) {
      for (const { name, prefix } of reach.names) {
        if (isForeign(prefix, book)) return `Uses “${prefix}${name}”, so only when you ask.`;
        const key = bare(name);
        if (seen.has(key)) continue;
        if (seen.size >= namesLimit) return 'Uses too many names, so only when you ask.';
        seen.add(key);
        // Whichever sheet's own it is: the one that reaches furthest counts.
        for (const meaning of byName.get(key) ?? []) {
          const inner = typeof meaning === 'string' ? reachOf(meaning) : { calls: name, names: [] };
          if (inner.calls !== undefined) {
            return runs(inner.calls === '?' ? name : inner.calls);
          }
          waiting.push(inner);
        }
      }
    }
    return undefined;
  }

  private async meanings(): Promise<Outcome<Meanings>> {
    const epoch = this.epoch();
    if (this.known?.epoch === epoch) return succeeded(this.known.meanings);
    const outcome = await this.questions.workbookMap();
    if (!outcome.ok) return outcome;
    const { book, names } = outcome.value;
    const byName = new Map<string, Json[]>();
    for (const { name, refersTo } of names) {
      const key = bare(name);
      byName.set(key, [...(byName.get(key) ?? []), refersTo]);
    }
    const meanings = { book, byName };
    if (epoch === this.epoch()) this.known = { epoch, meanings };
    return succeeded(meanings);
  }
}
