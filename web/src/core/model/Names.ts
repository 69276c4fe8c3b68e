// What the workbook's names stand for. Each is resolved once, when it is first met; names of one
// sheet hide those of the workbook there.

import { parse } from '../formula/Parser';
import { namedBy, nothingNamed, type Meanings, type Named } from './references';
import type { Span } from './span';

export type NameEntry = { name: string; refersTo: string };

type Entry = { refersTo: string; meaning?: Named };
type Definitions = { everywhere?: Entry; ofSheet: Map<number, Entry> };

/** Names of names of names: more than anyone writes, and few enough for the stack. */
const depthLimit = 200;

const isRelative = ({ aFixed, bFixed }: Span) => !aFixed || !bFixed;

export class Names {
  private readonly definitions = new Map<string, Definitions>();
  private readonly resolving = new Set<Entry>();
  /** Whether something under way was cut short, so that it is not to be kept. */
  private cut = false;

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

  /** Whether the name means different things on different sheets. */
  dependsOnSheet(name: string): boolean {
    return (this.definitions.get(name.toLowerCase())?.ofSheet.size ?? 0) > 0;
  }

  meaning(name: string, sheet: number | undefined): Named | undefined {
    const definitions = this.definitions.get(name.toLowerCase());
    if (!definitions) return undefined;
    const own = sheet === undefined ? undefined : definitions.ofSheet.get(sheet);
    const entry = own ?? definitions.everywhere;
    return entry && this.resolved(entry, sheet);
  }

  private resolved(entry: Entry, sheet: number | undefined): Named {
    if (entry.meaning) return entry.meaning;
    // A name that leads back to itself stands for nothing.
    if (this.resolving.has(entry) || this.resolving.size > depthLimit) {
      this.cut = true;
      return { ...nothingNamed(), broken: true };
    }
    this.resolving.add(entry);
    const named = namedBy(parse(entry.refersTo, 'a1'), this.meanings(), sheet);
    this.resolving.delete(entry);
    const fixed = named.references.filter(
      ({ rows, cols }) => !isRelative(rows) && !isRelative(cols),
    );
    if (fixed.length < named.references.length) {
      named.references = fixed;
      named.runTime.add('a relative name');
    }
    if (!this.cut || this.resolving.size === 0) entry.meaning = named;
    if (this.resolving.size === 0) this.cut = false;
    return named;
  }
}
