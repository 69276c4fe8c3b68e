// The lists of dependents and of sheets and names, each asked for when it is looked at. Dependents are told by the
// spreadsheet first, for the sheet in front, and by the model of the workbook as far as it was read.

import { cellCount, parseArea, qualified } from '../address/area';
import { readLimit } from '../evaluation/readPlan';
import { count } from '../format/words';
import { mapRows } from '../map/listRows';
import type { SheetsTold } from '../map/told';
import type { BookState, DependentsAnswer, ErrorsAnswer } from '../model/messages';
import type { View } from '../explorer/view';
import type { Outcome } from '../protocol/Outcome';
import type { CellPlace, RangeFormulas, ReferenceStyle, WorkbookMap } from '../protocol/verbs';
import { blocksOf } from './blocks';
import type { BookScan, ScanState } from '../scan/BookScan';
import { coverageOf } from '../scan/coverage';
import type { Scans } from '../scan/Scans';
import { dependentRows, dependentsOf, type Dependent } from './dependents';
import {
  driverGroup,
  errorGroup,
  impactText,
  notReadGroup,
  resultGroup,
  runTimeGroup,
  userGroups,
} from './everywhere';
import type { PlaceRow } from './PlaceList';
import { PlaceView } from './PlaceView';
import type { Asked } from './rows';
import { betweenGroup } from './ways';

export type ListQuestions = {
  dependents(address: string): Promise<Outcome<string>>;
  workbookMap(): Promise<Outcome<WorkbookMap>>;
  readFormulas(
    address: string,
    style: ReferenceStyle,
    formulasOnly?: boolean,
  ): Promise<Outcome<RangeFormulas>>;
};

/** The formulas of so many areas of dependents are read; each costs a question. */
export const areasRead = 40;

/** The cells whose dependents are listed: a cell, or all that is selected. */
export type ListedCells = Omit<CellPlace, 'addr'> & { addr: string };

/** What is known of the cells that are asked for. */
type Known = {
  key: string;
  asked: Asked | undefined;
  /** Others that they are looked at together with. */
  other: ListedCells | undefined;
  sheet: string;
  book: string;
  quick: Dependent[] | undefined;
  quickNote: string;
  everywhere: DependentsAnswer | undefined;
  errors: ErrorsAnswer | undefined;
  /** Of all that was read: formulas that could not be understood. */
  formulas: Pick<BookState, 'unread' | 'unreadCells'>;
  /** The scan when the model was asked, and whether it had read the sheet of the cells by then. */
  covered: (ScanState & { own: boolean; tablesTold: number }) | undefined;
  /** What of the scan is in it. */
  version: number;
  /** True if the model is asked; it works out one answer at a time. */
  asking: boolean;
};

/**
 * True if the model is to be asked anew. Each answer costs it the work over all that was read, and the
 * scan waits for it: so the more was read, the more sheets must be new.
 */
function isDue({ covered, sheet, version }: Known, scan: BookScan): boolean {
  const { status, sheets, sheetsRead } = scan.state;
  if (!covered || version === 0 || status !== 'reading') return true;
  if (!covered.own && scan.hasRead(sheet)) return true;
  return sheetsRead > covered.sheetsRead && sheetsRead >= Math.min(sheets, 2 * covered.sheetsRead);
}

export class Lists {
  readonly dependents: PlaceView;
  readonly map: PlaceView;
  private known: Known | undefined;
  private workbook: WorkbookMap | undefined;
  private told: SheetsTold | undefined;

  constructor(
    private readonly questions: ListQuestions,
    private readonly changed: () => void,
    private readonly scans?: Scans,
  ) {
    this.dependents = new PlaceView(changed);
    this.map = new PlaceView(changed);
  }

  /** The list that is the view; nothing for other views. */
  of(view: View): PlaceView | undefined {
    return view === 'deps' ? this.dependents : view === 'map' ? this.map : undefined;
  }

  /** `other`: cells that the listed ones are looked at together with. */
  load(view: View, cells: ListedCells | undefined, other?: ListedCells): void {
    if (view === 'map') void this.loadMap();
    if (view === 'deps' && cells) {
      this.scans?.of(cells.book).begin();
      void this.loadDependents(cells);
      this.compare(other);
    }
  }

  /** What was read of the sheets by now. */
  describe(told: SheetsTold | undefined): void {
    const { workbook } = this;
    if (told === this.told) return;
    this.told = told;
    if (workbook) this.map.refine('map', mapRows(workbook, told), '');
  }

  private async loadMap(): Promise<void> {
    const ask = () => this.questions.workbookMap();
    const workbook = await this.map.load('map', ask, (map) => mapRows(map, this.told));
    if (workbook) this.workbook = workbook;
  }

  /** Another workbook is in front. */
  forget(): void {
    this.map.forget();
    this.workbook = undefined;
    this.dependents.forget();
    this.known = undefined;
  }

  /** The workbook may have changed. */
  outdate(): void {
    this.map.outdate();
    this.dependents.outdate();
  }

  /** The scan of the workbook whose dependents are listed. */
  get scan(): BookScan | undefined {
    return this.known && this.scans?.of(this.known.book);
  }

  /** How far the listed cells reach, in words; empty as long as that is not known. */
  get impact(): string {
    const told = this.known?.everywhere;
    return told ? impactText(told) : '';
  }

