// The names that LET and LAMBDA give, as seen from one place in a formula.

import { plainName, type Node, type NodeOf } from '../formula/syntax';

/** One name and what it stands for; the innermost comes first. */
export type Scope = {
  name: string;
  /** Nothing for a parameter that only a call gives a value to. */
  bound: Node | undefined;
  /** What the names inside `bound` mean. */
  boundIn: Scope | undefined;
  outer: Scope | undefined;
};

export function lookUp(scope: Scope | undefined, name: string): Scope | undefined {
  const plain = plainName(name);
  for (let at = scope; at; at = at.outer) if (at.name === plain) return at;
  return undefined;
}

function bind(
  outer: Scope | undefined,
  parameter: Node | undefined,
  bound: Node | undefined,
  boundIn: Scope | undefined,
): Scope | undefined {
  if (parameter?.kind !== 'parameter') return outer;
  return { name: plainName(parameter.name), bound, boundIn, outer };
}

/** What the names mean to the argument at `index` of LET(name, value, …, result). */
export function scopeInLet(args: readonly Node[], index: number, outer: Scope | undefined) {
  let scope = outer;
  for (let i = 0; i + 1 < args.length && i + 1 < index; i += 2) {
    scope = bind(scope, args[i], args[i + 1], scope);
  }
  return scope;
}

/** What they mean to the body of a LAMBDA that is called with `given`, or is not called at all. */
export function scopeInLambda(
  args: readonly Node[],
  outer: Scope | undefined,
  given?: { args: readonly Node[]; scope: Scope | undefined },
): Scope | undefined {
  let scope = outer;
  args.slice(0, -1).forEach((parameter, i) => {
    const value = given?.args[i];
    scope = bind(scope, parameter, value?.kind === 'missing' ? undefined : value, given?.scope);
  });
  return scope;
}

/** The node as a call of that function; nothing when it is none. */
export function callOf(node: Node | undefined, name: string): NodeOf<'call'> | undefined {
  if (node?.kind !== 'call' || node.prefix !== '') return undefined;
  return plainName(node.name) === name ? node : undefined;
}

/** The LAMBDA that a call runs, and the scope it was written in; nothing for any other call. */
export function lambdaCalled(
  node: NodeOf<'call' | 'apply'>,
  scope: Scope | undefined,
): { lambda: NodeOf<'call'>; scope: Scope | undefined } | undefined {
  if (node.kind === 'apply') {
    const callee = node.callee.kind === 'group' ? node.callee.inner : node.callee;
    const lambda = callOf(callee, 'LAMBDA');
    return lambda && { lambda, scope };
  }
  const entry = node.prefix === '' ? lookUp(scope, node.name) : undefined;
  const lambda = callOf(entry?.bound, 'LAMBDA');
  return entry && lambda && { lambda, scope: entry.boundIn };
}
