// Draws a sheet's picture: tiles first, then what stands over them. Tiles are drawn from bitmaps that
// are made once; nothing here goes through cells but what is in sight at a size at which they differ.

import { columnLetters, type Area } from '../../core/address/area';
import type { Atlas } from '../../core/map/Atlas';
import {
  boxOf,
  boxOfTile,
  coarseTile,
  foldsInSight,
  tilesInSight,
  type Box,
  type Camera,
  type Pane,
  type Scale,
} from '../../core/map/Camera';
import { Code } from '../../core/map/codes';
import { pixelsOf, type Palette } from '../../core/map/palette';
import { ticks } from '../../core/map/ticks';
import {
  filledArea,
  tileExtent,
  tileSize,
  type Frame,
  type Tile,
  type TileSamples,
} from '../../core/map/tiles';

/** Room for the numbers of rows and the letters of columns. */
export const head = { width: 44, height: 18 };

/** From this size on cells have lines between them, and signs of what they are. */
const gridFrom = 6;
const signsFrom = 9;
/** What is drawn around cells is at least so large. */
const leastBox = 5;

export type Scene = {
  atlas: Atlas;
  frame: Frame;
  camera: Camera;
  scale: Scale;
  pane: Pane;
  palette: Palette;
  /** Pixels of the screen for each point. */
  pixels: number;
  /** True if keys move the cursor now. */
  cursor: boolean;
  font: string;
  notRead: readonly Area[];
};

/** Bitmaps of tiles in one palette. */
export class Bitmaps {
  private made = new WeakMap<TileSamples, HTMLCanvasElement>();
  private colours: Palette | undefined;
  private pixels: Uint32Array = new Uint32Array();

  of(samples: TileSamples, palette: Palette): HTMLCanvasElement | undefined {
    if (this.colours !== palette) {
      this.colours = palette;
      this.pixels = pixelsOf(palette);
      this.made = new WeakMap();
    }
    const known = this.made.get(samples);
    if (known) return known;
    const { width, height, codes } = samples;
    if (width === 0 || height === 0) return undefined;
    const canvas = document.createElement('canvas');
    canvas.width = width;
    canvas.height = height;
    const context = canvas.getContext('2d');
    if (!context) return undefined;
    const image = new ImageData(width, height);
    const target = new Uint32Array(image.data.buffer);
    for (let i = 0; i < codes.length; i++) target[i] = this.pixels[codes[i] as number] as number;
    context.putImageData(image, 0, 0);
    this.made.set(samples, canvas);
    return canvas;
  }
}

export class Painter {
  constructor(
    private readonly context: CanvasRenderingContext2D,
    private readonly bitmaps: Bitmaps,
  ) {}

  draw(scene: Scene): void {
    const { context } = this;
    const { pane, palette, pixels } = scene;
    context.setTransform(pixels, 0, 0, pixels, 0, 0);
    context.fillStyle = palette.around;
    context.fillRect(0, 0, pane.width + head.width, pane.height + head.height);
    context.save();
    context.translate(head.width, head.height);
    context.beginPath();
    context.rect(0, 0, pane.width, pane.height);
    context.clip();
    this.drawCells(scene);
    this.drawFolds(scene);
    this.drawHidden(scene);
    this.drawOver(scene);
    context.restore();
    this.drawHeads(scene);
  }

  private drawCells(scene: Scene): void {
    const { context } = this;
    const { frame, camera, scale, pane, palette, pixels, atlas } = scene;
    context.fillStyle = palette.blank;
    const whole = boxOfWhole(scene);
    context.fillRect(whole.left, whole.top, whole.width, whole.height);
    context.imageSmoothingEnabled = false;
    const tiles = tilesInSight(frame, pane, camera, pixels);
    const sheet = atlas.sheet;
    const found = tiles.map((tile) => ({ tile, samples: atlas.tile(sheet, tile) }));
    if (found.some(({ samples }) => !samples)) this.drawTile(scene, coarseTile(frame));
    for (const { tile, samples } of found) if (samples) this.drawTile(scene, tile);
    if (Math.min(scale.x, scale.y) >= gridFrom) this.drawGrid(scene);
    if (Math.min(scale.x, scale.y) >= signsFrom) {
      for (const { tile, samples } of found) {
        if (samples && tile.rowLevel === 0 && tile.colLevel === 0)
          this.drawSigns(scene, tile, samples);
      }
    }
  }

