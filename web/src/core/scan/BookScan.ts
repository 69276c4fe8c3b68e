// Reads one workbook piece by piece into the model, and knows what it has read, what it could not
// read, and which sheets have changed since. One question at a time; stops between two of them.

import { areaAddress, cellCount, type Area } from '../address/area';
import { isErrorText } from '../evaluation/Result';
import type { ModelClient } from '../model/ModelClient';
import { whereAnswer, whereQuestion } from '../workbook/places';
import type { TablePlace } from '../model/messages';
import type { Json } from '../protocol/json';
import { failed, notRunningCode, type Failure, type Outcome } from '../protocol/Outcome';
import type { CellPlace, RangeFormulas, WorkbookMap } from '../protocol/verbs';
import type { Clock } from '../time/Clock';
import { findFilled } from './filled';
import { HandOver } from './HandOver';
import { findHidden, type HiddenTracks } from './hiddenTracks';
import { PieceSize } from './PieceSize';
import {
  cellsIn,
  inBook,
  piecesOf,
  plainLimit,
  plannedSheets,
  unaskedLimit,
  wholeSheet,
  type PlannedSheet,
} from './plan';

export type ScanQuestions = {
  workbookMap(): Promise<Outcome<WorkbookMap>>;
  readFormulas(address: string): Promise<Outcome<RangeFormulas>>;
  evaluate(expression: string): Promise<Outcome<Json>>;
  pollCell(): Promise<Outcome<CellPlace>>;
};

export type ScanPorts = {
  questions: ScanQuestions;
  model: ModelClient;
  clock: Clock;
  /** The time of day in words: "10:42". */
  time(): string;
  /** True if the workbook is the one in front. */
  inFront(book: string): boolean;
  changed(): void;
};

export type NotRead = { sheet: string; address: string; reason: string };

export type ScanState = {
  /** "asking": the user is to say whether to read so much. "failed": for `reason`. */
  status: 'none' | 'starting' | 'asking' | 'reading' | 'stopped' | 'done' | 'failed';
  reason: string;
  /** Cells in used ranges, and how many of them were read or looked at. */
  cells: number;
  read: number;
  sheets: number;
  sheetsRead: number;
  /** How many are to be read, whether for the first time or again. */
  sheetsLeft: number;
  /** The sheet that is being read; empty while tables are looked up, after the last one. */
  sheet: string;
  /** True if the spreadsheet is busy, so that the scan waits. */
  waiting: boolean;
  notRead: NotRead[];
  /** When the last sheet was read. */
  readAt: string;
  /** Sheets that are no longer as they were read. */
  changed: string[];
};

/** How long to wait for a spreadsheet that is busy: each time longer, up to the last. */
const waits = [1_000, 2_000, 5_000];
/** A sheet of which so many pieces in a row cannot be read is given up. */
const refusalsLimit = 8;
/** So long after a change was seen its sheet is read again. */
const againAfter = 3_000;
/** So often at most is told how far it has come on a sheet. */
const tellEvery = 100;

class Stopped extends Error {}
class Lost extends Error {}

export class BookScan {
  state: ScanState = {
    status: 'none',
    reason: '',
    cells: 0,
    read: 0,
    sheets: 0,
    sheetsRead: 0,
    sheetsLeft: 0,
    sheet: '',
    waiting: false,
    notRead: [],
    readAt: '',
    changed: [],
  };
  /** Grows with every sheet that was read. */
  version = 0;
  /** How often the model was told where tables are. */
  tablesTold = 0;
  private readonly known = new Set<string>();
  private plan: PlannedSheet[] = [];
  private entry = '';
  private toRead: PlannedSheet[] = [];
  private running = false;
  private stopWanted = false;
  private refusals = 0;
  private size = new PieceSize();
  private again = false;
  private telling = false;
  private readonly handOver: HandOver;

  constructor(
    readonly book: string,
    private readonly ports: ScanPorts,
  ) {
    this.handOver = new HandOver(ports.clock);
  }

  /** True if anything of the workbook was read whole. */
  get hasSheets(): boolean {
    return this.state.sheetsRead > 0;
  }

  /** All sheets, in their order; empty before the workbook was looked at. */
  get names(): readonly string[] {
    return this.plan.map(({ name }) => name);
  }

