// The workbooks that are read, or were: each by itself, at the same time where the user goes from one
// to the other. Only what the user looks at begins to be read.

import type { ModelClient } from '../model/ModelClient';
import type { Scalar } from '../protocol/json';
import type { CellPlace } from '../protocol/verbs';
import { positionOf } from '../evaluation/routes';
import { BookScan, type ScanPorts } from './BookScan';

export type ScansPorts = Omit<ScanPorts, 'model' | 'inFront'>;

export class Scans {
  private readonly books = new Map<string, BookScan>();
  private front = '';

  constructor(
    readonly model: ModelClient,
    private readonly ports: ScansPorts,
  ) {}

  /** The workbook is in front now. */
  enter(book: string): void {
    this.front = book;
  }

  /** Nothing where the workbook was never looked at. */
  begun(book: string): BookScan | undefined {
    return this.books.get(book);
  }

  of(book: string): BookScan {
    let scan = this.books.get(book);
    if (!scan) {
      const { model, ports } = this;
      const inFront = (other: string) => other === this.front;
      scan = new BookScan(book, { ...ports, model, inFront });
      this.books.set(book, scan);
    }
    return scan;
  }

  /** The model is lost: what is looked at is read anew. */
  forget(): void {
    for (const scan of this.books.values()) scan.stop();
    this.books.clear();
    this.ports.changed();
  }

  /** A cell as it was just read; one that is not as the model has it tells that its sheet changed. */
  async observe({ book, sheet, addr }: CellPlace, formula: string, value: Scalar): Promise<void> {
    const scan = this.books.get(book);
    const position = positionOf(addr);
    if (!scan?.hasSheets || !position) return;
    const args = { sheet, ...position, formula, value };
    const told = await this.model.ask(book, 'compare', args).catch(() => 'unknown' as const);
    // A sheet that a whole scan never met was added since, or renamed.
    const isNew = scan.state.status === 'done' && !scan.hasRead(sheet);
    if (told === 'differs' || isNew) scan.noticeChange(sheet);
  }
}
