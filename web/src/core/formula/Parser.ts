// Formula text into a tree. Never throws: what cannot be read becomes an "invalid" node and a
// problem, and reading goes on behind it. Arguments may be separated by "," or ";", rows of an
// array constant by ";" and its columns by "," or "\".

import { Lexer } from './Lexer';
import { binaryBindings, Binding, mayBeCalled, mayRefer } from './operators';
import { bindParameters } from './parameters';
import { plainName } from './syntax';
import type { BinaryOperator, Formula, Node, SyntaxProblem } from './syntax';
import { endsItem, startsOperand, startsReference } from './tokens';
import type { ReferenceStyle, TokenKind } from './tokens';
import { isLogicalWord } from './words';

/** Longer than any spreadsheet takes; such text is one invalid node. */
export const formulaLengthLimit = 16_384;
/** The same formulas in R1C1: "A1" may become "R[-1048575]C[-16383]". */
export const relativeLengthLimit = 131_072;
/** Deeper than any spreadsheet takes. */
export const nestingLimit = 256;

/** True if a separator parts what is read (arguments) or joins references (a union). */
type Separators = 'part' | 'join';

class Parser {
  readonly problems: SyntaxProblem[] = [];
  private readonly lexer: Lexer;
  private depth = 0;

  constructor(
    private readonly text: string,
    style: ReferenceStyle,
    at: number,
  ) {
    this.lexer = new Lexer(text, style, at);
  }

  /** An expression with what stands behind it and has no place there, up to where `ends` tells. */
  item(separators: Separators, ends: (kind: TokenKind) => boolean): Node {
    const { lexer } = this;
    const first = this.expression(Binding.None, separators);
    if (ends(lexer.kind)) return first;
    const parts = [first];
    while (!ends(lexer.kind)) {
      parts.push(this.stray());
      if (startsOperand(lexer.kind)) parts.push(this.expression(Binding.None, separators));
    }
    return this.invalid(first.start, parts.at(-1)?.end ?? first.end, parts);
  }

  /** What binds at least as strongly as `least`. */
  private expression(least: Binding, separators: Separators): Node {
    if (this.depth >= nestingLimit) return this.tooDeep();
    this.depth++;
    let left = this.prefixed(separators);
    for (;;) {
      const longer = this.extended(left, least, separators);
      if (!longer) break;
      left = longer;
    }
    this.depth--;
    return left;
  }

  /** `left` with the next operator and its right side; nothing when none follows that binds. */
  private extended(left: Node, least: Binding, separators: Separators): Node | undefined {
    const { lexer } = this;
    switch (lexer.kind) {
      case 'operator':
        return this.operated(left, least, separators);
      case 'separator':
        if (separators === 'part' || Binding.Union < least || !mayRefer(left)) return undefined;
        return this.binary(left, ',', Binding.Union, separators, true);
      case 'open':
        if (!lexer.spaced && mayBeCalled(left)) return this.applied(left);
        break;
      default:
    }
    const crosses = lexer.spaced && Binding.Intersection >= least && startsReference(lexer.kind);
    if (!crosses || !mayRefer(left)) return undefined;
    return this.binary(left, ' ', Binding.Intersection, separators, false);
  }

  private operated(left: Node, least: Binding, separators: Separators): Node | undefined {
    const operator = this.lexer.token;
    if (operator === '%' || operator === '#') {
      const binding = operator === '%' ? Binding.Percent : Binding.Spill;
      if (binding < least) return undefined;
      const { end } = this.lexer;
      this.lexer.advance();
      return { kind: 'postfix', operator, operand: left, start: left.start, end };
    }
    const binding = binaryBindings[operator];
    if (binding === undefined || binding < least) return undefined;
    return this.binary(left, operator as BinaryOperator, binding, separators, true);
  }

  private binary(
    left: Node,
    operator: BinaryOperator,
    binding: Binding,
    separators: Separators,
    written: boolean,
  ): Node {
    if (written) this.lexer.advance();
    const right = this.expression(binding + 1, separators);
    return { kind: 'binary', operator, left, right, start: left.start, end: right.end };
  }

  /** An operand with the signs before it. */
  private prefixed(separators: Separators): Node {
    const { lexer } = this;
    if (lexer.kind !== 'operator') return this.operand();
    const { start, token } = lexer;
    if (token !== '-' && token !== '+' && token !== '@') return this.nothing();
    lexer.advance();
    const least = token === '@' ? Binding.Intersection : Binding.Sign;
    const operand = this.expression(least, separators);
    return { kind: 'unary', operator: token, operand, start, end: operand.end };
  }

  private operand(): Node {
    const { lexer } = this;
    const { start, end, token } = lexer;
    switch (lexer.kind) {
      case 'number':
        lexer.advance();
        return { kind: 'number', text: token, start, end };
      case 'text':
        lexer.advance();
        return { kind: 'text', value: token.slice(1, -1).replaceAll('""', '"'), start, end };
      case 'open':
        return this.group();
      case 'openArray':
        return this.array();
      case 'prefix':
        lexer.advance();
        if (lexer.spaced) return this.wrong(start, end, 'A sheet without a reference.');
        return this.reference(start, token);
      case 'unknown':
        return this.stray();
      default:
        return this.reference(start, '');
    }
  }

