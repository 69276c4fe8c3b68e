import { describe, expect, test } from 'vitest';

import { areaAddress } from '../../../src/core/address/area';
import { area, book, pieceOf, placeOf, Reader, type Written } from './written';
import { drain } from './RandomWorkbook';

describe('users of a cell', () => {
  test('are found on every sheet, by region', () => {
    const model = new Reader({
      Inputs: { B2: 5, C2: '=B2*2' },
      Calc: { 'A1:A9': '=Inputs!$B$2+B1', C3: "=SUM('Inputs'!A1:B4)" },
    });
    expect(model.users('Inputs', 'B2')).toEqual(['Inputs!C2', 'Calc!A1:A9', 'Calc!C3']);
    expect(model.users('inputs', 'B3')).toEqual(['Calc!C3']);
    expect(model.users('Inputs', 'D2')).toEqual([]);
  });

  test('are found through whole columns, whole rows and sheets between two', () => {
    const model = new Reader({
      One: { A1: 1 },
      Two: { A1: 2 },
      Three: { B5: '=SUM(One:Two!A1)', B6: '=SUM(One!A:A)', B7: '=SUM(Two!1:3)' },
    });
    expect(model.users('One', 'A1')).toEqual(['Three!B5', 'Three!B6']);
    expect(model.users('One', 'A1048576')).toEqual(['Three!B6']);
    expect(model.users('Two', 'XFD2')).toEqual(['Three!B7']);
  });

  test('are found through names of the workbook, of a sheet, and of other names', () => {
    const names = [
      { name: 'Rate', refersTo: '=Data!$B$2' },
      { name: "'My data'!Rate", refersTo: "='My data'!$C$3" },
      { name: 'Also', refersTo: '=Rate' },
      { name: 'Double', refersTo: '=LAMBDA(x,x*Data!$B$9)' },
    ];
    const model = new Reader(
      {
        Data: { B2: 1, D1: '=Rate', D2: '=Also*2', D3: '=Double(D1)', D4: "='My data'!Rate" },
        'My data': { C3: 4, D1: '=Rate' },
      },
      names,
    );
    expect(model.users('Data', 'B2')).toEqual(['Data!D1', 'Data!D2']);
    expect(model.users('My data', 'C3')).toEqual(['Data!D4', 'My data!D1']);
    expect(model.users('Data', 'B9')).toEqual(['Data!D3']);
  });

  test('know nothing of the names that LET and LAMBDA give themselves', () => {
    const names = [{ name: 'rate', refersTo: '=Data!$B$2' }];
    const model = new Reader({ Data: { B2: 1, D1: '=LET(rate,C1,rate*2)' } }, names);
    expect(model.users('Data', 'B2')).toEqual([]);
    expect(model.users('Data', 'C1')).toEqual(['Data!D1']);
  });

  test('are found through tables once the spreadsheet has told where these are', () => {
    const model = new Reader({
      Data: { A1: 'Price', 'A2:A4': 1, 'B2:B4': '=Sales[@Price]*2', D1: '=SUM(Sales[Price])' },
    });
    expect(model.users('Data', 'A3')).toEqual([]);
    expect(model.ask('state', {}).tables).toEqual(['Sales[Price]']);
    const untold = model.ask('runTime', {}).rows;
    expect(untold.map(({ reasons }) => reasons)).toEqual([['a table'], ['a table']]);
    const place = { sheet: 'Data', area: area('A2:A4') };
    model.ask('tables', { places: [{ question: 'Sales[Price]', place }] });
    expect(model.users('Data', 'A3')).toEqual(['Data!D1', 'Data!B3']);
    expect(model.ask('state', {}).tables).toEqual([]);
  });

  test('are found through names of tables once the spreadsheet has told where these are', () => {
    const names = [
      { name: 'Prices', refersTo: '=Sales[Price]' },
      { name: 'Shown', refersTo: '=Prices' },
    ];
    const model = new Reader({ Data: { 'A2:A4': 1, D1: '=SUM(Shown)' } }, names);
    expect(model.users('Data', 'A3')).toEqual([]);
    const place = { sheet: 'Data', area: area('A2:A4') };
    model.ask('tables', { places: [{ question: 'Sales[Price]', place }] });
    expect(model.users('Data', 'A3')).toEqual(['Data!D1']);
    expect(model.ask('runTime', {}).rows).toEqual([]);
  });

  test('of an area are those of any of its cells', () => {
    const model = new Reader({ Data: { 'B1:B9': '=A1', D1: '=A20' } });
    expect(model.users('Data', 'A4:A6')).toEqual(['Data!B4:B6']);
    expect(model.users('Data', 'A8:A20')).toEqual(['Data!D1', 'Data!B8:B9']);
  });

  test('in another workbook, or in one that is gone, are none', () => {
    const model = new Reader({
      Data: {
        B1: '=[Other.xlsx]Data!A1',
        B2: '=Gone!A1',
        B3: '=#REF!+A2',
        B4: `=[${book}]Data!A9`,
      },
    });
    expect(model.users('Data', 'A1')).toEqual([]);
    expect(model.users('Data', 'A2')).toEqual(['Data!B3']);
    expect(model.users('Data', 'A9')).toEqual(['Data!B4']);
  });
});

