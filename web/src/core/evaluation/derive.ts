// The value of IF and its relatives from the argument that they take: no question is needed for it.
// Pure.

import { plainName } from '../formula/syntax';
import type { Item } from '../outline/Item';
import { counts, type ResultOf } from './branches';
import { scalarOf, type Result } from './Result';

/** Where the arguments begin whose value may become the call's. */
const firstChoice: Record<string, number | undefined> = { IF: 1, CHOOSE: 1, IFERROR: 0, IFNA: 0 };

/** True if the item's value may be that of one of its arguments. */
export function takesArgument({ node }: Item): boolean {
  return node.kind === 'call' && firstChoice[plainName(node.name)] !== undefined;
}

export function derive(item: Item, resultOf: ResultOf): Result | undefined {
  const { node } = item;
  const begin = node.kind === 'call' ? firstChoice[plainName(node.name)] : undefined;
  if (begin === undefined || node.kind !== 'call') return undefined;
  const decider = item.children.find((child) => child.argument === 0);
  const decision = decider && resultOf(decider);
  if (!decision || decision.kind === 'array') return undefined;
  if (decision.kind === 'error' && begin === 1) return decision;
  // Of IFERROR the last argument that counts is taken.
  const taken = item.children
    .filter((child) => child.argument >= begin && counts(child, resultOf) === 'yes')
    .at(-1);
  const isWhole = begin === 1 || taken?.argument === 1 || decision.kind !== 'error';
  const result = taken && isWhole ? resultOf(taken) : undefined;
  // A blank cell becomes 0 or "" depending on who asks.
  return result?.kind === 'error' || (scalarOf(result) ?? null) !== null ? result : undefined;
}
