// One of the lists as the page shows it: asked for when it is looked at, with rows that open and
// close and one of them that is active.

import type { Move } from '../outline/TreeModel';
import type { Outcome } from '../protocol/Outcome';
import { remark, type PlaceRow } from './PlaceList';

export type PlaceState =
  | { status: 'empty' | 'asking' }
  /** `note`: what the list leaves out; empty for nothing. */
  | { status: 'known'; note: string }
  | { status: 'failed'; reason: string };

export type ShownRow = { row: PlaceRow; level: number };

/** A row among its siblings' children, by what it says: found again when the list is made anew. */
type Path = string;

const empty: PlaceState = { status: 'empty' };

export class PlaceView {
  private held: PlaceState = empty;
  private key = '';
  private index = 0;
  private top: readonly PlaceRow[] = [];
  private shown: readonly ShownRow[] = [];
  private readonly open = new Map<PlaceRow, readonly PlaceRow[]>();
  private readonly paths = new Map<PlaceRow, Path>();
  /** What the user opened and closed, and in which list: read again it is the same one. */
  private readonly wished = new Map<Path, boolean>();
  private wishedIn = '';
  /** The row that was active, where it is not there again yet: what holds it is being asked for. */
  private wanted: Path | undefined;

  constructor(private readonly changed: () => void) {}

  get state(): PlaceState {
    return this.held;
  }

  get rows(): readonly ShownRow[] {
    return this.shown;
  }

  get activeIndex(): number {
    return this.index;
  }

  get active(): PlaceRow | undefined {
    return this.shown[this.index]?.row;
  }

  isOpen(row: PlaceRow): boolean {
    return this.open.has(row);
  }

  /**
   * Asks, unless what `key` stands for is known or being asked already. Gives what was answered,
   * as long as that is still wanted.
   */
  async load<T>(
    key: string,
    ask: () => Promise<Outcome<T>>,
    rowsOf: (value: T) => readonly PlaceRow[],
  ): Promise<T | undefined> {
    if (key === this.key) return undefined;
    if (key !== this.wishedIn) {
      this.forget();
      this.wished.clear();
      this.wishedIn = key;
    }
    this.key = key;
    if (this.held.status !== 'known') this.held = { status: 'asking' };
    const outcome = await ask();
    if (key !== this.key) return undefined;
    if (outcome.ok) this.layAgain(rowsOf(outcome.value), '');
    else {
      this.lay([], '');
      this.held = { status: 'failed', reason: outcome.failure.message };
    }
    this.changed();
    return outcome.ok ? outcome.value : undefined;
  }

  /** True if the list is still that of `key`. */
  isOf(key: string): boolean {
    return key === this.key;
  }

  /** More is known of the same places now; the active place stays. */
  refine(key: string, rows: readonly PlaceRow[], note: string): void {
    if (key !== this.key) return;
    this.layAgain(rows, note);
    this.changed();
  }

  forget(): void {
    this.key = '';
    this.lay([], '');
    this.held = empty;
    this.activate(0);
  }

  /** Loaded the next time it is asked anew; until that is answered its rows stay. */
  outdate(): void {
    this.key = '';
    if (this.held.status === 'asking') this.held = empty;
  }

  activate(index: number): void {
    this.wanted = undefined;
    this.goTo(index);
  }

  toggle(index: number): void {
    const row = this.shown[index]?.row;
    if (!row?.inner) return;
    const isOpen = this.open.delete(row);
    this.wished.set(this.paths.get(row) ?? '', !isOpen);
    if (!isOpen) this.openRow(row);
    this.show(this.active ?? row, index);
  }

  move(how: Move, page: number): void {
    const { active, index } = this;
    const isOpen = active !== undefined && this.open.has(active);
    const toggles = how === 'in' ? active?.inner !== undefined && !isOpen : how === 'out' && isOpen;
    if (toggles) {
      this.toggle(index);
      return;
    }
    const to: Record<Move, number> = {
      up: index - 1,
      down: index + 1,
      pageUp: index - page,
      pageDown: index + page,
      first: 0,
      last: this.shown.length - 1,
      in: isOpen ? index + 1 : index,
      out: this.parentOf(index),
    };
    this.activate(to[how]);
  }