describe('dependents', () => {
  const asked = (model: Reader, sheet: string, address: string) =>
    model.ask('dependents', { sheet, area: area(address) });

  test('tell how far a cell reaches, and which results nothing else uses', () => {
    const model = new Reader({
      Inputs: { A2: 'Price', B2: 5 },
      Calc: { 'A1:A4': '=Inputs!$B$2', A5: '=SUM(A1:A4)', A6: '=A2' },
      Report: { A1: 'Total', B1: '=Calc!A5*2 -> 40' },
    });
    const { rows, cells, impact, circular } = asked(model, 'Inputs', 'B2');
    expect(rows.map(placeOf)).toEqual(['Calc!A1:A4']);
    expect([cells, impact.cells, impact.sheets, impact.results]).toEqual([4, 7, 2, 2]);
    expect(impact.rows.map((row) => [placeOf(row), row.label, row.value])).toEqual([
      ['Calc!A6', '', 0],
      ['Report!B1', 'Total', 40],
    ]);
    expect(circular).toBe(false);
  });

  test('name what is decided at run time, and why', () => {
    const names = [{ name: 'Left', refersTo: '=Data!A1' }];
    const model = new Reader(
      {
        Data: {
          B1: '=INDIRECT("A"&C1)',
          B2: '=SUM(OFFSET(A1,1,0,C1))',
          B3: '=SUM(A1:INDEX(A1:A9,C1))',
          B4: '=SUM(A1#)',
          B5: '=Left',
          B6: '=A1',
        },
      },
      names,
    );
    const { runTimeCells, rows } = asked(model, 'Data', 'A1');
    const runTime = model.ask('runTime', {}).rows;
    expect(runTime.map((row) => [placeOf(row), row.reasons])).toEqual([
      ['Data!B1', ['INDIRECT']],
      ['Data!B2', ['OFFSET']],
      ['Data!B3', ['a computed range']],
      ['Data!B4', ['a spill']],
      ['Data!B5', ['a relative name']],
    ]);
    expect(runTimeCells).toBe(5);
    expect(rows.map(placeOf)).toEqual(['Data!B2', 'Data!B3', 'Data!B4', 'Data!B6']);
  });

  test('go step by step where a column uses the cells three above, and no further', () => {
    const model = new Reader({ Data: { A1: 1, 'A4:A14': '=A1+1', 'B4:B14': '=B3+1' } });
    expect(asked(model, 'Data', 'A1').impact.cells).toBe(4);
    expect(asked(model, 'Data', 'B3').impact.cells).toBe(11);
  });

  test('say whether the cell is in a circle; a column that builds on itself is none', () => {
    const model = new Reader({ Data: { A1: '=B1', B1: '=C1+1', C1: '=A1', 'D2:D9': '=D1+A1' } });
    expect(asked(model, 'Data', 'B1').circular).toBe(true);
    expect(asked(model, 'Data', 'D5').circular).toBe(false);
    expect(asked(model, 'Data', 'D1').circular).toBe(false);
  });
});

