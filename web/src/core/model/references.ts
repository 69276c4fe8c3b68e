// Which cells a formula names, in a form that holds for every cell with the same relative formula.
// What only a calculation can tell is noted, never guessed. Pure.

import { maxColumns, maxRows, unquoted } from '../address/area';
import { readReference, type Coordinate, type Corner } from '../formula/reference';
import {
  children,
  plainName,
  pushAll,
  walk,
  type Formula,
  type Node,
  type NodeOf,
} from '../formula/syntax';
import type { ReferenceStyle } from '../formula/tokens';
import { crossed, joined, type Span } from './span';
import { tableQuestion } from './tables';

/** The cells of a sheet that a formula names. */
export type Reference = {
  /** The number of the sheet; -1 for the formula's own. */
  sheet: number;
  rows: Span;
  cols: Span;
};

/** Why the cells that a formula uses cannot all be told from its text. */
export type RunTimeReason =
  | 'INDIRECT'
  | 'OFFSET'
  /** One end of a range is worked out. */
  | 'a computed range'
  /** As many cells as what is there spills into. */
  | 'a spill'
  /** A name that means other cells in every cell. */
  | 'a relative name'
  /** Names of names that lead to more areas than are kept of them. */
  | 'names of too many areas'
  /** Columns of the table that the cell is in, whichever that is. */
  | 'its own table'
  /** Columns of a table of which the spreadsheet did not tell where they are. */
  | 'a table';

export type Named = {
  references: Reference[];
  runTime: Set<RunTimeReason>;
  /** True if it names cells of another workbook. */
  external: boolean;
  /** True if a part of it is gone: #REF!, a name that nothing has. */
  broken: boolean;
};

/** What names mean in this workbook. */
export type Meanings = {
  /** The sheets between two, in the workbook's order; nothing where one of them is not there. */
  sheets(first: string, last: string): readonly number[] | undefined;
  /** True if the book of "[Book]" is this one. */
  isOwnBook(book: string): boolean;
  /** A defined name as seen from a sheet: what it stands for, or nothing where there is none. */
  name(name: string, sheet: number | undefined): Named | undefined;
  /** A table's columns; nothing where nobody has told. */
  table(
    question: string,
  ): { sheet: number; top: number; left: number; bottom: number; right: number } | undefined;
};

export function nothingNamed(): Named {
  return { references: [], runTime: new Set(), external: false, broken: false };
}

function wholeOf(limit: number): Span {
  return { a: 1, aFixed: true, b: limit, bFixed: true };
}

function spanOf(from: Coordinate | undefined, to: Coordinate | undefined, limit: number): Span {
  if (!from || !to) return wholeOf(limit);
  return { a: from.at, aFixed: from.fixed, b: to.at, bFixed: to.fixed };
}

type Target = { kind: 'sheets'; sheets: readonly number[] } | { kind: 'external' | 'missing' };

const ownSheet: Target = { kind: 'sheets', sheets: [-1] };

/** What stands before "!" means the same in every formula of a workbook. */
const targets = new WeakMap<Meanings, Map<string, Target>>();

function targetOf(prefix: string, meanings: Meanings): Target {
  if (prefix === '') return ownSheet;
  let known = targets.get(meanings);
  if (!known) targets.set(meanings, (known = new Map<string, Target>()));
  let target = known.get(prefix);
  if (!target) known.set(prefix, (target = findTarget(prefix, meanings)));
  return target;
}

function findTarget(prefix: string, meanings: Meanings): Target {
  let name = unquoted(prefix.slice(0, -1));
  if (name.startsWith('#') || name === '') return { kind: 'missing' };
  const [, path = '', book, rest = ''] = /^(.*?)\[([^\]]*)\](.*)$/.exec(name) ?? [];
  if (book !== undefined) {
    if (path !== '' || !meanings.isOwnBook(book)) return { kind: 'external' };
    name = rest;
  }
  if (/^file:/i.test(name) || name.includes('#$')) return { kind: 'external' };
  const [first = '', last = first] = name.split(':');
  const sheets = meanings.sheets(unquoted(first), unquoted(last));
  return sheets ? { kind: 'sheets', sheets } : { kind: 'missing' };
}

/** Deeper than this a range of ranges is only walked, not worked out. */
const nestingLimit = 32;

