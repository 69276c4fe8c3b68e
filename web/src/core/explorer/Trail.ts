// The cells the user came through: the selected one first, then precedents, one drilled into from
// the other. Going back keeps what lies ahead, until another way is taken.

import type { Result } from '../evaluation/Result';
import type { TreeModel } from '../outline/TreeModel';
import type { Formula } from '../formula/syntax';
import type { CellPlace } from '../protocol/verbs';

export type Stop = {
  place: CellPlace;
  row: number;
  col: number;
  /** Empty for a constant. */
  text: string;
  result: Result;
  /** The tree as the user left it; nothing for a constant. */
  tree: TreeModel | undefined;
  formula: Formula | undefined;
};

export function samePlace(one: CellPlace, other: CellPlace): boolean {
  return one.book === other.book && one.sheet === other.sheet && one.addr === other.addr;
}

export class Trail {
  private list: Stop[] = [];
  private at = -1;

  get stops(): readonly Stop[] {
    return this.list;
  }

  get index(): number {
    return this.at;
  }

  get here(): Stop | undefined {
    return this.list[this.at];
  }

  begin(stop: Stop | undefined): void {
    this.list = stop ? [stop] : [];
    this.at = this.list.length - 1;
  }

  push(stop: Stop): void {
    this.list = [...this.list.slice(0, this.at + 1), stop];
    this.at = this.list.length - 1;
  }

  go(index: number): boolean {
    if (index === this.at || !this.list[index]) return false;
    this.at = index;
    return true;
  }
}