  private drawTile(scene: Scene, tile: Tile): void {
    const { frame, camera, scale, atlas, palette, pixels } = scene;
    const samples = atlas.tile(atlas.sheet, tile);
    const bitmap = samples && this.bitmaps.of(samples, palette);
    if (!bitmap) return;
    const box = boxOfTile(camera, scale, tile, tileExtent(frame, tile));
    // On whole pixels, so that no seam shows between two tiles.
    const snap = (at: number) => Math.round(at * pixels) / pixels;
    const left = snap(box.left);
    const top = snap(box.top);
    const { context } = this;
    // What stands there already is of a coarser tile.
    context.fillStyle = palette.blank;
    const width = snap(box.left + box.width) - left;
    const height = snap(box.top + box.height) - top;
    context.fillRect(left, top, width, height);
    context.drawImage(bitmap, left, top, width, height);
  }

  private drawGrid(scene: Scene): void {
    const { context } = this;
    const { frame, camera, scale, pane, palette } = scene;
    const whole = boxOfWhole(scene);
    context.fillStyle = palette.line;
    const right = Math.min(pane.width, whole.left + whole.width);
    const bottom = Math.min(pane.height, whole.top + whole.height);
    const lines = (from: number, size: number, count: number, room: number): number[] => {
      const first = Math.floor(from);
      const last = Math.min(count, Math.ceil(from + room / size));
      return Array.from({ length: last - first + 1 }, (_, i) =>
        Math.round((first + i - from) * size),
      );
    };
    for (const x of lines(camera.x, scale.x, frame.cols.count, pane.width)) {
      context.fillRect(x, 0, 1, bottom);
    }
    for (const y of lines(camera.y, scale.y, frame.rows.count, pane.height)) {
      context.fillRect(0, y, right, 1);
    }
  }

  /** Text a line, a number a point, an error a cross: colour says nothing alone. */
  private drawSigns(scene: Scene, tile: Tile, { width, height, codes }: TileSamples): void {
    const { context } = this;
    const { camera, scale, pane, palette } = scene;
    const first = { row: tile.row * tileSize, col: tile.col * tileSize };
    const from = (at: number, own: number) => Math.max(0, Math.floor(at) - own);
    const until = (at: number, room: number, size: number, own: number, most: number) =>
      Math.min(most, Math.ceil(at + room / size) - own);
    const bottom = until(camera.y, pane.height, scale.y, first.row, height);
    const right = until(camera.x, pane.width, scale.x, first.col, width);
    const size = Math.min(scale.x, scale.y);
    for (let row = from(camera.y, first.row); row < bottom; row++) {
      const y = (first.row + row + 0.5 - camera.y) * scale.y;
      for (let col = from(camera.x, first.col); col < right; col++) {
        const code = codes[row * width + col] as Code;
        if (code === Code.Blank || code >= Code.Formula) continue;
        const x = (first.col + col + 0.5 - camera.x) * scale.x;
        if (code === Code.Text) {
          context.fillStyle = palette.quiet;
          context.fillRect(Math.round(x - scale.x * 0.3), Math.round(y), scale.x * 0.6, 1);
        } else if (code === Code.Input) {
          context.fillStyle = palette.halo;
          context.fillRect(x - size * 0.12, y - size * 0.12, size * 0.24, size * 0.24);
        } else {
          context.strokeStyle = palette.halo;
          context.lineWidth = 1.5;
          const arm = size * 0.25;
          context.beginPath();
          context.moveTo(x - arm, y - arm);
          context.lineTo(x + arm, y + arm);
          context.moveTo(x + arm, y - arm);
          context.lineTo(x - arm, y + arm);
          context.stroke();
        }
      }
    }
  }