  /** The next row with a tag. */
  find(direction: 1 | -1): void {
    const total = this.shown.length;
    for (let i = 1; i <= total; i++) {
      const at = (this.index + direction * i + total * 2) % total;
      if (this.shown[at]?.row.tag) {
        this.activate(at);
        return;
      }
    }
  }

  private lay(rows: readonly PlaceRow[], note: string): void {
    this.top = rows;
    this.open.clear();
    this.paths.clear();
    this.place(rows, '');
    this.shown = this.flat(rows, 1, []);
    this.held = { status: 'known', note };
  }

  /** The same list with other rows: the active one stays, or what holds it until that was asked for. */
  private layAgain(rows: readonly PlaceRow[], note: string): void {
    const { active } = this;
    const path = this.wanted ?? (active && this.paths.get(active));
    this.lay(rows, note);
    const again = path === undefined ? -1 : this.indexOf(path);
    const place = active?.place;
    const beside = this.shown.findIndex(
      ({ row }) => place && row.place?.sheet === place.sheet && row.place?.first === place.first,
    );
    if (again < 0 && beside >= 0) this.activate(beside);
    else if (path !== undefined) this.findAgain(path);
    else this.activate(0);
  }

  /** Takes the row of `path` as the active one, or what holds it until it is there. */
  private findAgain(path: Path): void {
    const again = this.indexOf(path);
    this.wanted = again < 0 ? path : undefined;
    this.goTo(again >= 0 ? again : this.holderOf(path));
  }

  private indexOf(path: Path): number {
    return this.shown.findIndex(({ row }) => this.paths.get(row) === path);
  }

  /** The nearest row that is there and held the one of `path`. */
  private holderOf(path: Path): number {
    for (let above = path; above !== ''; above = above.slice(0, above.lastIndexOf('\n'))) {
      const at = this.indexOf(above);
      if (at >= 0) return at;
    }
    return 0;
  }

  private goTo(index: number): void {
    this.index = Math.max(0, Math.min(index, this.shown.length - 1));
  }

  /** Notes where the rows are, and opens those that are open at first or were opened before. */
  private place(rows: readonly PlaceRow[], above: Path): void {
    for (const row of rows) {
      const path = `${above}\n${row.place?.sheet ?? ''}!${row.text}`;
      this.paths.set(row, path);
      if (!row.inner) continue;
      if (this.wished.get(path) ?? row.open === true) this.openRow(row);
    }
  }

  private openRow(row: PlaceRow): void {
    const inner = row.inner?.();
    if (!inner) return;
    const path = this.paths.get(row) ?? '';
    if (!(inner instanceof Promise)) {
      this.open.set(row, inner);
      this.place(inner, path);
      return;
    }
    const waiting = [remark('Looking…')];
    this.open.set(row, waiting);
    const fill = (rows: readonly PlaceRow[]): void => {
      // Closed meanwhile, or the list is another one.
      if (this.open.get(row) !== waiting) return;
      this.open.set(row, rows);
      this.place(rows, path);
      this.show(this.active, this.index);
      if (this.wanted !== undefined) this.findAgain(this.wanted);
      this.changed();
    };
    inner.then(fill, () => {
      fill([remark('This cannot be told now.')]);
    });
  }

  /** The rows anew; the active one stays, or what stands in its place. */
  private show(active: PlaceRow | undefined, otherwise: number): void {
    this.shown = this.flat(this.top, 1, []);
    const again = this.shown.findIndex((one) => one.row === active);
    this.goTo(again >= 0 ? again : otherwise);
  }

  private flat(rows: readonly PlaceRow[], level: number, shown: ShownRow[]): ShownRow[] {
    for (const row of rows) {
      shown.push({ row, level });
      const inner = this.open.get(row);
      if (inner) this.flat(inner, level + 1, shown);
    }
    return shown;
  }

  private parentOf(index: number): number {
    const level = this.shown[index]?.level ?? 1;
    for (let at = index - 1; at >= 0; at--) if ((this.shown[at]?.level ?? 1) < level) return at;
    return index;
  }
}
