// A tree back into formula text, without the "=" before it. What is printed reads back as a tree of
// the same shape; white space that means nothing is not kept.

import type { ReferenceStyle } from './tokens';
import { readReference, translateReference, writeReference, type CellPosition } from './reference';
import type { Formula, Node, NodeOf } from './syntax';

export type PrintOptions = {
  /** Between arguments and in unions; arrays are always written with "," and ";". */
  separator?: ',' | ';';
  /** How to write a reference, without its prefix; as it was read by default. */
  reference?: (node: NodeOf<'reference'>) => string;
  /** What to write in the place of a node; nothing for a node that is to be written as it is. */
  replace?: (node: Node) => string | undefined;
};

class Printer {
  private readonly separator: string;

  constructor(private readonly options: PrintOptions) {
    this.separator = options.separator ?? ',';
  }

  print(node: Node): string {
    return this.options.replace?.(node) ?? this.written(node);
  }

  private written(node: Node): string {
    switch (node.kind) {
      case 'number':
        return node.text;
      case 'text':
        return `"${node.value.replaceAll('"', '""')}"`;
      case 'logical':
        return node.value ? 'TRUE' : 'FALSE';
      case 'missing':
        return '';
      case 'error':
        return node.prefix + node.text;
      case 'reference':
        return node.prefix + (this.options.reference?.(node) ?? node.text);
      case 'name':
        return node.prefix + node.name;
      case 'columns':
        return node.prefix + node.table + node.text;
      case 'parameter':
        return node.text;
      case 'call':
        return `${node.prefix}${node.name}(${this.list(node.args)})`;
      case 'apply':
        return `${this.print(node.callee)}(${this.list(node.args)})`;
      case 'unary':
        return node.operator + this.print(node.operand);
      case 'postfix':
        return this.print(node.operand) + node.operator;
      case 'binary':
        return this.chain(node);
      case 'group':
        return `(${this.print(node.inner)})`;
      case 'array':
        return `{${node.rows.map((row) => row.map((item) => this.print(item)).join(',')).join(';')}}`;
      case 'invalid':
        return node.text;
    }
  }

  private list(args: readonly Node[]): string {
    return args.map((arg) => this.print(arg)).join(this.separator);
  }

  /** Long sums lean to the left by thousands: a loop goes down that side, not a call. */
  private chain(node: NodeOf<'binary'>): string {
    const tail: string[] = [];
    let left: Node = node;
    let replaced: string | undefined;
    while (left.kind === 'binary' && replaced === undefined) {
      tail.push(this.sign(left) + this.print(left.right));
      left = left.left;
      if (left.kind === 'binary') replaced = this.options.replace?.(left);
    }
    return (replaced ?? this.print(left)) + tail.reverse().join('');
  }

  private sign(node: NodeOf<'binary'>): string {
    if (node.operator === ',') return this.separator;
    // Joined directly, two words around a colon would read as one area.
    if (node.operator === ':' && isWord(node.right)) return ' : ';
    return node.operator;
  }
}

function isWord(node: Node): boolean {
  if (node.kind === 'reference' || node.kind === 'name') return node.prefix === '';
  return node.kind === 'number';
}

export function print(node: Node, options: PrintOptions = {}): string {
  return new Printer(options).print(node);
}

/** The formula's text with its references in `style`, for a formula in the cell `origin`. */
export function printInStyle(
  formula: Formula,
  style: ReferenceStyle,
  origin: CellPosition,
  options: PrintOptions = {},
): string {
  if (style === formula.style) return print(formula.root, options);
  const reference = (node: NodeOf<'reference'>): string => {
    const shape = readReference(node.text, formula.style);
    return shape ? writeReference(translateReference(shape, style, origin), style) : node.text;
  };
  return print(formula.root, { ...options, reference });
}
