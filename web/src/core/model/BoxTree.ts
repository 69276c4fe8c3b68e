// Which of very many rectangles of a sheet meet an area: a tree of bounding boxes, packed into arrays
// once and only read after that.

import type { Area } from '../address/area';

const fanout = 16;
/** Bits of a row's or column's place in the order of boxes. */
const placeBits = 15;
/** More boxes than a sheet can have: the factor that keeps a box's number beside its place. */
const mostBoxes = 2 ** 23;

/** Spreads the low 15 bits so that a free bit stands between each two. */
function spread(bits: number): number {
  let x = bits & 0x7fff;
  x = (x | (x << 8)) & 0x00ff00ff;
  x = (x | (x << 4)) & 0x0f0f0f0f;
  x = (x | (x << 2)) & 0x33333333;
  return (x | (x << 1)) & 0x55555555;
}

/** How large a box is, roughly: boxes of one size are packed together. */
function sizeClass(rows: number, cols: number): number {
  const most = Math.max(rows, cols);
  return most <= 32 ? 0 : most <= 1_024 ? 1 : most <= 32_768 ? 2 : 3;
}

export class BoxTree {
  /** Four numbers for each box: top, left, bottom, right. The leaves first, then what bounds them. */
  private readonly bounds: Int32Array;
  /** Of a leaf the number of its box. */
  private readonly items: Int32Array;
  /** Where each level begins; the leaves are level 0. */
  private readonly levels: number[] = [0];

  /** `boxes`: four numbers for each; a box is known by its number in there. */
  constructor(boxes: Int32Array) {
    const count = boxes.length / 4;
    let total = count;
    for (let level = count; level > 1;) {
      this.levels.push(total);
      level = Math.ceil(level / fanout);
      total += level;
    }
    this.bounds = new Int32Array(total * 4);
    this.items = new Int32Array(count);
    this.pack(boxes, count);
    this.bound(total);
  }

  /** Tells the number of every box that meets `area`, until `found` gives true: that is enough. */
  search({ top, left, bottom, right }: Area, found: (box: number) => unknown): void {
    const { bounds, items, levels } = this;
    const count = items.length;
    if (count === 0) return;
    const stack: number[] = [levels.length - 1, bounds.length / 4 - 1];
    while (stack.length > 0) {
      const node = stack.pop() as number;
      const level = stack.pop() as number;
      const at = node * 4;
      if (
        (bounds[at] as number) > bottom ||
        (bounds[at + 2] as number) < top ||
        (bounds[at + 1] as number) > right ||
        (bounds[at + 3] as number) < left
      ) {
        continue;
      }
      if (level === 0) {
        if (found(items[node] as number) === true) return;
        continue;
      }
      const below = levels[level - 1] as number;
      const start = below + (node - (levels[level] as number)) * fanout;
      const end = Math.min(start + fanout, levels[level] as number);
      for (let child = start; child < end; child++) stack.push(level - 1, child);
    }
  }

  /** Boxes that lie near each other stand near each other: in the order of interleaved places. */
  private pack(boxes: Int32Array, count: number): void {
    let height = 1;
    let width = 1;
    for (let i = 0; i < count; i++) {
      height = Math.max(height, boxes[i * 4 + 2] as number);
      width = Math.max(width, boxes[i * 4 + 3] as number);
    }
    const rowScale = ((1 << placeBits) - 1) / (height + 1);
    const colScale = ((1 << placeBits) - 1) / (width + 1);
    // Class, place and number in one number of 53 bits, because plain numbers sort fast.
    const keys = new Float64Array(count);
    for (let i = 0; i < count; i++) {
      const top = boxes[i * 4] as number;
      const left = boxes[i * 4 + 1] as number;
      const bottom = boxes[i * 4 + 2] as number;
      const right = boxes[i * 4 + 3] as number;
      const row = spread(((top + bottom) / 2) * rowScale);
      const col = spread(((left + right) / 2) * colScale);
      const place = Math.floor((row * 2 + col) / 4);
      const code = sizeClass(bottom - top + 1, right - left + 1) * 2 ** 28 + place;
      keys[i] = code * mostBoxes + i;
    }
    keys.sort();
    for (let i = 0; i < count; i++) {
      const box = (keys[i] as number) % mostBoxes;
      this.items[i] = box;
      for (let side = 0; side < 4; side++) {
        this.bounds[i * 4 + side] = boxes[box * 4 + side] as number;
      }
    }
  }

  private bound(total: number): void {
    const { bounds, levels } = this;
    for (let level = 1; level < levels.length; level++) {
      const start = levels[level] as number;
      const end = levels[level + 1] ?? total;
      const below = levels[level - 1] as number;
      for (let node = start; node < end; node++) {
        const first = below + (node - start) * fanout;
        const last = Math.min(first + fanout, start);
        let top = Infinity;
        let left = Infinity;
        let bottom = 0;
        let right = 0;
        for (let child = first; child < last; child++) {
          top = Math.min(top, bounds[child * 4] as number);
          left = Math.min(left, bounds[child * 4 + 1] as number);
          bottom = Math.max(bottom, bounds[child * 4 + 2] as number);
          right = Math.max(right, bounds[child * 4 + 3] as number);
        }
        bounds.set([top, left, bottom, right], node * 4);
      }
    }
  }
}