  /** True if the sheet was read. */
  hasRead(sheet: string): boolean {
    return this.known.has(sheet);
  }

  /** Begins, unless it has begun; a large workbook is only measured. */
  begin(): void {
    if (this.state.status !== 'none') return;
    void this.run(async () => {
      await this.measure(false);
      if (this.state.cells > unaskedLimit) this.change({ status: 'asking' });
      else await this.readAll();
    });
  }

  /** The user wants it read, or to go on. */
  go(): void {
    const { status } = this.state;
    if (status === 'failed') this.readAgain();
    else if (status === 'asking' || status === 'stopped') void this.run(() => this.readAll());
  }

  stop(): void {
    if (this.running) this.stopWanted = true;
  }

  /** Everything is read anew; what is known stays until then. */
  readAgain(): void {
    if (this.running) return;
    void this.run(async () => {
      await this.measure(true);
      await this.readAll();
    });
  }

  /** Which tracks of a sheet are hidden; asked while nothing is read and the workbook is in front. */
  async hidden(sheet: string, area: Area): Promise<HiddenTracks | undefined> {
    if (this.running || !this.ports.inFront(this.book)) return undefined;
    const { model, questions } = this.ports;
    const cover = await model.ask(this.book, 'rowCover', { sheet });
    return findHidden(this.book, sheet, area, cover, questions.evaluate);
  }

  /** What the spreadsheet gives for an expression about one of the workbook's cells; nothing where it cannot. */
  async ask(expression: (cell: string) => string): Promise<Json | undefined> {
    const [sheet] = this.names;
    if (sheet === undefined) return undefined;
    const cell = inBook(this.book, sheet, 'A1');
    const outcome = await this.ports.questions.evaluate(expression(cell));
    return outcome.ok ? outcome.value : undefined;
  }

  /** A sheet is not as it was read. */
  noticeChange(sheet: string): void {
    const { changed, status } = this.state;
    if (changed.includes(sheet)) return;
    this.change({ changed: [...changed, sheet] });
    if (this.again || (status !== 'done' && status !== 'reading')) return;
    this.again = true;
    this.ports.clock.after(againAfter, () => {
      this.again = false;
      this.readChanged();
    });
  }

  private readChanged(): void {
    if (this.running) {
      this.again = true;
      this.ports.clock.after(againAfter, () => {
        this.again = false;
        this.readChanged();
      });
      return;
    }
    if (this.state.status !== 'done' || this.state.changed.length === 0) return;
    void this.run(async () => {
      const { changed } = this.state;
      const before = new Map(this.plan.map(({ name, used }) => [name, used && areaAddress(used)]));
      const isNew = await this.measure(false);
      // Sheets that grew or shrank have changed, too.
      if (!isNew) {
        this.toRead = this.plan.filter(
          ({ name, used }) =>
            changed.includes(name) || before.get(name) !== (used && areaAddress(used)),
        );
      }
      await this.readAll();
    });
  }

  private async run(work: () => Promise<void>): Promise<void> {
    if (this.running) return;
    this.running = true;
    this.stopWanted = false;
    try {
      await work();
    } catch (error) {
      if (error instanceof Stopped) this.change({ status: 'stopped' });
      else {
        const reason = error instanceof Error ? error.message : String(error);
        this.change({ status: 'failed', reason });
      }
    } finally {
      this.running = false;
      if (this.state.waiting) this.change({ waiting: false });
    }
  }

  /** Learns what there is. Gives whether the model begins anew. */
  private async measure(all: boolean): Promise<boolean> {
    this.change({ status: 'starting', reason: '' });
    const map = await this.patiently(() => this.ports.questions.workbookMap());
    if (!map.ok) throw new Lost(map.failure.message);
    if (map.value.book !== this.book) throw new Lost(`“${this.book}” is not in front.`);
    this.plan = plannedSheets(map.value);
    const sheets = this.plan.map(({ name }) => name);
    const names = map.value.names.flatMap(({ name, refersTo }) =>
      typeof refersTo === 'string' ? [{ name, refersTo }] : [],
    );
    const entry = JSON.stringify([sheets, names]);
    const isNew = entry !== this.entry;
    this.entry = entry;
    if (isNew) this.known.clear();
    await this.ports.model.ask(this.book, 'begin', { book: this.book, sheets, names });
    if (isNew || all) this.toRead = this.plan;
    this.change({
      cells: cellsIn(this.plan),
      sheets: this.plan.length,
      ...(isNew ? { sheetsRead: 0, notRead: [], read: 0 } : {}),
    });
    return isNew;
  }

