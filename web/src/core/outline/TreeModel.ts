// The outline as rows: what is open, which row is the active one, and how one gets from row to row.

import type { Item, Outline } from './Item';

/** A new tree is opened as far as it stays this short. */
const openedAtFirst = 200;

export type Move = 'up' | 'down' | 'pageUp' | 'pageDown' | 'first' | 'last' | 'in' | 'out';

export class TreeModel {
  private readonly open = new Set<Item>();
  private shown: Item[] = [];
  private places = new Map<Item, number>();
  private current: Item;

  constructor(readonly outline: Outline) {
    this.current = outline.root;
    let level = [outline.root];
    let count = 1;
    while (level.length > 0) {
      const next = level.flatMap((item) => item.children);
      count += next.length;
      if (count > openedAtFirst && level[0] !== outline.root) break;
      for (const item of level) if (item.children.length > 0) this.open.add(item);
      level = next;
    }
    this.lay();
  }

  get rows(): readonly Item[] {
    return this.shown;
  }

  get active(): Item {
    return this.current;
  }

  get activeIndex(): number {
    return this.places.get(this.current) ?? 0;
  }

  isOpen(item: Item): boolean {
    return this.open.has(item);
  }

  activate(item: Item): void {
    let covered = false;
    for (let at = item.parent; at; at = at.parent) {
      if (this.open.has(at)) continue;
      this.open.add(at);
      covered = true;
    }
    this.current = item;
    if (covered) this.lay();
  }

  toggle(item: Item, open = !this.open.has(item)): void {
    if (item.children.length === 0 || open === this.open.has(item)) return;
    if (open) this.open.add(item);
    else {
      this.open.delete(item);
      for (let at = this.current.parent; at; at = at.parent) if (at === item) this.current = item;
    }
    this.lay();
  }

  /** Opens the active row and its siblings. */
  openSiblings(): void {
    for (const item of this.current.parent?.children ?? [this.current]) {
      if (item.children.length > 0) this.open.add(item);
    }
    this.lay();
  }

  move(how: Move, page = 10): void {
    const at = this.activeIndex;
    switch (how) {
      case 'in':
        if (this.open.has(this.current)) this.step(at + 1);
        else this.toggle(this.current, true);
        break;
      case 'out':
        if (this.open.has(this.current)) this.toggle(this.current, false);
        else if (this.current.parent) this.current = this.current.parent;
        break;
      case 'up':
        this.step(at - 1);
        break;
      case 'down':
        this.step(at + 1);
        break;
      case 'pageUp':
        this.step(at - page);
        break;
      case 'pageDown':
        this.step(at + page);
        break;
      case 'first':
        this.step(0);
        break;
      case 'last':
        this.step(this.shown.length - 1);
        break;
    }
  }

  /** Goes to the next row whose text begins with `prefix`; the active one counts when it is long. */
  find(prefix: string, textOf: (item: Item) => string): boolean {
    const wanted = prefix.toLowerCase();
    const skip = prefix.length > 1 ? 0 : 1;
    for (let i = skip; i < this.shown.length + skip; i++) {
      const item = this.shown[(this.activeIndex + i) % this.shown.length];
      if (!item || !textOf(item).toLowerCase().startsWith(wanted)) continue;
      this.current = item;
      return true;
    }
    return false;
  }

  /** The innermost item whose text holds the place `at` of the formula. */
  itemAt(at: number): Item {
    let found = this.outline.root;
    for (;;) {
      const inner = found.children.find(({ node }) => node.start <= at && at < node.end);
      if (!inner) return found;
      found = inner;
    }
  }

  private step(index: number): void {
    const item = this.shown[Math.max(0, Math.min(index, this.shown.length - 1))];
    if (item) this.current = item;
  }

  private lay(): void {
    const rows: Item[] = [];
    const stack: Item[] = [this.outline.root];
    for (let item = stack.pop(); item; item = stack.pop()) {
      rows.push(item);
      if (!this.open.has(item)) continue;
      for (let i = item.children.length - 1; i >= 0; i--) stack.push(item.children[i] as Item);
    }
    this.shown = rows;
    this.places = new Map(rows.map((item, i) => [item, i]));
  }
}
