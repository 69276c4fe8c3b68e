// A formula's text in pieces, each with the class that colours it.

import { Lexer } from './Lexer';
import type { ReferenceStyle, TokenKind } from './tokens';

export type TextClass =
  'plain' | 'number' | 'text' | 'logical' | 'error' | 'reference' | 'name' | 'function';

export type Piece = { text: string; class: TextClass };

const classes: Partial<Record<TokenKind, TextClass>> = {
  number: 'number',
  text: 'text',
  error: 'error',
  reference: 'reference',
  prefix: 'reference',
  columns: 'reference',
  name: 'name',
  function: 'function',
};

function classOf(kind: TokenKind, token: string): TextClass {
  if (kind === 'name' && /^(?:true|false)$/i.test(token)) return 'logical';
  return classes[kind] ?? 'plain';
}

/** The pieces of `formula` in order; joined they are the formula again. */
export function highlight(formula: string, style: ReferenceStyle = 'a1'): Piece[] {
  const pieces: Piece[] = [];
  let done = 0;
  const add = (end: number, textClass: TextClass): void => {
    const last = pieces.at(-1);
    if (end === done) return;
    const text = formula.slice(done, end);
    if (last?.class === textClass) last.text += text;
    else pieces.push({ text, class: textClass });
    done = end;
  };
  for (const lexer = new Lexer(formula, style); lexer.kind !== 'end'; lexer.advance()) {
    add(lexer.start, 'plain');
    add(lexer.end, classOf(lexer.kind, lexer.token));
  }
  add(formula.length, 'plain');
  return pieces;
}
