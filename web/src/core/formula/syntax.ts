// The parts of a formula as a tree. Every node keeps where it stands in the text it was read from;
// spans are exact: parsed alone, the text of a span gives the same node again.

import type { ReferenceStyle } from './tokens';

export type Span = { start: number; end: number };

export type BinaryOperator =
  | '='
  | '<>'
  | '<'
  | '<='
  | '>'
  | '>='
  | '&'
  | '+'
  | '-'
  | '*'
  | '/'
  | '^'
  /** Union, intersection and range: they make a reference of two. */
  | ','
  | ' '
  | ':';

/** `prefix`: book and sheet as written, with their "!"; empty where there is none. */
export type Node = Span &
  (
    | { kind: 'number'; text: string }
    | { kind: 'text'; value: string }
    | { kind: 'logical'; value: boolean }
    | { kind: 'error'; prefix: string; text: string }
    /** An argument left out. */
    | { kind: 'missing' }
    /** Cells, columns or rows, as written, in the formula's style. */
    | { kind: 'reference'; prefix: string; text: string }
    | { kind: 'name'; prefix: string; name: string }
    /** Columns of a table; `table` is empty inside the table itself. */
    | { kind: 'columns'; prefix: string; table: string; text: string }
    | { kind: 'call'; prefix: string; name: string; args: Node[] }
    /** The call of what is no plain name: LAMBDA(x, x)(1). */
    | { kind: 'apply'; callee: Node; args: Node[] }
    /** A name that LET or LAMBDA gives, without brackets; `text` is as written. */
    | { kind: 'parameter'; name: string; optional: boolean; text: string }
    | { kind: 'unary'; operator: '+' | '-' | '@'; operand: Node }
    | { kind: 'postfix'; operator: '%' | '#'; operand: Node }
    | { kind: 'binary'; operator: BinaryOperator; left: Node; right: Node }
    | { kind: 'group'; inner: Node }
    | { kind: 'array'; rows: Node[][] }
    /** What cannot be read, as written, with the parts of it that can. */
    | { kind: 'invalid'; text: string; parts: Node[] }
  );

export type NodeOf<K extends Node['kind']> = Extract<Node, { kind: K }>;

export type SyntaxProblem = Span & { message: string };

export type Formula = {
  text: string;
  style: ReferenceStyle;
  root: Node;
  /** What is wrong, in the order of the text; empty for a formula that is whole. */
  problems: SyntaxProblem[];
};

/** The nodes directly under `node`, in the order of the text. */
export function children(node: Node): readonly Node[] {
  switch (node.kind) {
    case 'call':
      return node.args;
    case 'apply':
      return [node.callee, ...node.args];
    case 'unary':
    case 'postfix':
      return [node.operand];
    case 'binary':
      return [node.left, node.right];
    case 'group':
      return [node.inner];
    case 'array':
      return node.rows.flat();
    case 'invalid':
      return node.parts;
    default:
      return [];
  }
}

/** Puts nodes on a stack so that the first of them is taken first. */
export function pushAll(stack: Node[], nodes: readonly Node[]): void {
  for (let i = nodes.length - 1; i >= 0; i--) stack.push(nodes[i] as Node);
}

/** Visits `root` and everything under it, parents first, in the order of the text. */
export function walk(root: Node, visit: (node: Node) => void): void {
  const stack: Node[] = [root];
  for (let node = stack.pop(); node; node = stack.pop()) {
    visit(node);
    pushAll(stack, children(node));
  }
}

const filePrefix = /^(?:_xlfn\.|_xlws\.|_xludf\.|_xlpm\.|_xlop\.)+/i;

/** A function's or parameter's name in capitals, without what files put before newer ones. */
export function plainName(name: string): string {
  return name.replace(filePrefix, '').toUpperCase();
}
