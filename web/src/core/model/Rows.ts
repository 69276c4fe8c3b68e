// Records of whole numbers in one array that grows: what there are hundreds of thousands of.

export class Rows {
  private numbers: Int32Array;
  private used = 0;

  constructor(private readonly width: number) {
    this.numbers = new Int32Array(width * 64);
  }

  get count(): number {
    return this.used / this.width;
  }

  /** `record` has as many numbers as a record has; gives its number. */
  add(record: readonly number[]): number {
    if (this.used + this.width > this.numbers.length) {
      const larger = new Int32Array(this.numbers.length * 2);
      larger.set(this.numbers);
      this.numbers = larger;
    }
    // One by one: copying a few numbers out of a list as one costs several times as much.
    for (let field = 0; field < this.width; field++) {
      this.numbers[this.used + field] = record[field] as number;
    }
    this.used += this.width;
    return this.count - 1;
  }

  get(row: number, field: number): number {
    return this.numbers[row * this.width + field] as number;
  }

  set(row: number, field: number, value: number): void {
    this.numbers[row * this.width + field] = value;
  }

  /** The records themselves, one behind the other; not to be kept while more are added. */
  get all(): Int32Array {
    return this.numbers.subarray(0, this.used);
  }
}
