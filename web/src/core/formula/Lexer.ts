// Formula text into tokens, one at a time, in English grammar with references in A1 or R1C1 style.
// Never fails: what it cannot read is a token of kind "unknown". Between tokens lies white space and
// nothing else.

import { signs, type ReferenceStyle, type TokenKind } from './tokens';
import { isCellWord, isColumnWord, isRowWord, longestCell } from './words';

const errorText =
  /#(?:NULL!|DIV\/0!|VALUE!|REF!|NAME\?|NUM!|N\/A|GETTING_DATA|SPILL!|CALC!|FIELD!|CONNECT!|BLOCKED!|UNKNOWN!|EXTERNAL!|PYTHON!|BUSY!)/iy;
const exponent = /[eE][+-]?\d+/y;
const r1c1Corner =
  /(?:R(?:\[-?\d+\]|\d+)?C(?:\[-?\d+\]|\d+)?|[RC](?:\[-?\d+\]|\d+)?)(?![[\]\p{L}\p{N}_.\\?!(])/iuy;

const enum Char {
  Tab = 9,
  LineFeed = 10,
  Return = 13,
  Space = 32,
  Exclamation = 33,
  Quote = 34,
  Hash = 35,
  Dollar = 36,
  Apostrophe = 39,
  Open = 40,
  Dot = 46,
  Zero = 48,
  Nine = 57,
  Colon = 58,
  Less = 60,
  Equal = 61,
  Greater = 62,
  Question = 63,
  OpenBracket = 91,
  Backslash = 92,
  CloseBracket = 93,
  Underscore = 95,
  NoBreakSpace = 0xa0,
  IdeographicSpace = 0x3000,
}

function isSpace(code: number): boolean {
  return (
    code === Char.Space ||
    code === Char.LineFeed ||
    code === Char.Return ||
    code === Char.Tab ||
    code === Char.NoBreakSpace ||
    code === Char.IdeographicSpace
  );
}

function isDigit(code: number): boolean {
  return code >= Char.Zero && code <= Char.Nine;
}

/** True if a name or a reference may begin with it. */
function startsWord(code: number): boolean {
  const letter = code | 32;
  return (
    (letter >= 97 && letter <= 122) ||
    code === Char.Underscore ||
    code === Char.Backslash ||
    code === Char.Dollar ||
    (code >= 0x80 && !isSpace(code))
  );
}

function isInWord(code: number): boolean {
  return startsWord(code) || isDigit(code) || code === Char.Dot || code === Char.Question;
}

export class Lexer {
  /** The current token: its kind, and where in the text it stands. */
  kind: TokenKind = 'end';
  start = 0;
  end = 0;
  /** True if white space stands before the current token. */
  spaced = false;
  /** Inside an array constant "\\" parts columns; anywhere else a name may begin with it. */
  private inArray = false;

  constructor(
    readonly text: string,
    private readonly style: ReferenceStyle,
    at = 0,
  ) {
    this.end = at;
    this.advance();
  }

  get token(): string {
    return this.text.slice(this.start, this.end);
  }

  /** Goes on to the next token. */
  advance(): void {
    const { text } = this;
    let at = this.end;
    while (isSpace(text.charCodeAt(at))) at++;
    this.spaced = at > this.end;
    this.start = at;
    if (at >= text.length) {
      this.kind = 'end';
      this.end = at;
      return;
    }
    const code = text.charCodeAt(at);
    if (this.inArray && code === Char.Backslash) this.take('separator', at + 1);
    else if (startsWord(code)) this.word(at);
    else if (isDigit(code) || (code === Char.Dot && isDigit(text.charCodeAt(at + 1)))) {
      this.digits(at);
    } else this.sign(at, code);
  }

  private take(kind: TokenKind, end: number): void {
    this.kind = kind;
    this.end = end;
  }

  private wordEnd(at: number): number {
    for (let code = this.text.charCodeAt(at); isInWord(code); code = this.text.charCodeAt(++at)) {
      if (this.inArray && code === Char.Backslash) break;
    }
    return at;
  }

  private matchEnd(pattern: RegExp, at: number): number {
    pattern.lastIndex = at;
    return pattern.test(this.text) ? pattern.lastIndex : -1;
  }

  private word(at: number): void {
    if (this.style === 'r1c1' && this.r1c1(at)) return;
    const end = this.wordEnd(at);
    const next = this.text.charCodeAt(end);
    if (next === Char.Open) this.take('function', end);
    else if (next === Char.Exclamation) this.take('prefix', end + 1);
    else if (this.style === 'a1' && this.a1(at, end, next)) return;
    else if (next === Char.Colon && this.sheets(end)) return;
    else this.take('name', end);
  }

  /** A reference whose first word ends at `end`. */
  private a1(at: number, end: number, next: number): boolean {
    if (end - at > longestCell || next === Char.OpenBracket) return false;
    const first = this.text.slice(at, end);
    const isCell = isCellWord(first);
    const last = next === Char.Colon ? this.lastWord(end + 1) : '';
    if (isCell && isCellWord(last)) this.take('reference', end + 1 + last.length);
    else if (isCell) this.take('reference', end);
    else if (isColumnWord(first) ? isColumnWord(last) : isRowWord(first) && isRowWord(last)) {
      this.take('reference', end + 1 + last.length);
    } else return false;
    return true;
  }

  /** The word behind a colon where it ends there: not a call, a table or a sheet. */
  private lastWord(at: number): string {
    const end = this.wordEnd(at);
    const after = this.text.charCodeAt(end);
    const goesOn = after === Char.Open || after === Char.OpenBracket || after === Char.Exclamation;
    return goesOn ? '' : this.text.slice(at, end);
  }

  private r1c1(at: number): boolean {
    const end = this.matchEnd(r1c1Corner, at);
    if (end < 0) return false;
    const isArea = this.text.charCodeAt(end) === Char.Colon;
    const areaEnd = isArea ? this.matchEnd(r1c1Corner, end + 1) : -1;
    if (isArea && areaEnd < 0 && this.sheets(end)) return true;
    this.take('reference', areaEnd < 0 ? end : areaEnd);
    return true;
  }

  /** The second half of First:Last!, whose colon stands at `colon`. */
  private sheets(colon: number): boolean {
    const end = this.wordEnd(colon + 1);
    if (end === colon + 1 || this.text.charCodeAt(end) !== Char.Exclamation) return false;
    this.take('prefix', end + 1);
    return true;
  }

  private digits(at: number): void {
    const { text } = this;
    let end = at;
    while (isDigit(text.charCodeAt(end))) end++;
    if (
      this.style === 'a1' &&
      text.charCodeAt(end) === Char.Colon &&
      this.a1(at, end, Char.Colon)
    ) {
      return;
    }
    if (text.charCodeAt(end) === Char.Dot) {
      end++;
      while (isDigit(text.charCodeAt(end))) end++;
    }
    const power = this.matchEnd(exponent, end);
    if (power > 0) end = power;
    // A sheet may be named by digits alone, and some writers leave its quotes out.
    const word = isInWord(text.charCodeAt(end)) ? this.wordEnd(end) : end;
    if (text.charCodeAt(word) === Char.Exclamation) this.take('prefix', word + 1);
    else this.take('number', end);
  }

  private sign(at: number, code: number): void {
    const { text } = this;
    const next = text.charCodeAt(at + 1);
    switch (code) {
      case Char.Quote:
        this.quoted(at);
        return;
      case Char.Apostrophe:
        this.quotedPrefix(at);
        return;
      case Char.OpenBracket:
        this.bracket(at);
        return;
      case Char.Hash:
        this.hash(at);
        return;
      case Char.Less:
        this.take('operator', next === Char.Equal || next === Char.Greater ? at + 2 : at + 1);
        return;
      case Char.Greater:
        this.take('operator', next === Char.Equal ? at + 2 : at + 1);
        return;
      default:
        this.take(signs[text.charAt(at)] ?? 'unknown', at + 1);
        if (this.kind === 'openArray') this.inArray = true;
        else if (this.kind === 'closeArray') this.inArray = false;
    }
  }

  /** What was opened and never closed, without the white space that ends the text. */
  private unclosed(): void {
    this.take('unknown', this.text.trimEnd().length);
  }

  /** Where a quoted run ends that begins at `at`; doubled quotes belong to it. -1: never. */
  private closing(quote: string, at: number): number {
    for (let end = this.text.indexOf(quote, at + 1); end >= 0;) {
      if (this.text.charAt(end + 1) !== quote) return end + 1;
      end = this.text.indexOf(quote, end + 2);
    }
    return -1;
  }

  private quoted(at: number): void {
    const end = this.closing('"', at);
    if (end < 0) this.unclosed();
    else this.take('text', end);
  }

  private quotedPrefix(at: number): void {
    const end = this.closing("'", at);
    if (end < 0) this.unclosed();
    else if (this.text.charCodeAt(end) === Char.Exclamation) this.take('prefix', end + 1);
    else this.take('unknown', end);
  }

  /** [Book]Sheet! before a reference, or columns of a table, where ' hides the next character. */
  private bracket(at: number): void {
    const { text } = this;
    let depth = 0;
    let end = this.quotedBook(at);
    while (depth > 0 || end === at) {
      const code = text.charCodeAt(end);
      if (code === Char.OpenBracket) depth++;
      else if (code === Char.CloseBracket) depth--;
      else if (code === Char.Apostrophe) end++;
      end++;
      if (end >= text.length) break;
    }
    if (depth > 0) {
      this.unclosed();
      return;
    }
    const sheet = this.wordEnd(end);
    if (text.charCodeAt(sheet) === Char.Exclamation) this.take('prefix', sheet + 1);
    else if (text.charCodeAt(sheet) !== Char.Colon || !this.sheets(sheet))
      this.take('columns', end);
  }

  /** Behind ['a book in quotes'], or `at` where there is none. */
  private quotedBook(at: number): number {
    if (this.text.charCodeAt(at + 1) !== Char.Apostrophe) return at;
    const end = this.text.indexOf("']", at + 2) + 2;
    const word = this.wordEnd(end);
    return end > 1 && this.text.charCodeAt(word) === Char.Exclamation ? end : at;
  }

  /** An error text, the sheet of a reference whose sheet was deleted, or the sign of a spill. */
  private hash(at: number): void {
    const end = this.matchEnd(errorText, at);
    if (end < 0) this.take('operator', at + 1);
    else this.take(startsWord(this.text.charCodeAt(end)) ? 'prefix' : 'error', end);
  }
}