  /** What the list of dependents covers, in words. */
  get coverage(): string {
    const { known, scan } = this;
    if (!known || !scan) return '';
    const { covered } = known;
    if (!covered) return coverageOf({ ...scan.state, sheetsRead: 0 }, true);
    const { sheetsRead, readAt, tablesTold } = covered;
    const changed = [...new Set([...covered.changed, ...scan.state.changed])];
    // Where tables are may be known since, and not yet be in the answer.
    const isBefore = scan.tablesTold > tablesTold;
    const before = isBefore ? { status: 'reading' as const, sheet: '' } : {};
    // Of a model that was lost only what it told is left.
    const state = scan.state.status === 'none' ? covered : scan.state;
    return coverageOf({ ...state, ...before, sheetsRead, readAt, changed }, false);
  }

  /** True if every sheet was read, so that an empty list means that nothing uses the cells. */
  get isWhole(): boolean {
    const covered = this.known?.covered;
    return covered !== undefined && covered.sheetsRead >= covered.sheets;
  }

  /** More of the workbook was read, perhaps. */
  scanned(): void {
    const { known, scan } = this;
    if (known && scan && scan.version !== known.version) void this.askModel(known);
  }

  private compare(other: ListedCells | undefined): void {
    const { known } = this;
    if (!known || (known.other?.sheet === other?.sheet && known.other?.addr === other?.addr))
      return;
    known.other = other;
    if (known.everywhere) this.refine(known);
  }

  private async loadDependents({ book, sheet, addr }: ListedCells): Promise<void> {
    const address = qualified(sheet, addr);
    const key = `${book}\n${address}`;
    if (this.dependents.isOf(key)) return;
    const area = parseArea(addr);
    const asked =
      this.scans && area ? { book, cells: { sheet, area }, model: this.scans.model } : undefined;
    // What the same cells had before is shown until it was asked anew.
    const before = this.known?.key === key ? this.known : undefined;
    const known: Known = {
      other: undefined,
      quick: undefined,
      everywhere: undefined,
      errors: undefined,
      formulas: { unread: [], unreadCells: 0 },
      covered: undefined,
      ...before,
      key,
      asked,
      sheet,
      book,
      quickNote: '',
      version: 0,
      asking: false,
    };
    this.known = known;
    const loading = this.dependents.load(
      key,
      () => this.questions.dependents(address),
      (areas) => {
        known.quick = dependentsOf(areas, sheet);
        return this.rowsOf(known);
      },
    );
    void this.askModel(known);
    if ((await loading) === undefined || !known.quick) return;
    const found = known.quick;
    for (const dependent of found.slice(0, areasRead)) {
      if (!this.dependents.isOf(key) || this.hasModelOf(known, sheet)) return;
      await this.readFormulas(dependent);
    }
    known.quickNote =
      found.length > areasRead
        ? `Formulas of the first ${count(areasRead, 'area')} of ${String(found.length)} only.`
        : '';
    if (found.length > 0) this.refine(known);
  }

  /** What the model knows of the cells by now, if that is more than before. */
  private async askModel(known: Known): Promise<void> {
    const scan = this.scans?.of(known.book);
    const { asked } = known;
    if (!asked || !scan?.hasSheets || known.asking || known.version === scan.version) return;
    if (!isDue(known, scan)) return;
    known.asking = true;
    known.version = scan.version;
    const { state, tablesTold } = scan;
    const covered = { ...state, own: scan.hasRead(known.sheet), tablesTold };
    try {
      const { model, book, cells } = asked;
      const told = await model.ask(book, 'dependents', cells);
      const errors = covered.sheetsRead >= covered.sheets;
      if (this.known === known) known.everywhere = told;
      known.covered = covered;
      if (errors) {
        known.errors = await model.ask(book, 'errors', {});
        known.formulas = await model.ask(book, 'state', {});
      }
    } catch {
      // The model was lost; it is read anew, and asked again then.
      return;
    } finally {
      known.asking = false;
    }
    if (this.known !== known) return;
    this.refine(known);
    this.changed();
    // Sheets that were read meanwhile are asked for together.
    void this.askModel(known);
  }

  private refine(known: Known): void {
    const note = known.everywhere ? '' : known.quickNote;
    this.dependents.refine(known.key, this.rowsOf(known), note);
  }

  private hasModelOf(known: Known, sheet: string): boolean {
    return known.everywhere !== undefined && sheet === known.sheet && known.covered?.own === true;
  }

  /** The spreadsheet's own answer for a sheet only as long as the model has none for it. */
  private rowsOf(known: Known): PlaceRow[] {
    const { asked, everywhere, errors, formulas, covered, quick, sheet } = known;
    const quickRows = quick ? dependentRows(quick, sheet) : [];
    if (!asked || !everywhere) return quickRows;
    const isCovered = this.hasModelOf(known, sheet);
    const otherArea = known.other && parseArea(known.other.addr);
    const other = known.other && otherArea && { sheet: known.other.sheet, area: otherArea };
    return [
      ...(isCovered ? [] : quickRows),
      ...userGroups(asked, everywhere, (name) => !isCovered && name === sheet),
      ...resultGroup(asked, everywhere),
      driverGroup(asked),
      betweenGroup(asked, other),
      ...runTimeGroup(asked, everywhere.runTimeCells),
      ...(errors ? errorGroup(errors) : []),
      ...notReadGroup(covered?.notRead ?? [], formulas),
    ];
  }

  private async readFormulas(dependent: Dependent): Promise<void> {
    const { place, area } = dependent;
    if (cellCount(area) > readLimit) return;
    const address = qualified(place.sheet, place.address);
    const outcome = await this.questions.readFormulas(address, 'r1c1', true);
    if (!outcome.ok) return;
    const blocks = blocksOf(area, outcome.value.formulas);
    if (blocks.length > 0) dependent.blocks = blocks;
  }
}