describe('drivers', () => {
  test('are formulas that name no cell, too', () => {
    const model = new Reader({
      Fuels: { B3: '=42.6/3.6', B4: '=RAND()', B5: '=INDIRECT("C1")', B6: '=#REF!', C1: 7 },
      Calc: { B1: '=1/(Fuels!$B$3*3.6)', B2: '=B1+SUM(Fuels!B3:B6)' },
    });
    const told = (cell: string) =>
      model.ask('drivers', { sheet: 'Calc', area: area(cell) }).rows.map(placeOf);
    expect(told('B1')).toEqual(['Fuels!B3']);
    // What is decided at run time, or is gone, is no input.
    expect(told('B2')).toEqual(['Fuels!B3:B4']);
  });

  const model = new Reader({
    Inputs: { A1: 'Price', B1: 5, A2: 'Region', B2: 'North', A3: 'Growth', B3: 0.02, B4: 7 },
    Calc: {
      B1: '=Inputs!B1',
      'C1:F1': '=B1*(1+Inputs!$B$3)',
      B9: '=SUM(B1:F1)*IF(Inputs!B2="North",1,2)+Inputs!B8',
    },
  });

  test('are the inputs at the end of every way, those used most first', () => {
    const answer = model.ask('drivers', { sheet: 'Calc', area: area('B9') });
    expect(
      answer.rows.map((row) => [placeOf(row), row.label, row.value, row.kind, row.uses, row.steps]),
    ).toEqual([
      ['Inputs!B3', 'Growth', 0.02, 'number', 4, 2],
      ['Inputs!B1', 'Price', 5, 'number', 1, 2],
      ['Inputs!B2', 'Region', 'North', 'text', 1, 1],
      ['Inputs!B8', '', null, 'blank', 1, 1],
    ]);
    expect([answer.formulas, answer.inputs, answer.left]).toEqual([6, 3, 0]);
  });

  test('of a typed-in cell are none', () => {
    expect(model.ask('drivers', { sheet: 'Inputs', area: area('B1') }).formulas).toBe(0);
  });
});