  /** What may stand behind a prefix, or without one. */
  private reference(start: number, prefix: string): Node {
    const { lexer } = this;
    const { end, token } = lexer;
    switch (lexer.kind) {
      case 'reference':
        lexer.advance();
        return { kind: 'reference', prefix, text: token, start, end };
      case 'error':
        lexer.advance();
        return { kind: 'error', prefix, text: token, start, end };
      case 'function':
        return this.call(start, prefix, token);
      case 'name':
        return this.name(start, prefix, token);
      case 'columns':
        lexer.advance();
        return { kind: 'columns', prefix, table: '', text: token, start, end };
      default:
        if (prefix === '') return this.nothing();
        return this.wrong(start, lexer.start, 'A sheet without a reference.');
    }
  }

  private name(start: number, prefix: string, name: string): Node {
    const { lexer } = this;
    const { end } = lexer;
    lexer.advance();
    if (lexer.kind === 'columns' && !lexer.spaced) {
      const { token: text, end } = lexer;
      lexer.advance();
      return { kind: 'columns', prefix, table: name, text, start, end };
    }
    if (prefix === '' && isLogicalWord(name)) {
      return { kind: 'logical', value: name.length === 4, start, end };
    }
    return { kind: 'name', prefix, name, start, end };
  }

  private call(start: number, prefix: string, name: string): Node {
    this.lexer.advance();
    const args = this.args();
    const end = this.closed('close', start, 'A parenthesis is not closed.');
    const plain = plainName(name);
    if (plain === 'LET' || plain === 'LAMBDA') bindParameters(plain, args);
    return { kind: 'call', prefix, name, args, start, end };
  }

  private applied(callee: Node): Node {
    const args = this.args();
    const end = this.closed('close', callee.start, 'A parenthesis is not closed.');
    return { kind: 'apply', callee, args, start: callee.start, end };
  }

  /** Arguments, from the opening parenthesis up to the closing one, which is left standing. */
  private args(): Node[] {
    const { lexer } = this;
    lexer.advance();
    const args: Node[] = [];
    if (lexer.kind === 'close') return args;
    for (;;) {
      args.push(this.argument());
      if (lexer.kind !== 'separator') return args;
      lexer.advance();
    }
  }

  private argument(): Node {
    const { lexer } = this;
    if (lexer.kind === 'separator' || lexer.kind === 'close') {
      return { kind: 'missing', start: lexer.start, end: lexer.start };
    }
    return this.item('part', endsItem);
  }

  private group(): Node {
    const { lexer } = this;
    const { start } = lexer;
    lexer.advance();
    const inner = this.expression(Binding.None, 'join');
    const strays: Node[] = [];
    while (lexer.kind !== 'close' && lexer.kind !== 'end') strays.push(this.stray());
    const end = this.closed('close', start, 'A parenthesis is not closed.');
    if (strays.length > 0) return this.invalid(start, end, [inner, ...strays]);
    return { kind: 'group', inner, start, end };
  }

  private array(): Node {
    const { lexer } = this;
    const { start } = lexer;
    const rows: Node[][] = [];
    do {
      const row: Node[] = [];
      do {
        lexer.advance();
        row.push(this.argument());
      } while (lexer.kind === 'separator' && lexer.token !== ';');
      rows.push(row);
    } while (lexer.kind === 'separator');
    const end = this.closed('closeArray', start, 'An array is not closed.');
    return { kind: 'array', rows, start, end };
  }

  /** Takes the closing sign, or tells that it is missing; gives where the closed thing ends. */
  private closed(kind: 'close' | 'closeArray', start: number, message: string): number {
    const { lexer } = this;
    if (lexer.kind === kind) {
      const { end } = lexer;
      lexer.advance();
      return end;
    }
    const end = this.text.slice(0, lexer.start).trimEnd().length;
    this.problems.push({ start, end, message });
    return end;
  }

  /** A token that has no place here. */
  private stray(): Node {
    const { start, end, token } = this.lexer;
    this.lexer.advance();
    return this.wrong(start, end, `“${token}” is not expected here.`);
  }

  /** An operand that is missing: an invalid node without length. */
  private nothing(): Node {
    const at = this.text.slice(0, this.lexer.start).trimEnd().length;
    return this.wrong(at, at, 'An operand is missing.');
  }

  private tooDeep(): Node {
    const { start } = this.lexer;
    while (this.lexer.kind !== 'end') this.lexer.advance();
    return this.wrong(start, this.text.trimEnd().length, 'The formula is nested too deeply.');
  }

  private wrong(start: number, end: number, message: string): Node {
    this.problems.push({ start, end, message });
    return this.invalid(start, end, []);
  }

  private invalid(start: number, end: number, parts: Node[]): Node {
    return { kind: 'invalid', text: this.text.slice(start, end), parts, start, end };
  }
}

/** Reads a formula, with or without the "=" before it. */
export function parse(text: string, style: ReferenceStyle = 'a1'): Formula {
  if (text.length > (style === 'a1' ? formulaLengthLimit : relativeLengthLimit)) {
    const problem = { start: 0, end: text.length, message: 'The formula is too long.' };
    const root: Node = { kind: 'invalid', text, parts: [], start: 0, end: text.length };
    return { text, style, root, problems: [problem] };
  }
  const lead = /^\s*=/.exec(text)?.[0].length ?? 0;
  const parser = new Parser(text, style, lead);
  const root = parser.item('join', (kind) => kind === 'end');
  return { text, style, root, problems: parser.problems };
}
