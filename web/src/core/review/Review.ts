// The review: what the audit finds in the workbook whose cell is shown, as a list by rank. Asked of
// the model once the whole workbook was read, and again when more of it was read anew.

import type { Kind } from '../audit/Finding';
import { count, grouped } from '../format/words';
import type { Cells, FindingRow, FindingsAnswer } from '../model/messages';
import type { SheetSketch } from '../model/sketch';
import { reportOfReview } from '../report/ofReview';
import type { Report } from '../report/Report';
import { succeeded } from '../protocol/Outcome';
import type { BookScan } from '../scan/BookScan';
import { coverageOf } from '../scan/coverage';
import type { Scans } from '../scan/Scans';
import type { PlaceRow } from '../workbook/PlaceList';
import { PlaceView } from '../workbook/PlaceView';
import { pathPrint, whereIs, type ReviewedBook } from './reviewed';
import { FindingRows } from './rows';
import type { State } from './said';
import { Sayings, type ReviewKeeper } from './Sayings';
import { Seen } from './Seen';

/** Which findings are listed; empty for all. */
export type ReviewFilter = { kind: Kind | ''; sheet: string; state: State | 'open' | '' };

/** "away": nothing is known, and the workbook is read only while it is in front. */
export type ReviewStatus = 'away' | 'reading' | 'looking' | 'known' | 'failed';

export type Choice<T> = { value: T; findings: number };

const everything: ReviewFilter = { kind: '', sheet: '', state: '' };

type Known = {
  book: string;
  /** Nothing before the first answer. */
  told: Omit<FindingsAnswer, 'rows'> | undefined;
  rows: FindingRows;
  /** What there is to choose from, the one with the highest finding first. */
  kinds: readonly Choice<Kind>[];
  sheets: readonly Choice<string>[];
  /** When the workbook was read of which they tell. */
  readAt: string;
  reason: string;
  filter: ReviewFilter;
  asking: boolean;
  /** What of which scan is in them. */
  version: number;
  scan: BookScan | undefined;
};

export class Review {
  readonly list: PlaceView;
  readonly sayings: Sayings;
  private readonly seen: Seen;
  private known: Known | undefined;
  /** Those of the findings that the filter lets through. */
  private shown: readonly FindingRow[] = [];

  constructor(
    private readonly changed: () => void,
    private readonly scans?: Scans,
    keeper?: ReviewKeeper,
  ) {
    this.list = new PlaceView(changed);
    this.sayings = new Sayings(() => {
      // What was said decides what the filter lets through.
      const { known, active, list } = this;
      // One that is listed no more leaves its place to the next.
      if (known?.told && known.filter.state !== '') this.lay(known, active, list.activeIndex);
      else changed();
    }, keeper);
    this.seen = new Seen(this.sayings, changed, scans?.model);
  }

  /** The workbook's findings are looked at; it is read only while it is in front. */
  look(book: string, inFront: boolean): void {
    this.sayings.look(book);
    if (inFront) this.scans?.of(book).begin();
    if (this.known?.book !== book) {
      const filter = everything;
      const nothing = {
        told: undefined,
        rows: new FindingRows(),
        kinds: [],
        sheets: [],
        readAt: '',
        reason: '',
      };
      this.known = { book, ...nothing, filter, asking: false, version: 0, scan: undefined };
      this.list.forget();
    }
    void this.ask(this.known);
  }

  /** More of the workbook was read, perhaps. */
  scanned(): void {
    if (this.known) void this.ask(this.known);
  }

  /** The user wants it read again. */
  again(): void {
    const { known, scan } = this;
    if (scan) scan.readAgain();
    else if (known) this.look(known.book, true);
  }

  get scan(): BookScan | undefined {
    return this.known && this.scans?.begun(this.known.book);
  }

  get status(): ReviewStatus {
    const { known, scan } = this;
    if (known?.told) return 'known';
    if (known && known.reason !== '') return 'failed';
    if (known?.asking === true) return 'looking';
    return scan ? 'reading' : 'away';
  }

