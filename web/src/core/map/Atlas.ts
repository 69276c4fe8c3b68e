// The map of a workbook as the page shows it: which sheet is looked at, and what the model has told of
// it by now. Asks for what is looked at and is not known, and again for what was read anew.

import { areaAddress, qualified, type Area } from '../address/area';
import type { Destination } from '../follow/SheetFollower';
import type { Cells } from '../model/messages';
import type { BookScan } from '../scan/BookScan';
import type { HiddenTracks } from '../scan/hiddenTracks';
import type { Scans } from '../scan/Scans';
import { Picture } from './Picture';
import { filledArea, tileKey, type Frame, type Tile, type TileSamples } from './tiles';
import type { Break, CellTold, MapQuestions, SheetsTold, Ties } from './told';

/** One sheet's picture, all sheets with what flows between them, or the same as a list. */
export type MapMode = 'picture' | 'sheets' | 'list';

/** Tiles that are kept of one sheet; more than a screen has room for. */
const tilesKept = 64;
/** Cells that were pointed at lately. */
const cellsKept = 100;

/** An answer, and what of the scan is in it. */
type Kept<T> = { value: T | undefined; version: number; asking: boolean };

type Sheet = {
  frame: Kept<Frame>;
  breaks: Kept<Break[]>;
  /** By the stamp of the picture for which they were asked. */
  hidden: { of: number; tracks: HiddenTracks | undefined };
  tiles: Map<string, TileSamples | undefined>;
  cells: Map<string, CellTold | undefined>;
};

type Known = {
  book: string;
  scan: BookScan | undefined;
  sheets: Map<string, Sheet>;
  told: Kept<SheetsTold>;
  /** Sheets that were read when they were told. */
  toldOf: number;
  ties: Kept<Ties> & { of: string };
};

const kept = <T>(): Kept<T> => ({ value: undefined, version: -1, asking: false });

export class Atlas {
  mode: MapMode = 'picture';
  readonly picture: Picture;
  private known: Known | undefined;
  private selected: Cells | undefined;

  constructor(
    private readonly changed: () => void,
    private readonly scans?: Scans,
  ) {
    this.picture = new Picture((sheet) => this.frameOf(sheet));
  }

  /** The workbook's map is looked at, from `cells`; it is read only while it is in front. */
  look(book: string, cells: Cells, inFront: boolean): void {
    if (inFront) this.scans?.of(book).begin();
    if (this.known?.book !== book) {
      this.known = this.unknown(book);
      this.selected = undefined;
    }
    const before = this.selected;
    this.selected = cells;
    if (keyOf(before) !== keyOf(cells)) this.picture.follow(cells);
  }

  get book(): string {
    return this.known?.book ?? '';
  }

  get scan(): BookScan | undefined {
    return this.known && this.scans?.begun(this.known.book);
  }

  /** Where the user is. */
  get here(): Cells | undefined {
    return this.selected;
  }

  /** The sheet whose picture is shown. */
  get sheet(): string {
    return this.picture.sheet;
  }

  /** True if all of the sheet was read. */
  hasRead(sheet: string): boolean {
    return this.scan?.hasRead(sheet) === true;
  }

  /** What is told of every sheet, as far as the workbook was read. */
  get told(): SheetsTold | undefined {
    const { known } = this;
    if (!known) return undefined;
    const state = this.scan?.state;
    const isReading = state?.status === 'reading';
    // Each time it costs the work over all that was read.
    const isDue = !isReading || known.toldOf === 0 || state.sheetsRead >= 2 * known.toldOf;
    if (isDue && this.ask(known.told, 'mapSheets', {})) known.toldOf = state?.sheetsRead ?? 0;
    return known.told.value;
  }

  frameOf(sheet: string): Frame | undefined {
    const own = this.sheetOf(sheet);
    if (!own || !this.hasRead(sheet)) return own?.frame.value;
    this.ask(own.frame, 'mapFrame', { sheet }, (frame, before) => {
      if (frame?.stamp === before?.stamp) return;
      own.tiles.clear();
      own.cells.clear();
    });
    return own.frame.value;
  }

  /** Nothing as long as it is not known. */
  tile(sheet: string, tile: Tile): TileSamples | undefined {
    const { known } = this;
    const own = this.sheetOf(sheet);
    const frame = own?.frame.value;
    if (!known || !own || !frame) return undefined;
    const key = tileKey(tile);
    const found = own.tiles.get(key);
    if (own.tiles.has(key)) {
      // The one that was used longest ago stands first.
      own.tiles.delete(key);
      own.tiles.set(key, found);
      return found;
    }
    own.tiles.set(key, undefined);
    if (own.tiles.size > tilesKept) this.forgetTile(own.tiles);
    const { stamp } = frame;
    void this.answer(known, 'mapTile', { sheet, stamp, tile }).then((samples) => {
      if (own.frame.value?.stamp !== stamp || !own.tiles.has(key)) return;
      if (samples) own.tiles.set(key, samples);
      else own.tiles.delete(key);
      if (samples) this.changed();
    });
    return undefined;
  }

  /** What a cell is; nothing as long as it is not known. */
  cell(sheet: string, row: number, col: number): CellTold | undefined {
    const { known } = this;
    const own = this.sheetOf(sheet);
    if (!known || !own?.frame.value) return undefined;
    const key = `${String(row)} ${String(col)}`;
    if (!own.cells.has(key)) {
      if (own.cells.size >= cellsKept) own.cells.clear();
      own.cells.set(key, undefined);
      void this.answer(known, 'mapCell', { sheet, row, col }).then((told) => {
        if (!own.cells.has(key)) return;
        if (told) own.cells.set(key, told);
        else own.cells.delete(key);
        if (told) this.changed();
      });
    }
    return own.cells.get(key);
  }