describe('the ways from one cell to another', () => {
  const ways = (model: Reader, from: string, to: string) => {
    const place = (text: string) => {
      const [sheet = '', address = ''] = text.split('!');
      return { sheet, area: area(address) };
    };
    return model.ask('ways', { from: place(from), to: place(to) });
  };
  const steps = (answer: ReturnType<typeof ways>) =>
    answer.ways.map((way) => way.steps.map(placeOf).join(' '));

  test('lead over the cells that rest on the first, the shortest first', () => {
    const model = new Reader({
      Inputs: { A1: 'Price', B1: 5, A3: 'Growth', B3: 0.02 },
      Calc: {
        B1: '=Inputs!B1',
        'C1:F1': '=B1*(1+Inputs!$B$3)',
        B2: '=F1*2',
        B9: '=SUM(B1:F1)+B2',
      },
    });
    const growth = ways(model, 'Inputs!B3', 'Calc!B9');
    expect(steps(growth)).toEqual([
      'Calc!C1:F1 Calc!B9',
      'Calc!F1 Calc!B2 Calc!B9',
      'Calc!C1:F1 Calc!B2 Calc!B9',
    ]);
    expect([growth.more, growth.circular]).toEqual([false, false]);
    expect(growth.ways[1]?.steps.map(({ formula }) => formula)).toEqual([
      '=E1*(1+Inputs!$B$3)',
      '=F1*2',
      '=SUM(B1:F1)+B2',
    ]);
    expect(steps(ways(model, 'Inputs!B1', 'Calc!B2'))).toEqual(['Calc!B1 Calc!C1:F1 Calc!B2']);
    expect(ways(model, 'Calc!B9', 'Inputs!B1').ways).toEqual([]);
  });

  test('through months that hand over to each other are one', () => {
    // Opening, flow and closing of each month, the closing of one being the opening of the next.
    const model = new Reader({
      Roll: {
        A1: 100,
        B1: '=A1',
        'B2:CV2': '=B1*0.1',
        'B3:CV3': '=B1+B2',
        'C1:CV1': '=B3',
        A5: '=CV3',
      },
    });
    const answer = ways(model, 'Roll!A1', 'Roll!A5');
    expect(answer.ways.length).toBeLessThanOrEqual(4);
    const [first] = answer.ways;
    expect(first?.steps.slice(0, 3).map(placeOf)).toEqual(['Roll!B1', 'Roll!B3', 'Roll!C1']);
    expect(first?.steps.at(-1)?.formula).toBe('=CV3');
    // 99 months of an opening and a closing each, and the end.
    expect([first?.steps.length, first?.left, first?.leftAfter]).toEqual([40, 159, 20]);
    expect(answer.circular).toBe(false);
  });

  test('on which a circle lies say so', () => {
    const model = new Reader({
      Data: { A1: 1, B1: '=A1+D1', C1: '=B1*2', D1: '=C1/4', E1: '=C1', F1: '=A1' },
    });
    const answer = ways(model, 'Data!A1', 'Data!E1');
    expect([steps(answer), answer.circular]).toEqual([['Data!B1 Data!C1 Data!E1'], true]);
    expect(ways(model, 'Data!A1', 'Data!F1').circular).toBe(false);
  });

  test('are bounded in number', () => {
    const cells: Record<string, string | number> = { A1: 1 };
    // Each row uses both cells of the row above by formulas of its own: 2 to the power of 20 ways.
    for (let row = 2; row <= 21; row++) {
      const above = String(row - 1);
      cells[`A${String(row)}`] = `=A${above}+B${above}*${String(row)}`;
      cells[`B${String(row)}`] = `=A${above}-B${above}*${String(row)}`;
    }
    const answer = ways(new Reader({ Data: cells }), 'Data!A1', 'Data!A21');
    expect([answer.ways.length, answer.more]).toEqual([50, true]);
  });
});

describe('a sheet with cells in far corners', () => {
  const far = (): Reader => {
    const model = new Reader({ Data: {}, Other: { A1: '=Data!A1 -> #N/A' } });
    model.ask('beginSheet', { sheet: 'Data' });
    const near = pieceOf({ A1: '#N/A', B1: '=A1*2 -> #N/A', C1: '=B1 -> #N/A', D1: '=A1 -> #N/A' });
    model.ask('piece', { sheet: 'Data', ...near });
    const corner = area('XFD1048576');
    const last = { formulas: [['=R1C2']], values: [['#N/A']] };
    model.ask('piece', { sheet: 'Data', area: corner, ...last });
    model.ask('endSheet', { sheet: 'Data' });
    return model;
  };

  test('tells where errors start', () => {
    const { total, rows } = far().ask('errors', {});
    expect(total).toBe(6);
    expect(rows.map((row) => [placeOf(row), row.spoils])).toEqual([['Data!A1', 5]]);
  });

  test('tells what rests on a cell, and which results nothing else uses', () => {
    const { impact } = far().ask('dependents', { sheet: 'Data', area: area('A1') });
    expect([impact.cells, impact.sheets, impact.results]).toEqual([5, 2, 4]);
    const places = impact.rows.map((row) => `${row.sheet}!${areaAddress(row.area)}`);
    expect(places.sort()).toEqual(['Data!C1', 'Data!D1', 'Data!XFD1048576', 'Other!A1']);
  });
});

