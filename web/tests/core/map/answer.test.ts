import { describe, expect, test } from 'vitest';

import { Code } from '../../../src/core/map/codes';
import { factsText, flowsText, cellText, tiesText } from '../../../src/core/map/words';
import { area, placeOf, Reader } from '../model/written';

const workbook = () =>
  new Reader(
    {
      Inputs: { A1: 'Rate', B1: 0.5, B2: true },
      Calc: {
        A1: 'Year',
        'B1:D1': 2030,
        A2: 'Cost',
        B2: '=Inputs!B1*B1 -> 7',
        'C2:D2': '=B2*Inputs!$B$1',
        B3: '=1/0 -> #DIV/0!',
        C3: "='[Other.xlsx]S'!A1",
      },
      Sum: { A1: '=SUM(Calc!B2:D2)', A2: '=Calc!B2+Calc!C2+Inputs!B1' },
      Empty: {},
    },
    [{ name: 'Far', refersTo: "='[Third.xlsx]S'!$A$1" }],
  );

describe('sheets', () => {
  test('are told with what they hold and where they lead', () => {
    const { sheets, links, flows } = workbook().ask('mapSheets', {});
    expect(sheets[1]).toEqual({
      name: 'Calc',
      area: 'A1:D3',
      cells: 10,
      inputs: 3,
      formulas: 5,
      distinctFormulas: 4,
      errors: 1,
      links: 1,
    });
    expect(sheets.map(factsText)).toEqual([
      'A1:B2 · no formulas · 2 inputs',
      'A1:D3 · 5 formulas (4 distinct) · 3 inputs · 1 error · 1 link to other workbooks',
      'A1:A2 · 2 formulas (2 distinct)',
      'Empty',
    ]);
    expect(links.map(({ workbook }) => workbook)).toEqual(['Other.xlsx', 'Third.xlsx']);
    expect(flows).toEqual([
      { from: 'Inputs', to: 'Calc', cells: 3 },
      { from: 'Calc', to: 'Sum', cells: 2 },
      { from: 'Inputs', to: 'Sum', cells: 1 },
    ]);
    expect(flowsText('Calc', flows)).toBe('takes from Inputs (3 cells); gives to Sum (2 cells)');
    expect(flowsText('Empty', flows)).toBe('');
  });
});

describe('a picture', () => {
  const whole = { rowLevel: 0, colLevel: 0, row: 0, col: 0 };

  test('is told in tiles, as long as the sheet is the one that was read', () => {
    const model = workbook();
    const frame = model.ask('mapFrame', { sheet: 'Calc' });
    expect([frame?.rows.count, frame?.cols.count]).toEqual([3, 4]);
    const stamp = frame?.stamp ?? 0;
    const tile = model.ask('mapTile', { sheet: 'Calc', stamp, tile: whole });
    const codes = [...(tile?.codes ?? [])];
    expect(codes.slice(0, 4)).toEqual([Code.Text, Code.Input, Code.Input, Code.Input]);
    expect(codes[6]).toBe(codes[7]);
    expect(codes[5]).not.toBe(codes[6]);
    expect(codes.slice(8, 10)).toEqual([Code.Blank, Code.Error]);
    model.read('Calc', { A1: 'Now' });
    expect(model.ask('mapTile', { sheet: 'Calc', stamp, tile: whole })).toBeUndefined();
    expect(model.ask('mapFrame', { sheet: 'Calc' })?.stamp).not.toBe(stamp);
    expect(model.ask('mapFrame', { sheet: 'Empty' })?.rows.count).toBe(0);
    expect(model.ask('mapFrame', { sheet: 'None' })).toBeUndefined();
  });
});

describe('a cell', () => {
  const model = workbook();
  const say = (row: number, col: number) => {
    const told = model.ask('mapCell', { sheet: 'Calc', row, col });
    const { address, label, content, more } = cellText({ row, col }, told, [
      { rank: 1, kind: 'link', confidence: 'low', sentence: '', areas: [area('C3')] },
    ]);
    return [address, label, content, ...more].join(' | ');
  };

  test.each([
    [2, 3, 'C2 | Cost · 2030 | =B2*Inputs!$B$1  0 | Like all of C2:D2'],
    [3, 3, "C3 | 2030 | ='[Other.xlsx]S'!A1  0 | Finding: Link to another workbook"],
    [1, 2, 'B1 | Year | 2030'],
    [3, 1, 'A3 | Cost | blank'],
    [9, 9, 'I9 |  | not read'],
  ])('in row %i, column %i is told', (row, col, text) => {
    expect(say(row, col)).toBe(text);
  });
});

describe('ties', () => {
  test('are told as rectangles by sheet, each cell once', () => {
    const model = workbook();
    const cells = { sheet: 'Calc', area: area('B2') };
    const ties = model.ask('mapTies', cells);
    const told = (tied: typeof ties.uses) =>
      tied.flatMap(({ sheet, areas }) => areas.map((one) => placeOf({ sheet, area: one })));
    expect(told(ties.uses)).toEqual(['Inputs!B1', 'Calc!B1']);
    expect(told(ties.users)).toEqual(['Calc!C2', 'Sum!A1:A2']);
    expect(tiesText(cells, ties)).toBe('B2 uses 2 cells (1 on Inputs); 3 cells use it (2 on Sum).');
    expect(tiesText(cells, model.ask('mapTies', { sheet: 'Empty', area: area('B2') }))).toBe(
      'B2 uses no cell; no cell uses it.',
    );
  });
});

describe('breaks', () => {
  test('are the findings that have cells on the sheet', () => {
    const column = { 'A1:A9': 2, 'B1:B9': '=A1*2', B6: '=A6*3 -> 6' };
    const model = new Reader({ Data: column, Other: { A1: 1 } });
    const [first] = model.ask('mapBreaks', { sheet: 'Data' });
    expect(first?.areas).toEqual([area('B6')]);
    expect(model.ask('mapBreaks', { sheet: 'Other' })).toEqual([]);
  });
});
