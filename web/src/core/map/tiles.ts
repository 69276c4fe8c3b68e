// A sheet's picture in tiles: for each sample what its cells are. A sample is one cell, or at higher
// levels a rectangle of cells, twice as high or as wide with each level. Only what is filled counts in
// it; an error always shows. Pure.

import { meet, type Area } from '../address/area';
import { Kind, type Block, type SheetCells } from '../model/SheetCells';
import { Code } from './codes';
import type { Hues } from './Hues';
import { trackAtPlace, tracksOf, placesOfTracks, runsOf, type Tracks } from './Tracks';

/** Samples along each side of a whole tile. */
export const tileSize = 256;

/** A tile by its levels and by where it stands among those of its levels. */
export type Tile = { rowLevel: number; colLevel: number; row: number; col: number };

/** What of the sheet the picture shows. */
export type Frame = {
  /** Another one when the sheet was read anew. */
  stamp: number;
  rows: Tracks;
  cols: Tracks;
};

export type TileSamples = { width: number; height: number; codes: Uint8Array };

/** So many cells are gone through before whoever waits may take a turn. */
const turn = 50_000;

export function tileKey({ rowLevel, colLevel, row, col }: Tile): string {
  return `${String(rowLevel)} ${String(colLevel)} ${String(row)} ${String(col)}`;
}

/** From the sheet's first cell to the last track of each direction; nothing for an empty sheet. */
export function filledArea({ rows, cols }: Pick<Frame, 'rows' | 'cols'>): Area | undefined {
  const bottom = rows.stretches.at(-1)?.last;
  const right = cols.stretches.at(-1)?.last;
  if (bottom === undefined || right === undefined) return undefined;
  return { top: 1, left: 1, bottom, right };
}

/** Samples that the tile has: fewer at the picture's edges. */
export function tileExtent({ rows, cols }: Frame, tile: Tile): { width: number; height: number } {
  const along = (count: number, level: number, at: number) =>
    Math.max(0, Math.min(tileSize, Math.ceil(count / 2 ** level) - at * tileSize));
  return {
    width: along(cols.count, tile.colLevel, tile.col),
    height: along(rows.count, tile.rowLevel, tile.row),
  };
}

export function* frameOf(cells: SheetCells, stamp: number): Generator<undefined, Frame> {
  const { extent } = cells;
  if (!extent) return { stamp, rows: tracksOf([]), cols: tracksOf([]) };
  const { top, left, bottom, right } = extent;
  const rows = new Uint8Array(bottom - top + 1);
  const cols = new Uint8Array(right - left + 1);
  let passed = 0;
  for (const { area, kinds, formulas } of cells.blocks) {
    const width = area.right - area.left + 1;
    for (let at = 0; at < kinds.length; at++) {
      if (kinds[at] === Kind.Blank && formulas[at] === 0) continue;
      rows[area.top - top + Math.floor(at / width)] = 1;
      cols[area.left - left + (at % width)] = 1;
    }
    passed += kinds.length;
    if (passed > turn) {
      passed = 0;
      yield undefined;
    }
  }
  return { stamp, rows: tracksOf(runsOf(rows, top)), cols: tracksOf(runsOf(cols, left)) };
}

/** The sheet's tracks that the tile is of. */
function areaOf({ rows, cols }: Frame, tile: Tile): Area {
  const { width, height } = tileExtent({ rows, cols, stamp: 0 }, tile);
  const row = tile.row * tileSize;
  const col = tile.col * tileSize;
  const end = (first: number, samples: number, level: number, count: number) =>
    Math.min(count, (first + samples) * 2 ** level) - 1;
  return {
    top: trackAtPlace(rows, row * 2 ** tile.rowLevel),
    left: trackAtPlace(cols, col * 2 ** tile.colLevel),
    bottom: trackAtPlace(rows, end(row, height, tile.rowLevel, rows.count)),
    right: trackAtPlace(cols, end(col, width, tile.colLevel, cols.count)),
  };
}

/** For each track from `first` to `last` the sample that it falls into; -1 where there is none. */
function samples(
  tracks: Tracks,
  first: number,
  last: number,
  level: number,
  at: number,
): Int32Array {
  const found = placesOfTracks(tracks, first, last);
  for (let i = 0; i < found.length; i++) {
    const place = found[i] as number;
    if (place >= 0) found[i] = Math.floor(place / 2 ** level) - at * tileSize;
  }
  return found;
}

/** A vote in each sample: the code of most cells wins where it is that of more than half of them. */
class Votes {
  readonly codes: Uint8Array;
  private readonly votes: Int32Array;

  constructor(size: number) {
    this.codes = new Uint8Array(size);
    this.votes = new Int32Array(size);
  }

  add(sample: number, code: number): void {
    const { codes, votes } = this;
    const now = codes[sample] as number;
    if (now === Code.Error) return;
    const count = votes[sample] as number;
    if (code === Code.Error || count === 0) {
      codes[sample] = code;
      votes[sample] = 1;
    } else votes[sample] = now === code ? count + 1 : count - 1;
  }
}

export function* samplesOf(
  cells: SheetCells,
  frame: Frame,
  tile: Tile,
  hues: Hues,
): Generator<undefined, TileSamples> {
  const { width, height } = tileExtent(frame, tile);
  const votes = new Votes(width * height);
  const area = areaOf(frame, tile);
  let passed = 0;
  for (const block of cells.blocks) {
    const part = meet(block.area, area);
    if (!part) continue;
    const rows = samples(frame.rows, part.top, part.bottom, tile.rowLevel, tile.row);
    const cols = samples(frame.cols, part.left, part.right, tile.colLevel, tile.col);
    addCells(block, part, { rows, cols, width }, hues, votes);
    passed += rows.length * cols.length;
    if (passed > turn) {
      passed = 0;
      yield undefined;
    }
  }
  return { width, height, codes: votes.codes };
}

type Targets = { rows: Int32Array; cols: Int32Array; width: number };

function addCells(block: Block, part: Area, to: Targets, hues: Hues, votes: Votes): void {
  const { area, kinds, formulas } = block;
  const own = area.right - area.left + 1;
  for (let i = 0; i < to.rows.length; i++) {
    const row = to.rows[i] as number;
    if (row < 0) continue;
    let at = (part.top + i - area.top) * own + part.left - area.left;
    for (let j = 0; j < to.cols.length; j++, at++) {
      const formula = formulas[at] as number;
      const kind = kinds[at] as Kind;
      if (formula === 0 && kind === Kind.Blank) continue;
      const col = to.cols[j] as number;
      if (col >= 0) votes.add(row * to.width + col, codeOf(kind, formula, hues));
    }
  }
}

function codeOf(kind: Kind, formula: number, hues: Hues): number {
  if (kind === Kind.Error) return Code.Error;
  if (formula !== 0) return Code.Formula + hues.of(formula);
  return kind === Kind.Text ? Code.Text : Code.Input;
}