  private async readAll(): Promise<void> {
    const left = cellsIn(this.toRead);
    const sheetsLeft = this.toRead.length;
    const read = Math.max(0, this.state.cells - left);
    this.change({ status: 'reading', read, sheetsLeft });
    await this.handOver.done();
    for (const sheet of this.toRead) await this.readSheet(sheet);
    await this.handOver.done();
    this.change({ sheet: '', read: this.state.cells });
    await this.findTables();
    this.change({ status: 'done', sheet: '', read: this.state.cells });
  }

  private async readSheet({ name, used }: PlannedSheet): Promise<void> {
    const { model } = this.ports;
    const notRead = this.state.notRead.filter(({ sheet }) => sheet !== name);
    const before = this.state.read;
    this.change({ sheet: name, notRead });
    this.refusals = 0;
    await this.handOver.give(() => model.ask(this.book, 'beginSheet', { sheet: name }));
    this.size = new PieceSize();
    for (const area of await this.filledOf(name, used)) {
      // While one piece is taken the next is asked for.
      let taken = Promise.resolve();
      for (const piece of piecesOf(area, () => this.size.cells)) {
        const asked = this.read(name, piece);
        asked.catch(() => undefined); // told when it is taken
        await taken;
        taken = this.takePiece(name, piece, asked).then(() => {
          if (used) this.advance(cellCount(piece));
        });
        taken.catch(() => undefined); // told with the next piece, or at the end
      }
      await taken;
    }
    await this.handOver.give(async () => {
      await model.ask(this.book, 'endSheet', { sheet: name });
      this.finish(name);
    });
    // What was counted as blank is done with, too.
    if (used) this.change({ read: before + cellCount(used) });
  }

  /** The model has all of the sheet. */
  private finish(name: string): void {
    this.known.add(name);
    this.version += 1;
    this.toRead = this.toRead.filter((sheet) => sheet.name !== name);
    const changed = this.state.changed.filter((sheet) => sheet !== name);
    const sheetsLeft = this.toRead.length;
    this.change({ sheetsRead: this.known.size, sheetsLeft, changed, readAt: this.ports.time() });
  }

  private async filledOf(sheet: string, used: Area | undefined): Promise<Area[]> {
    if (used && cellCount(used) <= plainLimit) return [used];
    const count = (expression: string) =>
      this.patiently(() => this.ports.questions.evaluate(expression));
    const { areas, uncounted } = await findFilled(this.book, sheet, used ?? wholeSheet, count);
    for (const area of uncounted) this.refuse(sheet, area, 'What is filled could not be counted.');
    return areas;
  }

  private async readPiece(sheet: string, area: Area): Promise<void> {
    await this.takePiece(sheet, area, this.read(sheet, area));
  }

  private async takePiece(
    sheet: string,
    area: Area,
    asked: Promise<Outcome<RangeFormulas> | undefined>,
  ): Promise<void> {
    const outcome = await asked;
    if (!outcome) {
      this.refuse(sheet, area, 'Given up after other parts of the sheet could not be read.');
      return;
    }
    if (!outcome.ok) {
      await this.readParts(sheet, area, outcome.failure);
      return;
    }
    this.refusals = 0;
    this.size.learn(outcome.value);
    const { formulas, values } = outcome.value;
    if (await this.hidesValues(sheet, area, outcome.value)) {
      // Errors in its first column hide what the formulas of such a piece give.
      await this.readPiece(sheet, { ...area, right: area.left });
      await this.readPiece(sheet, { ...area, left: area.left + 1 });
      return;
    }
    const { model } = this.ports;
    await this.handOver.give(() =>
      model.ask(this.book, 'piece', { sheet, area, formulas, values }),
    );
  }

  /** A piece that was refused: the half with the trouble is found, the other is read. */
  private async readParts(sheet: string, area: Area, failure: Failure): Promise<void> {
    if (area.left === area.right) {
      this.refusals += 1;
      this.refuse(sheet, area, failure.message);
      return;
    }
    const middle = Math.floor((area.left + area.right) / 2);
    await this.readPiece(sheet, { ...area, right: middle });
    await this.readPiece(sheet, { ...area, left: middle + 1 });
  }