describe('findings', () => {
  const odd = (): Reader =>
    new Reader({
      Data: {
        'A1:A9': 2,
        'B1:B9': '=A1*2',
        B6: '=A6*3+$A$1 -> 8',
        C1: 'Rate',
        D1: '=[Other.xlsx]Data!$A$1 -> 5',
      },
    });

  test('come by rank, with what stands in the first cell', () => {
    const model = odd();
    const before = model.ask('state', {});
    const { rows, told, total, formulas } = model.ask('findings', { from: 0 });
    expect([rows.length, told, total, formulas]).toEqual([2, 2, 2, 10]);
    expect(
      rows.map(({ kind, formula, expected, value, areas, size, label }) => ({
        kind,
        formula,
        expected,
        value,
        areas,
        size,
        label,
      })),
    ).toEqual([
      {
        kind: 'differs',
        formula: '=A6*3+$A$1',
        expected: '=A6*2',
        value: 8,
        areas: 1,
        size: 1,
        label: '',
      },
      {
        kind: 'link',
        formula: '=[Other.xlsx]Data!$A$1',
        expected: '',
        value: 5,
        areas: 1,
        size: 1,
        label: 'Rate',
      },
    ]);
    expect(model.ask('findings', { from: 2 }).rows).toEqual([]);
    // The audit leaves the model as it was.
    expect(model.ask('state', {})).toEqual(before);
  });

  test('are those of what was read last', () => {
    const model = odd();
    expect(model.ask('findings', { from: 0 }).total).toBe(2);
    model.read('Data', { 'A1:A9': 2, 'B1:B9': '=A1*2' });
    expect(model.ask('findings', { from: 0 })).toMatchObject({ rows: [], total: 0, formulas: 9 });
  });

  test('come in parts, of many areas the first ones', () => {
    const cells: Written = {};
    for (let row = 1; row <= 300; row++) {
      cells[`A${String(row)}`] = `=$C$1+ROUND($C$1,${String(row)})-C$1`;
      cells[`F${String(row * 2)}`] = '=[Other.xlsx]Data!$A$1';
    }
    const model = new Reader({ Data: cells });
    const first = model.ask('findings', { from: 0 });
    const second = model.ask('findings', { from: first.rows.length });
    expect([first.told, first.rows.length, second.rows.length]).toEqual([301, 250, 51]);
    const all = [...first.rows, ...second.rows];
    expect(all.map(({ rank }) => rank)).toEqual(Array.from({ length: 301 }, (_, i) => i + 1));
    const link = all.find(({ kind }) => kind === 'link');
    expect([link?.cells.length, link?.areas, link?.size]).toEqual([40, 300, 300]);
  });
});

describe('errors', () => {
  test('are told by their first causes, the one that spoils most first', () => {
    const model = new Reader({
      Data: {
        A1: 0,
        'B1:B2': '=1/A1 -> #DIV/0!',
        C1: '#N/A',
        C2: '=C1+1 -> #N/A',
        D1: '=SUM(B1:B2) -> #DIV/0!',
        D2: '=D1+C1 -> #DIV/0!',
        D3: '=ISERROR(D2)',
      },
      Next: { A1: '=Data!D2 -> #DIV/0!' },
    });
    const answer = model.ask('errors', {});
    expect(answer.total).toBe(7);
    expect(answer.rows.map((row) => [placeOf(row), row.text, row.spoils])).toEqual([
      ['Data!B1:B2', '#DIV/0!', 3],
      ['Data!C1', '#N/A', 3],
    ]);
    expect(answer.circular).toBe(0);
  });

  test('in a circle have no first cause, and are counted', () => {
    const model = new Reader({ Data: { A1: '=B1 -> #REF!', B1: '=A1 -> #REF!', C1: '=A9' } });
    expect(model.ask('errors', {})).toEqual({ total: 2, rows: [], left: 0, circular: 2 });
  });
});

