// Numbers written into formulas: a rate, a price, a threshold that nobody finds who looks through the
// inputs. One clue for a number that has to be changed in several formulas of a sheet, one for all the
// other numbers of the sheet together.

import { areaAddress, cellCount, type Area } from '../address/area';
import { count } from '../format/words';
import { formulaInFirst } from '../formula/relative';
import { children, type Node } from '../formula/syntax';
import { atATime, cut, type Evidence } from './Evidence';
import type { Clue } from './Finding';
import { isData } from './shape';

/** Numbers that stand for themselves: nothing, one, halves to quarters, months, hours, days. */
const plain = new Set([0, 1, 2, 3, 4, 7, 12, 24, 52, 60, 360, 365, 3_600]);
/** Where a number may stand, behind an operator; after "[" it is a distance. */
const candidate = /(?:[+*/^(,;<>=]|(?<!\[)-)\s*\.?\d/;
const operators = new Set(['+', '-', '*', '/', '^', '<', '>', '<=', '>=', '=', '<>']);
/** So many numbers of a sheet are told one by one. */
const toldNumbers = 8;

type Use = { formula: number; area: Area };

export function* insideClues(evidence: Evidence): Generator<undefined, Clue[]> {
  const { index } = evidence;
  const sheets = new Map<number, Map<number, Use[]>>();
  const known = new Map<number, readonly number[]>();
  for (let region = 0; region < index.regionCount; region++) {
    if (region % atATime === 0) yield undefined;
    const sheet = index.sheetOf(region);
    if (evidence.isIrregular(sheet)) continue;
    const formula = index.formulaOf(region);
    let numbers = known.get(formula);
    if (!numbers) known.set(formula, (numbers = numbersIn(evidence, formula)));
    for (const number of numbers) {
      const uses = sheets.get(sheet) ?? new Map<number, Use[]>();
      sheets.set(sheet, uses);
      const use = { formula, area: index.areaOf(region) };
      const own = uses.get(number);
      if (own) own.push(use);
      else uses.set(number, [use]);
    }
  }
  return [...sheets].flatMap(([sheet, uses]) => onSheet(evidence, sheet, uses));
}

const none: readonly number[] = [];

/** The numbers that a formula calculates or compares with, each once. */
function numbersIn(evidence: Evidence, formula: number): readonly number[] {
  if (!candidate.test(evidence.text(formula))) return none;
  const shape = evidence.shapes.of(formula);
  if (isData(shape)) return none;
  const numbers = new Set<number>();
  const stack: { node: Node; isOperand: boolean }[] = [{ node: shape.root, isOperand: false }];
  for (let next = stack.pop(); next; next = stack.pop()) {
    const { node, isOperand } = next;
    if (node.kind === 'number' && isOperand && !isPlain(Number(node.text)))
      numbers.add(Number(node.text));
    const isThrough = node.kind === 'group' || node.kind === 'unary' || node.kind === 'postfix';
    const isOperation = node.kind === 'binary' && operators.has(node.operator);
    for (const child of children(node))
      stack.push({ node: child, isOperand: isOperation || (isThrough && isOperand) });
  }
  return [...numbers];
}

/** Also powers of ten, which change the unit. */
function isPlain(number: number): boolean {
  return plain.has(number) || Number.isInteger(Math.log10(number));
}

function onSheet(evidence: Evidence, sheet: number, uses: ReadonlyMap<number, Use[]>): Clue[] {
  const isRepeated = ([, own]: [number, Use[]]) => new Set(own.map((use) => use.formula)).size > 1;
  const all = [...uses].sort(([, a], [, b]) => b.length - a.length);
  const repeated = all.filter(isRepeated).slice(0, toldNumbers);
  const rest = all.filter((one) => !repeated.includes(one));
  const clues = repeated.map(([number, own]): Clue => {
    const formulas = new Set(own.map((use) => use.formula)).size;
    return {
      ...shared(sheet, own),
      sentence: `${String(number)} is written into ${count(formulas, 'different formula')} of the sheet (${exampleOf(evidence, own)}); to change it, each of them has to be found.`,
      weight: 1 + Math.min(1, Math.log2(formulas) / 6),
    };
  });
  if (rest.length === 0) return clues;
  const own = rest.flatMap(([, some]) => some);
  const numbers = rest.slice(0, 5).map(([number]) => String(number));
  const more = rest.length - numbers.length;
  const told = numbers.join(', ') + (more > 0 ? ` and ${count(more, 'other number')}` : '');
  const sentence = `${told} ${rest.length === 1 ? 'is' : 'are'} written into formulas of the sheet and ${rest.length === 1 ? 'stands' : 'stand'} in no cell of ${rest.length === 1 ? 'its' : 'their'} own: ${exampleOf(evidence, own)}.`;
  return [...clues, { ...shared(sheet, own), sentence, weight: 0.9 }];
}

function exampleOf(evidence: Evidence, uses: readonly Use[]): string {
  const [{ formula, area }] = uses as [Use];
  const more = uses.reduce((sum, use) => sum + cellCount(use.area), -cellCount(area));
  const others = more > 0 ? ` and ${count(more, 'other cell')}` : '';
  return `${areaAddress(area)}${others}, ${cut(formulaInFirst(evidence.text(formula), area))}`;
}

function shared(sheet: number, uses: readonly Use[]) {
  const areas = [...new Map(uses.map(({ area }) => [areaAddress(area), area])).values()];
  return { kind: 'inside' as const, sheet, areas, expected: '', level: 'style' as const };
}
