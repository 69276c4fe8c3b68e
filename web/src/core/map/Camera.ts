// Which part of a sheet's picture is seen, and how large: the arithmetic of zooming and moving. One
// zoom for both directions, from 0, where the whole sheet is in sight, to 1, where cells have the size
// that they are drawn with at most; rows and columns come there at the same time. Pure.

import { isFolded, trackAtPlace, placeOfTrack, type Stretch } from './Tracks';
import type { Area } from '../address/area';
import { tileSize, type Frame, type Tile } from './tiles';

/** Where the picture is drawn, in points. */
export type Pane = { width: number; height: number };

/** The place that is at the pane's left upper corner. */
export type Camera = { zoom: number; x: number; y: number };

/** Points for a place of the columns and of the rows. */
export type Scale = { x: number; y: number };

/** A rectangle in points of the pane. */
export type Box = { left: number; top: number; width: number; height: number };

export const largest: Scale = { x: 72, y: 22 };
/** A cell is at most so many times as wide as high, or as high as wide, once it is wider than that. */
const wideBy = 8;
const highBy = 2;
const leastWide = 12;
const leastHigh = 6;

export const whole: Camera = { zoom: 0, x: 0, y: 0 };

/** With which the whole sheet is in sight. */
function fitting(frame: Frame, pane: Pane): Scale {
  const fit = (room: number, count: number, most: number) =>
    Math.min(most, room / Math.max(1, count));
  const x = fit(pane.width, frame.cols.count, largest.x);
  const y = fit(pane.height, frame.rows.count, largest.y);
  return {
    x: Math.min(x, Math.max(leastWide, wideBy * y)),
    y: Math.min(y, Math.max(leastHigh, highBy * x)),
  };
}

export function scaleOf(frame: Frame, pane: Pane, { zoom }: Camera): Scale {
  const least = fitting(frame, pane);
  return {
    x: least.x * (largest.x / least.x) ** zoom,
    y: least.y * (largest.y / least.y) ** zoom,
  };
}

/** How many times larger the picture is at zoom 1 than at zoom 0, in the direction where that is more. */
export function range(frame: Frame, pane: Pane): number {
  const least = fitting(frame, pane);
  return Math.max(largest.x / least.x, largest.y / least.y);
}

/** The same camera with nothing but the sheet in sight, as far as there is enough of that. */
export function clamped(frame: Frame, pane: Pane, camera: Camera): Camera {
  const zoom = Math.min(1, Math.max(0, camera.zoom));
  const scale = scaleOf(frame, pane, { ...camera, zoom });
  const most = (count: number, room: number) => Math.max(0, count - room);
  return {
    zoom,
    x: Math.min(Math.max(0, camera.x), most(frame.cols.count, pane.width / scale.x)),
    y: Math.min(Math.max(0, camera.y), most(frame.rows.count, pane.height / scale.y)),
  };
}

/** `factor` times as large, with what is at a point of the pane staying there. */
export function zoomed(
  frame: Frame,
  pane: Pane,
  camera: Camera,
  factor: number,
  at: { x: number; y: number },
): Camera {
  const room = range(frame, pane);
  const step = room > 1 ? Math.log(factor) / Math.log(room) : 0;
  const before = scaleOf(frame, pane, camera);
  const zoom = Math.min(1, Math.max(0, camera.zoom + step));
  const after = scaleOf(frame, pane, { ...camera, zoom });
  return clamped(frame, pane, {
    zoom,
    x: camera.x + at.x / before.x - at.x / after.x,
    y: camera.y + at.y / before.y - at.y / after.y,
  });
}

/** Moved by so many points, as when the sheet is taken and pulled. */
export function moved(
  frame: Frame,
  pane: Pane,
  camera: Camera,
  by: { x: number; y: number },
): Camera {
  const scale = scaleOf(frame, pane, camera);
  return clamped(frame, pane, {
    ...camera,
    x: camera.x - by.x / scale.x,
    y: camera.y - by.y / scale.y,
  });
}

