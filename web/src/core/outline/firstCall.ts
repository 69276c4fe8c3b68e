// MAP and its relatives call a LAMBDA again and again; what they give it the first time. That call
// stands for all of them in the tree. Pure.

import { areaAddress, parseArea } from '../address/area';
import { plainName, type Node, type NodeOf } from '../formula/syntax';

function number(text: string, { start, end }: Node): Node {
  return { kind: 'number', text, start, end };
}

/** One cell, row or column of an array: 0 stands for all. */
function element(array: Node, row: '0' | '1', col: '0' | '1'): Node {
  const { start, end } = array;
  const area = array.kind === 'reference' ? parseArea(array.text) : undefined;
  if (area && array.kind === 'reference') {
    const bottom = row === '1' ? area.top : area.bottom;
    const right = col === '1' ? area.left : area.right;
    return { ...array, text: areaAddress({ ...area, bottom, right }) };
  }
  const args = [array, number(row, array), number(col, array)];
  return { kind: 'call', prefix: '', name: 'INDEX', args, start, end };
}

/** The arguments of the first call; nothing for a function that calls no LAMBDA. */
export function firstCall({ prefix, name, args }: NodeOf<'call'>): Node[] | undefined {
  const [first, second] = args;
  if (prefix !== '' || !first || args.length < 2) return undefined;
  switch (plainName(name)) {
    case 'MAP':
      return args.slice(0, -1).map((array) => element(array, '1', '1'));
    case 'BYROW':
      return [element(first, '1', '0')];
    case 'BYCOL':
      return [element(first, '0', '1')];
    case 'REDUCE':
    case 'SCAN':
      if (!second || args.length !== 3) return undefined;
      // Without a value to begin with, the first cell is that, and the second the first to come.
      return first.kind === 'missing' ? undefined : [first, element(second, '1', '1')];
    case 'MAKEARRAY':
      return args.length === 3 ? [number('1', first), number('1', first)] : undefined;
    default:
      return undefined;
  }
}