  /** Blank stretches that are folded: a band with a broken line. */
  private drawFolds({ frame, camera, scale, pane, palette }: Scene): void {
    const { context } = this;
    context.strokeStyle = palette.quiet;
    context.lineWidth = 1;
    context.setLineDash([3, 3]);
    const line = (x1: number, y1: number, x2: number, y2: number): void => {
      context.beginPath();
      context.moveTo(x1, y1);
      context.lineTo(x2, y2);
      context.stroke();
    };
    for (const { at, length } of foldsInSight(
      frame.rows.stretches,
      camera.y,
      scale.y,
      pane.height,
    )) {
      const y = Math.round(at + length / 2) + 0.5;
      context.fillStyle = palette.around;
      context.fillRect(0, at, pane.width, Math.max(length, 3));
      line(0, y, pane.width, y);
    }
    for (const { at, length } of foldsInSight(
      frame.cols.stretches,
      camera.x,
      scale.x,
      pane.width,
    )) {
      const x = Math.round(at + length / 2) + 0.5;
      context.fillStyle = palette.around;
      context.fillRect(at, 0, Math.max(length, 3), pane.height);
      line(x, 0, x, pane.height);
    }
    context.setLineDash([]);
  }

  /** Hidden rows and columns: pale, between two lines, with a mark at the edge. */
  private drawHidden(scene: Scene): void {
    const { context } = this;
    const { atlas, frame, camera, scale, pane, palette } = scene;
    const hidden = atlas.hiddenOf(atlas.sheet);
    const all = filledArea(frame);
    if (!hidden || !all) return;
    const areas = [
      ...hidden.rows.map(({ first, last }) => ({ ...all, top: first, bottom: last })),
      ...hidden.cols.map(({ first, last }) => ({ ...all, left: first, right: last })),
    ];
    for (const [i, area] of areas.entries()) {
      const { left, top, width, height } = boxOf(frame, camera, scale, area);
      if (left > pane.width || top > pane.height || left + width < 0 || top + height < 0) continue;
      context.globalAlpha = 0.6;
      context.fillStyle = palette.around;
      context.fillRect(left, top, width, height);
      context.globalAlpha = 1;
      context.fillStyle = palette.quiet;
      if (i < hidden.rows.length) context.fillRect(0, top, 4, Math.max(2, height));
      else context.fillRect(left, 0, Math.max(2, width), 4);
    }
  }

  private drawOver(scene: Scene): void {
    const { atlas, palette } = scene;
    const { sheet, here, picture } = atlas;
    for (const area of scene.notRead) this.hatch(scene, area);
    const ties = atlas.ties;
    const own = (tied: readonly { sheet: string; areas: Area[] }[]): readonly Area[] =>
      tied.find((one) => one.sheet === sheet)?.areas ?? [];
    if (ties) {
      for (const area of own(ties.users)) this.outline(scene, area, palette.used, [5, 3]);
      for (const area of own(ties.uses)) this.outline(scene, area, palette.uses, []);
    }
    this.drawBreaks(scene);
    if (here?.sheet === sheet) this.drawHere(scene, here.area);
    if (scene.cursor) {
      const { row, col } = picture.cursor;
      this.outline(scene, { top: row, left: col, bottom: row, right: col }, palette.ink, [1, 2]);
    }
  }

  /** The box around cells, at least large enough to be seen; nothing where it is out of sight. */
  private boxAround({ frame, camera, scale, pane }: Scene, area: Area): Box | undefined {
    const box = boxOf(frame, camera, scale, area);
    const width = Math.max(leastBox, box.width);
    const height = Math.max(leastBox, box.height);
    const left = box.left - (width - box.width) / 2;
    const top = box.top - (height - box.height) / 2;
    const isOut = left > pane.width || top > pane.height || left + width < 0 || top + height < 0;
    return isOut ? undefined : { left, top, width, height };
  }

  private outline(scene: Scene, area: Area, colour: string, dash: number[]): void {
    const box = this.boxAround(scene, area);
    if (!box) return;
    const { context } = this;
    const { left, top, width, height } = box;
    context.setLineDash([]);
    context.strokeStyle = scene.palette.halo;
    context.lineWidth = 4;
    context.strokeRect(left, top, width, height);
    context.strokeStyle = colour;
    context.lineWidth = 2;
    context.setLineDash(dash);
    context.strokeRect(left, top, width, height);
    context.setLineDash([]);
  }

