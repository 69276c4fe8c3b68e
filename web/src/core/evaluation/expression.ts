// A part of a formula as an expression that can be asked for alone: references carry their sheet,
// names of LET and LAMBDA are replaced by what they stand for, and what depends on the formula's
// own cell is written out. Pure.

import { columnLetters, qualified } from '../address/area';
import { readReference, writeReference } from '../formula/reference';
import { print } from '../formula/print';
import { traitOf } from '../formula/functions';
import { plainName, type Node, type NodeOf } from '../formula/syntax';
import { callOf, lambdaCalled, lookUp, scopeInLambda, scopeInLet, type Scope } from './Scope';

/** The cell a formula stands in. */
export type Home = {
  sheet: string;
  row: number;
  col: number;
  book?: string;
  /** The expression is asked for from another workbook: references carry their book, too. */
  outside?: boolean;
  /** Another sheet may be in front: names carry their sheet, too. */
  elsewhere?: boolean;
};

export type Expression = {
  text: string;
  /** It gives another value each time. */
  random: boolean;
  /** It may give another value without any cell having changed. */
  volatile: boolean;
  /** Asking for it does something outside of the workbook, or runs someone's program. */
  reaching: string | undefined;
  /** A parameter without a value. */
  unbound: string | undefined;
  /** It may mean something else while another sheet is in front: because of its names, or in a way
   * that cannot be written out. */
  ofFront: 'no' | 'names' | 'always';
};

/** Why a part cannot be asked for at all. */
export type Refusal = { refused: string };

/** More replacements than this make a text that no spreadsheet takes. */
const replacementLimit = 200;
const textLimit = 8_192;

class Refused extends Error {}

/** Functions that take the sheet in front where they are told none. */
const takesSheetInFront: ReadonlySet<string> = new Set(['INDIRECT', 'CELL', 'SHEET', 'INFO']);

class Writer {
  random = false;
  volatile = false;
  reaching: string | undefined;
  unbound: string | undefined;
  ofFront: Expression['ofFront'] = 'no';
  private replacements = 0;

  constructor(
    private readonly home: Home,
    private readonly placed: (node: Node) => string | undefined,
  ) {}

  write(node: Node, scope: Scope | undefined): string {
    return print(node, { replace: (part) => this.replaced(part, scope) });
  }

  private replaced(node: Node, scope: Scope | undefined): string | undefined {
    return this.placed(node) ?? this.special(node, scope);
  }

  private special(node: Node, scope: Scope | undefined): string | undefined {
    switch (node.kind) {
      case 'reference':
        return this.prefixed(node.prefix) + node.text;
      case 'name':
        return node.prefix === '' ? this.named(node, scope) : undefined;
      case 'columns':
        return this.columns(node);
      case 'unary':
        return node.operator === '@' ? this.crossed(node.operand, scope) : undefined;
      case 'invalid':
        throw new Refused('This part cannot be read.');
      case 'call':
      case 'apply':
        return this.called(node, scope);
      default:
        return undefined;
    }
  }

  private bookPrefix(): string {
    return `'${(this.home.book ?? '').replaceAll("'", "''")}'!`;
  }

  /** A reference's prefix as it is to be written. */
  private prefixed(prefix: string): string {
    const { sheet, book, outside } = this.home;
    if (prefix.includes('[')) return prefix;
    if (!outside || book === undefined) return prefix || qualified(sheet, '');
    const quoted = prefix.startsWith("'");
    const own =
      prefix === '' ? sheet.replaceAll("'", "''") : prefix.slice(quoted ? 1 : 0, quoted ? -2 : -1);
    return `'[${book.replaceAll("'", "''")}]${own}'!`;
  }

  private inlined(node: Node, scope: Scope | undefined): string {
    if (++this.replacements > replacementLimit) throw new Refused('Too long to be asked for.');
    const text = this.write(node, scope);
    if (text.length > textLimit) throw new Refused('Too long to be asked for.');
    return isAtom(node) ? text : `(${text})`;
  }

  private named(node: NodeOf<'name'>, scope: Scope | undefined): string | undefined {
    const entry = lookUp(scope, node.name);
    if (!entry) {
      if (this.home.outside) return `${this.bookPrefix()}${node.name}`;
      // A sheet may have names of its own.
      if (this.ofFront === 'no') this.ofFront = 'names';
      return this.home.elsewhere ? qualified(this.home.sheet, node.name) : undefined;
    }
    if (!entry.bound) {
      this.unbound ??= node.name;
      return undefined;
    }
    return this.inlined(entry.bound, entry.boundIn);
  }

