// A part of a formula that is too long to be asked for at once, as a chain of shorter formulas, one
// to a cell of column A in a scratch workbook. Only what cannot change its meaning by standing in a
// cell of its own is cut out: results of arithmetic, never references or what may give them. Pure.

import { print } from '../formula/print';
import { mayGiveCells } from '../formula/functions';
import type { Node } from '../formula/syntax';
import { expressionFor, type Home } from './expression';
import type { Scope } from './Scope';

const entryLimit = 254;
const entriesLimit = 40;
/** Longer than all entries together, or nested so deeply, there is no such chain. */
const textLimit = entryLimit * entriesLimit;
const depthLimit = 100;

const arithmetic: ReadonlySet<string> = new Set(['+', '-', '*', '/', '^']);
const comparing: ReadonlySet<string> = new Set(['=', '<>', '<', '<=', '>', '>=', '&']);

function bare(node: Node): Node {
  return node.kind === 'group' ? bare(node.inner) : node;
}

function isArithmetic(node: Node): boolean {
  const at = bare(node);
  return at.kind === 'binary' && arithmetic.has(at.operator);
}

/** The parts of `node` that may stand in a cell of their own. */
function cuttable(node: Node): Node[] {
  const at = bare(node);
  if (at.kind === 'binary' && (arithmetic.has(at.operator) || comparing.has(at.operator))) {
    return [at.left, at.right].filter((side) => {
      const one = bare(side);
      if (one.kind === 'call') return !mayGiveCells(one.name);
      return one.kind === 'binary' && (arithmetic.has(one.operator) || comparing.has(one.operator));
    });
  }
  if (at.kind === 'unary') return cuttable(at.operand);
  if (at.kind !== 'call') return [];
  return at.args.flatMap((arg) => (isArithmetic(arg) ? [arg] : cuttable(arg)));
}

class Planner {
  readonly entries: string[] = [];
  private readonly placed = new Map<Node, string>();

  constructor(
    private readonly scope: Scope | undefined,
    private readonly home: Home,
  ) {}

  /** Puts `node` into a cell; false where it cannot be cut short enough. */
  place(node: Node, depth = 0): boolean {
    if (depth > depthLimit) return false;
    let text = this.textOf(node);
    const parts = cuttable(node).sort((a, b) => b.end - b.start - (a.end - a.start));
    for (const part of parts) {
      if (text === undefined || text.length <= entryLimit) break;
      if (!this.place(part, depth + 1)) continue;
      text = this.textOf(node);
    }
    if (text === undefined || text.length > entryLimit) return false;
    if (this.entries.length >= entriesLimit) return false;
    this.entries.push(text);
    this.placed.set(node, `A${String(this.entries.length)}`);
    return true;
  }

  private textOf(node: Node): string | undefined {
    const expression = expressionFor(node, this.scope, this.home, (part) => this.placed.get(part));
    return 'refused' in expression ? undefined : expression.text;
  }
}

/** The entries, the last of which gives the value; nothing where there is no such chain. */
export function scratchPlan(
  node: Node,
  scope: Scope | undefined,
  home: Home,
): string[] | undefined {
  // A name or INDIRECT may mean something else when it is read from another workbook.
  if (home.book === undefined || /\bINDIRECT\s*\(/i.test(print(node))) return undefined;
  if (node.end - node.start > textLimit) return undefined;
  const planner = new Planner(scope, { ...home, outside: true });
  return planner.place(node) ? planner.entries : undefined;
}
