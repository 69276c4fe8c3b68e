// Which operators there are, how strongly they bind, and behind what they may stand.

import type { Node } from './syntax';

/** How strongly operators bind, weakest first. */
export const enum Binding {
  None,
  Comparison,
  Join,
  Sum,
  Product,
  Power,
  Percent,
  Sign,
  Union,
  Intersection,
  Range,
  Spill,
}

export const binaryBindings: Record<string, Binding | undefined> = {
  '=': Binding.Comparison,
  '<>': Binding.Comparison,
  '<': Binding.Comparison,
  '<=': Binding.Comparison,
  '>': Binding.Comparison,
  '>=': Binding.Comparison,
  '&': Binding.Join,
  '+': Binding.Sum,
  '-': Binding.Sum,
  '*': Binding.Product,
  '/': Binding.Product,
  '^': Binding.Power,
  ':': Binding.Range,
};

/** True if the value may be cells, so that what follows it after a space crosses them. */
export function mayRefer(node: Node): boolean {
  switch (node.kind) {
    case 'reference':
    case 'name':
    case 'columns':
    case 'call':
    case 'apply':
    case 'group':
    case 'error':
      return true;
    case 'binary':
      return node.operator === ',' || node.operator === ' ' || node.operator === ':';
    case 'unary':
      return node.operator === '@';
    case 'postfix':
      return node.operator === '#';
    default:
      return false;
  }
}

export function mayBeCalled(node: Node): boolean {
  return node.kind === 'call' || node.kind === 'apply' || node.kind === 'group';
}
