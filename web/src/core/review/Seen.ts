// Which of a workbook's distinct formulas the reviewer has seen: those that the panel has shown, of a
// cell or of a finding that was opened or judged. What is seen before the workbook was read waits.

import type { Cells } from '../model/messages';
import type { ModelClient } from '../model/ModelClient';
import { grouped, count } from '../format/words';
import type { Sayings } from './Sayings';

export type SeenCount = { seen: number; distinct: number };

/** Cells that wait of one workbook, and workbooks of which some do: of more the oldest go. */
const waitingLimit = 2_000;
const booksLimit = 3;

export class Seen {
  private readonly waiting = new Map<string, Cells[]>();
  private counted: { book: string; of: SeenCount } | undefined;
  private busy = false;
  private isStale = false;

  constructor(
    private readonly sayings: Sayings,
    private readonly changed: () => void,
    private readonly model?: ModelClient,
  ) {}

  /** The panel has shown the formulas of these cells. */
  add(book: string, cells: readonly Cells[]): void {
    const all = this.waiting.get(book) ?? [];
    this.waiting.delete(book);
    this.waiting.set(book, [...all, ...cells].slice(-waitingLimit));
    const [oldest] = this.waiting.keys();
    if (this.waiting.size > booksLimit && oldest !== undefined) this.waiting.delete(oldest);
    if (this.counted?.book === book) void this.settle(book);
  }

  /** How many of how many; nothing before the workbook was read and what was kept of it loaded. */
  of(book: string): SeenCount | undefined {
    return this.counted?.book === book ? this.counted.of : undefined;
  }

  /** "34 of 150 distinct formulas seen"; empty where that is not known. */
  progress(book: string): string {
    const now = this.of(book);
    if (!now || now.distinct === 0) return '';
    return `${grouped(String(now.seen))} of ${count(now.distinct, 'distinct formula')} seen`;
  }

  /** The model has read the workbook whole, and the sayings know what was seen before. */
  async settle(book: string): Promise<void> {
    if (this.busy) {
      this.isStale = true;
      return;
    }
    this.busy = true;
    do {
      this.isStale = false;
      await this.count(book);
    } while (this.isStale && this.sayings.book === book);
    this.busy = false;
    this.changed();
  }

  private async count(book: string): Promise<void> {
    const { model, sayings } = this;
    if (!model || sayings.book !== book || sayings.seen === undefined) return;
    const cells = this.waiting.get(book) ?? [];
    this.waiting.delete(book);
    try {
      const news = cells.length > 0 ? await model.ask(book, 'prints', { cells }) : '';
      if (sayings.book !== book) return;
      sayings.addSeen(news);
      const of = await model.ask(book, 'seen', { prints: sayings.seen });
      this.counted = { book, of };
    } catch {
      // Of a model that was lost all is told anew.
      this.counted = undefined;
    }
  }
}