  private async hidesValues(sheet: string, area: Area, told: RangeFormulas): Promise<boolean> {
    if (area.left === area.right) return false;
    let formulas = 0;
    for (const [i, row] of told.formulas.entries()) {
      for (const [j, formula] of row.entries()) {
        if (formula === '') continue;
        formulas += 1;
        const value = told.values[i]?.[j] ?? null;
        if (value !== '' && value !== null) return false;
      }
    }
    if (formulas === 0) return false;
    const first = await this.read(sheet, { ...area, right: area.left });
    return first?.ok === true && first.value.values.some(([value]) => isErrorText(value ?? null));
  }

  /** One piece as it was asked for; another size is no answer. Nothing for a sheet that is given up. */
  private async read(sheet: string, area: Area): Promise<Outcome<RangeFormulas> | undefined> {
    if (this.refusals >= refusalsLimit) return undefined;
    const address = inBook(this.book, sheet, areaAddress(area));
    const rows = area.bottom - area.top + 1;
    const cols = area.right - area.left + 1;
    for (let i = 0; i < 2; i++) {
      const outcome = await this.patiently(() => this.ports.questions.readFormulas(address));
      if (!outcome.ok) return outcome;
      const told = outcome.value;
      if (told.rows === rows && told.cols === cols && told.values.length === rows) return outcome;
    }
    return failed('malformed', 'The answer had another size than what was asked for.');
  }

  /** Asks again for as long as the spreadsheet is only busy. */
  private async patiently<T>(question: () => Promise<Outcome<T>>): Promise<Outcome<T>> {
    for (let i = 0; ; i++) {
      if (this.stopWanted) throw new Stopped();
      const outcome = await question();
      if (outcome.ok || !isPassing(outcome.failure)) {
        if (this.state.waiting) this.change({ waiting: false });
        if (!outcome.ok && isGone(outcome.failure)) throw new Lost(`“${this.book}” was closed.`);
        return outcome;
      }
      this.change({ waiting: true });
      const wait = waits[Math.min(i, waits.length - 1)] ?? 0;
      await new Promise<void>((resolve) => this.ports.clock.after(wait, resolve));
    }
  }

  /** Asks where the tables are that formulas name, once each; only while the workbook is in front. */
  private async findTables(): Promise<void> {
    const { model, questions } = this.ports;
    const { tables } = await model.ask(this.book, 'state', {});
    const places: TablePlace[] = [];
    for (const question of tables) {
      if (!this.ports.inFront(this.book)) break;
      const outcome = await this.patiently(() => questions.evaluate(whereQuestion(question)));
      const found = outcome.ok ? whereAnswer(outcome.value) : undefined;
      // Cells of the sheet in front are told without their sheet.
      const sheet = found && (found.sheet ?? (await this.sheetInFront()));
      const place = found && sheet !== undefined ? { sheet, area: found.area } : undefined;
      places.push({ question, place });
    }
    if (places.length === 0) return;
    await model.ask(this.book, 'tables', { places });
    this.version += 1;
    this.tablesTold += 1;
  }

  private async sheetInFront(): Promise<string | undefined> {
    const front = await this.patiently(() => this.ports.questions.pollCell());
    return front.ok && front.value.book === this.book ? front.value.sheet : undefined;
  }

  private refuse(sheet: string, area: Area, reason: string): void {
    const { notRead } = this.state;
    this.change({ notRead: [...notRead, { sheet, address: areaAddress(area), reason }] });
  }

  /** So many more cells were read; drawn now and then, as nobody sees each piece. */
  private advance(cells: number): void {
    this.state = { ...this.state, read: this.state.read + cells };
    if (this.telling) return;
    this.telling = true;
    this.ports.clock.after(tellEvery, () => {
      this.telling = false;
      this.ports.changed();
    });
  }

  private change(part: Partial<ScanState>): void {
    this.state = { ...this.state, ...part };
    this.ports.changed();
  }
}

/** Busy, in cell edit mode, or slow: it will answer again. */
function isPassing({ kind }: Failure): boolean {
  return kind === 'busy' || kind === 'timeout' || kind === 'unanswered';
}

function isGone({ code, message }: Failure): boolean {
  return code === notRunningCode || message.startsWith('workbook not open');
}
