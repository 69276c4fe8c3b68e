// Lets the sheet follow the page: marks and shows the cells of the active row a moment after it
// became the active one, and takes everything back when asked. What the page has put into the
// workbook is always known here.

import { count } from '../format/words';
import type { Job, Source } from '../protocol/Conveyor';
import type { Failure, Outcome } from '../protocol/Outcome';
import type { Colour, Marked, Revealed } from '../protocol/verbs';
import type { Cancel, Clock } from '../time/Clock';

export type FollowQuestions = {
  markCells(addresses: readonly string[], colour: Colour): Promise<Outcome<Marked>>;
  reveal(addresses: readonly string[]): Promise<Outcome<Revealed>>;
  clearMarks(): Promise<Outcome<{ removed: number }>>;
  /** The address of a name's cells; the name itself where there is none; nothing where nobody can
   * tell while another sheet is in front. */
  locate(name: string): Promise<string | undefined>;
};

/** Cells to show: what they are called, and their addresses with their sheets. */
export type Destination = {
  label: string;
  addresses: readonly string[];
  /** Those of the addresses that are names of the workbook. */
  names?: ReadonlySet<string>;
};

/** The active row has to stay the active one this long. */
export const followAfter = 80;
/** More are not marked at once: one call into the spreadsheet takes so many. */
export const addressLimit = 40;

const defaultColour: Colour = [255, 0, 255];

export type FollowState = {
  /** What is marked now; empty for nothing. */
  marked: string;
  /** The rows and columns that were unhidden for it; empty for none. */
  unhidden: string;
  /** True if something may be left to take back, whatever is known of it. */
  changed: boolean;
  notes: string[];
  /** True if the native side can mark at all. */
  able: boolean;
};

const nothingShown: FollowState = {
  marked: '',
  unhidden: '',
  changed: false,
  notes: [],
  able: true,
};

export class SheetFollower implements Source {
  private wanted: Destination | undefined;
  private clearing = false;
  /** Marks were in a workbook that is gone; the native side still keeps a record of them. */
  private orphaned = false;
  private cancel: Cancel | undefined;
  /** The refusal met last, as long as nothing has been marked since. */
  private refusal = '';
  private colour: Colour = defaultColour;
  private state: FollowState = nothingShown;
  /** The cells for which rows or columns were unhidden. */
  private unhiddenFor = '';

  constructor(
    private readonly questions: FollowQuestions,
    private readonly clock: Clock,
    /** There is something to ask. */
    private readonly wake: () => void,
    private readonly publish: (state: FollowState) => void,
    /** True if marking among rules of the user's costs the undo history in this spreadsheet. */
    private readonly costsUndo: boolean,
  ) {}

  get current(): FollowState {
    return this.state;
  }

  useColour(colour: Colour): void {
    this.colour = colour;
  }

  /** Marks and shows cells soon, unless others come first. Which ones is asked only then. */
  follow(destination: () => Destination | undefined): void {
    this.cancel?.();
    this.cancel = this.clock.after(followAfter, () => {
      const cells = destination();
      if (cells && cells.addresses.length > 0) this.go(cells);
    });
  }

  /** Marks and shows them now. */
  go(destination: Destination): void {
    this.cancel?.();
    if (!this.state.able) return;
    this.clearing = false;
    this.wanted = destination;
    this.wake();
  }

  /** Takes everything back. */
  clear(): void {
    this.cancel?.();
    this.wanted = undefined;
    this.clearing = this.state.able || this.state.changed;
    this.wake();
  }

  /** No workbook is open any more: nothing of ours is in one. */
  lose(): void {
    this.cancel?.();
    this.wanted = undefined;
    this.clearing = false;
    const { marked, unhidden, changed } = this.state;
    if (marked !== '' || unhidden !== '' || changed) this.orphaned = true;
    if (this.state.able) this.change(nothingShown);
  }

  /** There is a workbook again: the same one, perhaps, saved with its marks. */
  regain(): void {
    if (!this.orphaned) return;
    this.orphaned = false;
    this.clear();
  }

  /** `mayShow`: false while the spreadsheet must stay where it is; what is marked is taken back even so. */
  next(mayShow = true): Job | undefined {
    if (this.clearing) {
      this.clearing = false;
      return () => this.takeBack();
    }
    const { wanted } = this;
    if (!wanted || !mayShow) return undefined;
    this.wanted = undefined;
    return () => this.show(wanted);
  }

  private async show(destination: Destination): Promise<void> {
    const addresses: string[] = [];
    for (const address of destination.addresses.slice(0, addressLimit)) {
      const isName = destination.names?.has(address) === true;
      const found = isName ? await this.questions.locate(address) : address;
      if (found !== undefined) addresses.push(found);
    }
    if (addresses.length === 0) {
      const note = 'Not marked: where its cells are can be told only while its sheet is in front.';
      this.change({ ...this.state, notes: [note] });
      return;
    }
    const notes: string[] = [];
    if (destination.addresses.length > addressLimit) {
      notes.push(
        `Only the first ${count(addressLimit, 'area')} of ${destination.addresses.length.toString()} are marked.`,
      );
    }
    const marked = await this.questions.markCells(addresses, this.colour);
    if (!marked.ok) {
      this.failed(marked.failure);
      if (!this.state.able) return;
      notes.push(...this.state.notes);
    } else {
      if (marked.value.shadowed && this.costsUndo) {
        notes.push(
          'A rule of yours lies on these cells, so marking them cleared the undo history.',
        );
      }
      this.refusal = '';
      this.change({ ...this.state, marked: destination.label, notes, able: true });
    }
    // Something newer is wanted already, or nothing at all: the sheet need not move for this.
    if (this.wanted || this.clearing) return;
    const revealed = await this.questions.reveal(addresses);
    if (!revealed.ok) {
      this.change({ ...this.state, notes: [...notes, sentence(revealed.failure)] });
      return;
    }
    const { reason, unhid } = revealed.value;
    if (reason === 'multi-sheet') notes.push('On several sheets: marked, not scrolled to.');
    else if (reason === 'unbound') notes.push('Not scrolled to: there are no such cells.');
    // Rows that were unhidden for the same cells stay; those for others were hidden again.
    const [first = ''] = addresses;
    const unhidden = unhid ?? (first === this.unhiddenFor ? this.state.unhidden : '');
    this.unhiddenFor = first;
    this.change({ ...this.state, unhidden, changed: this.state.changed || unhidden !== '', notes });
  }

  private async takeBack(): Promise<void> {
    const cleared = await this.questions.clearMarks();
    this.refusal = '';
    if (cleared.ok) this.change(nothingShown);
    else
      this.change({
        ...this.state,
        changed: true,
        notes: [`Not cleared: ${sentence(cleared.failure)}`],
      });
  }

  /** A spreadsheet that refuses twice for the same reason would refuse every row of the tree. */
  private failed(failure: Failure): void {
    const unknown = failure.message.startsWith('unknown verb');
    const again = failure.kind === 'transport' && failure.message === this.refusal;
    this.refusal = failure.message;
    const able = !unknown && !again;
    const note = able
      ? `Not marked: ${sentence(failure)}`
      : 'Cells cannot be marked here. Space selects them instead.';
    this.change({ ...this.state, changed: this.state.changed || !unknown, notes: [note], able });
  }

  private change(state: FollowState): void {
    this.state = state;
    this.publish(state);
  }
}

function sentence(failure: Failure): string {
  return failure.kind === 'timeout' || failure.kind === 'unanswered'
    ? 'the spreadsheet took too long.'
    : failure.message || 'the spreadsheet refused.';
}
