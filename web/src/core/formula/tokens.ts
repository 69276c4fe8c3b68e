// What a formula's text is made of.

export type ReferenceStyle = 'a1' | 'r1c1';

export type TokenKind =
  | 'end'
  | 'number'
  | 'text'
  | 'error'
  /** Cells, columns or rows, also as an area: A1, $A$1:B2, A:C, 1:3. */
  | 'reference'
  /** What stands before a reference or a name: Sheet!, 'My sheet'!, [Book]Sheet!, First:Last!. */
  | 'prefix'
  | 'name'
  /** A name directly before the parenthesis that opens its arguments. */
  | 'function'
  /** Columns of a table, from "[" to the bracket that closes it. */
  | 'columns'
  | 'operator'
  | 'open'
  | 'close'
  | 'openArray'
  | 'closeArray'
  | 'separator'
  | 'unknown';

/** Signs that are a token by themselves. */
export const signs: Record<string, TokenKind | undefined> = {
  '+': 'operator',
  '-': 'operator',
  '*': 'operator',
  '/': 'operator',
  '^': 'operator',
  '&': 'operator',
  '=': 'operator',
  '%': 'operator',
  ':': 'operator',
  '@': 'operator',
  '(': 'open',
  ')': 'close',
  '{': 'openArray',
  '}': 'closeArray',
  ',': 'separator',
  ';': 'separator',
};

/** True if an operand that may be cells begins with such a token. */
export function startsReference(kind: TokenKind): boolean {
  switch (kind) {
    case 'reference':
    case 'prefix':
    case 'name':
    case 'function':
    case 'columns':
    case 'error':
    case 'open':
      return true;
    default:
      return false;
  }
}

export function startsOperand(kind: TokenKind): boolean {
  return startsReference(kind) || kind === 'number' || kind === 'text' || kind === 'openArray';
}

/** True if an argument, or an item of an array constant, is over there. */
export function endsItem(kind: TokenKind): boolean {
  return kind === 'separator' || kind === 'close' || kind === 'closeArray' || kind === 'end';
}
