import { beforeEach, describe, expect, test } from 'vitest';

import { parseArea, type Area } from '../../../src/core/address/area';
import { CarriedModel, SlicedCarrier, type ModelClient } from '../../../src/core/model/ModelClient';
import type { Json, Scalar } from '../../../src/core/protocol/json';
import { succeeded, type Failure, type Outcome } from '../../../src/core/protocol/Outcome';
import type { RangeFormulas, WorkbookMap } from '../../../src/core/protocol/verbs';
import { coverageOf, progressOf } from '../../../src/core/scan/coverage';
import { Scans } from '../../../src/core/scan/Scans';
import { FakeClock } from '../../fakes/FakeClock';

const book = "Ann's model.xlsx";

/** By sheet and cell: a value, or a formula in R1C1 and what it gives. */
type Cells = Record<string, Scalar | { formula: string; gives: Scalar }>;

class Spreadsheet {
  sheets: Record<string, { used: string | null; cells: Cells }> = {};
  /** Sheets of other workbooks, by the workbook. */
  others: Record<string, Spreadsheet['sheets']> = {};
  names: WorkbookMap['names'] = [];
  front = book;
  /** Every question, in turn. */
  readonly asked: string[] = [];
  /** What to fail with, by what the question contains, as often as it stands there. */
  failures: { of: string; failure: Failure; times: number }[] = [];
  /** What to answer instead. */
  twist: (address: string, told: RangeFormulas) => RangeFormulas = (_, told) => told;
  places: Record<string, string> = {};
  pollCell = () => this.answer('pollCell', () => ({ book: this.front, sheet: 'Data', addr: 'A1' }));

  workbookMap = (): Promise<Outcome<WorkbookMap>> =>
    this.answer('workbookMap', () => ({
      book: this.front,
      sheets: Object.entries(this.others[this.front] ?? this.sheets).map(([name, { used }]) => ({
        name,
        usedRange: used,
      })),
      sheetsTruncated: false,
      names: this.names,
    }));

  readFormulas = (address: string): Promise<Outcome<RangeFormulas>> =>
    this.answer(`read ${address}`, () => this.twist(address, this.read(address)));