class Collector {
  readonly named = nothingNamed();
  private readonly parameters = new Set<string>();

  constructor(
    private readonly meanings: Meanings,
    private readonly style: ReferenceStyle,
    /** The sheet from which names are seen; nothing where that makes no difference. */
    private readonly home: number | undefined,
  ) {}

  collect(root: Node): void {
    walk(root, (node) => {
      if (node.kind === 'parameter') this.parameters.add(plainName(node.name));
    });
    const stack: Node[] = [root];
    for (let node = stack.pop(); node; node = stack.pop()) {
      if (this.take(node)) continue;
      pushAll(stack, children(node));
    }
  }

  /** True if the node is dealt with; otherwise its parts are to be looked at. */
  private take(node: Node): boolean {
    switch (node.kind) {
      case 'reference':
      case 'name':
      case 'columns': {
        for (const one of this.cellsOf(node, 0) ?? []) this.named.references.push(one);
        return true;
      }
      case 'error':
        if (node.text.toUpperCase() === '#REF!') this.named.broken = true;
        return true;
      case 'binary':
        return (node.operator === ':' || node.operator === ' ') && this.takeRange(node);
      case 'postfix':
        if (node.operator === '#') this.named.runTime.add('a spill');
        return false;
      case 'call':
        this.noteCall(node);
        return false;
      default:
        return false;
    }
  }

  private takeRange(node: NodeOf<'binary'>): boolean {
    const cells = this.cellsOf(node, 0);
    if (cells) {
      this.named.references.push(...cells);
      return true;
    }
    if (node.operator === ':') this.named.runTime.add('a computed range');
    return false;
  }

  private noteCall(node: NodeOf<'call'>): void {
    const name = plainName(node.name);
    if (name === 'INDIRECT' || name === 'OFFSET') this.named.runTime.add(name);
    else if (name === 'ANCHORARRAY') this.named.runTime.add('a spill');
    if (this.parameters.has(name)) return;
    // A named LAMBDA.
    const meaning = this.meanings.name(node.name, this.home);
    if (meaning) this.named.references.push(...this.include(meaning));
  }

  /** The cells that a reference, a name or a range of them stands for; nothing where nobody can tell. */
  private cellsOf(node: Node, depth: number): readonly Reference[] | undefined {
    if (depth > nestingLimit) return undefined;
    switch (node.kind) {
      case 'group':
        return this.cellsOf(node.inner, depth + 1);
      case 'reference':
        return this.ofReference(node);
      case 'name':
        return this.ofName(node);
      case 'columns':
        return this.ofColumns(node);
      case 'binary':
        if (node.operator === ':' || node.operator === ' ') return this.ofRange(node, depth);
        return undefined;
      default:
        return undefined;
    }
  }

  private ofReference(node: NodeOf<'reference'>): readonly Reference[] {
    const target = targetOf(node.prefix, this.meanings);
    const shape = readReference(node.text, this.style);
    if (target.kind === 'external') this.named.external = true;
    if (target.kind === 'missing' || !shape) this.named.broken = true;
    if (target.kind !== 'sheets' || !shape) return [];
    const to: Corner = shape.to ?? shape.from;
    const rows = spanOf(shape.from.row, to.row, maxRows);
    const cols = spanOf(shape.from.col, to.col, maxColumns);
    return target.sheets.map((sheet) => ({ sheet, rows, cols }));
  }

  private ofName(node: NodeOf<'name'>): readonly Reference[] {
    if (node.prefix === '' && this.parameters.has(plainName(node.name))) return [];
    const target = targetOf(node.prefix, this.meanings);
    if (target.kind === 'external') {
      this.named.external = true;
      return [];
    }
    // "Book.xlsx!Name" looks like a sheet that is not there.
    const seenFrom =
      node.prefix === '' ? this.home : target.kind === 'sheets' ? target.sheets[0] : this.home;
    const meaning = this.meanings.name(node.name, seenFrom);
    if (meaning) return this.include(meaning);
    const table = node.prefix === '' ? this.meanings.table(node.name) : undefined;
    if (table) return [fixedArea(table)];
    this.named.broken = true;
    return [];
  }