  private called(node: NodeOf<'call' | 'apply'>, scope: Scope | undefined): string | undefined {
    const run = lambdaCalled(node, scope);
    if (run) {
      const { args } = run.lambda;
      const inner = scopeInLambda(args, run.scope, { args: node.args, scope });
      const body = args.at(-1);
      if (!body) throw new Refused('This LAMBDA has no body.');
      return this.inlined(body, inner);
    }
    if (node.kind === 'apply') return undefined;
    if (callOf(node, 'LET')) {
      const body = node.args.at(-1);
      if (!body || node.args.length % 2 === 0) throw new Refused('This LET has no result.');
      return this.inlined(body, scopeInLet(node.args, node.args.length - 1, scope));
    }
    return callOf(node, 'LAMBDA') ? this.lambda(node, scope) : this.plainCall(node);
  }

  /** A LAMBDA as it is: its own parameters have no values, and need none. */
  private lambda(node: NodeOf<'call'>, scope: Scope | undefined): string {
    const outside = this.unbound;
    const inner = scopeInLambda(node.args, scope);
    const parts = node.args.map((arg) => this.write(arg, inner));
    const own = this.unbound !== undefined && lookUp(inner, this.unbound);
    const isOwn = own && lookUp(scope, own.name) !== own;
    if (isOwn) this.unbound = outside;
    return `LAMBDA(${parts.join(',')})`;
  }

  private plainCall(node: NodeOf<'call'>): string | undefined {
    const name = plainName(node.name);
    const trait = node.prefix === '' ? traitOf(name) : 'unknown';
    if (trait === 'random') this.random = true;
    if (trait === 'volatile') this.volatile = true;
    if (trait === 'reaching' || trait === 'unknown') this.reaching ??= node.name;
    // An unknown function may be a name for a LAMBDA.
    if (trait === 'unknown' || takesSheetInFront.has(name)) this.ofFront = 'always';
    if (node.args.length > 0) return undefined;
    if (name === 'ROW') return String(this.home.row);
    if (name === 'COLUMN') return String(this.home.col);
    return undefined;
  }

  /** The one cell of a range that stands in the formula's row or column. */
  private crossed(operand: Node, scope: Scope | undefined): string {
    if (operand.kind !== 'reference') return this.write(operand, scope);
    const shape = readReference(operand.text, 'a1');
    if (!shape?.to) return this.write(operand, scope);
    const { from, to } = shape;
    const span = (start: number | undefined, end: number | undefined, at: number) =>
      start === undefined || end === undefined
        ? at
        : start === end
          ? start
          : at >= Math.min(start, end) && at <= Math.max(start, end)
            ? at
            : undefined;
    const row = span(from.row?.at, to.row?.at, this.home.row);
    const col = span(from.col?.at, to.col?.at, this.home.col);
    if (row === undefined || col === undefined) return '#VALUE!';
    const cell = writeReference(
      { from: { row: { at: row, fixed: true }, col: { at: col, fixed: true } } },
      'a1',
    );
    return this.prefixed(operand.prefix) + cell;
  }

  /** [@Column] and [#This Row] mean nothing outside of the table: counted from its first row. */
  private columns(node: NodeOf<'columns'>): string | undefined {
    const { table, text } = node;
    const thisRow = /^\[(?:@\[?|\[#This Row\],\s*\[)((?:[^[\]']|'.)*?)\]{1,2}$/i.exec(text);
    const asksRow = /^\[@|\[#This Row\]/i.test(text);
    if (table === '' && node.prefix === '') throw new Refused('The table is not named here.');
    if (!asksRow) return undefined;
    if (!thisRow?.[1]) throw new Refused('Depends on the row of the table.');
    const whole = `${node.prefix}${table}`;
    const row = `${String(this.home.row)}-MIN(ROW(${whole}))+1`;
    return `INDEX(${whole}[${thisRow[1]}],${row})`;
  }
}

function isAtom(node: Node): boolean {
  switch (node.kind) {
    case 'number':
    case 'text':
    case 'logical':
    case 'error':
    case 'reference':
    case 'columns':
    case 'group':
    case 'array':
      return true;
    case 'call':
      return !callOf(node, 'LAMBDA');
    default:
      return false;
  }
}

export function expressionFor(
  node: Node,
  scope: Scope | undefined,
  home: Home,
  /** What stands in the place of a part that was worked out before. */
  placed: (part: Node) => string | undefined = () => undefined,
): Expression | Refusal {
  const writer = new Writer(home, placed);
  try {
    const text = writer.write(node, scope);
    const { random, volatile, reaching, unbound, ofFront } = writer;
    return { text, random, volatile, reaching, unbound, ofFront };
  } catch (error) {
    if (error instanceof Refused) return { refused: error.message };
    throw error;
  }
}

/** The same in words that do not depend on the sheet in front; nothing where there are none. */
export function farText(
  node: Node,
  scope: Scope | undefined,
  home: Home,
  ofFront: Expression['ofFront'],
): string | undefined {
  if (ofFront === 'always') return undefined;
  const expression = expressionFor(node, scope, { ...home, elsewhere: true });
  return 'refused' in expression ? undefined : expression.text;
}

/** "F12" of a row and a column. */
export function addressOf(row: number, col: number): string {
  return columnLetters(col) + String(row);
}
