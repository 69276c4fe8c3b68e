// One axis of a reference, rows or columns, and how it moves with the formula's cell. A reference's
// two ends are each fixed or at a distance from the cell; which of them comes first may change from
// cell to cell. Pure.

export type Span = {
  a: number;
  aFixed: boolean;
  b: number;
  bFixed: boolean;
};

export type Tracks = { first: number; last: number };

/** The tracks that the cells in tracks `first` to `last` use together; they never leave a gap. */
export function reach(span: Span, first: number, last: number): Tracks {
  const { a, aFixed, b, bFixed } = span;
  return {
    first: Math.min(aFixed ? a : a + first, bFixed ? b : b + first),
    last: Math.max(aFixed ? a : a + last, bFixed ? b : b + last),
  };
}

/**
 * Which of the cells in tracks `first` to `last` use any of the tracks `from` to `to`; `first` comes
 * out greater than `last` where none does.
 */
export function users(span: Span, first: number, last: number, from: number, to: number): Tracks {
  const { a, aFixed, b, bFixed } = span;
  // The nearer end must not lie behind `to`, and the farther one not before `from`.
  const highest = Math.max(
    aFixed ? (a <= to ? Infinity : -Infinity) : to - a,
    bFixed ? (b <= to ? Infinity : -Infinity) : to - b,
  );
  const lowest = Math.min(
    aFixed ? (a >= from ? -Infinity : Infinity) : from - a,
    bFixed ? (b >= from ? -Infinity : Infinity) : from - b,
  );
  return { first: Math.max(first, lowest), last: Math.min(last, highest) };
}

const isFixed = ({ aFixed, bFixed }: Span) => aFixed && bFixed;
const isMoving = ({ aFixed, bFixed }: Span) => !aFixed && !bFixed;
const isSingle = ({ a, b, aFixed, bFixed }: Span) => a === b && aFixed === bFixed;

function alike(one: Span, other: Span): boolean {
  return (isFixed(one) && isFixed(other)) || (isMoving(one) && isMoving(other));
}

/** From one to the other, as ":" has it; nothing where that is no span for every cell. */
export function joined(one: Span, other: Span): Span | undefined {
  if (isSingle(one) && isSingle(other)) {
    return { a: one.a, aFixed: one.aFixed, b: other.a, bFixed: other.aFixed };
  }
  if (!alike(one, other)) return undefined;
  const a = Math.min(one.a, one.b, other.a, other.b);
  const b = Math.max(one.a, one.b, other.a, other.b);
  return { a, aFixed: one.aFixed, b, bFixed: one.bFixed };
}

/** What both have; "none" where that is nothing; nothing told where it differs from cell to cell. */
export function crossed(one: Span, other: Span): Span | 'none' | undefined {
  if (!alike(one, other)) return undefined;
  const a = Math.max(Math.min(one.a, one.b), Math.min(other.a, other.b));
  const b = Math.min(Math.max(one.a, one.b), Math.max(other.a, other.b));
  return a > b ? 'none' : { a, aFixed: one.aFixed, b, bFixed: one.bFixed };
}
