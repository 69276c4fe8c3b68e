// What a human would call cells that are shown by their address alone. The model knows it where their
// sheet was read; it is asked for all that were looked at together, a moment later.

import { areaAddress } from '../address/area';
import type { Cells } from '../model/messages';
import type { Scans } from './Scans';

/** What stands on a page and a few more; beyond that all are forgotten. */
const keptLimit = 2_000;

type Known = { text: string; version: number };

export class CellLabels {
  private readonly known = new Map<string, Known>();
  private readonly wanted = new Map<string, { book: string; cells: Cells; version: number }>();

  constructor(
    private readonly scans: Scans,
    private readonly changed: () => void,
  ) {}

  /** Empty where there is none, or none is known yet. */
  of(book: string, cells: Cells): string {
    const scan = this.scans.begun(book);
    if (scan?.hasRead(cells.sheet) !== true) return '';
    const { version } = scan;
    const key = `${book}\n${cells.sheet}!${areaAddress(cells.area)}`;
    const known = this.known.get(key);
    if (known?.version !== version && this.wanted.get(key)?.version !== version) {
      if (this.wanted.size === 0) void Promise.resolve().then(() => this.ask());
      this.wanted.set(key, { book, cells, version });
    }
    return known?.text ?? '';
  }

  private async ask(): Promise<void> {
    const wanted = new Map(this.wanted);
    for (const book of new Set([...wanted.values()].map((one) => one.book))) {
      const own = [...wanted].filter(([, one]) => one.book === book);
      const cells = own.map(([, one]) => one.cells);
      const texts = await this.scans.model.ask(book, 'labels', { cells }).catch(() => []);
      if (this.known.size + own.length > keptLimit) this.known.clear();
      own.forEach(([key, { version }], i) => {
        this.known.set(key, { text: texts[i] ?? '', version });
      });
    }
    for (const [key, one] of wanted) if (this.wanted.get(key) === one) this.wanted.delete(key);
    if (this.wanted.size > 0) void this.ask();
    this.changed();
  }
}
