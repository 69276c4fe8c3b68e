// What is known of a workbook: results by the text they were asked with, and cells in the boxes they
// were read in. Known only as long as nothing can have changed: the owner clears it when it may.

import { covers, type Area } from '../address/area';
import type { Grid } from '../protocol/json';
import type { Result } from './Result';

export const resultLimit = 5_000;
const boxLimit = 200;

type Box = { sheet: string; area: Area; values: Grid };

export class ResultCache {
  private results = new Map<string, Result>();
  private boxes: Box[] = [];
  private book = '';
  /** Raised whenever everything known is let go. */
  epoch = 0;

  get size(): number {
    return this.results.size;
  }

  clear(): void {
    this.results.clear();
    this.boxes = [];
    this.epoch += 1;
  }

  /** Only one workbook is known at a time. */
  enter(book: string): void {
    if (book === this.book) return;
    this.book = book;
    this.clear();
  }

  find(text: string): Result | undefined {
    const result = this.results.get(text);
    if (!result) return undefined;
    this.results.delete(text);
    this.results.set(text, result);
    return result;
  }

  keep(text: string, result: Result): void {
    this.results.delete(text);
    this.results.set(text, result);
    if (this.results.size <= resultLimit) return;
    const oldest = this.results.keys().next();
    if (!oldest.done) this.results.delete(oldest.value);
  }

  keepCells(sheet: string, area: Area, values: Grid): void {
    this.boxes.unshift({ sheet, area, values });
    if (this.boxes.length > boxLimit) this.boxes.pop();
  }

  cells(sheet: string, area: Area): Grid | undefined {
    const box = this.boxes.find((one) => one.sheet === sheet && covers(one.area, area));
    if (!box) return undefined;
    const { top, left } = box.area;
    return box.values
      .slice(area.top - top, area.bottom - top + 1)
      .map((row) => row.slice(area.left - left, area.right - left + 1));
  }
}
