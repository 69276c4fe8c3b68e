import { beforeEach, describe, expect, test } from 'vitest';

import { Atlas } from '../../../src/core/map/Atlas';
import { Picture } from '../../../src/core/map/Picture';
import { hiddenText } from '../../../src/core/map/words';
import { CarriedModel, SlicedCarrier, type ModelClient } from '../../../src/core/model/ModelClient';
import { failed, succeeded, type Outcome } from '../../../src/core/protocol/Outcome';
import type { RangeFormulas, WorkbookMap } from '../../../src/core/protocol/verbs';
import { Scans } from '../../../src/core/scan/Scans';
import { FakeClock } from '../../fakes/FakeClock';
import { settled } from '../evaluation/bench';
import { area, pieceOf, type Written } from '../model/written';

const column: Written = { 'A1:A9': 2, 'B1:B9': '=A1*2', B6: '=A6*3 -> 6' };
const cell = (sheet: string, address: string) => ({ sheet, area: area(address) });
const first = { rowLevel: 0, colLevel: 0, row: 0, col: 0 };

let clock: FakeClock;
let sheets: Record<string, Written>;
let refused: string;
/** The letters of the one column that is hidden; empty where the spreadsheet tells nothing of it. */
let hiddenColumn: string;
let asked: string[];
let scans: Scans;
let atlas: Atlas;

beforeEach(() => {
  clock = new FakeClock();
  sheets = { Data: column, More: { A1: 1, B2: '=A1' } };
  refused = '';
  hiddenColumn = '';
  asked = [];
  const own = new CarriedModel(new SlicedCarrier(clock, () => 0), () => undefined);
  const model: ModelClient = {
    ask: (book, ask, args) => {
      if (ask.startsWith('map')) asked.push(ask);
      return own.ask(book, ask, args);
    },
  };
  scans = new Scans(model, {
    questions: {
      workbookMap: () =>
        Promise.resolve(
          succeeded<WorkbookMap>({
            book: 'Model.xlsx',
            sheets: Object.entries(sheets).map(([name, cells]) => {
              const { bottom, right } = pieceOf(cells).area;
              return {
                name,
                usedRange: `$A$1:$${String.fromCharCode(64 + right)}$${String(bottom)}`,
              };
            }),
            sheetsTruncated: false,
            names: [],
          }),
        ),
      readFormulas(address): Promise<Outcome<RangeFormulas>> {
        const sheet = /\](.*)'!/.exec(address)?.[1] ?? '';
        if (sheet === refused) return Promise.resolve(failed('busy', 'busy'));
        const { area: read, formulas, values } = pieceOf(sheets[sheet] ?? {});
        return Promise.resolve(
          succeeded({ rows: read.bottom, cols: read.right, formulas, values }),
        );
      },
      evaluate(expression): Promise<Outcome<string>> {
        if (hiddenColumn === '') return Promise.resolve(failed('transport', 'not asked here'));
        const terms = expression.split('&"|"&');
        const values = terms.map((term) => (term.includes(`!${hiddenColumn}1)`) ? 0 : 9));
        return Promise.resolve(succeeded(values.join('|')));
      },
      pollCell: () => Promise.resolve(failed('transport', 'not asked here')),
    },
    clock,
    time: () => '10:42',
    changed: () => undefined,
  });
  scans.enter('Model.xlsx');
  atlas = new Atlas(() => undefined, scans);
  atlas.picture.resize({ width: 400, height: 300 });
});

async function pass(): Promise<void> {
  for (let i = 0; i < 40; i++) {
    clock.advance(200);
    await settled();
  }
}

/** What a view reads; what is not known yet is asked for. */
function view() {
  const { sheet, ties, told } = atlas;
  const frame = atlas.frameOf(sheet);
  const tile = frame && atlas.tile(sheet, first);
  return { sheet, frame, tile, ties, told, breaks: atlas.breaksOf(sheet) };
}

async function seen() {
  await pass();
  view();
  await pass();
  view();
  await pass();
  return view();
}

