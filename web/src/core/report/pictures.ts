// The sheets of a workbook as pictures for a report: few rectangles, however many cells there are, and
// where the findings lie in them, but for those of style. Pure.

import { areaAddress, type Area } from '../address/area';
import type { Finding } from '../audit/Finding';
import type { Code } from '../map/codes';
import type { Hues } from '../map/Hues';
import { placeOfTrack } from '../map/Tracks';
import { filledArea, frameOf, samplesOf, tileExtent, type Frame, type Tile } from '../map/tiles';
import type { WorkbookModel } from '../model/WorkbookModel';

/** In samples: a part of the picture, or what a finding lies in. */
export type Box = { left: number; top: number; width: number; height: number };

export type SheetPicture = {
  sheet: string;
  /** The address of all that is shown. */
  area: string;
  /** Samples, and how many rows and columns of the sheet each stands for. */
  width: number;
  height: number;
  rows: number;
  cols: number;
  /** What is not blank: the code, left, top, width and height of each part, one after the other. */
  parts: number[];
  /** Of each finding its first areas on the sheet. */
  findings: { rank: number; boxes: Box[] }[];
};

/** `left`: sheets with something in them of which there is no picture. */
export type Pictures = { sheets: SheetPicture[]; left: number };

/** More samples are not drawn side by side, or below each other. */
const mostCols = 120;
const mostRows = 160;
/** So many parts are drawn in all, of a sheet at least so few. */
const partsOfAll = 20_000;
const partsOfSheet = 2_500;
const fewestParts = 150;
const mostSheets = 120;
const mostFindings = 40;
const mostBoxes = 12;

export function* picturesOf(
  model: WorkbookModel,
  findings: readonly Finding[],
  hues: Hues,
): Generator<undefined, Pictures> {
  const filled: { number: number; frame: Frame }[] = [];
  for (const number of model.entry.sheets.keys()) {
    const cells = model.cellsOf(number);
    if (!cells) continue;
    yield* hues.add(cells, model.formulas.count);
    const frame = yield* frameOf(cells, 0);
    if (frame.rows.count > 0) filled.push({ number, frame });
  }
  const odd = findings.filter(({ level }) => level !== 'style');
  const shown = filled.slice(0, mostSheets);
  const share = Math.floor(partsOfAll / Math.max(1, shown.length));
  const limit = Math.max(fewestParts, Math.min(partsOfSheet, share));
  const sheets: SheetPicture[] = [];
  for (const { number, frame } of shown) {
    sheets.push(yield* pictureOf(model, number, frame, hues, limit, odd));
  }
  return { sheets, left: filled.length - shown.length };
}

function* pictureOf(
  model: WorkbookModel,
  number: number,
  frame: Frame,
  hues: Hues,
  limit: number,
  findings: readonly Finding[],
): Generator<undefined, SheetPicture> {
  const cells = model.cellsOf(number);
  const sheet = model.sheetName(number);
  const level = (count: number, most: number) => Math.max(0, Math.ceil(Math.log2(count / most)));
  const tile: Tile = {
    rowLevel: level(frame.rows.count, mostRows),
    colLevel: level(frame.cols.count, mostCols),
    row: 0,
    col: 0,
  };
  let parts: number[] = [];
  // Where too many parts are unlike each other a coarser picture shows as much.
  for (;;) {
    if (cells) parts = partsOf(yield* samplesOf(cells, frame, tile, hues));
    const { width, height } = tileExtent(frame, tile);
    if (parts.length / 5 <= limit || (width <= 1 && height <= 1)) break;
    if (height >= width) tile.rowLevel += 1;
    else tile.colLevel += 1;
  }
  const area = filledArea(frame);
  return {
    sheet,
    area: area ? areaAddress(area) : '',
    ...tileExtent(frame, tile),
    rows: 2 ** tile.rowLevel,
    cols: 2 ** tile.colLevel,
    parts,
    findings: findings
      .flatMap(({ rank, cells: all }) => {
        const own = all.filter((one) => one.sheet === sheet).slice(0, mostBoxes);
        return own.length > 0
          ? [{ rank, boxes: own.map((one) => boxOf(frame, tile, one.area)) }]
          : [];
      })
      .slice(0, mostFindings),
  };
}

/** At least a sample large; tracks behind the last one that is filled are at the picture's end. */
function boxOf(frame: Frame, tile: Tile, { top, left, bottom, right }: Area): Box {
  const { width, height } = tileExtent(frame, tile);
  const span = (first: number, last: number, level: number, count: number) => {
    const from = Math.min(count - 1, Math.floor(first / 2 ** level));
    return { from, size: Math.max(1, Math.min(count, Math.ceil(last / 2 ** level)) - from) };
  };
  const { rows, cols } = frame;
  const down = span(placeOfTrack(rows, top), placeOfTrack(rows, bottom) + 1, tile.rowLevel, height);
  const across = span(
    placeOfTrack(cols, left),
    placeOfTrack(cols, right) + 1,
    tile.colLevel,
    width,
  );
  return { left: across.from, top: down.from, width: across.size, height: down.size };
}

/** Rectangles of samples with one code: as wide as can be, then as high. */
function partsOf(samples: { width: number; height: number; codes: Uint8Array }): number[] {
  const { width, height } = samples;
  const codes = samples.codes.slice();
  const parts: number[] = [];
  for (let row = 0; row < height; row++) {
    for (let col = 0; col < width; col++) {
      const code = codes[row * width + col] as Code;
      if (code === 0) continue;
      const isRun = (track: number, to: number): boolean => {
        for (let at = col; at < to; at++) if (codes[track * width + at] !== code) return false;
        return true;
      };
      let right = col + 1;
      while (right < width && codes[row * width + right] === code) right += 1;
      let bottom = row + 1;
      while (bottom < height && isRun(bottom, right)) bottom += 1;
      for (let track = row; track < bottom; track++)
        codes.fill(0, track * width + col, track * width + right);
      parts.push(code, col, row, right - col, bottom - row);
      col = right - 1;
    }
  }
  return parts;
}
