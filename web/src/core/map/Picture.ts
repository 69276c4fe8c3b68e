// The picture of one sheet as it is looked at: which part of it, how large, and the cell that keys move
// and that is described. Holds no element of the document; whoever draws it tells its size.

import type { Area } from '../address/area';
import { maxColumns, maxRows } from '../address/area';
import type { Cells } from '../model/messages';
import {
  clamped,
  moved,
  scaleOf,
  showing,
  whole,
  zoomed,
  type Camera,
  type Pane,
  type Scale,
} from './Camera';
import { trackAtPlace, placeOfTrack, type Tracks } from './Tracks';
import type { Frame } from './tiles';
import type { Break } from './told';

export type CellAt = { row: number; col: number };

export type CursorMove =
  'up' | 'down' | 'left' | 'right' | 'pageUp' | 'pageDown' | 'first' | 'last';

/** So much larger with each step of the keys and buttons. */
export const zoomStep = 1.5;
/** A key moves by as many tracks as are drawn within so many points; by one where a track is larger. */
const leastStep = 6;

/** Where keys lead while nothing is known of how the sheet is drawn. */
const nextCell: Partial<Record<CursorMove, CellAt>> = {
  up: { row: -1, col: 0 },
  down: { row: 1, col: 0 },
  left: { row: 0, col: -1 },
  right: { row: 0, col: 1 },
};

export class Picture {
  sheet = '';
  /** The cell that keys move. */
  cursor: CellAt = { row: 1, col: 1 };
  private held: Camera = whole;
  private pane: Pane = { width: 0, height: 0 };
  /** Cells that are to be brought into sight as soon as the sheet and the size are known. */
  private wanted: Area | undefined;

  constructor(private readonly frameOf: (sheet: string) => Frame | undefined) {}

  get frame(): Frame | undefined {
    return this.frameOf(this.sheet);
  }

  /** As the sheet is seen now, were it drawn. */
  get camera(): Camera {
    const { frame, pane, wanted } = this;
    if (!frame || pane.width === 0) return this.held;
    this.held = clamped(frame, pane, this.held);
    if (wanted) {
      this.wanted = undefined;
      this.held = showing(frame, pane, this.held, wanted);
    }
    return this.held;
  }

  get scale(): Scale {
    const { frame, pane } = this;
    return frame && pane.width > 0 ? scaleOf(frame, pane, this.camera) : { x: 1, y: 1 };
  }

  get size(): Pane {
    return this.pane;
  }

  resize(pane: Pane): void {
    this.pane = pane;
  }

  /** The user is on these cells now. */
  follow({ sheet, area }: Cells): void {
    this.open(sheet);
    this.cursor = { row: area.top, col: area.left };
    this.wanted = area;
  }

  /** Another sheet, seen whole. */
  open(sheet: string): void {
    if (sheet === this.sheet) return;
    this.sheet = sheet;
    this.held = whole;
    this.wanted = undefined;
    this.cursor = { row: 1, col: 1 };
  }

  /** `at`: the point that stays where it is; the cursor where none is given. */
  zoom(factor: number, at?: { x: number; y: number }): void {
    const { frame, pane } = this;
    if (!frame) return;
    this.held = zoomed(frame, pane, this.camera, factor, at ?? this.cursorPoint(frame));
  }

  showAll(): void {
    this.held = whole;
  }

  get isWhole(): boolean {
    return this.camera.zoom === 0;
  }

  get isLargest(): boolean {
    return this.camera.zoom === 1;
  }

  pan(by: { x: number; y: number }): void {
    const { frame, pane } = this;
    if (frame) this.held = moved(frame, pane, this.camera, by);
  }

  point(cell: CellAt): void {
    this.cursor = cell;
    this.wanted = { top: cell.row, left: cell.col, bottom: cell.row, right: cell.col };
  }

  move(how: CursorMove): void {
    const { frame, cursor, scale, pane } = this;
    if (!frame) {
      // Not known yet, where another sheet has just been turned to.
      const by = nextCell[how];
      if (by)
        this.point({
          row: Math.max(1, Math.min(maxRows, cursor.row + by.row)),
          col: Math.max(1, Math.min(maxColumns, cursor.col + by.col)),
        });
      return;
    }
    const along = (tracks: Tracks, track: number, by: number, most: number): number => {
      const now = Math.floor(placeOfTrack(tracks, track));
      const place = Math.max(0, Math.min(Math.max(now, tracks.count - 1), now + by));
      // Out of a fold, into which no cell of it leads.
      const next = trackAtPlace(tracks, place);
      return Math.max(1, Math.min(most, next));
    };
    const rows = Math.max(1, Math.round(leastStep / scale.y));
    const cols = Math.max(1, Math.round(leastStep / scale.x));
    const page = Math.max(rows, Math.floor(pane.height / scale.y) - 1);
    const row = (by: number) => along(frame.rows, cursor.row, by, maxRows);
    const col = (by: number) => along(frame.cols, cursor.col, by, maxColumns);
    const to: Record<CursorMove, () => CellAt> = {
      up: () => ({ ...cursor, row: row(-rows) }),
      down: () => ({ ...cursor, row: row(rows) }),
      left: () => ({ ...cursor, col: col(-cols) }),
      right: () => ({ ...cursor, col: col(cols) }),
      pageUp: () => ({ ...cursor, row: row(-page) }),
      pageDown: () => ({ ...cursor, row: row(page) }),
      first: () => ({ ...cursor, col: 1 }),
      last: () => ({ ...cursor, col: Math.max(1, trackAtPlace(frame.cols, frame.cols.count - 1)) }),
    };
    this.point(to[how]());
  }

  /** To the next finding's first cell, from left to right and top to bottom. Gives whether there is one. */
  toBreak(breaks: readonly Break[], direction: 1 | -1): boolean {
    const cells = breaks
      .flatMap(({ areas: [first] }) => (first ? [{ row: first.top, col: first.left }] : []))
      .sort(inOrder);
    const { cursor } = this;
    const next =
      direction > 0
        ? (cells.find((one) => inOrder(one, cursor) > 0) ?? cells[0])
        : (cells.filter((one) => inOrder(one, cursor) < 0).at(-1) ?? cells.at(-1));
    if (next) this.point(next);
    return next !== undefined;
  }

  private cursorPoint(frame: Frame): { x: number; y: number } {
    const { camera, scale, cursor, pane } = this;
    const within = (at: number, room: number) => Math.max(0, Math.min(room, at));
    return {
      x: within((placeOfTrack(frame.cols, cursor.col) + 0.5 - camera.x) * scale.x, pane.width),
      y: within((placeOfTrack(frame.rows, cursor.row) + 0.5 - camera.y) * scale.y, pane.height),
    };
  }
}

function inOrder(one: CellAt, other: CellAt): number {
  return one.row - other.row || one.col - other.col;
}
