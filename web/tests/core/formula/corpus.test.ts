// Thousands of formulas as people wrote them. The folder stands beside the project, or where
// QUORIN_FORMULAS says; without it these tests are skipped, and say so.

import { existsSync, readFileSync } from 'node:fs';
import { fileURLToPath } from 'node:url';

import { parse as parseTokens, tokenize } from '@borgar/fx';
import { describe, expect, test } from 'vitest';

import { parse } from '../../../src/core/formula/Parser';
import { print, printInStyle } from '../../../src/core/formula/print';
import { walk, type Node } from '../../../src/core/formula/syntax';
import { shape } from './shape';

const folder =
  process.env.QUORIN_FORMULAS ??
  fileURLToPath(new URL('../../../../../shared/formulas', import.meta.url));
const present = existsSync(`${folder}/formulas.txt`);
if (!present) console.warn(`skipped: there is no formulas.txt in ${folder} (QUORIN_FORMULAS)`);

function lines(name: string): string[] {
  return readFileSync(`${folder}/${name}`, 'utf8')
    .split('\n')
    .filter((line) => line !== '');
}

const formulas = present
  ? [
      ...lines('formulas.txt'),
      ...lines('formulas-multiline.jsonl').map((line) => JSON.parse(line) as string),
    ]
  : [];

/** The other parser's tree in our words; it keeps no parentheses and joins signs to numbers. */
function otherShape(node: unknown): string {
  if (node === null) return '_';
  const it = node as Record<string, unknown> & { arguments: unknown[] };
  const list = (items: unknown[]) => items.map((item) => ` ${otherShape(item)}`).join('');
  const operator = { ' ': 'cross', ',': 'union' }[String(it.operator)] ?? String(it.operator);
  switch (it.type) {
    case 'Literal': {
      if (typeof it.value === 'string') return JSON.stringify(it.value);
      if (typeof it.value === 'boolean') return it.value ? 'TRUE' : 'FALSE';
      const raw = String(it.raw);
      return raw.startsWith('-') ? `(- ${raw.slice(1)})` : raw;
    }
    case 'ErrorLiteral':
    case 'ReferenceIdentifier':
      return String(it.value);
    case 'UnaryExpression': {
      const operand = otherShape(it.arguments[0]);
      return operator === '%' || operator === '#'
        ? `(${operand} ${operator})`
        : `(${operator} ${operand})`;
    }
    case 'BinaryExpression':
      return `(${operator}${list(it.arguments)})`;
    case 'CallExpression': {
      const callee = it.callee as Record<string, unknown>;
      if (callee.type === 'Identifier') return `(${String(callee.name)}${list(it.arguments)})`;
      return `(apply ${otherShape(callee)}${list(it.arguments)})`;
    }
    case 'ArrayExpression':
      return `{${(it.elements as unknown[][]).map((row) => list(row).trim()).join(' | ')}}`;
    case 'LetExpression': {
      const given = it.declarations as { id: { name: string }; init: unknown }[];
      const pairs = given.map(({ id, init }) => ` <${id.name}> ${otherShape(init)}`).join('');
      return `(LET${pairs} ${otherShape(it.body)})`;
    }
    case 'LambdaExpression': {
      const params = (it.params as { name: string }[]).map(({ name }) => ` <${name}>`).join('');
      return `(LAMBDA${params} ${otherShape(it.body)})`;
    }
    default:
      return `unknown ${String(it.type)}`;
  }
}

/** What the other parser does not read, and why. */
const beyondTheOther = [
  /'!#REF!/, // an error text behind a sheet
  /\[\d+\]!/, // a book by its number, without a sheet
  /^\['file:/, // a book in quotes within the brackets
  /Table9\[Totals '\[/, // brackets hidden by apostrophes in a column's name
  /^L\d+-\(-4,3\)$/, // no formula: a decimal comma
];

/** Our shape without what the other parser does not keep. */
function comparable(text: string): string {
  return shape(parse(text).root)
    .replace(/(<[^<>?]*)\?>/g, '$1>')
    .replace(/[[\]](?=(?:[^"]|"(?:[^"\\]|\\.)*")*$)/g, '');
}

function other(text: string): string | undefined {
  try {
    return otherShape(parseTokens(tokenize(`=${text}`, { withLocation: false }))).replace(
      /[[\]](?=(?:[^"]|"(?:[^"\\]|\\.)*")*$)/g,
      '',
    );
  } catch {
    return undefined;
  }
}

describe.skipIf(!present)('of the formulas people wrote', () => {
  test('at least 99.9 % are read without a problem', () => {
    const unread = formulas.filter((text) => parse(text).problems.length > 0);
    // All that is left are texts that are no formulas: "L12-(-4,3)", a decimal comma.
    expect(unread.filter((text) => !/^L\d+-\(-4,3\)$/.test(text))).toEqual([]);
    expect(unread.length / formulas.length).toBeLessThan(0.001);
  });

  test('every span, read alone, gives the same node', () => {
    const wrong: string[] = [];
    let checked = 0;
    for (const text of formulas) {
      walk(parse(text).root, (node: Node) => {
        if (node.kind === 'missing' || node.kind === 'parameter' || node.kind === 'invalid') return;
        checked++;
        const alone = text.slice(node.start, node.end);
        if (shape(parse(alone).root) !== shape(node)) wrong.push(`${alone} in ${text}`);
      });
    }
    expect(checked).toBeGreaterThan(40_000);
    expect(wrong.filter((text) => !/L\d+-\(-4,3\)$/.test(text))).toEqual([]);
  });

  test.each([',', ';'] as const)('printed with "%s" read the same again', (separator) => {
    const wrong = formulas.filter((text) => {
      const { root } = parse(text);
      return shape(parse(print(root, { separator })).root) !== shape(root);
    });
    expect(wrong).toEqual([]);
  });

  test('in R1C1 come back to A1 as they were', () => {
    const origin = { row: 100, col: 30 };
    const wrong = formulas.filter((text) => {
      const formula = parse(text);
      if (formula.problems.length > 0) return false;
      const r1c1 = parse(printInStyle(formula, 'r1c1', origin), 'r1c1');
      const back = printInStyle(r1c1, 'a1', origin);
      return r1c1.problems.length > 0 || back.toUpperCase() !== print(formula.root).toUpperCase();
    });
    expect(wrong).toEqual([]);
  });

  test('mean to another parser what they mean to ours', () => {
    const differing: string[] = [];
    let compared = 0;
    for (const written of formulas) {
      // It knows LET and LAMBDA only without what files put before them.
      const text = written.replace(/_xlfn\.(LET|LAMBDA)\(/g, '$1(');
      const theirs = other(text);
      if (theirs === undefined) {
        if (!beyondTheOther.some((reason) => reason.test(text))) differing.push(`${text}: unread`);
        continue;
      }
      compared++;
      const ours = comparable(text);
      if (ours !== theirs) differing.push(`${text}\n  ours   ${ours}\n  theirs ${theirs}`);
    }
    expect(compared).toBeGreaterThan(9_000);
    expect(differing.length, differing.slice(0, 10).join('\n')).toBe(0);
  });
});