  private ofColumns(node: NodeOf<'columns'>): readonly Reference[] {
    if (node.prefix !== '' && targetOf(node.prefix, this.meanings).kind === 'external') {
      this.named.external = true;
      return [];
    }
    const asked = tableQuestion(node);
    if (!asked) {
      this.named.runTime.add('its own table');
      return [];
    }
    const area = this.meanings.table(asked.question);
    if (!area) {
      this.named.runTime.add('a table');
      return [];
    }
    const all = fixedArea(area);
    // The row of the table that the cell is in.
    const row: Span = { a: 0, aFixed: false, b: 0, bFixed: false };
    return [asked.thisRow ? { ...all, rows: row } : all];
  }

  private ofRange(node: NodeOf<'binary'>, depth: number): readonly Reference[] | undefined {
    const left = this.cellsOf(node.left, depth + 1);
    const right = left && this.cellsOf(node.right, depth + 1);
    if (!left || !right) return undefined;
    if (left.length !== 1 || right.length !== 1) return [...left, ...right];
    const [one] = left as [Reference];
    const [other] = right as [Reference];
    if (one.sheet !== other.sheet) {
      // Sheet2!A1:B2 binds the sheet to the first end alone.
      if (node.operator === ':' && other.sheet === -1) {
        return this.ofSpans(one.sheet, ':', one, other) ?? [one, other];
      }
      return node.operator === ' ' ? [] : [one, other];
    }
    return this.ofSpans(one.sheet, node.operator, one, other) ?? [one, other];
  }

  private ofSpans(sheet: number, operator: string, one: Reference, other: Reference) {
    const combine = operator === ':' ? joined : crossed;
    const rows = combine(one.rows, other.rows);
    const cols = combine(one.cols, other.cols);
    if (rows === 'none' || cols === 'none') return [];
    return rows && cols ? [{ sheet, rows, cols }] : undefined;
  }

  private include(meaning: Named): readonly Reference[] {
    for (const reason of meaning.runTime) this.named.runTime.add(reason);
    if (meaning.external) this.named.external = true;
    if (meaning.broken) this.named.broken = true;
    return meaning.references;
  }
}

function fixedArea(area: {
  sheet: number;
  top: number;
  left: number;
  bottom: number;
  right: number;
}): Reference {
  return {
    sheet: area.sheet,
    rows: { a: area.top, aFixed: true, b: area.bottom, bFixed: true },
    cols: { a: area.left, aFixed: true, b: area.right, bFixed: true },
  };
}

/** Which ends are fixed, a bit for each: of the rows the first 1 and the last 2, of the columns 4 and 8. */
export function fixedBits({ rows, cols }: Reference): number {
  return (
    (rows.aFixed ? 1 : 0) | (rows.bFixed ? 2 : 0) | (cols.aFixed ? 4 : 0) | (cols.bFixed ? 8 : 0)
  );
}

function keyOf(reference: Reference): string {
  const { sheet, rows, cols } = reference;
  return [sheet, fixedBits(reference), rows.a, rows.b, cols.a, cols.b].join(' ');
}

function isSame(one: Reference, other: Reference): boolean {
  return (
    one.sheet === other.sheet &&
    one.rows.a === other.rows.a &&
    one.rows.b === other.rows.b &&
    one.cols.a === other.cols.a &&
    one.cols.b === other.cols.b &&
    fixedBits(one) === fixedBits(other)
  );
}

/** So few are compared one by one, which takes less than a key for each. */
const fewReferences = 8;

export function eachOnce(references: Reference[]): Reference[] {
  if (references.length <= fewReferences) {
    return references.filter(
      (one, i) => !references.some((other, before) => before < i && isSame(one, other)),
    );
  }
  return [...new Map(references.map((one) => [keyOf(one), one])).values()];
}

/** What the formula names, each thing once. `home`: the sheet from which its names are seen. */
export function namedBy(formula: Formula, meanings: Meanings, home: number | undefined): Named {
  const collector = new Collector(meanings, formula.style, home);
  collector.collect(formula.root);
  const { named } = collector;
  named.references = eachOnce(named.references);
  return named;
}

/** True if the formula has a name whose meaning may depend on the sheet. */
export function namesOf(formula: Formula): string[] {
  const names: string[] = [];
  walk(formula.root, (node) => {
    if ((node.kind === 'name' && node.prefix === '') || node.kind === 'call') names.push(node.name);
  });
  return names;
}
