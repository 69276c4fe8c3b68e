import { beforeEach, describe, expect, test } from 'vitest';

import { CarriedModel, SlicedCarrier, type ModelClient } from '../../../src/core/model/ModelClient';
import { failed, succeeded, type Outcome } from '../../../src/core/protocol/Outcome';
import type { RangeFormulas } from '../../../src/core/protocol/verbs';
import { Scans } from '../../../src/core/scan/Scans';
import { areasRead, Lists } from '../../../src/core/workbook/Lists';
import type { PlaceView } from '../../../src/core/workbook/PlaceView';
import { FakeClock } from '../../fakes/FakeClock';
import { settled } from '../evaluation/bench';

const place = { book: 'Model.xlsx', sheet: 'Data', addr: 'C7' };

let answer: string;
let cells: Record<string, string[][]>;
let asked: string[];
let lists: Lists;
let hold: Promise<void> | undefined;

beforeEach(() => {
  answer = '';
  cells = {};
  asked = [];
  hold = undefined;
  lists = new Lists(
    {
      dependents: () => Promise.resolve(succeeded(answer)),
      workbookMap: () => Promise.reject(new Error('not asked here')),
      async readFormulas(address, style, formulasOnly): Promise<Outcome<RangeFormulas>> {
        asked.push([address, style, formulasOnly].join(' '));
        await hold;
        const formulas = cells[address];
        if (!formulas) return failed('transport', 'no such cells');
        const cols = formulas[0]?.length ?? 0;
        return succeeded({ rows: formulas.length, cols, formulas, values: [] });
      },
    },
    () => undefined,
  );
});

const shown = (list: PlaceView) =>
  list.rows.map(({ row, level }) => [level, row.text, row.detail].join(' | '));

async function dependents(): Promise<PlaceView> {
  lists.load('deps', place);
  await settled();
  return lists.dependents;
}

describe('dependents', () => {
  test('are listed by sheet and relative formula', async () => {
    answer = "$D$7:$D$18,$F$2,$H$2,'Summary'!$B$4";
    cells = {
      "'Data'!D7:D18": Array.from({ length: 12 }, () => ['=RC[-1]*R2C2']),
      "'Data'!F2": [['=R7C3+1']],
      "'Data'!H2": [['=R7C3+1']],
      "'Summary'!B4": [['=SUM(Data!R7C3:R9C3)']],
    };
    expect(shown(await dependents())).toEqual([
      '1 | This sheet | 14 cells',
      '2 | D7:D18 | =C7*$B$2  ×12',
      '2 | F2 and 1 more area | =$C$7+1  ×2',
      '1 | Summary | 1 cell',
      '2 | B4 | =SUM(Data!$C$7:$C$9)',
    ]);
    expect(asked[0]).toBe("'Data'!D7:D18 r1c1 true");
    expect(lists.dependents.state).toEqual({ status: 'known', note: '' });
  });

  test('open down to the single cell', async () => {
    answer = '$D$7:$D$8,$F$2,$H$2';
    cells = {
      "'Data'!D7:D8": [['=RC[-1]'], ['=RC[-1]']],
      "'Data'!F2": [['=R7C3']],
      "'Data'!H2": [['=R7C3']],
    };
    const list = await dependents();
    for (const how of ['down', 'in', 'in', 'down', 'down', 'in'] as const) list.move(how, 10);
    expect(shown(list)).toEqual([
      '1 | This sheet | 4 cells',
      '2 | D7:D8 | =C7  ×2',
      '3 | D7 | =C7',
      '3 | D8 | =C8',
      '2 | F2 and 1 more area | =$C$7  ×2',
      '3 | F2 | =$C$7',
      '3 | H2 | =$C$7',
    ]);
    expect(list.active?.text).toBe('F2 and 1 more area');
    list.move('out', 10);
    expect(list.rows).toHaveLength(5);
    list.move('out', 10);
    expect(list.active?.text).toBe('This sheet');
    list.move('out', 10);
    expect(list.rows).toHaveLength(1);
  });

  test('are listed before their formulas are known, and the active one stays', async () => {
    answer = '$D$7:$D$8,$F$2';
    cells = { "'Data'!D7:D8": [['=RC[-1]'], ['=1+RC[-1]']], "'Data'!F2": [['=R7C3']] };
    let release = (): void => undefined;
    hold = new Promise((resolve) => (release = resolve));
    const list = await dependents();
    expect(shown(list).slice(1)).toEqual(['2 | D7:D8 | 2 rows × 1 column', '2 | F2 | one cell']);
    list.move('last', 10);
    release();
    await settled();
    expect(shown(list).slice(1)).toEqual(['2 | D7 | =C7', '2 | D8 | =1+C8', '2 | F2 | =$C$7']);
    expect(list.active?.text).toBe('F2');
  });

  test('whose formulas cannot be read are listed all the same', async () => {
    answer = '$D$7:$D$8,$A:$B';
    expect(shown(await dependents())).toEqual([
      '1 | This sheet | 2,097,154 cells',
      '2 | D7:D8 | 2 rows × 1 column',
      '2 | A:B | 2 whole columns',
    ]);
    expect(asked).toEqual(["'Data'!D7:D8 r1c1 true"]);
  });

  test('in very many areas are read in part, and the list says so', async () => {
    answer = Array.from({ length: areasRead + 5 }, (_, i) => `$B$${String(2 * i + 1)}`).join();
    const list = await dependents();
    expect(asked).toHaveLength(areasRead);
    expect(list.state).toMatchObject({ note: 'Formulas of the first 40 areas of 45 only.' });
  });

  test('of a cell that is left behind are read no further', async () => {
    answer = '$D$7,$D$9,$D$11';
    let release = (): void => undefined;
    hold = new Promise((resolve) => (release = resolve));
    await dependents();
    lists.outdate();
    release();
    await settled();
    expect(asked).toHaveLength(1);
    lists.forget();
    expect(lists.dependents.rows).toEqual([]);
  });

  test('in a block of very many cells are listed up to a thousand', async () => {
    answer = '$A$1:$A$1500';
    cells = { "'Data'!A1:A1500": Array.from({ length: 1_500 }, () => ['=R7C3']) };
    const list = await dependents();
    list.activate(1);
    list.move('in', 10);
    expect(list.rows).toHaveLength(1_003);
    expect(shown(list).at(-1)).toBe('3 | … | and 500 more');
  });
});