  /** Why there are no findings; empty where that is not so. */
  get reason(): string {
    return this.known?.reason ?? '';
  }

  get book(): string {
    return this.known?.book ?? '';
  }

  /** "12 findings in 1,204 formulas"; "3 of 12 findings" where others are left out. */
  get heading(): string {
    const { known } = this;
    if (!known?.told) return 'Findings';
    const { told } = known;
    const shown = this.shown.length;
    const isFiltered = shown < known.rows.findings.length;
    const all = isFiltered
      ? `${grouped(String(shown))} of ${count(told.total, 'finding')}`
      : count(told.total, 'finding');
    return `${all} in ${count(told.formulas, 'formula')}`;
  }

  /** "5 of 12 findings judged: 2 faults, 3 fine. 34 of 150 distinct formulas seen." */
  get progress(): string {
    const parts = [this.sayings.progress, this.seen.progress(this.book)].filter(Boolean);
    return parts.length > 1 ? parts.map((part) => `${part}.`).join(' ') : (parts[0] ?? '');
  }

  /** The panel has shown the formula of a cell. */
  sees(book: string, cells: Cells): void {
    this.seen.add(book, [cells]);
  }

  /** The user has gone to the active finding: its first cell's formula is shown. */
  opened(): void {
    const { active } = this;
    const [first] = active?.cells ?? [];
    if (!first) return;
    const { top, left } = first.area;
    this.sees(this.book, { ...first, area: { top, left, bottom: top, right: left } });
  }

  /** `state`: nothing to take back what was said. */
  say(finding: FindingRow, state: State | undefined, note: string): void {
    this.sayings.say(finding, state, note);
    if (state) this.seen.add(this.book, finding.cells);
  }

  /** What the list does not hold, and of when it is. */
  get coverage(): string {
    const { known, scan } = this;
    if (!known?.told) return '';
    const { total, told } = known.told;
    const left = total > told ? `The first ${count(told, 'finding')} only.` : '';
    const all = scan && coverageOf({ ...scan.state, readAt: known.readAt }, false);
    const failed = known.reason === '' ? '' : `They could not be told anew: ${known.reason}`;
    return [left, all, failed].filter(Boolean).join(' ');
  }

  get hasFormulas(): boolean {
    return this.known?.told?.formulas !== 0;
  }

  get hasFindings(): boolean {
    return (this.known?.rows.findings.length ?? 0) > 0;
  }

  /** The finding that the active row is of. */
  get active(): FindingRow | undefined {
    const { active } = this.list;
    return active && this.known?.rows.of(active);
  }

  /** What was said of the finding whose row it is; nothing for a row of one of its areas. */
  stateOf(row: PlaceRow): State | undefined {
    const finding = this.known?.rows.ofRow(row);
    return finding && this.sayings.of(finding)?.state;
  }

  get filter(): ReviewFilter {
    return this.known?.filter ?? everything;
  }

  setFilter(filter: ReviewFilter): void {
    if (!this.known) return;
    const before = this.active;
    this.known.filter = filter;
    this.lay(this.known, before);
  }

  get kinds(): readonly Choice<Kind>[] {
    return this.known?.kinds ?? [];
  }

  get sheets(): readonly Choice<string>[] {
    return this.known?.sheets ?? [];
  }

  /** Of all findings, with what was said of them; nothing before they are known. */
  async report(withPictures = false): Promise<Report | undefined> {
    const { known, scans, scan } = this;
    if (!known?.told || !scans || !scan) return undefined;
    const { findings } = known.rows;
    const said = (finding: FindingRow) => this.sayings.of(finding);
    return reportOfReview(
      known.book,
      findings,
      known.told.total,
      said,
      scan,
      scans.model,
      this.seen.of(known.book),
      withPictures,
    );
  }

