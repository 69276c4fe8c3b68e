// Which hue each relative formula of a workbook has. Given once and kept, so that a sheet that is read
// later, or again, changes no other. A formula differs from those that stood beside it where it was
// met first, as far as hues go.

import type { Block, SheetCells } from '../model/SheetCells';
import { hueCount } from './codes';

/** So many cells are gone through before whoever waits may take a turn. */
const turn = 50_000;

export class Hues {
  /** By the formula's number: its hue and one more; 0 for a formula that was not met yet. */
  private known = new Uint8Array(64);
  /** How many formulas have each hue. */
  private readonly used = new Uint32Array(hueCount);
  private readonly seen = new WeakSet<SheetCells>();

  /** From 0; of a formula on a sheet that was added. */
  of(formula: number): number {
    return Math.max(0, (this.known[formula] ?? 0) - 1);
  }

  /** `formulas`: how many numbers of formulas there are. */
  *add(cells: SheetCells, formulas: number): Generator<undefined, void> {
    if (this.seen.has(cells)) return;
    this.seen.add(cells);
    if (this.known.length < formulas) {
      const larger = new Uint8Array(formulas * 2);
      larger.set(this.known);
      this.known = larger;
    }
    let passed = 0;
    let above: Block | undefined;
    for (const block of inOrder(cells.blocks)) {
      const isUnder =
        above?.area.left === block.area.left &&
        above.area.right === block.area.right &&
        above.area.bottom + 1 === block.area.top;
      this.addBlock(block, isUnder ? above : undefined);
      above = block;
      passed += block.formulas.length;
      if (passed > turn) {
        passed = 0;
        yield undefined;
      }
    }
  }

  private addBlock({ area, formulas }: Block, above: Block | undefined): void {
    const { known } = this;
    const width = area.right - area.left + 1;
    const upper = above ? above.formulas.subarray(-width) : new Int32Array(width);
    for (let at = 0; at < formulas.length; at++) {
      const formula = formulas[at] as number;
      if (formula === 0 || known[formula] !== 0) continue;
      const col = at % width;
      const up = at < width ? (upper[at] as number) : (formulas[at - width] as number);
      let beside = bit(known, up);
      if (col > 0) beside |= bit(known, formulas[at - 1] as number);
      if (col + 1 < width) beside |= bit(known, formulas[at + 1] as number);
      if (at + width < formulas.length) beside |= bit(known, formulas[at + width] as number);
      known[formula] = this.choose(beside) + 1;
    }
  }

  /** The least used hue of those that are not beside. */
  private choose(beside: number): number {
    let chosen = -1;
    for (let hue = 0; hue < hueCount; hue++) {
      if ((beside & (1 << hue)) !== 0) continue;
      if (chosen < 0 || (this.used[hue] as number) < (this.used[chosen] as number)) chosen = hue;
    }
    this.used[chosen] = (this.used[chosen] as number) + 1;
    return chosen;
  }
}

function bit(known: Uint8Array, formula: number): number {
  const hue = formula === 0 ? 0 : (known[formula] as number);
  return hue === 0 ? 0 : 1 << (hue - 1);
}

function inOrder(blocks: readonly Block[]): Block[] {
  return [...blocks].sort((a, b) => a.area.left - b.area.left || a.area.top - b.area.top);
}
