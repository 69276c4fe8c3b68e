// A relative formula taken apart: what stays when its references and constants are taken out, and
// these in the order of the text. Two formulas with one skeleton are the same sum over other cells.

import { parse } from '../formula/Parser';
import { print } from '../formula/print';
import { readReference, type Coordinate, type ReferenceShape } from '../formula/reference';
import { plainName, walk, type Node, type NodeOf } from '../formula/syntax';
import type { Texts } from '../model/SheetCells';

export type ReferenceSlot = {
  kind: 'reference';
  prefix: string;
  text: string;
  shape: ReferenceShape;
};
export type Slot =
  ReferenceSlot | { kind: 'number'; text: string } | { kind: 'text'; text: string };

export type Shape = {
  root: Node;
  /** Functions, operators and names, with a mark for each slot. */
  skeleton: string;
  slots: Slot[];
  /** The functions that are called, in capitals, in the order of the text. */
  functions: string[];
};

function slotOf(node: Node): Slot | undefined {
  switch (node.kind) {
    case 'number':
      return { kind: 'number', text: node.text };
    case 'text':
      return { kind: 'text', text: node.value };
    case 'reference': {
      const shape = readReference(node.text, 'r1c1');
      return shape && { kind: 'reference', prefix: node.prefix, text: node.text, shape };
    }
    default:
      return undefined;
  }
}

export function shapeOf(text: string): Shape {
  const { root } = parse(text, 'r1c1');
  const slots: Slot[] = [];
  const functions: string[] = [];
  walk(root, (node) => {
    const slot = slotOf(node);
    if (slot) slots.push(slot);
    if (node.kind === 'call') functions.push(plainName(node.name));
  });
  const marks = { reference: '§', number: '#', text: '"' };
  const replace = (node: Node): string | undefined => {
    const slot = slotOf(node);
    return slot && marks[slot.kind];
  };
  return { root, skeleton: print(root, { replace }), slots, functions };
}

/** A formula of constants alone: "=1/3.6", "=1600*12". */
export function isData({ slots, skeleton }: Shape): boolean {
  return !slots.some(({ kind }) => kind === 'reference') && !/[a-z]/i.test(skeleton);
}

/** Shapes of the model's formulas, each made when it is first asked for. */
export class Shapes {
  private readonly known: (Shape | undefined)[] = [];

  constructor(private readonly formulas: Texts) {}

  of(formula: number): Shape {
    return (this.known[formula] ??= shapeOf(this.formulas.at(formula)));
  }
}

/** The corners of a reference, the end the same as the beginning for a single cell. */
export function corners({ shape }: ReferenceSlot): (Coordinate | undefined)[] {
  const to = shape.to ?? shape.from;
  return [shape.from.row, shape.from.col, to.row, to.col];
}

/** The references that are arguments of a call, groups around them taken off. */
export function referenceArguments(call: NodeOf<'call'>): (NodeOf<'reference'> | undefined)[] {
  return call.args.map((arg) => {
    let node = arg;
    while (node.kind === 'group') node = node.inner;
    return node.kind === 'reference' ? node : undefined;
  });
}
