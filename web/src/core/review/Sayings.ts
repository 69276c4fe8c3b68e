// What the reviewer says of the findings of the workbook that is looked at: loaded when its findings
// are first known, found again in them, saved with every word. Which formulas were seen is saved a
// little later, several at once.

import { count } from '../format/words';
import type { FindingRow } from '../model/messages';
import type { SheetSketch } from '../model/sketch';
import type { Outcome } from '../protocol/Outcome';
import type { Json } from '../protocol/json';
import type { Cancel, Clock } from '../time/Clock';
import type { ReviewedBook } from './reviewed';
import {
  decodeReview,
  encodeReview,
  noteLimit,
  saidOf,
  withSaid,
  withSeen,
  type Said,
  type SaidOf,
  type SavedReview,
  type State,
} from './said';

export type ReviewKeeper = {
  load(of: ReviewedBook): Promise<Outcome<Json>>;
  save(of: ReviewedBook, review: Json): Promise<Outcome<null>>;
  /** As ISO has it. */
  now(): string;
  clock: Clock;
};

/** So long after formulas were seen that is saved. */
const seenAfter = 2_000;

type Kept = {
  book: string;
  /** Which workbook it is; nothing before it was read. */
  of: ReviewedBook | undefined;
  /** Nothing before it was loaded, and where it cannot be. */
  saved: SavedReview | undefined;
  findings: readonly FindingRow[];
  sketches: readonly SheetSketch[] | undefined;
  found: Map<FindingRow, SaidOf>;
  trouble: string;
  saving: boolean;
  /** Something was said since it began to be saved. */
  isStale: boolean;
  /** Takes back that it is saved later; nothing where that is not so. */
  later: Cancel | undefined;
};

export class Sayings {
  private kept: Kept | undefined;

  constructor(
    private readonly changed: () => void,
    private readonly keeper?: ReviewKeeper,
  ) {}

  look(book: string): void {
    const { keeper, kept } = this;
    if (!keeper || kept?.book === book) return;
    this.saveNow();
    this.kept = {
      book,
      of: undefined,
      saved: undefined,
      findings: [],
      sketches: undefined,
      found: new Map(),
      trouble: '',
      saving: false,
      isStale: false,
      later: undefined,
    };
  }

  /** The workbook's findings as they are now, what its sheets are, and which workbook it is. */
  async settle(
    findings: readonly FindingRow[],
    sketches: readonly SheetSketch[] | undefined,
    of: ReviewedBook,
  ): Promise<void> {
    const { kept, keeper } = this;
    if (!kept || !keeper || kept.book !== of.book) return;
    const isFirst = kept.of === undefined;
    kept.findings = findings;
    kept.sketches = sketches;
    kept.of = of;
    this.find(kept);
    if (!isFirst) return;
    const outcome = await keeper.load(of);
    kept.saved = outcome.ok ? decodeReview(outcome.value) : undefined;
    if (!outcome.ok) {
      kept.trouble = `What was said before is not known, and nothing can be said: ${outcome.failure.message}`;
    } else if (!kept.saved) {
      kept.trouble =
        'What was said before cannot be understood, and nothing can be said: it is of another version.';
    }
    this.find(kept);
    if (this.kept === kept) this.changed();
  }

  /** The workbook that is looked at; empty for none. */
  get book(): string {
    return this.kept?.book ?? '';
  }

  /** Prints of the formulas that were seen; nothing before that was loaded. */
  get seen(): string | undefined {
    return this.kept?.saved?.seen;
  }

  addSeen(prints: string): void {
    const { kept, keeper } = this;
    if (!kept?.saved || !keeper) return;
    const saved = withSeen(kept.saved, prints);
    if (saved.seen === kept.saved.seen) return;
    kept.saved = saved;
    kept.later ??= keeper.clock.after(seenAfter, () => {
      kept.later = undefined;
      void this.save(kept, keeper);
    });
  }

  /** What waits to be saved need not wait longer. */
  private saveNow(): void {
    const { kept, keeper } = this;
    if (!kept?.later || !keeper) return;
    kept.later();
    kept.later = undefined;
    void this.save(kept, keeper);
  }

  of(finding: FindingRow): Said | undefined {
    return this.kept?.found.get(finding);
  }

  /** True if something can be said now. */
  get isOpen(): boolean {
    return this.kept?.saved !== undefined && this.kept.sketches !== undefined;
  }

  /** What keeps words from being kept; empty for nothing. */
  get trouble(): string {
    return this.kept?.trouble ?? '';
  }

  /** "5 of 12 said: 2 faults, 2 fine, 1 for later"; empty where there is nothing to say. */
  get progress(): string {
    const { kept } = this;
    if (!kept?.saved || kept.findings.length === 0) return '';
    const of = (state: State) =>
      [...kept.found.values()].filter((said) => said.state === state).length;
    const parts = [
      [of('fault'), count(of('fault'), 'fault')],
      [of('fine'), `${String(of('fine'))} fine`],
      [of('later'), `${String(of('later'))} for later`],
    ] as const;
    const told = parts.flatMap(([number, text]) => (number > 0 ? [text] : [])).join(', ');
    const all = `${String(kept.found.size)} of ${count(kept.findings.length, 'finding')} judged`;
    return told === '' ? all : `${all}: ${told}`;
  }

  /** `state`: nothing to take back what was said. */
  say(finding: FindingRow, state: State | undefined, note: string): void {
    const { kept, keeper } = this;
    if (!kept?.saved || !kept.sketches || !keeper) return;
    const said = state && { state, note: note.slice(0, noteLimit), at: keeper.now() };
    kept.saved = withSaid(kept.saved, kept.found, kept.sketches, finding, said);
    this.find(kept);
    this.changed();
    void this.save(kept, keeper);
  }

  private find(kept: Kept): void {
    if (!kept.saved || !kept.sketches) return;
    kept.found = saidOf(kept.saved, kept.findings, kept.sketches);
  }

  /** One after the other; what was said meanwhile goes with the next. */
  private async save(kept: Kept, keeper: ReviewKeeper): Promise<void> {
    kept.isStale = true;
    if (kept.saving) return;
    kept.saving = true;
    while (kept.isStale && kept.saved && kept.of) {
      kept.isStale = false;
      const { saved } = kept;
      const isEmpty = saved.snapshots.length === 0 && saved.seen === '';
      const outcome = await keeper.save(kept.of, isEmpty ? null : encodeReview(saved));
      kept.trouble = outcome.ok ? '' : `What was said is not kept: ${outcome.failure.message}`;
    }
    kept.saving = false;
    if (this.kept === kept) this.changed();
  }
}
