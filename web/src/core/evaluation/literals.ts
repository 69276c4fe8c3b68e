// Parts of a formula whose value can be read from its text.

import type { Scalar } from '../protocol/json';
import type { Node } from '../formula/syntax';
import { arrayOf, type Result } from './Result';

function numberOf(node: Node): number | undefined {
  if (node.kind === 'number') return Number(node.text);
  if (node.kind === 'group') return numberOf(node.inner);
  if (node.kind === 'unary' && node.operator !== '@') {
    const number = numberOf(node.operand);
    return number === undefined || node.operator === '+' ? number : -number;
  }
  if (node.kind === 'postfix' && node.operator === '%') {
    const number = numberOf(node.operand);
    return number === undefined ? undefined : number / 100;
  }
  return undefined;
}

function itemOf(node: Node): Scalar | undefined {
  if (node.kind === 'error') return node.text;
  if (node.kind === 'missing') return null;
  const result = literalResult(node);
  return result?.kind === 'value' ? result.value : undefined;
}

/** The value of a number, a text, a truth value, an error or an array constant. */
export function literalResult(node: Node): Result | undefined {
  switch (node.kind) {
    case 'text':
    case 'logical':
      return { kind: 'value', value: node.value };
    case 'error':
      return { kind: 'error', text: node.text.toUpperCase() };
    case 'array': {
      const rows = node.rows.map((row) => row.map(itemOf));
      const whole = rows.every(
        (row) => row.length === rows[0]?.length && row.every((item) => item !== undefined),
      );
      return whole ? arrayOf(rows as Scalar[][]) : undefined;
    }
    default: {
      const value = numberOf(node);
      return value === undefined ? undefined : { kind: 'value', value };
    }
  }
}
