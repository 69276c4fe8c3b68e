// Each distinct relative formula, read once: which cells it names. What there are many of is kept in
// arrays; only what is out of the ordinary has a record of its own.

import { parse } from '../formula/Parser';
import type { Names } from './Names';
import { fixedBits, namedBy, namesOf, type Meanings, type RunTimeReason } from './references';
import { Rows } from './Rows';
import type { Texts } from './SheetCells';
import type { Span } from './span';

/** What is worth telling of a formula beside its references. */
export type Oddity = {
  runTime: ReadonlySet<RunTimeReason>;
  external: boolean;
  broken: boolean;
  /** True if it could not be read whole. */
  unread: boolean;
};

const enum Field {
  Sheet,
  Fixed,
  RowA,
  RowB,
  ColA,
  ColB,
}
const fields = 6;

function keyOf(formula: number, sheet: number): string {
  return `${String(formula)} ${String(sheet)}`;
}

export class Definitions {
  private readonly references = new Rows(fields);
  private readonly starts: number[] = [0];
  /** By formula: its definition, or -1 where that is another on each sheet. */
  private readonly numbers: (number | undefined)[] = [];
  /** Of formulas whose names depend on the sheet: by formula and sheet. */
  private readonly perSheet = new Map<string, number>();
  private readonly odd = new Map<number, Oddity>();

  constructor(
    private readonly formulas: Texts,
    private readonly names: Names,
    private readonly meanings: Meanings,
  ) {}

  /** The definition of a formula as it stands on a sheet. */
  of(formula: number, sheet: number): number {
    const known = this.numbers[formula];
    if (known !== undefined && known >= 0) return known;
    const own = known === -1 ? this.perSheet.get(keyOf(formula, sheet)) : undefined;
    if (own !== undefined) return own;
    const text = this.formulas.at(formula);
    const read = parse(text, 'r1c1');
    const depends = namesOf(read).some((name) => this.names.dependsOnSheet(name));
    const named = namedBy(read, this.meanings, depends ? sheet : undefined);
    const number = this.starts.length - 1;
    for (const reference of named.references) {
      const { sheet: target, rows, cols } = reference;
      this.references.add([target, fixedBits(reference), rows.a, rows.b, cols.a, cols.b]);
    }
    this.starts.push(this.references.count);
    const unread = read.problems.length > 0;
    if (named.runTime.size > 0 || named.external || named.broken || unread) {
      const { runTime, external, broken } = named;
      this.odd.set(number, { runTime, external, broken, unread });
    }
    this.numbers[formula] = depends ? -1 : number;
    if (depends) this.perSheet.set(keyOf(formula, sheet), number);
    return number;
  }

  oddity(definition: number): Oddity | undefined {
    return this.odd.get(definition);
  }

  /** The numbers of a definition's references: from, and up to but without. */
  range(definition: number): readonly [number, number] {
    return [this.starts[definition] as number, this.starts[definition + 1] as number];
  }

  /** The sheet that a reference names, for a formula on `own`. */
  sheetOf(reference: number, own: number): number {
    const sheet = this.references.get(reference, Field.Sheet);
    return sheet < 0 ? own : sheet;
  }

  rows(reference: number): Span {
    const fixed = this.references.get(reference, Field.Fixed);
    return {
      a: this.references.get(reference, Field.RowA),
      aFixed: (fixed & 1) !== 0,
      b: this.references.get(reference, Field.RowB),
      bFixed: (fixed & 2) !== 0,
    };
  }

  cols(reference: number): Span {
    const fixed = this.references.get(reference, Field.Fixed);
    return {
      a: this.references.get(reference, Field.ColA),
      aFixed: (fixed & 4) !== 0,
      b: this.references.get(reference, Field.ColB),
      bFixed: (fixed & 8) !== 0,
    };
  }

  /** The distances of a definition in rows and in columns. */
  distances(definition: number): { rows: number[]; cols: number[] } {
    const rows: number[] = [];
    const cols: number[] = [];
    const [from, to] = this.range(definition);
    for (let reference = from; reference < to; reference++) {
      const row = this.rows(reference);
      const col = this.cols(reference);
      if (!row.aFixed) rows.push(row.a);
      if (!row.bFixed) rows.push(row.b);
      if (!col.aFixed) cols.push(col.a);
      if (!col.bFixed) cols.push(col.b);
    }
    return { rows, cols };
  }
}