/** With the cells in sight: moved no further than that takes, and with some tracks around them. */
export function showing(frame: Frame, pane: Pane, camera: Camera, area: Area): Camera {
  const scale = scaleOf(frame, pane, camera);
  const along = (from: number, first: number, last: number, room: number): number => {
    const margin = Math.min(2, Math.max(0, (room - (last - first)) / 2));
    if (first - margin < from) return first - margin;
    if (last + margin > from + room) return Math.min(first - margin, last + margin - room);
    return from;
  };
  const { rows, cols } = frame;
  const x = placeOfTrack(cols, area.left);
  const y = placeOfTrack(rows, area.top);
  return clamped(frame, pane, {
    ...camera,
    x: along(camera.x, x, placeOfTrack(cols, area.right) + 1, pane.width / scale.x),
    y: along(camera.y, y, placeOfTrack(rows, area.bottom) + 1, pane.height / scale.y),
  });
}

/** Where cells are drawn; some of it may be out of sight. */
export function boxOf(frame: Frame, camera: Camera, scale: Scale, area: Area): Box {
  const left = (placeOfTrack(frame.cols, area.left) - camera.x) * scale.x;
  const top = (placeOfTrack(frame.rows, area.top) - camera.y) * scale.y;
  const right = (placeOfTrack(frame.cols, area.right + 1) - camera.x) * scale.x;
  const bottom = (placeOfTrack(frame.rows, area.bottom + 1) - camera.y) * scale.y;
  return { left, top, width: right - left, height: bottom - top };
}

/** The cell at a point of the pane; nothing beside the picture. */
export function cellAt(
  frame: Frame,
  camera: Camera,
  scale: Scale,
  at: { x: number; y: number },
): { row: number; col: number } | undefined {
  const x = camera.x + at.x / scale.x;
  const y = camera.y + at.y / scale.y;
  if (x < 0 || y < 0 || x >= frame.cols.count || y >= frame.rows.count) return undefined;
  return { row: trackAtPlace(frame.rows, y), col: trackAtPlace(frame.cols, x) };
}

/** The level at which a sample is at least as large as a pixel: so none is lost. */
export function levelOf(scale: number, pixels: number): number {
  return Math.max(0, Math.ceil(-Math.log2(scale * pixels) - 1e-9));
}

/** The tiles in sight. `pixels`: of the screen for each point. */
export function tilesInSight(frame: Frame, pane: Pane, camera: Camera, pixels: number): Tile[] {
  const scale = scaleOf(frame, pane, camera);
  const rowLevel = levelOf(scale.y, pixels);
  const colLevel = levelOf(scale.x, pixels);
  const span = (from: number, room: number, level: number, count: number): [number, number] => {
    const size = tileSize * 2 ** level;
    return [Math.floor(from / size), Math.ceil(Math.min(count, from + room) / size)];
  };
  const [top, bottom] = span(camera.y, pane.height / scale.y, rowLevel, frame.rows.count);
  const [left, right] = span(camera.x, pane.width / scale.x, colLevel, frame.cols.count);
  const tiles: Tile[] = [];
  for (let row = top; row < bottom; row++) {
    for (let col = left; col < right; col++) tiles.push({ rowLevel, colLevel, row, col });
  }
  return tiles;
}

/** The tile that has all of the sheet, for as long as nothing finer is known. */
export function coarseTile(frame: Frame): Tile {
  return smallTile(frame, { width: tileSize, height: tileSize });
}

/** One with all of the sheet in it, small enough for a node of the overview. */
export function smallTile({ rows, cols }: Frame, pane: Pane): Tile {
  const level = (count: number, room: number) =>
    Math.max(0, Math.ceil(Math.log2(Math.max(1, count) / room)));
  return {
    rowLevel: level(rows.count, pane.height),
    colLevel: level(cols.count, pane.width),
    row: 0,
    col: 0,
  };
}

/** Where a tile is drawn. */
export function boxOfTile(
  camera: Camera,
  scale: Scale,
  tile: Tile,
  { width, height }: { width: number; height: number },
): Box {
  const rows = 2 ** tile.rowLevel;
  const cols = 2 ** tile.colLevel;
  return {
    left: (tile.col * tileSize * cols - camera.x) * scale.x,
    top: (tile.row * tileSize * rows - camera.y) * scale.y,
    width: width * cols * scale.x,
    height: height * rows * scale.y,
  };
}

/** The folded stretches in sight, as where they begin and how far they go, in points. */
export function foldsInSight(
  stretches: readonly Stretch[],
  from: number,
  scale: number,
  room: number,
): { at: number; length: number }[] {
  return stretches.flatMap((stretch) => {
    if (!isFolded(stretch)) return [];
    const at = (stretch.at - from) * scale;
    const length = stretch.places * scale;
    return at + length > 0 && at < room ? [{ at, length }] : [];
  });
}