  /** Lines across, which say that nothing is known of these cells. */
  private hatch(scene: Scene, area: Area): void {
    const box = this.boxAround(scene, area);
    if (!box) return;
    const { context } = this;
    const { pane, palette } = scene;
    const left = Math.max(0, box.left);
    const top = Math.max(0, box.top);
    const right = Math.min(pane.width, box.left + box.width);
    const bottom = Math.min(pane.height, box.top + box.height);
    context.save();
    context.beginPath();
    context.rect(left, top, right - left, bottom - top);
    context.clip();
    context.fillStyle = palette.around;
    context.fillRect(left, top, right - left, bottom - top);
    context.strokeStyle = palette.quiet;
    context.lineWidth = 1;
    context.beginPath();
    for (let x = left - (bottom - top); x < right; x += 6) {
      context.moveTo(x, bottom);
      context.lineTo(x + bottom - top, top);
    }
    context.stroke();
    context.restore();
  }

  private drawBreaks(scene: Scene): void {
    const { context } = this;
    const { atlas, palette } = scene;
    for (const { areas } of atlas.breaksOf(atlas.sheet)) {
      for (const area of areas) {
        const box = this.boxAround(scene, area);
        if (!box) continue;
        // A corner that is cut off, as large as it can be seen at any size.
        const size = Math.max(4, Math.min(9, box.width, box.height));
        const x = box.left + box.width;
        const { top } = box;
        context.beginPath();
        context.moveTo(x + 1, top - 1);
        context.lineTo(x - size, top - 1);
        context.lineTo(x + 1, top + size);
        context.closePath();
        context.lineWidth = 2;
        context.strokeStyle = palette.halo;
        context.stroke();
        context.fillStyle = palette.finding;
        context.fill();
      }
    }
  }

  /** A ring, and its lines as far as the letters and the numbers. */
  private drawHere(scene: Scene, area: Area): void {
    const box = this.boxAround(scene, area);
    const { context } = this;
    const { pane, palette, frame, camera, scale } = scene;
    const exact = boxOf(frame, camera, scale, area);
    const x = exact.left + exact.width / 2;
    const y = exact.top + exact.height / 2;
    context.strokeStyle = palette.here;
    context.lineWidth = 1;
    context.globalAlpha = 0.45;
    context.beginPath();
    context.moveTo(x, 0);
    context.lineTo(x, box ? box.top - 2 : y < 0 ? 0 : pane.height);
    context.moveTo(0, y);
    context.lineTo(box ? box.left - 2 : x < 0 ? 0 : pane.width, y);
    context.stroke();
    context.globalAlpha = 1;
    if (!box) return;
    const { left, top, width, height } = box;
    context.strokeStyle = palette.halo;
    context.lineWidth = 6;
    context.strokeRect(left, top, width, height);
    context.strokeStyle = palette.here;
    context.lineWidth = 3;
    context.strokeRect(left, top, width, height);
  }

  private drawHeads(scene: Scene): void {
    const { context } = this;
    const { frame, camera, scale, pane, palette, font } = scene;
    context.fillStyle = palette.quiet;
    context.font = font;
    context.textBaseline = 'middle';
    context.textAlign = 'center';
    const cols = ticks(frame.cols, camera.x, scale.x, pane.width, 34);
    for (const { track, at } of cols) {
      const x = head.width + at + Math.max(scale.x, 1) / 2;
      context.fillText(columnLetters(track), x, head.height / 2);
    }
    context.textAlign = 'right';
    const rows = ticks(frame.rows, camera.y, scale.y, pane.height, 18);
    for (const { track, at } of rows) {
      const y = head.height + at + Math.max(scale.y, 1) / 2;
      if (y < head.height + pane.height - 4) context.fillText(String(track), head.width - 5, y);
    }
  }
}

function boxOfWhole({ frame, camera, scale }: Scene): Box {
  return {
    left: -camera.x * scale.x,
    top: -camera.y * scale.y,
    width: frame.cols.count * scale.x,
    height: frame.rows.count * scale.y,
  };
}
