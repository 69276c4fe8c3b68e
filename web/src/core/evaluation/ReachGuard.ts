// Between the page and a spreadsheet that calls whatever it is asked to evaluate, as Excel does: an
// expression goes there only when all that it calls is known to stay inside the workbook, by itself
// and by the names that it uses, and the names that these use. Anything else is refused with the
// code that LibreOffice's side refuses it with, unless the user asked for that very part.

import { parse } from '../formula/Parser';
import { traitOf } from '../formula/functions';
import { children, plainName, type Node, type NodeOf } from '../formula/syntax';
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

function uses(what: string): string {
  return `Uses “${what}”, so only when you ask.`;
}

function refusal(reason: string): {
  ok: false;
  failure: { kind: 'transport'; message: string; code: number };
} {
  return { ok: false, failure: { kind: 'transport', message: reason, code: onlyWhenAskedCode } };
}

/** What stands before the "!", without quotes. */
const placeOf = (prefix: string) => prefix.replace(/^'|'?!$/g, '').replaceAll("''", "'");

/** True if a name may be one of another workbook: [Book.xlsx]Sheet!name, Book.xlsx!name. */
function isForeign(prefix: string, book: string): boolean {
  const place = placeOf(prefix);
  const [, named = place] = /\[([^\]]*)\]/.exec(place) ?? [];
  return /[[\].\\/]/.test(place) && named.toLowerCase() !== book.toLowerCase();
}

/**
 * True if cells are those of a workbook that is told by where it lies: '/Users/me/[Book.xlsx]Sheet'!,
 * 'https://…/[Book.xlsx]Sheet'!. One that is open is told by its name alone.
 */
function isElsewhere(prefix: string): boolean {
  const place = placeOf(prefix);
  return /[\\/]/.test(place) || place.indexOf('[') > 0;
}

type Meanings = { book: string; byName: Map<string, Json[]> };

/**
 * What an expression calls that is not known to be harmless, the cells that it has elsewhere, and the
 * names that it uses.
 */
type Reach = {
  calls?: string;
  elsewhere?: string;
  names: { name: string; prefix: string }[];
};

type Bound = ReadonlySet<string>;

function isReaching({ prefix, name }: NodeOf<'call'>): boolean {
  const trait = prefix === '' ? traitOf(name) : 'unknown';
  return trait === 'reaching' || trait === 'unknown';
}

/** Each part with the names that LET and LAMBDA give a value to where it stands. */
function withBound(node: Node, bound: Bound): [Node, Bound][] {
  const which = node.kind === 'call' && node.prefix === '' ? plainName(node.name) : '';
  if (node.kind !== 'call' || (which !== 'LET' && which !== 'LAMBDA')) {
    return children(node).map((part) => [part, bound]);
  }
  let inside = bound;
  return node.args.map((part, i) => {
    const here = inside;
    // A name of LET counts only behind its own value.
    const named = which === 'LET' ? node.args[i - 1] : part;
    if (named?.kind === 'parameter') inside = new Set(inside).add(plainName(named.name));
    return [part, here];
  });
}

function reachOf(expression: string): Reach {
  const reach: Reach = { names: [] };
  const { root } = parse(`=${expression.replace(/^\s*=/, '')}`);
  const waiting: [Node, Bound][] = [[root, new Set()]];
  for (let next = waiting.pop(); next; next = waiting.pop()) {
    const [node, bound] = next;
    waiting.push(...withBound(node, bound).reverse());
    const isBound =
      (node.kind === 'name' || node.kind === 'call') &&
      node.prefix === '' &&
      bound.has(plainName(node.name));
    switch (node.kind) {
      case 'name':
        if (!isBound) reach.names.push({ name: node.name, prefix: node.prefix });
        break;
      case 'columns':
        // What stands before them may be a name as well as a table.
        if (node.table !== '') reach.names.push({ name: node.table, prefix: node.prefix });
        if (isElsewhere(node.prefix)) reach.elsewhere ??= node.prefix;
        break;
      case 'reference':
        if (isElsewhere(node.prefix)) reach.elsewhere ??= node.prefix;
        break;
      case 'invalid':
        reach.calls ??= '?';
        break;
      case 'call':
        if (!isBound && isReaching(node)) reach.calls ??= node.name;
        break;
    }
  }
  return reach;
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

  /** Nothing is told of any where one is only for the asking. */
  async readTexts(addresses: readonly string[]): ReturnType<EvaluationQuestions['readTexts']> {
    const reason = await this.reason(addresses);
    return reason === undefined ? this.questions.readTexts(addresses) : refusal(reason);
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
      if (reach.elsewhere !== undefined) return uses(reach.elsewhere);
      waiting.push(reach);
    }
    if (waiting.every(({ names }) => names.length === 0)) return undefined;
    const told = await this.meanings();
    if (!told.ok) return 'The names of the workbook cannot be read, so only when you ask.';
    const { book, byName } = told.value;
    const seen = new Set<string>();
    for (let reach = waiting.pop(); reach; reach = waiting.pop()) {
      for (const { name, prefix } of reach.names) {
        if (isForeign(prefix, book)) return uses(prefix + name);
        const key = bare(name);
        if (seen.has(key)) continue;
        if (seen.size >= namesLimit) return 'Uses too many names, so only when you ask.';
        seen.add(key);
        // Whichever sheet's own it is: the one that reaches furthest counts.
        for (const meaning of byName.get(key) ?? []) {
          const inner: Reach =
            typeof meaning === 'string' ? reachOf(meaning) : { calls: name, names: [] };
          if (inner.calls !== undefined) {
            return runs(inner.calls === '?' ? name : inner.calls);
          }
          if (inner.elsewhere !== undefined) return uses(inner.elsewhere);
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