  evaluate = (expression: string): Promise<Outcome<Json>> =>
    this.answer(`evaluate ${expression}`, () => {
      const where = /^CELL\("address",(.*?)\)/.exec(expression)?.[1];
      if (where !== undefined) return this.places[where] ?? '#NAME?';
      return [...expression.matchAll(/COUNTA\((.*?'![A-Z0-9:]+)\)/g)]
        .map(([, address = '']) => String(this.filled(address)))
        .join('|');
    });

  private answer<T>(question: string, give: () => T): Promise<Outcome<T>> {
    this.asked.push(question);
    const failing = this.failures.find(({ of, times }) => times > 0 && question.includes(of));
    if (failing) {
      failing.times -= 1;
      return Promise.resolve({ ok: false, failure: failing.failure });
    }
    return Promise.resolve(succeeded(give()));
  }

  private at(address: string): { cells: [Area, Cells[string]][]; area: Area } {
    const [, quoted = '', text = ''] = /^'(.*)'!(.*)$/.exec(address) ?? [];
    const [, own = '', name = ''] = /^\[(.*?)\](.*)$/.exec(quoted.replaceAll("''", "'")) ?? [];
    const area = parseArea(text) as Area;
    const cells = Object.entries((this.others[own] ?? this.sheets)[name]?.cells ?? {});
    return { area, cells: cells.map(([cell, content]) => [parseArea(cell) as Area, content]) };
  }

  private filled(address: string): number {
    const { area, cells } = this.at(address);
    return cells.filter(
      ([{ top, left }]) =>
        top >= area.top && top <= area.bottom && left >= area.left && left <= area.right,
    ).length;
  }

  private read(address: string): RangeFormulas {
    const { area, cells } = this.at(address);
    const rows = area.bottom - area.top + 1;
    const cols = area.right - area.left + 1;
    const formulas = Array.from({ length: rows }, () => Array<string>(cols).fill(''));
    const values = Array.from({ length: rows }, () => Array<Scalar>(cols).fill(''));
    for (const [{ top, left }, content] of cells) {
      const row = top - area.top;
      const col = left - area.left;
      if (row < 0 || row >= rows || col < 0 || col >= cols) continue;
      const isFormula = typeof content === 'object' && content !== null;
      (formulas[row] as string[])[col] = isFormula ? content.formula : '';
      (values[row] as Scalar[])[col] = isFormula ? content.gives : content;
    }
    return { rows, cols, formulas, values };
  }
}

let spreadsheet: Spreadsheet;
let clock: FakeClock;
let scans: Scans;
/** How often was told that something changed. */
let told: number;
/** Until this is over the model takes no piece. */
let held: Promise<void> | undefined;

beforeEach(() => {
  spreadsheet = new Spreadsheet();
  clock = new FakeClock();
  let time = 0;
  told = 0;
  held = undefined;
  const carried = new CarriedModel(new SlicedCarrier(clock, () => (time += 1)), () => undefined);
  const model: ModelClient = {
    ask: async (of, ask, args) => {
      if (ask === 'piece') await held;
      return carried.ask(of, ask, args);
    },
  };
  scans = new Scans(model, {
    questions: spreadsheet,
    clock,
    time: () => '10:42',
    changed: () => {
      told += 1;
    },
  });
  scans.enter(book);
});

/** Lets everything happen that needs no waiting for the spreadsheet. */
async function settled(): Promise<void> {
  for (let i = 0; i < 400; i++) {
    clock.advance(0);
    await Promise.resolve();
  }
}

async function users(sheet: string, cell: string, of = book): Promise<string[]> {
  const asked = scans.model.ask(of, 'users', { sheet, area: parseArea(cell) as Area });
  await settled();
  const { rows } = await asked;
  return rows.map((row) => `${row.sheet} ${String(row.area.top)},${String(row.area.left)}`);
}

const two = (): Spreadsheet['sheets'] => ({
  Inputs: { used: '$A$1:$B$2', cells: { A1: 'Price', B1: 5 } },
  "Ann's": { used: '$A$1:$A$3', cells: { A1: { formula: '=Inputs!R1C2', gives: 5 } } },
});

describe('a scan', () => {
  test('asks once what there is, and once for each piece, of this very workbook', async () => {
    spreadsheet.sheets = two();
    spreadsheet.sheets.Long = { used: '$A$1:$J$1200', cells: {} };
    scans.of(book).begin();
    await settled();
    expect(spreadsheet.asked).toEqual([
      'workbookMap',
      "read '[Ann''s model.xlsx]Inputs'!A1:B2",
      "read '[Ann''s model.xlsx]Ann''s'!A1:A3",
      "read '[Ann''s model.xlsx]Long'!A1:J125",
      "read '[Ann''s model.xlsx]Long'!A126:J250",
      "read '[Ann''s model.xlsx]Long'!A251:J500",
      "read '[Ann''s model.xlsx]Long'!A501:J1000",
      "read '[Ann''s model.xlsx]Long'!A1001:J1200",
    ]);
    const { state } = scans.of(book);
    expect(state).toMatchObject({ status: 'done', sheets: 3, sheetsRead: 3, notRead: [] });
    expect(coverageOf(state, false)).toBe('All 3 sheets, as read at 10:42.');
    expect(progressOf(state)).toBe('');
    expect(await users('Inputs', 'B1')).toEqual(["Ann's 1,1"]);
  });

  test('asks of the columns that cover the rows alone which of these are hidden', async () => {
    spreadsheet.sheets = { Data: { used: '$A$1:$C$2', cells: { B1: 1, B2: 2, C2: 3 } } };
    const wide = spreadsheet.evaluate;
    spreadsheet.evaluate = (expression) =>
      expression.startsWith('SUM(CELL("width",')
        ? Promise.resolve(succeeded('9|9|9'))
        : wide(expression);
    scans.of(book).begin();
    await settled();
    const asked = scans.of(book).hidden('Data', parseArea('A1:C2') as Area);
    await settled();
    await asked;
    const cells = "'[Ann''s model.xlsx]Data'!B1:B2";
    expect(spreadsheet.asked).toContain(`evaluate COUNTA(${cells})&"|"&SUBTOTAL(103,${cells})`);
  });

  test('reads hidden and protected sheets like any other, and of a chart sheet that it is blank', async () => {
    const uses = (factor: number): Cells => ({
      A1: { formula: `=Inputs!R1C2*${String(factor)}`, gives: 5 * factor },
    });
    // As Calc tells them: used ranges of all, one blank cell of the sheet that is a chart.
    spreadsheet.sheets = {
      Inputs: { used: '$A$1:$B$1', cells: { A1: 'Price', B1: 5 } },
      Locked: { used: '$A$1', cells: uses(2) },
      Hidden: { used: '$A$1', cells: uses(3) },
      Chart: { used: '$A$1', cells: {} },
      'Very hidden': { used: '$A$1', cells: uses(4) },
    };
    scans.of(book).begin();
    await settled();
    expect(coverageOf(scans.of(book).state, false)).toBe('All 5 sheets, as read at 10:42.');
    expect(await users('Inputs', 'B1')).toEqual(['Locked 1,1', 'Hidden 1,1', 'Very hidden 1,1']);
  });

  test('says of sheets whose cells nobody tells that they were not read, and reads the others', async () => {
    spreadsheet.sheets = {
      Locked: { used: '$A$1:$B$9', cells: {} },
      Chart: { used: null, cells: {} },
      ...two(),
    };
    const refused: Failure = { kind: 'transport', message: 'The sheet is protected.' };
    spreadsheet.failures = [
      { of: "read '[Ann''s model.xlsx]Locked", failure: refused, times: 99 },
      { of: ']Chart', failure: { kind: 'excelError', message: '#REF!' }, times: 1 },
    ];
    scans.of(book).begin();
    await settled();
    const { state } = scans.of(book);
    expect(state).toMatchObject({ status: 'done', sheetsRead: 4 });
    expect(state.notRead).toEqual([
      { sheet: 'Locked', address: 'A1:A9', reason: 'The sheet is protected.' },
      { sheet: 'Locked', address: 'B1:B9', reason: 'The sheet is protected.' },
      {
        sheet: 'Chart',
        address: 'A:XFD',
        reason: 'What is filled could not be counted.',
      },
    ]);
    expect(coverageOf(state, false)).toBe(
      'All 4 sheets, as read at 10:42. 3 areas could not be read.',
    );
    expect(await users('Inputs', 'B1')).toEqual(["Ann's 1,1"]);
  });

  test('of a large workbook begins when the user says so', async () => {
    spreadsheet.sheets = { Data: { used: '$A$1:$Z$2000', cells: {} } };
    scans.of(book).begin();
    await settled();
    expect(spreadsheet.asked).toEqual(['workbookMap']);
    expect(progressOf(scans.of(book).state)).toBe('52,000 cells on 1 sheet are to be read first.');
    scans.of(book).go();
    await settled();
    // Twice 48 rows, as the second piece is asked for before the first has come, 96, then 192.
    expect(spreadsheet.asked).toHaveLength(1 + 3 + 10);
    expect(scans.of(book).state.status).toBe('done');
  });

  test('asks for fewer cells at once where their formulas are long', async () => {
    const formula = `=${'Inputs!R1C2+'.repeat(24)}Inputs!R1C2`;
    spreadsheet.sheets = { Data: { used: '$A$1:$J$400', cells: {} } };
    const replies: number[] = [];
    const read: string[] = [];
    spreadsheet.twist = (address, told) => {
      const formulas = told.formulas.map((row) => row.map(() => formula));
      const values = told.values.map((row) => row.map(() => 1234.5678));
      replies.push(JSON.stringify({ formulas, values }).length);
      read.push(address.split('!')[1] ?? '');
      return { ...told, formulas, values };
    };
    scans.of(book).begin();
    await settled();
    expect(scans.of(book).state).toMatchObject({ status: 'done', read: 4000, notRead: [] });
    expect(read.slice(0, 3)).toEqual(['A1:J125', 'A126:J250', 'A251:J268']);
    expect(read.at(-1)).toBe('A395:J400');
    expect(Math.max(...replies.slice(2))).toBeLessThan(62_500);
  });

  test('asks for the next pieces while the model takes the last, and then waits for it', async () => {
    spreadsheet.sheets = { Long: { used: '$A$1:$J$1200', cells: {} } };
    let release = (): void => undefined;
    held = new Promise((resolve) => (release = resolve));
    const scan = scans.of(book);
    scan.begin();
    await settled();
    const asked = () => spreadsheet.asked.map((one) => one.split('!')[1]);
    expect(asked()).toEqual([undefined, 'A1:J125', 'A126:J250', 'A251:J500']);
    expect(scan.state.sheetsRead).toBe(0);
    release();
    await settled();
    expect(asked().slice(4)).toEqual(['A501:J1000', 'A1001:J1200']);
    expect(scan.state).toMatchObject({ status: 'done', sheetsRead: 1 });
  });

  test('asks for a piece before the one before it has come', async () => {
    spreadsheet.sheets = { Long: { used: '$A$1:$J$1200', cells: {} } };
    let open = 0;
    let most = 0;
    const { readFormulas } = spreadsheet;
    spreadsheet.readFormulas = async (address) => {
      open += 1;
      most = Math.max(most, open);
      for (let i = 0; i < 20; i++) await Promise.resolve();
      open -= 1;
      return readFormulas(address);
    };
    scans.of(book).begin();
    await settled();
    expect(scans.of(book).state.status).toBe('done');
    expect(most).toBe(2);
    expect(await users('Long', 'A1')).toEqual([]);
  });

  test('whose pieces the model does not take ends, and can begin again', async () => {
    spreadsheet.sheets = two();
    held = Promise.reject(new Error('It is lost.'));
    held.catch(() => undefined);
    const scan = scans.of(book);
    scan.begin();
    await settled();
    expect(scan.state).toMatchObject({ status: 'failed', reason: 'It is lost.', sheetsRead: 0 });
    held = undefined;
    scan.go();
    await settled();
    expect(scan.state).toMatchObject({ status: 'done', sheetsRead: 2 });
    expect(await users('Inputs', 'B1')).toEqual(["Ann's 1,1"]);
  });

  test('tells now and then how far it has come on a sheet, not at each piece', async () => {
    spreadsheet.sheets = { Data: { used: '$A$1:$Z$1900', cells: {} } };
    scans.of(book).begin();
    await settled();
    expect(spreadsheet.asked.length).toBeGreaterThan(10);
    expect(scans.of(book).state).toMatchObject({ status: 'done', read: 49_400 });
    const before = told;
    // Starting, what there is, reading, the sheet, its end, the tables, done.
    expect(before).toBeLessThan(10);
    clock.advance(100);
    expect(told).toBe(before + 1);
  });

  test('again counts the sheets anew', async () => {
    spreadsheet.sheets = two();
    const scan = scans.of(book);
    scan.begin();
    await settled();
    const seen: string[] = [];
    spreadsheet.twist = (_, answer) => {
      seen.push(progressOf(scan.state));
      return answer;
    };
    scan.readAgain();
    await settled();
    expect(seen).toEqual([
      'Reading “Inputs”, sheet 1 of 2: 0 %',
      "Reading “Ann's”, sheet 2 of 2: 57 %",
    ]);
  });

  test('stops between two pieces, keeps what it has and goes on from there', async () => {
    spreadsheet.sheets = { ...two(), Last: { used: '$A$1:$A$2', cells: {} } };
    const scan = scans.of(book);
    scans.of(book).begin();
    await settled();
    expect(scan.state.status).toBe('done');
    spreadsheet.asked.length = 0;
    spreadsheet.twist = (address, told) => {
      if (address.includes('Inputs')) scan.stop();
      return told;
    };
    scan.readAgain();
    await settled();
    expect(scan.state.status).toBe('stopped');
    expect(spreadsheet.asked).toEqual(['workbookMap', expect.stringContaining('Inputs')]);
    expect(progressOf(scan.state)).toMatch(/^Stopped at “Ann's”, \d+ % read\.$/);
    scan.go();
    await settled();
    expect(scan.state.status).toBe('done');
    expect(spreadsheet.asked.slice(2).map((one) => one.split('!')[1])).toEqual(['A1:A3', 'A1:A2']);
  });

  test('waits for a spreadsheet that is busy, says so, and goes on', async () => {
    spreadsheet.sheets = two();
    const failure: Failure = { kind: 'busy', message: 'in cell edit' };
    spreadsheet.failures = [{ of: 'Inputs', failure, times: 2 }];
    scans.of(book).begin();
    await settled();
    expect(progressOf(scans.of(book).state)).toBe(
      'The spreadsheet is busy; reading waits at “Inputs”.',
    );
    clock.advance(1_000);
    await settled();
    expect(scans.of(book).state.waiting).toBe(true);
    clock.advance(2_000);
    await settled();
    expect(scans.of(book).state).toMatchObject({ status: 'done', waiting: false, notRead: [] });
  });

  test('finds what cannot be read by halves, reads the rest and says what is missing', async () => {
    spreadsheet.sheets = {
      Data: { used: '$A$1:$D$2', cells: { D1: { formula: '=RC[-3]', gives: 1 } } },
    };
    const failure: Failure = { kind: 'transport', message: 'odd' };
    for (const of of ['A1:D2', 'A1:B2', 'B1:B2'])
      spreadsheet.failures.push({ of, failure, times: 9 });
    scans.of(book).begin();
    await settled();
    const { state } = scans.of(book);
    expect(state.notRead).toEqual([{ sheet: 'Data', address: 'B1:B2', reason: 'odd' }]);
    expect(coverageOf(state, false)).toBe(
      'The only sheet, as read at 10:42. 1 area could not be read.',
    );
    expect(await users('Data', 'A1')).toEqual(['Data 1,4']);
  });

  test('reads apart a first column whose errors hide what formulas give', async () => {
    const cells: Cells = {
      A1: { formula: '=1/0', gives: '#DIV/0!' },
      B1: { formula: '=RC[-1]', gives: '#DIV/0!' },
    };
    spreadsheet.sheets = { Data: { used: '$A$1:$B$1', cells } };
    spreadsheet.twist = (address, told) =>
      address.endsWith('A1:B1') ? { ...told, values: [['', '']] } : told;
    scans.of(book).begin();
    await settled();
    const asked = scans.model.ask(book, 'errors', {});
    await settled();
    expect((await asked).total).toBe(2);
  });

  test('takes no answer of another size', async () => {
    spreadsheet.sheets = two();
    spreadsheet.twist = (address, told) =>
      address.includes('Inputs') ? { ...told, rows: 1, values: [['x', 1]] } : told;
    scans.of(book).begin();
    await settled();
    expect(scans.of(book).state.notRead).toHaveLength(2);
    expect(scans.of(book).state.notRead[0]?.reason).toBe(
      'The answer had another size than what was asked for.',
    );
  });

  test('counts its way to the cells of an absurd used range, and of a sheet without one', async () => {
    const cells: Cells = { C3: 1, XFA900: { formula: '=R3C3', gives: 1 } };
    spreadsheet.sheets = {
      Wide: { used: '$A$1:$XFD$1000', cells },
      Fiftieth: { used: null, cells: { B9: { formula: '=Wide!R3C3', gives: 1 } } },
    };
    scans.of(book).begin();
    await settled();
    scans.of(book).go();
    for (let i = 0; i < 5; i++) await settled();
    expect(scans.of(book).state.status).toBe('done');
    expect(await users('Wide', 'C3')).toEqual(['Wide 900,16381', 'Fiftieth 9,2']);
    const reads = spreadsheet.asked.filter((one) => one.startsWith('read'));
    expect(reads).toHaveLength(5);
    expect(spreadsheet.asked.length).toBeLessThan(90);
    // Where all that is filled lies at the beginning one question finds it.
    const counted = spreadsheet.asked.filter((one) => /^evaluate.*Fiftieth/.test(one));
    expect(counted).toHaveLength(1);
  });

  test('asks where tables are, once for each', async () => {
    spreadsheet.sheets = {
      Data: {
        used: '$A$1:$C$3',
        cells: {
          C1: { formula: '=SUM(Sales[Price])', gives: 1 },
          C2: { formula: '=MAX(Sales[Price])', gives: 1 },
        },
      },
    };
    spreadsheet.places = { 'Sales[Price]': "'Data'!$A$2|2|1" };
    spreadsheet.failures = [{ of: 'evaluate', failure: { kind: 'busy', message: '' }, times: 1 }];
    scans.of(book).begin();
    await settled();
    // Every sheet was read, and still the list is not whole.
    const { state } = scans.of(book);
    expect(progressOf(state)).toBe('Looking up where tables are…');
    expect(coverageOf(state, false)).toBe(
      'The only sheet, as read at 10:42. Cells used through tables are not listed yet.',
    );
    clock.advance(1_000);
    await settled();
    expect(coverageOf(scans.of(book).state, false)).toBe('The only sheet, as read at 10:42.');
    expect(spreadsheet.asked.filter((one) => one.startsWith('evaluate'))).toHaveLength(2);
    expect(await users('Data', 'A3')).toEqual(['Data 1,3', 'Data 2,3']);
    // Those of the sheet in front are told without its name.
    spreadsheet.places = { 'Sales[Price]': '$A$2|2|1' };
    const { model } = scans;
    const fresh = new Scans(model, {
      questions: spreadsheet,
      clock,
      time: () => '',
      changed: () => undefined,
    });
    void model.ask(book, 'forget', {});
    fresh.enter(book);
    fresh.of(book).begin();
    await settled();
    expect(await users('Data', 'A3')).toEqual(['Data 1,3', 'Data 2,3']);
  });

  test('ends with a sentence when the workbook is closed, and can begin again', async () => {
    spreadsheet.sheets = two();
    const failure: Failure = { kind: 'transport', message: 'workbook not open: x' };
    spreadsheet.failures = [{ of: "Ann''s'!", failure, times: 1 }];
    scans.of(book).begin();
    await settled();
    const { state } = scans.of(book);
    expect(progressOf(state)).toBe(`Reading ended: “${book}” was closed.`);
    expect(coverageOf(state, false)).toMatch(/^So far 1 of 2 sheets\./);
    scans.of(book).go();
    await settled();
    expect(scans.of(book).state.status).toBe('done');
  });

  test('of a workbook that is saved under another name ends; that name is read anew', async () => {
    spreadsheet.sheets = two();
    const failure: Failure = { kind: 'transport', message: `workbook not open: ${book}` };
    spreadsheet.failures = [{ of: "Ann''s'!", failure, times: 9 }];
    scans.of(book).begin();
    await settled();
    expect(scans.of(book).state.reason).toBe(`“${book}” was closed.`);
    spreadsheet.front = 'Saved as.xlsx';
    spreadsheet.others['Saved as.xlsx'] = spreadsheet.sheets;
    spreadsheet.failures = [];
    spreadsheet.asked.length = 0;
    scans.enter('Saved as.xlsx');
    scans.of('Saved as.xlsx').begin();
    await settled();
    expect(coverageOf(scans.of('Saved as.xlsx').state, false)).toMatch(/^All 2 sheets/);
    expect(spreadsheet.asked.slice(1).every((one) => one.includes('[Saved as.xlsx]'))).toBe(true);
    expect(await users('Inputs', 'B1', 'Saved as.xlsx')).toEqual(["Ann's 1,1"]);
  });

  test('goes on while another workbook is in front, whose cells it never takes', async () => {
    spreadsheet.sheets = two();
    const formula = { formula: '=R1C2*2', gives: 14 };
    spreadsheet.others['Other.xlsx'] = {
      Inputs: { used: '$A$1:$C$1', cells: { B1: 7, C1: formula } },
    };
    scans.of(book).begin();
    expect(spreadsheet.asked).toEqual(['workbookMap']);
    spreadsheet.front = 'Other.xlsx';
    scans.enter('Other.xlsx');
    scans.of('Other.xlsx').begin();
    await settled();
    expect([scans.of(book).state.status, scans.of('Other.xlsx').state.status]).toEqual([
      'done',
      'done',
    ]);
    expect(await users('Inputs', 'B1')).toEqual(["Ann's 1,1"]);
    expect(await users('Inputs', 'B1', 'Other.xlsx')).toEqual(['Inputs 1,3']);
    // The workbook that is left is still known when the user comes back.
    spreadsheet.asked.length = 0;
    scans.enter(book);
    scans.of(book).begin();
    await settled();
    expect(spreadsheet.asked).toEqual([]);
  });

  test('does not take another workbook for its own', async () => {
    spreadsheet.sheets = two();
    spreadsheet.front = 'Other.xlsx';
    scans.of(book).begin();
    await settled();
    expect(scans.of(book).state).toMatchObject({
      status: 'failed',
      reason: `“${book}” is not in front.`,
    });
    expect(spreadsheet.asked).toEqual(['workbookMap']);
  });
});

describe('a sheet that changes', () => {
  test('its name, or is new, has the workbook read anew a moment later', async () => {
    spreadsheet.sheets = two();
    scans.of(book).begin();
    await settled();
    const { Inputs, ...others } = two();
    if (Inputs) spreadsheet.sheets = { Assumptions: Inputs, ...others };
    const calc = spreadsheet.sheets["Ann's"];
    if (calc) calc.cells.A1 = { formula: '=Assumptions!R1C2', gives: 5 };
    void scans.observe({ book, sheet: 'Assumptions', addr: 'B1' }, '', 5);
    await settled();
    expect(coverageOf(scans.of(book).state, false)).toContain('“Assumptions” has changed since.');
    clock.advance(3_000);
    await settled();
    expect(coverageOf(scans.of(book).state, false)).toBe('All 2 sheets, as read at 10:42.');
    expect(await users('Assumptions', 'B1')).toEqual(["Ann's 1,1"]);
  });

  test('is told as changed, and read again a moment later, it alone', async () => {
    spreadsheet.sheets = two();
    scans.of(book).begin();
    await settled();
    spreadsheet.asked.length = 0;
    void scans.observe({ book, sheet: 'Inputs', addr: 'B1' }, '', 5);
    await settled();
    expect(scans.of(book).state.changed).toEqual([]);
    const inputs = spreadsheet.sheets.Inputs;
    if (inputs) inputs.cells.B2 = { formula: '=R1C2', gives: 5 };
    void scans.observe({ book, sheet: 'Inputs', addr: 'B2' }, '=$B$1', 5);
    await settled();
    expect(coverageOf(scans.of(book).state, false)).toBe(
      'All 2 sheets, as read at 10:42. “Inputs” has changed since.',
    );
    clock.advance(3_000);
    await settled();
    expect(spreadsheet.asked).toEqual(['workbookMap', expect.stringContaining('Inputs')]);
    expect(scans.of(book).state.changed).toEqual([]);
    expect(await users('Inputs', 'B1')).toEqual(['Inputs 2,2', "Ann's 1,1"]);
  });
});

test('a model that is lost takes what it was told with it; the next look begins anew', async () => {
  spreadsheet.sheets = two();
  let now = 0;
  let lose = (): void => undefined;
  // As the page has it: a model is begun when it is first needed, and once more when it was lost.
  let current: ModelClient | undefined;
  const begun = (): ModelClient => {
    const carrier = new SlicedCarrier(clock, () => (now += 1));
    const client = new CarriedModel(carrier, () => {
      current = undefined;
      anew.forget();
    });
    lose = () => {
      carrier.hear(undefined);
    };
    return client;
  };
  const model: ModelClient = { ask: (of, ask, args) => (current ??= begun()).ask(of, ask, args) };
  const anew: Scans = new Scans(model, {
    questions: spreadsheet,
    clock,
    time: () => '10:42',
    changed: () => undefined,
  });
  anew.enter(book);
  const first = anew.of(book);
  first.begin();
  // In the middle of its first sheet.
  for (let i = 0; i < 8; i++) {
    clock.advance(0);
    await Promise.resolve();
  }
  expect(first.state.status).not.toBe('done');
  const before = spreadsheet.asked.length;
  lose();
  expect(anew.begun(book)).toBeUndefined();
  anew.of(book).begin();
  await settled();
  expect(['failed', 'stopped']).toContain(first.state.status);
  expect(anew.of(book).state).toMatchObject({ status: 'done', sheetsRead: 2 });
  // The first one asks nothing more.
  expect(spreadsheet.asked.length - before).toBe(3);
  const asked = anew.model.ask(book, 'users', { sheet: 'Inputs', area: parseArea('B1') as Area });
  await settled();
  expect((await asked).rows).toHaveLength(1);
});
