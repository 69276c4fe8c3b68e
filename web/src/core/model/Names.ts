// What the workbook's names stand for. Each is resolved once, when it is first met, and before it all
// names that it is made of; names of one sheet hide those of the workbook there.

import { parse } from '../formula/Parser';
import type { Formula } from '../formula/syntax';
import {
  eachOnce,
  namedBy,
  nothingNamed,
  type Meanings,
  type Named,
  type Reference,
} from './references';
import type { Span } from './span';

export type NameEntry = { name: string; refersTo: string };

type Entry = { refersTo: string; meaning?: Named };
type Definitions = { everywhere?: Entry; ofSheet: Map<number, Entry> };

/** A name that is being resolved. */
type Step = {
  entry: Entry;
  formula: Formula;
  /** What it names without the names that it is made of. */
  own: readonly Reference[];
  /** Names that it is made of, as far as they are still to be looked at. */
  inner: Entry[];
  /** True if there were any. */
  nested: boolean;
  order: number;
  /** The first of those under way that it leads back to. */
  back: number;
};

/** More areas than names of names lead to in any workbook that people write. */
const areasLimit = 200;
const tooMany = 'names of too many areas';

const isRelative = ({ aFixed, bFixed }: Span) => !aFixed || !bFixed;

export class Names {
  private readonly definitions = new Map<string, Definitions>();

  constructor(
    entries: readonly NameEntry[],
    sheetNumber: (name: string) => number | undefined,
    private readonly meanings: () => Meanings,
  ) {
    for (const { name, refersTo } of entries) {
      const at = name.lastIndexOf('!');
      const sheet = at < 0 ? undefined : sheetNumber(name.slice(0, at));
      if (at >= 0 && sheet === undefined) continue;
      const key = name.slice(at + 1).toLowerCase();
      const definitions = this.definitions.get(key) ?? { ofSheet: new Map<number, Entry>() };
      this.definitions.set(key, definitions);
      if (sheet === undefined) definitions.everywhere = { refersTo };
      else definitions.ofSheet.set(sheet, { refersTo });
    }
  }

  /** True if the name means different things on different sheets. */
  dependsOnSheet(name: string): boolean {
    return (this.definitions.get(name.toLowerCase())?.ofSheet.size ?? 0) > 0;
  }

  meaning(name: string, sheet: number | undefined): Named | undefined {
    const entry = this.entry(name, sheet);
    return entry && (entry.meaning ?? this.resolve(entry, sheet));
  }

  /** What was learned of tables since may change any of them. */
  forget(): void {
    for (const { everywhere, ofSheet } of this.definitions.values()) {
      delete everywhere?.meaning;
      for (const entry of ofSheet.values()) delete entry.meaning;
    }
  }

  private entry(name: string, sheet: number | undefined): Entry | undefined {
    const definitions = this.definitions.get(name.toLowerCase());
    const own = sheet === undefined ? undefined : definitions?.ofSheet.get(sheet);
    return own ?? definitions?.everywhere;
  }

  /**
   * Walks through names of names without a stack of calls, each name once however many lead to it.
   * Those that lead to each other in a circle are resolved together.
   */
  private resolve(entry: Entry, sheet: number | undefined): Named {
    const way: Step[] = [];
    /** Those on the way, and those of circles that are not closed yet, as they were met. */
    const open: Step[] = [];
    const steps = new Map<Entry, Step>();
    const enter = (one: Entry): void => {
      const order = open.length;
      const formula = parse(one.refersTo, 'a1');
      const inner: Entry[] = [];
      const own = namedBy(formula, this.noting(inner), sheet).references;
      const nested = inner.length > 0;
      const step = { entry: one, formula, own, inner, nested, order, back: order };
      steps.set(one, step);
      open.push(step);
      way.push(step);
    };
    enter(entry);
    for (let step = way.at(-1); step; step = way.at(-1)) {
      const next = step.inner.pop();
      if (next) {
        if (next.meaning) continue;
        const known = steps.get(next);
        if (known) step.back = Math.min(step.back, known.order);
        else enter(next);
        continue;
      }
      way.pop();
      const above = way.at(-1);
      if (above) above.back = Math.min(above.back, step.back);
      if (step.back === step.order) this.settle(open.splice(step.order), sheet);
    }
    return entry.meaning ?? nothingNamed();
  }

  /** All that lead to each other stand for the same. */
  private settle(steps: readonly Step[], sheet: number | undefined): void {
    const together = nothingNamed();
    const meanings = this.known();
    const all = steps.flatMap(({ formula }) => {
      const named = namedBy(formula, meanings, sheet);
      for (const reason of named.runTime) together.runTime.add(reason);
      together.external ||= named.external;
      together.broken ||= named.broken;
      return named.references;
    });
    const references = steps.length > 1 ? eachOnce(all) : all;
    const isNested = steps.some(({ nested }) => nested);
    if (isNested && references.length > areasLimit) together.runTime.add(tooMany);
    // What its names stand for is left out then, and so in turn for whoever names it.
    const kept = together.runTime.has(tooMany)
      ? steps.slice(0, areasLimit).flatMap(({ own }) => own)
      : references;
    together.references = kept.filter(({ rows, cols }) => !isRelative(rows) && !isRelative(cols));
    if (together.references.length < kept.length) together.runTime.add('a relative name');
    for (const { entry } of steps) entry.meaning = together;
  }

  /** What a formula names without what its names stand for; `inner` takes these. */
  private noting(inner: Entry[]): Meanings {
    const name = (text: string, sheet: number | undefined): Named | undefined => {
      const entry = this.entry(text, sheet);
      if (entry) inner.push(entry);
      return entry && nothingNamed();
    };
    return { ...this.meanings(), name };
  }

  /** Names as far as they are known; one that leads back to itself stands for nothing there. */
  private known(): Meanings {
    const name = (text: string, sheet: number | undefined): Named | undefined => {
      const entry = this.entry(text, sheet);
      return entry && (entry.meaning ?? { ...nothingNamed(), broken: true });
    };
    return { ...this.meanings(), name };
  }
}
