// Mistakes that people make, planted into a recorded workbook, one at a time. Knows formulas and
// nothing of what looks for mistakes.

import { print } from '../../src/core/formula/print';
import { parse } from '../../src/core/formula/Parser';
import {
  readReference,
  writeReference,
  type ReferenceShape,
} from '../../src/core/formula/reference';
import { plainName, walk, type Node, type NodeOf } from '../../src/core/formula/syntax';
import { isCalculated } from '../../src/core/model/SheetCells';
import type { Piece, Recording } from './recording';

export const mistakes = [
  'range shorter by one',
  'reference shifted',
  'constant over a formula',
  'dollar sign lost',
  'dollar sign added',
  'dollar sign lost and filled on',
  'operator changed',
  'function changed',
  'lookup table slid',
  'block from the wrong place',
  'sum takes in its total',
  'row outside the range',
] as const;
export type Mistake = (typeof mistakes)[number];

export type Place = { sheet: string; row: number; col: number };
export type Planted = { places: Place[]; before: string; after: string; undo: () => void };

/** From 0 up to 1, always the same for a seed. */
export function random(seed: number): () => number {
  let state = seed >>> 0;
  return () => {
    state = (state + 0x6d2b79f5) >>> 0;
    let t = state;
    t = Math.imul(t ^ (t >>> 15), t | 1);
    t ^= t + Math.imul(t ^ (t >>> 7), t | 61);
    return ((t ^ (t >>> 14)) >>> 0) / 4_294_967_296;
  };
}

export class Workbook {
  readonly formulas: Place[] = [];
  private readonly pieces = new Map<string, Piece[]>();

  constructor(readonly recording: Recording) {
    for (const piece of recording.pieces) {
      const own = this.pieces.get(piece.sheet);
      if (own) own.push(piece);
      else this.pieces.set(piece.sheet, [piece]);
      piece.formulas.forEach((line, i) => {
        line.forEach((_, j) => {
          const place = { sheet: piece.sheet, row: piece.area.top + i, col: piece.area.left + j };
          if (this.formula(place) !== '') this.formulas.push(place);
        });
      });
    }
  }

  /** The relative formula; empty for none. */
  formula(place: Place): string {
    const { text, value } = this.at(place);
    return isCalculated(text, value) ? text : '';
  }

  value(place: Place) {
    return this.at(place).value;
  }

  set(place: Place, formula: string): () => void {
    const piece = this.pieceOf(place);
    if (!piece) return () => undefined;
    const line = piece.formulas[place.row - piece.area.top] as string[];
    const col = place.col - piece.area.left;
    const before = line[col] as string;
    line[col] = formula;
    return () => {
      line[col] = before;
    };
  }

  /** The cells joined to this one that have the same formula, as far as they matter. */
  like(place: Place): Place[] {
    const formula = this.formula(place);
    const found = [place];
    const seen = new Set([`${String(place.row)} ${String(place.col)}`]);
    for (let at = 0; at < found.length && found.length < 400; at++) {
      const { row, col } = found[at] as Place;
      for (const [down, right] of [
        [1, 0],
        [-1, 0],
        [0, 1],
        [0, -1],
      ] as const) {
        const next = { sheet: place.sheet, row: row + down, col: col + right };
        const key = `${String(next.row)} ${String(next.col)}`;
        if (seen.has(key) || this.formula(next) !== formula) continue;
        seen.add(key);
        found.push(next);
      }
    }
    return found;
  }

  private pieceOf({ sheet, row, col }: Place): Piece | undefined {
    return this.pieces
      .get(sheet)
      ?.find(
        ({ area }) =>
          area.top <= row && area.bottom >= row && area.left <= col && area.right >= col,
      );
  }

  private at(place: Place) {
    const piece = this.pieceOf(place);
    if (!piece) return { text: '', value: null };
    const [i, j] = [place.row - piece.area.top, place.col - piece.area.left];
    return { text: piece.formulas[i]?.[j] ?? '', value: piece.values[i]?.[j] ?? null };
  }
}

type Draw = <T>(items: readonly T[]) => T | undefined;

/** The formula with one of some nodes written otherwise; nothing where there is none of them. */
function changed(
  formula: string,
  draw: Draw,
  pick: (node: Node) => string | undefined,
): string | undefined {
  const { root } = parse(formula, 'r1c1');
  const found: { node: Node; text: string }[] = [];
  walk(root, (node) => {
    const text = pick(node);
    if (text !== undefined) found.push({ node, text });
  });
  const one = draw(found);
  if (!one) return undefined;
  return `=${print(root, { replace: (node) => (node === one.node ? one.text : undefined) })}`;
}

