// How the value of a part of a formula is come by. Pure: what to ask, not the asking.

import { type Area, cellCount, columnNumber, parseArea } from '../address/area';
import type { Node, NodeOf } from '../formula/syntax';
import { expressionFor, farText, type Expression, type Home } from './expression';
import type { Bound } from './front';
import { literalResult } from './literals';
import { readLimit } from './readPlan';
import type { Result } from './Result';
import { callOf, lookUp, scopeInLet, type Scope } from './Scope';
import { scratchPlan } from './scratchPlan';

/** Excel's evaluate takes no longer text, and fails without a word where it gets one. */
export const expressionLimit = 255;

export type Route =
  | { by: 'text'; result: Result }
  /** Cells of this workbook. */
  | { by: 'cells'; sheet: string; area: Area }
  /** Too many cells to be read: only how many there are is known. */
  | { by: 'size'; result: Result }
  /** A name or a table: most are ranges; where one is not, it is evaluated. */
  | { by: 'range'; text: string; bound?: Bound }
  | { by: 'expression'; text: string; volatile: boolean; bound?: Bound }
  /** In a workbook of its own, made and thrown away for it. */
  | { by: 'scratch'; plan: string[]; volatile: boolean }
  | { by: 'nothing'; reason: string };

/**
 * `ask`: why the user should want it first; asked without being wanted where it is missing.
 * `reaches`: because it reaches out of the workbook.
 */
export type RouteOf = { route: Route; ask?: string; reaches?: true };

/** "'My sheet'!" as a sheet of this workbook; nothing for other books and several sheets. */
export function sheetOfPrefix(prefix: string): string | undefined {
  const name = prefix.slice(0, -1);
  if (name.startsWith("'") && name.endsWith("'")) {
    const inner = name.slice(1, -1).replaceAll("''", "'");
    return /[[\]:]/.test(inner) ? undefined : inner;
  }
  return /[[\]:'#]/.test(name) || name === '' ? undefined : name;
}

function isSeveralSheets(prefix: string): boolean {
  return prefix.replace(/^'?\[[^\]]*\]/, '').includes(':');
}

function referenceRoute(node: NodeOf<'reference'>, home: Home): Route | undefined {
  if (isSeveralSheets(node.prefix)) {
    return { by: 'nothing', reason: 'Cells of several sheets have no value of their own.' };
  }
  const sheet = node.prefix === '' ? home.sheet : sheetOfPrefix(node.prefix);
  const area = parseArea(node.text);
  if (sheet === undefined || !area) return undefined;
  if (cellCount(area) <= readLimit) return { by: 'cells', sheet, area };
  const rows = area.bottom - area.top + 1;
  const cols = area.right - area.left + 1;
  return { by: 'size', result: { kind: 'array', rows, cols } };
}

function askedRoute(node: Node, scope: Scope | undefined, home: Home): RouteOf {
  const expression = expressionFor(node, scope, home);
  if ('refused' in expression) return nothing(expression.refused);
  const { text, volatile } = expression;
  if (expression.random) return nothing('Changes every calculation.');
  if (expression.unbound !== undefined) {
    return nothing(`Depends on the call that gives “${expression.unbound}” its value.`);
  }
  const reaching = expression.reaching;
  const ask =
    reaching === undefined
      ? {}
      : ({ ask: runs(reaching), reaches: true } satisfies Partial<RouteOf>);
  if (text.length <= expressionLimit) {
    const isName = node.kind === 'name' || (node.kind === 'columns' && !text.startsWith('INDEX('));
    const at = expression.ofFront === 'no' ? {} : { bound: boundOf(node, scope, home, expression) };
    const route: Route = isName
      ? { by: 'range', text, ...at }
      : { by: 'expression', text, volatile, ...at };
    return { route, ...ask };
  }
  const plan = scratchPlan(node, scope, home);
  if (!plan) return nothing('Too long to be asked for alone.');
  const route: Route = { by: 'scratch', plan, volatile };
  return { route, ask: 'Long: worked out in a scratch workbook when you ask.', ...ask };
}

/** Why a function is called only when the user asks. */
export function runs(name: string): string {
  return `Runs “${name}”, so only when you ask.`;
}

function boundOf(node: Node, scope: Scope | undefined, home: Home, { ofFront }: Expression): Bound {
  const far = farText(node, scope, home, ofFront);
  return { home, far: far !== undefined && far.length <= expressionLimit ? far : undefined };
}

function nothing(reason: string): RouteOf {
  return { route: { by: 'nothing', reason } };
}

export function routeOf(node: Node, scope: Scope | undefined, home: Home): RouteOf {
  const literal = literalResult(node);
  if (literal) return { route: { by: 'text', result: literal } };
  switch (node.kind) {
    case 'group':
      return routeOf(node.inner, scope, home);
    case 'reference': {
      const route = referenceRoute(node, home);
      return route ? { route } : askedRoute(node, scope, home);
    }
    case 'name': {
      const entry = node.prefix === '' ? lookUp(scope, node.name) : undefined;
      if (entry?.bound) return routeOf(entry.bound, entry.boundIn, home);
      return askedRoute(node, scope, home);
    }
    case 'call': {
      if (callOf(node, 'LAMBDA')) return { route: { by: 'text', result: { kind: 'function' } } };
      const body = callOf(node, 'LET') && node.args.length % 2 === 1 ? node.args.at(-1) : undefined;
      if (body) return routeOf(body, scopeInLet(node.args, node.args.length, scope), home);
      return askedRoute(node, scope, home);
    }
    case 'binary':
      if (node.operator === ',') return nothing('Several areas have no value of their own.');
      return askedRoute(node, scope, home);
    default:
      return askedRoute(node, scope, home);
  }
}

/** The cells that a part of a formula names, for reading, marking and going there. */
export type Target = { sheet: string; address: string; area: Area };

export function targetOf(node: Node, scope: Scope | undefined, home: Home): Target | undefined {
  if (node.kind === 'group') return targetOf(node.inner, scope, home);
  if (node.kind === 'name' && node.prefix === '') {
    const entry = lookUp(scope, node.name);
    return entry?.bound && targetOf(entry.bound, entry.boundIn, home);
  }
  if (node.kind !== 'reference') return undefined;
  const sheet = node.prefix === '' ? home.sheet : sheetOfPrefix(node.prefix);
  const area = parseArea(node.text);
  if (sheet === undefined || !area) return undefined;
  return { sheet, address: node.text.replaceAll('$', '').toUpperCase(), area };
}

/** A cell's row and column from its address, "F12" or "$F$12". */
export function positionOf(address: string): { row: number; col: number } | undefined {
  const [, letters, digits] = /^\$?([A-Z]{1,3})\$?(\d+)$/i.exec(address) ?? [];
  if (letters === undefined) return undefined;
  return { row: Number(digits), col: columnNumber(letters.toUpperCase()) };
}