describe('labels', () => {
  test('are the nearest texts to the left and above; units and years count as such', () => {
    const model = new Reader({
      Data: {
        C1: 2020,
        D1: 2030,
        A2: 'Electricity demand',
        B2: 'TWh',
        C2: 350,
        D2: 400,
        A3: '',
        B3: 'GW',
        C3: 9,
        F5: 'Share',
        F6: 0.4,
      },
    });
    const labels = (...addresses: string[]) => {
      const cells = addresses.map((address) => ({ sheet: 'Data', area: area(address) }));
      return model.ask('labels', { cells });
    };
    expect(labels('C2', 'D2', 'C3', 'F6', 'A1')).toEqual([
      'Electricity demand · 2020',
      'Electricity demand · 2030',
      'GW · 2020',
      'Share',
      '',
    ]);
    // Of several cells what they have in common.
    expect(labels('C2:D2', 'C2:C3', 'C2:D3', 'C:C', '2:2')).toEqual([
      'Electricity demand',
      '2020',
      'Electricity demand · 2020 …',
      '',
      '',
    ]);
  });
});

describe('what is not as it should be', () => {
  test('formulas that cannot be read are counted and listed as text', () => {
    const model = new Reader({ Data: { A2: 1 } });
    const formulas = [['=SUM(R[1]C'], ['']];
    model.ask('beginSheet', { sheet: 'Data' });
    model.ask('piece', { sheet: 'Data', area: area('A1:A2'), formulas, values: [[1], [1]] });
    model.ask('endSheet', { sheet: 'Data' });
    const state = model.ask('state', {});
    expect([state.formulas, state.distinct, state.unreadCells]).toEqual([1, 1, 1]);
    expect(state.unread.map((row) => row.formula)).toEqual(['=SUM(R[1]C']);
    expect(model.users('Data', 'A2')).toEqual(['Data!A1']);
  });

  test('names that lead to each other, to nothing or down a long chain do no harm', () => {
    const chain = Array.from({ length: 30_000 }, (_, i) => ({
      name: `chain.${String(i)}`,
      refersTo: i === 0 ? '=Data!$A$1' : `=chain.${String(i - 1)}`,
    }));
    const names = [
      ...chain,
      { name: 'Ring', refersTo: '=Back+Data!$A$2' },
      { name: 'Back', refersTo: '=Ring' },
      { name: 'Gone', refersTo: '=#REF!$A$1' },
      { name: 'Odd', refersTo: '' },
    ];
    const model = new Reader(
      { Data: { B1: '=chain.150', B2: '=Ring', B3: '=Gone+Odd+Nobody', B4: '=chain.29999' } },
      names,
    );
    expect(model.users('Data', 'A1')).toEqual(['Data!B1', 'Data!B4']);
    expect(model.users('Data', 'A2')).toEqual(['Data!B2']);
    expect(model.ask('state', {}).formulas).toBe(4);
  });

  test('names that each lead to all others, in circles or not, are each looked at once', () => {
    const among = (count: number, from: (i: number) => number) =>
      Array.from({ length: count }, (_, i) => {
        const others = Array.from({ length: from(i) }, (__, j) => `+knot.${String(j)}`).join('');
        return { name: `knot.${String(i)}`, refersTo: `=Data!$A$${String(i + 1)}${others}` };
      });
    const cells = { C1: '=knot.0', C2: '=knot.39' };
    const knot = new Reader(
      { Data: cells },
      among(40, () => 40),
    );
    // Whoever is in a circle leads to all of it.
    expect(knot.users('Data', 'A1')).toEqual(['Data!C1', 'Data!C2']);
    expect(knot.users('Data', 'A40')).toEqual(['Data!C1', 'Data!C2']);
    const layers = new Reader(
      { Data: cells },
      among(40, (i) => i),
    );
    expect(layers.users('Data', 'A1')).toEqual(['Data!C1', 'Data!C2']);
    expect(layers.users('Data', 'A40')).toEqual(['Data!C2']);
  });

  test('30,000 names that add to each other take little, and what is left out is told', () => {
    const name = (i: number) => `part.${String(i)}`;
    const names = Array.from({ length: 30_000 }, (_, i) => ({
      name: name(i),
      refersTo: `=Data!$A$${String(i + 1)}${i === 0 ? '' : `+${name(i - 1)}`}`,
    }));
    const model = new Reader(
      { Data: { B1: `=${name(199)}`, B2: `=${name(200)}`, B3: `=${name(29_999)}` } },
      names,
    );
    expect(model.users('Data', 'A200')[0]).toBe('Data!B1');
    expect(model.ask('runTime', {}).rows.map((row) => [placeOf(row), row.reasons])).toEqual([
      ['Data!B2', ['names of too many areas']],
      ['Data!B3', ['names of too many areas']],
    ]);
  });

  test('the longest formulas and ranges are taken', () => {
    const long = `=${Array.from({ length: 1_500 }, (_, i) => `A${String(i + 1)}`).join('+')}`;
    const model = new Reader({
      Data: { B1: long, B2: '=SUM(A1:A1048576)', B3: '=SUM(1:1048576)' },
    });
    expect(model.users('Data', 'A1400')).toEqual(['Data!B1', 'Data!B2', 'Data!B3']);
    // What is told of them fits a row.
    const { rows } = model.ask('users', { sheet: 'Data', area: area('A1400') });
    expect(rows[0]?.formula).toMatch(/^=A1\+A2\+A3.{100,240}…$/);
    expect(model.users('Data', 'A1048576')).toEqual(['Data!B2', 'Data!B3']);
  });

  test('a workbook that was never begun is refused', () => {
    const { host } = new Reader({ Data: { A1: 1 } });
    const question = { id: 1, book: 'Other.xlsx', ask: 'state' as const, args: {} };
    expect(() => drain(host.answer(question))).toThrow('“Other.xlsx” was not read.');
  });
});