  /** What is odd on the sheet; told once the whole workbook was read. */
  breaksOf(sheet: string): readonly Break[] {
    const own = this.sheetOf(sheet);
    const state = this.scan?.state;
    if (!own || !state) return [];
    const isWhole = state.sheetsRead > 0 && state.sheetsRead >= state.sheets;
    const isReading = state.status === 'reading' || state.status === 'starting';
    if (isWhole && !isReading && own.frame.value) this.ask(own.breaks, 'mapBreaks', { sheet });
    return own.breaks.value ?? [];
  }

  /** Hidden rows and columns; asked once the workbook was read. */
  hiddenOf(sheet: string): HiddenTracks | undefined {
    const own = this.sheetOf(sheet);
    const { scan } = this;
    const frame = own?.frame.value;
    if (!own || !frame || !scan) return undefined;
    const area = filledArea(frame);
    if (area && own.hidden.of !== frame.stamp && scan.state.status === 'done') {
      own.hidden.of = frame.stamp;
      void scan.hidden(sheet, area).then((tracks) => {
        own.hidden.tracks = tracks;
        this.changed();
      });
    }
    return own.hidden.tracks;
  }

  /** What the selected cells use, and what uses them. */
  get ties(): Ties | undefined {
    const { known, selected } = this;
    if (!known || !selected || !this.hasRead(selected.sheet)) return undefined;
    const of = keyOf(selected);
    if (known.ties.of !== of) known.ties = { ...kept<Ties>(), of };
    this.ask(known.ties, 'mapTies', selected);
    return known.ties.value;
  }

  /** Asks where what is kept is older than what was read. Gives whether it asks. */
  private ask<N extends keyof MapQuestions>(
    own: Kept<NonNullable<MapQuestions[N]['answer']>>,
    question: N,
    args: MapQuestions[N]['args'],
    taken: (
      now: MapQuestions[N]['answer'] | undefined,
      before: MapQuestions[N]['answer'] | undefined,
    ) => void = () => undefined,
  ): boolean {
    const { known, scan } = this;
    if (!known || !scan?.hasSheets || own.asking || own.version === scan.version) return false;
    const { version } = scan;
    own.asking = true;
    void this.answer(known, question, args).then((value) => {
      own.asking = false;
      own.version = version;
      const before = own.value;
      if (value !== undefined) own.value = value as NonNullable<MapQuestions[N]['answer']>;
      taken(value, before);
      this.changed();
    });
    return true;
  }

  /** Nothing where the model was lost, which is read anew then. */
  private async answer<N extends keyof MapQuestions>(
    known: Known,
    question: N,
    args: MapQuestions[N]['args'],
  ): Promise<MapQuestions[N]['answer'] | undefined> {
    try {
      const told = await this.scans?.model.ask(known.book, question, args as never);
      return told as MapQuestions[N]['answer'] | undefined;
    } catch {
      return undefined;
    }
  }

  /** The cell that keys move, for marking and selecting it. */
  get destination(): Destination | undefined {
    const { sheet, cursor } = this.picture;
    if (sheet === '') return undefined;
    const { row, col } = cursor;
    const address = areaAddress({ top: row, left: col, bottom: row, right: col });
    return { label: `${sheet}!${address}`, addresses: [qualified(sheet, address)] };
  }

  /** To the next finding on the sheet. */
  toBreak(direction: 1 | -1): boolean {
    return this.picture.toBreak(this.breaksOf(this.sheet), direction);
  }

  /** The names of all sheets, in their order; empty as long as they are not known. */
  get sheetNames(): readonly string[] {
    return this.scan?.names ?? [];
  }

  /** Another sheet's picture. */
  open(sheet: string): void {
    this.picture.open(sheet);
    this.mode = 'picture';
    this.changed();
  }

  /** The next sheet's picture, or that of the one before. */
  turnSheet(direction: 1 | -1): void {
    const names = this.sheetNames;
    const next = names[names.indexOf(this.sheet) + direction];
    if (next !== undefined) this.open(next);
  }

  private sheetOf(sheet: string): Sheet | undefined {
    const { known, scan } = this;
    if (!known) return undefined;
    if (known.scan !== scan) {
      // Another model: nothing that was told is true of it.
      this.known = { ...this.unknown(known.book), scan };
      return this.sheetOf(sheet);
    }
    let own = known.sheets.get(sheet);
    if (!own) {
      const hidden = { of: 0, tracks: undefined };
      own = { frame: kept(), breaks: kept(), hidden, tiles: new Map(), cells: new Map() };
      known.sheets.set(sheet, own);
    }
    return own;
  }

  /** One that is not being asked for. */
  private forgetTile(tiles: Map<string, TileSamples | undefined>): void {
    for (const [key, samples] of tiles) {
      if (!samples) continue;
      tiles.delete(key);
      return;
    }
  }

  private unknown(book: string): Known {
    return {
      book,
      scan: this.scans?.begun(book),
      sheets: new Map(),
      told: kept(),
      toldOf: 0,
      ties: { ...kept<Ties>(), of: '' },
    };
  }
}

function keyOf(cells: { sheet: string; area: Area } | undefined): string {
  return cells ? `${cells.sheet}!${areaAddress(cells.area)}` : '';
}