  private async ask(known: Known): Promise<void> {
    const { scans } = this;
    const scan = scans?.begun(known.book);
    if (!scans || !scan || known.asking || !isNews(known, scan)) return;
    const { status, sheets, sheetsRead, readAt } = scan.state;
    const isReading = status === 'starting' || status === 'reading';
    if (isReading || sheetsRead === 0 || sheetsRead < sheets) return;
    known.asking = true;
    const { version } = scan;
    const isIn = { scan, version };
    try {
      const rows = new FindingRows();
      for (;;) {
        const args = { from: rows.findings.length };
        const { rows: part, ...told } = await scans.model.ask(known.book, 'findings', args);
        rows.add(part);
        // Another part was read anew meanwhile, or another workbook is looked at.
        if (this.known !== known || scan.version !== version) return;
        const isWhole = part.length === 0 || rows.findings.length >= told.told;
        if (!isWhole && known.told) continue;
        // The first part is shown while the others come.
        const before = this.active;
        Object.assign(known, { told, rows, readAt, reason: '' });
        known.kinds = choices(rows.findings, ({ kind }) => kind);
        known.sheets = choices(rows.findings, sheetOf);
        if (isWhole) {
          const sketches = await this.sketches(scans, known.book);
          const of = await this.reviewed(scans, scan);
          if (this.known !== known || scan.version !== version) return;
          Object.assign(known, isIn);
          void this.sayings
            .settle(rows.findings, sketches, of)
            .then(() => this.seen.settle(known.book));
        }
        this.lay(known, before);
        if (isWhole) return;
      }
    } catch (error) {
      Object.assign(known, isIn);
      known.reason = error instanceof Error ? error.message : String(error);
    } finally {
      known.asking = false;
      this.changed();
      if (this.known === known && isNews(known, scan)) void this.ask(known);
    }
  }

  /** Nothing where they cannot be told: then nothing is said of the findings. */
  private async sketches(scans: Scans, book: string): Promise<SheetSketch[] | undefined> {
    return scans.model.ask(book, 'sketch', {}).catch(() => undefined);
  }

  private async reviewed(scans: Scans, scan: BookScan): Promise<ReviewedBook> {
    const { book } = scan;
    const marks = await scans.model.ask(book, 'marks', {}).catch(() => '');
    return { book, path: pathPrint(await scan.ask(whereIs)), marks };
  }

  /** `before`: the finding that was active; it stays so where it is still listed, or the row `otherwise`. */
  private lay(known: Known, before: FindingRow | undefined, otherwise = 0): void {
    const { kind, sheet, state } = known.filter;
    const isIn = (one: FindingRow) =>
      state === '' || (this.sayings.of(one)?.state ?? 'open') === state;
    this.shown = known.rows.findings.filter(
      (one) =>
        (kind === '' || one.kind === kind) && (sheet === '' || sheetOf(one) === sheet) && isIn(one),
    );
    const rows = known.rows.rowsOf(this.shown);
    if (this.list.isOf(known.book)) {
      this.list.refine(known.book, rows, '');
      const again = this.shown.findIndex((one) => before !== undefined && isSame(one, before));
      const row = rows[again];
      const at = this.list.rows.findIndex((one) => one.row === row);
      this.list.activate(at < 0 ? otherwise : at);
    } else {
      const told = () => Promise.resolve(succeeded(rows));
      void this.list.load(known.book, told, (all) => all);
    }
    this.changed();
  }
}

/** True if the scan has read what the findings do not tell of. */
function isNews(known: Known, scan: BookScan): boolean {
  return known.scan !== scan || known.version !== scan.version;
}

function sheetOf(finding: FindingRow): string {
  return finding.cells[0]?.sheet ?? '';
}

/** The same when the workbook was read again. */
function isSame(one: FindingRow, other: FindingRow): boolean {
  const [a] = one.cells;
  const [b] = other.cells;
  return (
    one.kind === other.kind &&
    a?.sheet === b?.sheet &&
    a?.area.top === b?.area.top &&
    a?.area.left === b?.area.left
  );
}

function choices<T>(findings: readonly FindingRow[], of: (one: FindingRow) => T): Choice<T>[] {
  const counts = new Map<T, number>();
  for (const one of findings) counts.set(of(one), (counts.get(of(one)) ?? 0) + 1);
  return [...counts].map(([value, number]) => ({ value, findings: number }));
}