function shapeOf(node: Node): ReferenceShape | undefined {
  return node.kind === 'reference' ? readReference(node.text, 'r1c1') : undefined;
}

function written(node: Node, shape: ReferenceShape): string {
  return (node.kind === 'reference' ? node.prefix : '') + writeReference(shape, 'r1c1');
}

/** Of a range of several rows or columns, which it goes along; nothing for others. */
function along(shape: ReferenceShape, at: Place): 'row' | 'col' | undefined {
  const { from, to } = shape;
  if (!to?.row || !to.col || !from.row || !from.col) return undefined;
  const line = (one: { at: number; fixed: boolean }, base: number) =>
    one.fixed ? one.at : one.at + base;
  const rows = line(to.row, at.row) - line(from.row, at.row);
  const cols = line(to.col, at.col) - line(from.col, at.col);
  return rows >= 2 && rows >= cols ? 'row' : cols >= 2 ? 'col' : undefined;
}

function moved(
  shape: ReferenceShape,
  end: 'from' | 'to' | 'both',
  axis: 'row' | 'col',
  by: number,
): ReferenceShape {
  const move = (corner: ReferenceShape['from'], is: boolean) => {
    const own = corner[axis];
    return is && own ? { ...corner, [axis]: { ...own, at: own.at + by } } : corner;
  };
  const from = move(shape.from, end !== 'to');
  return shape.to ? { from, to: move(shape.to, end !== 'from') } : { from };
}

const swaps: Record<string, string | undefined> = {
  '+': '-',
  '-': '+',
  '*': '/',
  '/': '*',
  '<': '<=',
  '>': '>=',
  '<=': '<',
  '>=': '>',
  '=': '<>',
};
const otherFunctions: Record<string, string | undefined> = {
  SUM: 'AVERAGE',
  AVERAGE: 'SUM',
  MAX: 'MIN',
  MIN: 'MAX',
  COUNT: 'COUNTA',
  COUNTA: 'COUNT',
  SUMIFS: 'AVERAGEIFS',
  SUMIF: 'AVERAGEIF',
  ROUND: 'ROUNDUP',
  AND: 'OR',
  OR: 'AND',
  SUMPRODUCT: 'SUM',
  IFERROR: 'IFNA',
  DEC2BIN: 'DEC2OCT',
  DEC2HEX: 'DEC2OCT',
  DEC2OCT: 'DEC2HEX',
  ROW: 'COLUMN',
};
const lookups: Record<string, number[] | undefined> = {
  VLOOKUP: [1],
  HLOOKUP: [1],
  MATCH: [1],
  LOOKUP: [1, 2],
  INDEX: [0],
  SUMIFS: [0, 1, 3],
  SUMIF: [0, 2],
  COUNTIF: [0],
  COUNTIFS: [0, 2],
  XLOOKUP: [1, 2],
};

function binary(node: NodeOf<'binary'>): string | undefined {
  const other = swaps[node.operator];
  return other && print(node.left) + other + print(node.right);
}

