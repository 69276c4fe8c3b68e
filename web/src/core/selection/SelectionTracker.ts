// Follows the selected cell: asks the spreadsheet how it is, reads the cell, and does both again
// when an event says so. One question at a time. Every reason to ask again raises the generation,
// and an answer of an older generation is let go, so that what is shown never goes back in time.

import { qualified } from '../address/area';
import { slowAfter } from '../protocol/Conveyor';
import type { NativeEvent } from '../protocol/events';
import { notRunningCode, type Failure, type Outcome } from '../protocol/Outcome';
import type { Cell, CellPlace, Probe, RangeTooBig, RangeValues } from '../protocol/verbs';
import type { Cancel, Clock } from '../time/Clock';
import type { CellContent, SelectionState, SelectionStatus } from './state';

export type SpreadsheetQuestions = {
  probe(): Promise<Outcome<Probe>>;
  readCell(): Promise<Outcome<Cell>>;
  readRange(address: string): Promise<Outcome<RangeValues | RangeTooBig>>;
};

type Step = 'probe' | 'read';

/** The first wait before asking again; each further one is twice as long, up to the limit. */
export const firstRetry = 500;

/** How long to wait at most between questions, where waiting may help at all. */
const longestRetry: Partial<Record<SelectionStatus, number>> = {
  notRunning: 5_000,
  noWorkbook: 5_000,
  busy: 5_000,
  unreadable: 30_000,
};

function samePlace(one: CellPlace, other: CellPlace): boolean {
  return one.book === other.book && one.sheet === other.sheet && one.addr === other.addr;
}

export class SelectionTracker {
  private state: SelectionState = { status: 'starting', fresh: false, slow: false, paused: false };
  private generation = 0;
  private next: Step | undefined;
  private asking = false;
  private asleep = false;
  private retries = 0;
  /** The generation in which the spreadsheet last said that it is well. */
  private provedWell: number | undefined;
  private cancelRetry: Cancel | undefined;
  /** Where the latest event says the user is, while that event is the newest reason to ask. */
  private announced: CellPlace | undefined;
  /** The generation that only looks once more at the cell that is shown. */
  private refreshing: number | undefined;
  /** True if it was the page that last brought another sheet to the front. */
  private displaced = false;

  constructor(
    private readonly spreadsheet: SpreadsheetQuestions,
    private readonly clock: Clock,
    private readonly publish: (state: SelectionState) => void,
  ) {}

  start(): void {
    this.askAgain('probe');
  }

  handle(event: NativeEvent): void {
    switch (event.name) {
      case 'selectionChanged':
        this.askAgain('read', event.place);
        break;
      case 'summon':
      case 'probeNeeded':
        this.askAgain('probe');
        break;
      case 'surface':
        if (this.asleep || !event.wasVisible) this.askAgain('probe');
        break;
      case 'followState':
        this.change({ paused: event.paused });
        if (!event.paused) this.refresh();
        break;
      case 'cleanHide':
        this.sleep();
        break;
      case 'step':
        break;
    }
  }

  /** The user asks to try again. */
  retry(): void {
    this.askAgain('probe');
  }

  /** Reads the cell once more unless something is being asked already. */
  refresh(): void {
    if (this.asking || this.asleep || this.state.status !== 'ready') return;
    this.askAgain('read');
    this.refreshing = this.generation;
  }

  /**
   * The page has brought another sheet to the front. The cell that is selected there is none that the
   * user went to, and is not shown because the panel is looked at again.
   */
  displace(): void {
    this.displaced = true;
  }

  /** The panel is hidden: ask nothing until it is shown again. */
  sleep(): void {
    this.asleep = true;
    this.next = undefined;
    this.stopRetry();
  }

  private askAgain(step: Step, announced?: CellPlace): void {
    this.generation += 1;
    this.announced = announced;
    this.asleep = false;
    this.retries = 0;
    this.stopRetry();
    this.next = step;
    if (this.state.fresh) this.change({ fresh: false });
    this.pump();
  }

  private pump(): void {
    if (this.asleep) this.next = undefined;
    if (this.asking || !this.next) return;
    const step = this.next;
    this.next = undefined;
    this.asking = true;
    const generation = this.generation;
    const cancelSlow = this.clock.after(slowAfter, () => {
      this.change({ slow: true });
    });
    const answered = step === 'probe' ? this.probe(generation) : this.read(generation);
    void answered.then(() => {
      cancelSlow();
      this.asking = false;
      if (!this.next && this.state.slow) this.change({ slow: false });
      this.pump();
    });
  }

