// A formula as the page lists it: one item for every part that has a value of its own. Parentheses
// are no parts, and neither are numbers and texts between operators: they are read where they stand.

import { argumentName } from '../formula/functions';
import { children, plainName, type Node, type NodeOf } from '../formula/syntax';
import { firstCall } from './firstCall';
import { callOf, lambdaCalled, scopeInLambda, scopeInLet, type Scope } from '../evaluation/Scope';

export type Item = {
  id: number;
  node: Node;
  /** What the part is to the one above it: "test", "then", "+", "rate =". */
  role: string;
  level: number;
  /** Which of the parts of the one above it, from 1 on. */
  position: number;
  /** Which argument of the call above it; -1 where it is none. */
  argument: number;
  parent: Item | undefined;
  children: Item[];
  scope: Scope | undefined;
};

export type Outline = { root: Item; items: Item[] };

/** Operators of one chain: A1-B1+C1 is a sum of three, not a sum in a sum. */
const chains: Record<string, string | undefined> = {
  '+': '+-',
  '-': '+-',
  '*': '*/',
  '/': '*/',
  '&': '&',
  ',': ',',
};

const operatorWords: Record<string, string> = {
  '*': '×',
  '/': '÷',
  '-': '−',
  ',': 'and',
  ' ': 'crossing',
};

type Part = {
  node: Node;
  role: string;
  scope: Scope | undefined;
  argument?: number;
  /** What a LAMBDA is given by the function that calls it, the first time. */
  given?: readonly Node[];
};

function bare(node: Node): Node {
  let at = node;
  while (at.kind === 'group') at = at.inner;
  return at;
}

function isRead(node: Node): boolean {
  if (node.kind === 'unary') return isRead(node.operand);
  if (node.kind === 'postfix') return node.operator === '%' && isRead(node.operand);
  return ['number', 'text', 'logical', 'missing'].includes(node.kind);
}

function chainOf(node: NodeOf<'binary'>, scope: Scope | undefined): Part[] {
  const alike = chains[node.operator];
  const parts: Part[] = [];
  let at: Node = node;
  let left: Node = node;
  while (at.kind === 'binary' && (at === node || alike?.includes(at.operator) === true)) {
    parts.push({ node: at.right, role: operatorWords[at.operator] ?? at.operator, scope });
    left = at.left;
    at = at.left;
  }
  parts.push({ node: left, role: '', scope });
  return parts.reverse().filter((part) => !isRead(part.node));
}

function partsOfLambda({ node, scope, given }: Part & { node: NodeOf<'call'> }): Part[] {
  const body = node.args.at(-1);
  if (!body) return [];
  const inner = scopeInLambda(node.args, scope, given && { args: given, scope });
  return [{ node: body, role: given ? 'gives first' : 'gives', scope: inner }];
}

function partsOfCall(part: Part & { node: NodeOf<'call'> }): Part[] {
  const { node, scope } = part;
  const { args } = node;
  const name = plainName(node.name);
  if (callOf(node, 'LET')) return partsOfLet(args, scope);
  if (callOf(node, 'LAMBDA')) return partsOfLambda(part);
  const parts = args.map((node, i): Part => ({
    node,
    role: argumentName(name, i),
    scope,
    argument: i,
  }));
  if (name === 'SWITCH' && args.length > 2 && args.length % 2 === 0) {
    parts.splice(-1, 1, { ...(parts.at(-1) as Part), role: 'else' });
  }
  const given = firstCall(node);
  const last = parts.at(-1);
  if (given && last && callOf(last.node, 'LAMBDA')) Object.assign(last, { given, role: 'each' });
  const run = lambdaCalled(node, scope);
  if (run) parts.push(bodyOf(run, args, scope));
  return parts.filter((part) => part.node.kind !== 'missing');
}

function partsOfLet(args: readonly Node[], scope: Scope | undefined): Part[] {
  const parts: Part[] = [];
  for (let i = 0; i + 1 < args.length; i += 2) {
    const parameter = args[i];
    const role = parameter?.kind === 'parameter' ? `${parameter.name} =` : '';
    parts.push({ node: args[i + 1] as Node, role, scope: scopeInLet(args, i + 1, scope) });
  }
  const body = args.length % 2 === 1 ? args.at(-1) : undefined;
  if (body) parts.push({ node: body, role: 'gives', scope: scopeInLet(args, args.length, scope) });
  return parts;
}

/** Deeper than this a LAMBDA that calls itself is not unrolled. */
const lambdaLevels = 8;

function bodyOf(
  run: { lambda: NodeOf<'call'>; scope: Scope | undefined },
  args: readonly Node[],
  scope: Scope | undefined,
): Part {
  const inner = scopeInLambda(run.lambda.args, run.scope, { args, scope });
  return { node: run.lambda.args.at(-1) as Node, role: 'gives', scope: inner };
}

function partsOf(part: Part): Part[] {
  const { node, scope } = part;
  switch (node.kind) {
    case 'binary':
      return node.operator === ':' ? [] : chainOf(node, scope);
    case 'call':
      return partsOfCall({ ...part, node });
    case 'apply': {
      const run = lambdaCalled(node, scope);
      const parts = node.args.map((arg): Part => ({ node: arg, role: '', scope }));
      return run ? [...parts, bodyOf(run, node.args, scope)] : parts;
    }
    case 'array':
      return [];
    default:
      return children(node)
        .filter((child) => !isRead(child))
        .map((child) => ({ node: child, role: '', scope }));
  }
}

/** The items of a formula, parents before their children, in the order of the text. */
export function outlineOf(root: Node): Outline {
  const items: Item[] = [];
  const add = (part: Part, parent: Item | undefined, lambdas: number): Item => {
    const node = bare(part.node);
    const { role, scope } = part;
    const level = (parent?.level ?? 0) + 1;
    const argument = part.argument ?? -1;
    const id = items.length;
    const position = (parent?.children.length ?? 0) + 1;
    const item: Item = { id, node, role, level, position, argument, parent, children: [], scope };
    items.push(item);
    const runs =
      (node.kind === 'call' || node.kind === 'apply') && lambdaCalled(node, scope) ? 1 : 0;
    if (lambdas + runs > lambdaLevels) return item;
    for (const child of partsOf({ ...part, node })) {
      item.children.push(add(child, item, lambdas + runs));
    }
    return item;
  };
  return { root: add({ node: root, role: '', scope: undefined }, undefined, 0), items };
}