describe('comparing', () => {
  test('tells a cell that changed from one that did not', () => {
    const model = new Reader({ Data: { A1: 5, B1: '=SUM( A1:A2 )', C1: 'x' } });
    const compare = (col: number, formula: string, value: string | number | null, sheet = 'Data') =>
      model.ask('compare', { sheet, row: 1, col, formula, value });
    expect(compare(1, '', 5)).toBe('same');
    expect(compare(1, '', 6)).toBe('differs');
    expect(compare(1, '=B2', 5)).toBe('differs');
    expect(compare(2, '=sum(A1:A2)', 99)).toBe('same');
    expect(compare(2, '=SUM(A1:A3)', 0)).toBe('differs');
    expect(compare(3, '', '')).toBe('differs');
    expect(compare(4, '', '')).toBe('same');
    expect(compare(1, '', 5, 'New sheet')).toBe('unknown');
  });

  test('a text that only looks like a formula uses nothing', () => {
    const model = new Reader({ Data: { A1: 5 } });
    const text = '=SUM(A1:A3;0)';
    const whole = { sheet: 'Data', area: area('A1:C1') };
    model.ask('beginSheet', { sheet: 'Data' });
    model.ask('piece', {
      ...whole,
      formulas: [['', '=RC[-1]', '=R1C1']],
      values: [[5, 5, '=R1C1']],
    });
    model.ask('endSheet', { sheet: 'Data' });
    expect(model.users('Data', 'A1')).toEqual(['Data!B1']);
    expect(model.ask('state', {}).formulas).toBe(1);
    const compare = (formula: string, value: string | number) =>
      model.ask('compare', { sheet: 'Data', row: 1, col: 3, formula, value });
    expect(compare('=R1C1', '=R1C1')).toBe('same');
    expect(compare(text, text)).toBe('differs');
    expect(compare('=A1', 5)).toBe('differs');
  });

  test('a sheet that is read again replaces what was known of it', () => {
    const model = new Reader({ Data: { A1: 5, B1: '=A1' }, Next: { A1: '=Data!A1' } });
    model.read('Data', { A1: 5, C1: '=A1' });
    expect(model.users('Data', 'A1')).toEqual(['Data!C1', 'Next!A1']);
  });
});
