// The cell that a part of a formula leads to: read off a reference, asked for where a name, a table
// or a function like INDEX gives cells.

import { addressOf, expressionFor, farText, type Home } from '../evaluation/expression';
import { toldOf, type FrontQuestions } from '../evaluation/front';
import { expressionLimit, targetOf } from '../evaluation/routes';
import { plainName, type Node } from '../formula/syntax';
import type { Item } from '../outline/Item';
import type { Json } from '../protocol/json';
import type { Outcome } from '../protocol/Outcome';
import { placeOf } from '../workbook/places';

export type Lead = { sheet: string; address: string };

/** Functions whose result is cells somewhere else, which is why one calls them. */
const giveCells: ReadonlySet<string> = new Set(['INDEX', 'OFFSET', 'INDIRECT', 'XLOOKUP']);

function mayLead(node: Node): boolean {
  switch (node.kind) {
    case 'name':
    case 'columns':
      return true;
    case 'call':
      return node.prefix === '' && giveCells.has(plainName(node.name));
    case 'binary':
      return node.operator === ':' || node.operator === ' ';
    default:
      return false;
  }
}

/** True if Enter may lead somewhere from here. */
export function leads(item: Item, home: Home): boolean {
  return targetOf(item.node, item.scope, home) !== undefined || mayLead(item.node);
}

const questionOf = (cells: string) => `CELL("address",${cells})`;

export async function leadOf(
  item: Item,
  home: Home,
  questions: FrontQuestions & { evaluate(expression: string): Promise<Outcome<Json>> },
): Promise<Lead | undefined> {
  const target = targetOf(item.node, item.scope, home);
  if (target) {
    const { sheet, area } = target;
    return { sheet, address: addressOf(area.top, area.left) };
  }
  if (!mayLead(item.node)) return undefined;
  const expression = expressionFor(item.node, item.scope, home);
  if ('refused' in expression || expression.reaching !== undefined || expression.unbound) {
    return undefined;
  }
  const question = questionOf(expression.text);
  if (question.length > expressionLimit) return undefined;
  const far = farText(item.node, item.scope, home, expression.ofFront);
  const bound = { home, far: far === undefined ? undefined : questionOf(far) };
  const told = await toldOf(bound, question, questions, (text) => questions.evaluate(text));
  const { answer, front } = told ?? {};
  const place = answer?.ok && typeof answer.value === 'string' ? placeOf(answer.value) : undefined;
  return place && { sheet: place.sheet ?? front ?? home.sheet, address: place.first };
}
