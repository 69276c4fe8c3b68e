// One of the lists as the page shows it: asked for when it is looked at, with a row that is active.

import type { Move } from '../outline/TreeModel';
import type { Outcome } from '../protocol/Outcome';
import type { PlaceRow } from './PlaceList';

export type PlaceState =
  | { status: 'empty' | 'asking' }
  | { status: 'known'; rows: readonly PlaceRow[] }
  | { status: 'failed'; reason: string };

export class PlaceView {
  private held: PlaceState = { status: 'empty' };
  private key = '';
  private index = 0;

  constructor(private readonly changed: () => void) {}

  get state(): PlaceState {
    return this.held;
  }

  get rows(): readonly PlaceRow[] {
    return this.held.status === 'known' ? this.held.rows : [];
  }

  get activeIndex(): number {
    return this.index;
  }

  get active(): PlaceRow | undefined {
    return this.rows[this.index];
  }

  /** Asks, unless what `key` stands for is known or being asked already. */
  load<T>(key: string, ask: () => Promise<Outcome<T>>, rowsOf: (value: T) => PlaceRow[]): void {
    if (key === this.key) return;
    this.key = key;
    this.held = { status: 'asking' };
    this.index = 0;
    void ask().then((outcome) => {
      if (key !== this.key) return;
      this.held = outcome.ok
        ? { status: 'known', rows: rowsOf(outcome.value) }
        : { status: 'failed', reason: outcome.failure.message };
      this.changed();
    });
  }

  forget(): void {
    this.key = '';
    this.held = { status: 'empty' };
    this.index = 0;
  }

  activate(index: number): void {
    this.index = Math.max(0, Math.min(index, this.rows.length - 1));
  }

  move(how: Move, page: number): void {
    const to: Record<Move, number> = {
      up: this.index - 1,
      down: this.index + 1,
      pageUp: this.index - page,
      pageDown: this.index + page,
      first: 0,
      last: this.rows.length - 1,
      in: this.index + 1,
      out: this.parentOf(this.index),
    };
    this.activate(to[how]);
  }

  /** The next row with a tag. */
  find(direction: 1 | -1): void {
    const total = this.rows.length;
    for (let i = 1; i <= total; i++) {
      const at = (this.index + direction * i + total * 2) % total;
      if (this.rows[at]?.tag) {
        this.activate(at);
        return;
      }
    }
  }

  private parentOf(index: number): number {
    for (let at = index - 1; at >= 0; at--) if (this.rows[at]?.level === 1) return at;
    return index;
  }
}
