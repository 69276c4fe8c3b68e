// What the reviewer says of the findings of the workbook that is looked at: loaded when it is first
// looked at, found again in its findings, saved with every word.

import { count } from '../format/words';
import type { FindingRow } from '../model/messages';
import type { SheetSketch } from '../model/sketch';
import type { Outcome } from '../protocol/Outcome';
import type { Json } from '../protocol/json';
import {
  decodeReview,
  encodeReview,
  noteLimit,
  saidOf,
  withSaid,
  type Said,
  type SaidOf,
  type SavedReview,
  type State,
} from './said';

export type ReviewKeeper = {
  load(book: string): Promise<Outcome<Json>>;
  save(book: string, review: Json): Promise<Outcome<null>>;
  /** As ISO has it. */
  now(): string;
};

type Kept = {
  book: string;
  /** Nothing before it was loaded, and where it cannot be. */
  saved: SavedReview | undefined;
  findings: readonly FindingRow[];
  sketches: readonly SheetSketch[] | undefined;
  found: Map<FindingRow, SaidOf>;
  trouble: string;
  saving: boolean;
  /** Something was said since it began to be saved. */
  isStale: boolean;
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
    const begun: Kept = {
      book,
      saved: undefined,
      findings: [],
      sketches: undefined,
      found: new Map(),
      trouble: '',
      saving: false,
      isStale: false,
    };
    this.kept = begun;
    void keeper.load(book).then((outcome) => {
      begun.saved = outcome.ok ? decodeReview(outcome.value) : undefined;
      if (!outcome.ok) {
        begun.trouble = `What was said before is not known, and nothing can be said: ${outcome.failure.message}`;
      } else if (!begun.saved) {
        begun.trouble =
          'What was said before cannot be understood, and nothing can be said: it is of another version.';
      }
      this.find(begun);
      if (this.kept === begun) this.changed();
    });
  }

  /** The workbook's findings as they are now, and what its sheets are. */
  settle(findings: readonly FindingRow[], sketches: readonly SheetSketch[] | undefined): void {
    if (!this.kept) return;
    this.kept.findings = findings;
    this.kept.sketches = sketches;
    this.find(this.kept);
  }

  of(finding: FindingRow): Said | undefined {
    return this.kept?.found.get(finding);
  }

  /** Whether something can be said now. */
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
    while (kept.isStale && kept.saved) {
      kept.isStale = false;
      const { saved } = kept;
      const review = saved.snapshots.length > 0 ? encodeReview(saved) : null;
      const outcome = await keeper.save(kept.book, review);
      kept.trouble = outcome.ok ? '' : `What was said is not kept: ${outcome.failure.message}`;
    }
    kept.saving = false;
    if (this.kept === kept) this.changed();
  }
}