  private async probe(generation: number): Promise<void> {
    const outcome = await this.spreadsheet.probe();
    if (generation !== this.generation) return;
    if (!outcome.ok) this.settle(statusOf(outcome.failure) ?? 'busy', outcome.failure);
    else if (outcome.value.state !== 'ok') this.settle(outcome.value.state);
    else {
      this.provedWell = generation;
      this.next = 'read';
    }
  }

  private async read(generation: number): Promise<void> {
    const outcome = await this.spreadsheet.readCell();
    if (!this.stillWanted(generation, outcome)) return;
    if (!outcome.ok) {
      this.readFailed(outcome.failure);
      return;
    }
    const seen = this.generation;
    const content = await this.withErrorText(outcome.value);
    if (seen !== this.generation) return;
    if (this.isNotTheUsers(content)) this.change({ fresh: true });
    else this.accept(content);
  }

  private isNotTheUsers(content: CellContent): boolean {
    const { content: own } = this.state;
    return (
      this.displaced &&
      this.refreshing === this.generation &&
      own !== undefined &&
      !samePlace(own, content)
    );
  }

  /**
   * The native side works in order, so an answer that comes after an event was read after it: when
   * it shows the very cell that the event announced, it is as good as a new one.
   */
  private stillWanted(generation: number, outcome: Outcome<Cell>): boolean {
    if (generation === this.generation) return true;
    if (!outcome.ok || !this.announced || !samePlace(outcome.value, this.announced)) return false;
    this.next = undefined;
    return true;
  }

  /** An error value has no text of its own in a cell's reply; as a range of one cell it has. */
  private async withErrorText(cell: Cell): Promise<CellContent> {
    if (cell.value !== null) return cell;
    const outcome = await this.spreadsheet.readRange(qualified(cell.sheet, cell.addr));
    if (!outcome.ok || 'tooBig' in outcome.value) return cell;
    const text = outcome.value.values[0]?.[0];
    return typeof text === 'string' && text.startsWith('#') ? { ...cell, error: text } : cell;
  }

  private accept(content: CellContent): void {
    this.retries = 0;
    this.announced = undefined;
    this.displaced = false;
    const { paused } = this.state;
    this.state = { status: 'ready', content, fresh: true, slow: false, paused };
    this.publish(this.state);
  }

  private readFailed(failure: Failure): void {
    const status = statusOf(failure);
    if (status) this.settle(status, failure);
    else if (this.provedWell === this.generation) this.settle('unreadable', failure);
    else this.next = 'probe';
  }

  /** The spreadsheet cannot be read now: say so, and ask again later where that may help. */
  private settle(status: SelectionStatus, failure?: Failure): void {
    const { content, paused, slow } = this.state;
    const keep = status === 'busy' && content;
    this.state = {
      status,
      ...(keep ? { content } : {}),
      fresh: false,
      slow,
      paused,
      ...(failure ? { failure } : {}),
    };
    this.publish(this.state);
    this.scheduleRetry(longestRetry[status]);
  }

  private scheduleRetry(longest: number | undefined): void {
    if (longest === undefined || this.asleep) return;
    const wait = Math.min(longest, firstRetry * 2 ** this.retries);
    this.retries += 1;
    this.stopRetry();
    this.cancelRetry = this.clock.after(wait, () => {
      this.next = 'probe';
      this.pump();
    });
  }

  private stopRetry(): void {
    this.cancelRetry?.();
    this.cancelRetry = undefined;
  }

  private change(part: Partial<SelectionState>): void {
    this.state = { ...this.state, ...part };
    this.publish(this.state);
  }
}

/** What a failure says of the spreadsheet itself; nothing when it is about the question alone. */
function statusOf(failure: Failure): SelectionStatus | undefined {
  if (failure.code === notRunningCode) return 'notRunning';
  switch (failure.kind) {
    case 'timeout':
    case 'unanswered':
    case 'busy':
      return 'busy';
    case 'denied':
      return 'denied';
    case 'detached':
      return 'detached';
    default:
      return undefined;
  }
}