/** The relative formula as somebody got it wrong; nothing where that mistake is not to be made here. */
function wrong(mistake: Mistake, formula: string, at: Place, draw: Draw): string | undefined {
  const one = (pick: (node: Node) => string | undefined) => changed(formula, draw, pick);
  const sign = draw([-1, 1]) ?? 1;
  switch (mistake) {
    case 'range shorter by one':
      return one((node) => {
        const shape = shapeOf(node);
        const axis = shape && along(shape, at);
        if (!axis) return undefined;
        return written(
          node,
          sign > 0 ? moved(shape, 'from', axis, 1) : moved(shape, 'to', axis, -1),
        );
      });
    case 'reference shifted': {
      const axis = draw(['row', 'col'] as const) ?? 'row';
      return one((node) => {
        const shape = shapeOf(node);
        if (!shape?.from.row || !shape.from.col) return undefined;
        const own = shape.from[axis] as { at: number; fixed: boolean };
        const line = own.fixed ? own.at : own.at + at[axis];
        return line + sign < 1 ? undefined : written(node, moved(shape, 'both', axis, sign));
      });
    }
    case 'dollar sign lost':
    case 'dollar sign lost and filled on':
    case 'dollar sign added': {
      const isLost = mistake !== 'dollar sign added';
      const axis = draw(['row', 'col'] as const) ?? 'row';
      return one((node) => {
        const shape = shapeOf(node);
        const own = shape?.from[axis];
        if (!own || own.fixed !== isLost) return undefined;
        const flip = (corner: ReferenceShape['from']) => {
          const line = corner[axis];
          if (line?.fixed !== isLost) return corner;
          return {
            ...corner,
            [axis]: { at: isLost ? line.at - at[axis] : line.at + at[axis], fixed: !isLost },
          };
        };
        return written(
          node,
          shape.to ? { from: flip(shape.from), to: flip(shape.to) } : { from: flip(shape.from) },
        );
      });
    }
    case 'operator changed':
      return one((node) => (node.kind === 'binary' ? binary(node) : undefined));
    case 'function changed':
      return one((node) => {
        const other = node.kind === 'call' ? otherFunctions[plainName(node.name)] : undefined;
        return node.kind === 'call' && other
          ? `${other}(${node.args.map((arg) => print(arg)).join(',')})`
          : undefined;
      });
    case 'lookup table slid': {
      const slides = new Set<Node>();
      walk(parse(formula, 'r1c1').root, () => undefined);
      return one((node) => {
        if (node.kind === 'call') {
          for (const i of lookups[plainName(node.name)] ?? []) {
            const arg = node.args[i];
            if (arg) slides.add(arg);
          }
        }
        const shape = slides.has(node) ? shapeOf(node) : undefined;
        const axis = shape && along(shape, at);
        return axis ? written(node, moved(shape, 'both', axis, 1)) : undefined;
      });
    }
    case 'sum takes in its total':
    case 'row outside the range': {
      const isOwn = mistake === 'sum takes in its total';
      const sums = new Set<Node>();
      return one((node) => {
        if (node.kind === 'call' && /^(SUM|AVERAGE|MAX|MIN)$/i.test(node.name))
          node.args.forEach((arg) => sums.add(arg));
        const shape = sums.has(node) ? shapeOf(node) : undefined;
        const axis = shape && along(shape, at);
        const end = axis && shape.to?.[axis];
        if (!axis || !end || (node.kind === 'reference' && node.prefix !== '')) return undefined;
        const line = end.fixed ? end.at : end.at + at[axis];
        if (line !== at[axis] - 1) return undefined;
        return written(node, moved(shape, 'to', axis, isOwn ? 1 : -1));
      });
    }
    default:
      return undefined;
  }
}

/** Plants one there; nothing where that mistake cannot be made with this cell. */
export function plant(
  book: Workbook,
  mistake: Mistake,
  at: Place,
  next: () => number,
): Planted | undefined {
  const draw: Draw = (items) => items[Math.floor(next() * items.length)];
  const formula = book.formula(at);
  if (mistake === 'constant over a formula') {
    return typeof book.value(at) === 'number' ? put(book, [at], () => '') : undefined;
  }
  if (mistake === 'block from the wrong place') {
    const [down, right] = draw([
      [1, 0],
      [-1, 0],
      [0, 1],
      [0, -1],
    ] as const) ?? [1, 0];
    const away = 1 + Math.floor(next() * 6);
    const length = 1 + Math.floor(next() * 4);
    const places = Array.from({ length }, (_, i) => ({
      sheet: at.sheet,
      row: at.row + Math.abs(right) * i,
      col: at.col + Math.abs(down) * i,
    })).filter((place) => book.formula(place) !== '');
    const from = (place: Place) =>
      book.formula({ ...place, row: place.row + down * away, col: place.col + right * away });
    const isOther = places.every(
      (place) => from(place) !== '' && from(place) !== book.formula(place),
    );
    return isOther ? put(book, places, from) : undefined;
  }
  const after = wrong(mistake, formula, at, draw);
  if (after === undefined || after === formula) return undefined;
  // A row that was inserted is outside of all sums of its column.
  let places = mistake === 'row outside the range' ? book.like(at) : [at];
  if (mistake === 'dollar sign lost and filled on') {
    places = book.like(at).filter(({ row, col }) => row >= at.row && col === at.col);
    if (places.length < 2) return undefined;
  }
  return put(book, places, () => after);
}

function put(book: Workbook, places: Place[], formula: (place: Place) => string): Planted {
  const [first] = places as [Place];
  const before = book.formula(first);
  const texts = places.map(formula);
  const undo = places.map((place, i) => book.set(place, texts[i] ?? ''));
  return {
    places,
    before,
    after: texts[0] ?? '',
    undo: () => {
      undo.forEach((one) => {
        one();
      });
    },
  };
}