describe('the map', () => {
  test('reads the workbook and shows the sheet of the selected cell', async () => {
    atlas.look('Model.xlsx', cell('Data', 'B6'), true);
    expect(view().frame).toBeUndefined();
    const { sheet, frame, tile, ties, told, breaks } = await seen();
    expect([sheet, frame?.rows.count, tile?.width]).toEqual(['Data', 9, 2]);
    expect(ties?.uses[0]?.areas).toEqual([area('A6')]);
    expect(told?.sheets.map(({ formulas }) => formulas)).toEqual([9, 1]);
    expect(breaks).toHaveLength(1);
    expect(atlas.picture.cursor).toEqual({ row: 6, col: 2 });
  });

  test('asks nothing twice', async () => {
    atlas.look('Model.xlsx', cell('Data', 'B6'), true);
    await seen();
    const before = asked.length;
    await seen();
    expect(asked).toHaveLength(before);
    expect([...asked].sort()).toEqual(['mapBreaks', 'mapFrame', 'mapSheets', 'mapTies', 'mapTile']);
  });

  test('is not read while the workbook is not in front', async () => {
    atlas.look('Model.xlsx', cell('Data', 'B6'), false);
    await seen();
    expect(atlas.scan).toBeUndefined();
    expect(asked).toEqual([]);
  });

  test('goes with the selection, and stays where the user went until it moves', async () => {
    atlas.look('Model.xlsx', cell('Data', 'B6'), true);
    await seen();
    atlas.turnSheet(1);
    atlas.look('Model.xlsx', cell('Data', 'B6'), true);
    expect(atlas.sheet).toBe('More');
    atlas.turnSheet(1);
    expect(atlas.sheet).toBe('More');
    atlas.look('Model.xlsx', cell('Data', 'B7'), true);
    expect(atlas.sheet).toBe('Data');
    expect((await seen()).ties?.uses[0]?.areas).toEqual([area('A7')]);
  });

  test('shows a sheet anew that was read anew, and the old picture until then', async () => {
    atlas.look('Model.xlsx', cell('Data', 'B6'), true);
    const before = await seen();
    sheets = { ...sheets, Data: { ...column, C12: 5 } };
    void scans.observe({ book: 'Model.xlsx', sheet: 'Data', addr: 'B6' }, '=A6*9', 9);
    expect(view().tile).toBe(before.tile);
    const after = await seen();
    expect([after.frame?.rows.count, after.tile?.width]).toEqual([12, 3]);
  });

  test('shows the sheets that were read while others are not', async () => {
    refused = 'More';
    atlas.look('Model.xlsx', cell('Data', 'B6'), true);
    const { frame, breaks } = await seen();
    expect(frame?.rows.count).toBe(9);
    // Of a part of a workbook nothing odd is told.
    expect(breaks).toEqual([]);
    expect([atlas.hasRead('Data'), atlas.hasRead('More')]).toEqual([true, false]);
    atlas.open('More');
    expect((await seen()).frame).toBeUndefined();
  });

  test('asks which tracks are hidden once the workbook was read, once', async () => {
    hiddenColumn = 'B';
    atlas.look('Model.xlsx', cell('Data', 'B6'), true);
    expect(atlas.hiddenOf('Data')).toBeUndefined();
    await seen();
    atlas.hiddenOf('Data');
    await pass();
    const found = { rows: [], cols: [{ first: 2, last: 2 }], partly: false };
    expect(atlas.hiddenOf('Data')).toEqual(found);
    expect(hiddenText(found)).toBe('1 hidden column');
    hiddenColumn = 'A';
    atlas.hiddenOf('Data');
    await pass();
    expect(atlas.hiddenOf('Data')).toEqual(found);
  });

  test('keeps few tiles, however far the user goes', async () => {
    sheets = { Data: { 'A1:A300': 1 } };
    atlas.look('Model.xlsx', cell('Data', 'A1'), true);
    await seen();
    for (let level = 0; level < 200; level++) {
      atlas.tile('Data', { ...first, rowLevel: level % 9, colLevel: Math.floor(level / 9) });
      await settled();
      clock.advance(1);
      await settled();
    }
    const before = asked.length;
    atlas.tile('Data', { ...first, rowLevel: 199 % 9, colLevel: 22 });
    expect(asked).toHaveLength(before);
    atlas.tile('Data', first);
    expect(asked).toHaveLength(before + 1);
  });
});

describe('the cursor', () => {
  test('goes from cell to cell as long as nothing is known of the sheet', () => {
    const picture = new Picture(() => undefined);
    picture.open('More');
    for (const how of ['right', 'right', 'down', 'left', 'up', 'up', 'pageDown'] as const)
      picture.move(how);
    expect(picture.cursor).toEqual({ row: 1, col: 2 });
  });

  test('moves by cells, out of folds, and from finding to finding', async () => {
    sheets = { Data: { ...column, A200: 1 } };
    atlas.look('Model.xlsx', cell('Data', 'A1'), true);
    await seen();
    const { picture } = atlas;
    const at = () => [picture.cursor.row, picture.cursor.col];
    picture.move('down');
    expect(at()).toEqual([2, 1]);
    picture.move('up');
    picture.move('up');
    expect(at()).toEqual([1, 1]);
    picture.move('last');
    expect(at()).toEqual([1, 2]);
    picture.move('pageDown');
    expect(picture.cursor.row).toBe(200);
    expect(atlas.toBreak(1)).toBe(true);
    expect(at()).toEqual([6, 2]);
    atlas.open('Elsewhere');
    expect(atlas.toBreak(1)).toBe(false);
  });
});
