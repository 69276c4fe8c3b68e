// Which arguments of IF and its relatives count, from what the others gave. Pure.

import { plainName } from '../formula/syntax';
import type { Item } from '../outline/Item';
import type { Scalar } from '../protocol/json';
import { literalResult } from './literals';
import type { Result } from './Result';

/** "open": not decided yet, because what decides is not known. */
export type Counts = 'yes' | 'no' | 'open';

export type ResultOf = (item: Item) => Result | undefined;

type Given = Result | undefined;

function truthOf(result: Given): boolean | 'open' | 'error' | 'both' {
  if (!result) return 'open';
  if (result.kind === 'array') return 'both';
  if (result.kind !== 'value' || typeof result.value === 'string') return 'error';
  return result.value === null ? false : Boolean(result.value);
}

function equal(one: Scalar, other: Scalar): boolean {
  if (typeof one === 'string' && typeof other === 'string') {
    return one.toLowerCase() === other.toLowerCase();
  }
  return one === other;
}

function inIf(at: number, given: (index: number) => Given): Counts {
  if (at === 0) return 'yes';
  const truth = truthOf(given(0));
  if (truth === 'open') return 'open';
  if (truth === 'error') return 'no';
  return truth === 'both' || truth === (at === 1) ? 'yes' : 'no';
}

function inIfs(at: number, given: (index: number) => Given): Counts {
  for (let test = 0; test <= at; test += 2) {
    if (test === at) return 'yes';
    const truth = truthOf(given(test));
    if (truth === 'open') return 'open';
    if (truth === 'both') continue;
    if (test + 1 === at) return truth === true ? 'yes' : 'no';
    if (truth !== false) return 'no';
  }
  return 'yes';
}

function inSwitch(at: number, count: number, given: (index: number) => Given): Counts {
  const of = given(0);
  if (at === 0) return 'yes';
  if (!of) return 'open';
  if (of.kind === 'array') return 'yes';
  if (of.kind !== 'value') return 'no';
  const hasElse = count % 2 === 0;
  for (let test = 1; test <= at; test += 2) {
    if (test === at) return 'yes';
    if (hasElse && test === count - 1) return 'yes';
    const item = given(test);
    if (!item) return 'open';
    if (item.kind === 'array') continue;
    const matches = item.kind === 'value' && equal(item.value, of.value);
    if (test + 1 === at) return matches ? 'yes' : 'no';
    if (matches) return 'no';
  }
  return 'yes';
}

function inChoose(at: number, given: (index: number) => Given): Counts {
  const index = given(0);
  if (at === 0) return 'yes';
  if (!index) return 'open';
  if (index.kind === 'array') return 'yes';
  const number = index.kind === 'value' ? Number(index.value) : NaN;
  return Math.floor(number) === at ? 'yes' : 'no';
}

function inIfError(at: number, errors: RegExp, given: (index: number) => Given): Counts {
  const value = given(0);
  if (at === 0) return 'yes';
  if (!value) return 'open';
  if (value.kind === 'array') return 'yes';
  return value.kind === 'error' && errors.test(value.text) ? 'yes' : 'no';
}

/** True if `item` counts for the part above it. */
function countsForParent(item: Item, resultOf: ResultOf): Counts {
  const { parent, argument } = item;
  if (!parent || argument < 0 || parent.node.kind !== 'call') return 'yes';
  const { args, name } = parent.node;
  const given = (index: number): Given => {
    const listed = parent.children.find((child) => child.argument === index);
    const node = args[index];
    return (node && literalResult(node)) ?? (listed && resultOf(listed));
  };
  switch (plainName(name)) {
    case 'IF':
      return inIf(argument, given);
    case 'IFS':
      return inIfs(argument, given);
    case 'SWITCH':
      return inSwitch(argument, args.length, given);
    case 'CHOOSE':
      return inChoose(argument, given);
    case 'IFERROR':
      return inIfError(argument, /./, given);
    case 'IFNA':
      return inIfError(argument, /^#N\/A$/, given);
    default:
      return 'yes';
  }
}

/** True if `item` counts for the whole formula. */
export function counts(item: Item, resultOf: ResultOf): Counts {
  let answer: Counts = 'yes';
  for (let at: Item | undefined = item; at; at = at.parent) {
    const here = countsForParent(at, resultOf);
    if (here === 'no') return 'no';
    if (here === 'open') answer = 'open';
  }
  return answer;
}

/** The items that decide whether `item` counts and are not known, outermost first. */
export function deciders(item: Item, resultOf: ResultOf): Item[] {
  const path: Item[] = [];
  for (let at: Item | undefined = item; at; at = at.parent) path.unshift(at);
  for (const at of path) {
    if (countsForParent(at, resultOf) !== 'open') continue;
    const siblings = at.parent?.children ?? [];
    return siblings.filter(
      (other) =>
        other.argument < at.argument && !resultOf(other) && counts(other, resultOf) === 'yes',
    );
  }
  return [];
}