describe('while a workbook of many sheets is read', () => {
  const first = { book: 'Model.xlsx', sheet: 'S1', addr: 'A1' };
  let clock: FakeClock;
  let everywhere: Lists;
  let scans: Scans;
  /** What the list covered whenever the model was asked. */
  let asks: string[];
  /** Until this is over the model answers nothing about dependents. */
  let until: Promise<void> | undefined;
  /** Until this is over the spreadsheet does not tell where tables are. */
  let lookUp: Promise<void> | undefined;
  /** Part of an address that the spreadsheet refuses to tell of. */
  let refused: string | undefined;

  function open(count: number, formula = '=S1!R1C1'): void {
    clock = new FakeClock();
    asks = [];
    until = undefined;
    lookUp = undefined;
    refused = undefined;
    let time = 0;
    const carried = new CarriedModel(new SlicedCarrier(clock, () => (time += 1)), () => undefined);
    const model: ModelClient = {
      ask: async (of, ask, args) => {
        if (ask === 'dependents') {
          asks.push(String(scans.of(first.book).state.sheetsRead));
          await until;
        }
        return carried.ask(of, ask, args);
      },
    };
    const formulas = [[''], [formula]];
    const sheets = Array.from({ length: count }, (_, i) => ({
      name: `S${String(i + 1)}`,
      usedRange: '$A$1:$A$2',
    }));
    const map = { book: first.book, sheets, sheetsTruncated: false, names: [] };
    scans = new Scans(model, {
      questions: {
        workbookMap: () => Promise.resolve(succeeded(map)),
        readFormulas: (address) =>
          Promise.resolve(
            refused !== undefined && address.includes(refused)
              ? failed('transport', 'The sheet is protected.')
              : succeeded({ rows: 2, cols: 1, formulas, values: [[1], [1]] }),
          ),
        evaluate: async () => {
          await lookUp;
          return succeeded("'[Model.xlsx]S1'!$A$1");
        },
        pollCell: () => Promise.resolve(succeeded(first)),
      },
      clock,
      time: () => '10:42',
      changed: () => {
        everywhere.scanned();
      },
    });
    scans.enter(first.book);
    everywhere = new Lists(
      {
        dependents: () => Promise.resolve(succeeded("'S1'!$A$2")),
        workbookMap: () => Promise.reject(new Error('not asked here')),
        readFormulas: () => Promise.resolve(failed('transport', 'not read here')),
      },
      () => undefined,
      scans,
    );
  }

  async function passed(): Promise<void> {
    for (let i = 0; i < 300; i++) {
      clock.advance(0);
      await settled();
    }
  }

  const groups = () =>
    everywhere.dependents.rows.filter(({ level }) => level === 1).map(({ row }) => row.text);

  test('the model is asked once for all sheets that were read while it worked', async () => {
    open(6);
    let release = (): void => undefined;
    until = new Promise((resolve) => (release = resolve));
    everywhere.load('deps', first);
    await passed();
    expect(scans.of(first.book).state.status).toBe('done');
    expect(asks).toEqual(['1']);
    // Nothing of the model's is listed yet, and nothing of it is claimed.
    expect(groups()).toEqual(['This sheet']);
    expect(everywhere.coverage).toMatch(/^As the spreadsheet tells it/);
    expect(everywhere.isWhole).toBe(false);
    release();
    await passed();
    expect(asks).toEqual(['1', '6']);
    expect(groups().slice(0, 6)).toEqual(['This sheet', 'S2', 'S3', 'S4', 'S5', 'S6']);
    expect(everywhere.coverage).toBe('All 6 sheets, as read at 10:42.');
    expect(everywhere.isWhole).toBe(true);
  });

  test('the model is asked when as many sheets more were read as before', async () => {
    open(40);
    everywhere.load('deps', first);
    await passed();
    expect(scans.of(first.book).state.status).toBe('done');
    const read = asks.map(Number);
    expect(read[0]).toBe(1);
    expect(read.at(-1)).toBe(40);
    read.slice(1, -1).forEach((sheets, i) => {
      expect(sheets).toBeGreaterThanOrEqual(Math.min(40, 2 * (read[i] ?? 0)));
    });
    expect(read.length).toBeLessThanOrEqual(8);
    expect(groups()[39]).toBe('S40');
    asks = [];
    // Read again the list stays as it was, until all is read.
    scans.of(first.book).readAgain();
    await passed();
    expect(asks).toEqual(['40']);
  });

  test('what could not be read is listed, cells with the reason and formulas as they stand', async () => {
    open(3, '=SUM(S1!R1C1');
    refused = ']S2';
    everywhere.load('deps', first);
    await passed();
    expect(everywhere.coverage).toBe('All 3 sheets, as read at 10:42. 1 area could not be read.');
    const list = everywhere.dependents;
    list.move('last', 10);
    expect(list.active).toMatchObject({
      text: 'What could not be read',
      detail: '1 area, 2 formulas',
    });
    list.move('in', 10);
    expect(shown(list).slice(-3)).toEqual([
      '2 | S2!A1:A2 | The sheet is protected.',
      '2 | S1!A2 | =SUM(S1!R1C1',
      '2 | S3!A2 | =SUM(S1!R1C1',
    ]);
    list.move('down', 10);
    expect(list.active?.place).toMatchObject({ sheet: 'S2', address: 'A1:A2' });
  });

  test('the list says that tables are missing until an answer has them', async () => {
    open(1, '=SUM(Sales[Price])');
    let tell = (): void => undefined;
    let release = (): void => undefined;
    lookUp = new Promise((resolve) => (tell = resolve));
    everywhere.load('deps', first);
    await passed();
    until = new Promise((resolve) => (release = resolve));
    tell();
    await passed();
    expect(scans.of(first.book).state.status).toBe('done');
    const missing = 'Cells used through tables are not listed yet.';
    expect(everywhere.coverage).toBe(`The only sheet, as read at 10:42. ${missing}`);
    release();
    await passed();
    expect(everywhere.coverage).toBe('The only sheet, as read at 10:42.');
    // What was told stays as it is when the model is lost.
    scans.forget();
    expect(everywhere.coverage).toBe('The only sheet, as read at 10:42.');
  });
});
