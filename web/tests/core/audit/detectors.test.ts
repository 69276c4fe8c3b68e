import { describe, expect, it } from 'vitest';
import { audit } from '../../../src/core/audit/audit';
import { WorkbookModel } from '../../../src/core/model/WorkbookModel';
import { drain } from '../model/RandomWorkbook';
import { pieceOf, type Written } from '../model/written';
import { findingsOf, line, modelOf, sentences, told } from './findings';

describe('surroundings found elsewhere', () => {
  const block = (top: number, last: string): Written => ({
    [`A${String(top)}`]: 'Opening',
    [`B${String(top)}`]: 10,
    [`A${String(top + 1)}`]: 'Growth',
    [`B${String(top + 1)}`]: `=B${String(top)}*$D$1`,
    [`A${String(top + 2)}`]: 'Tax',
    [`B${String(top + 2)}`]: last,
    [`A${String(top + 3)}`]: 'Closing',
    [`B${String(top + 3)}`]: `=B${String(top)}+B${String(top + 1)}-B${String(top + 2)}`,
  });

  it('finds the block of which one row differs', () => {
    const cells = {
      ...block(1, '=B2*$D$2'),
      ...block(7, '=B8*$D$2'),
      ...block(13, '=B13*$D$2'),
      ...block(19, '=B20*$D$2'),
      ...block(25, '=B26*$D$2'),
    };
    expect(told(cells)).toContain('elsewhere B15 =B14*$D$2');
  });

  it('finds the sheet of which one cell differs from its copies', () => {
    const sheet = (formula: string): Written => ({ ...block(1, formula), 'D1:D2': 2 });
    const found = findingsOf({
      North: sheet('=B2*$D$2'),
      South: sheet('=B2*$D$2'),
      East: sheet('=B2/$D$2'),
      West: sheet('=B2*$D$2'),
    });
    expect(found.map((one) => `${one.cells[0]?.sheet ?? ''} ${line(one)}`)).toEqual([
      'East elsewhere B3 =B2*$D$2',
    ]);
  });
});

describe('surroundings by form', () => {
  /** Blocks alike but for their numbers and the rows that they take. */
  const block = (i: number, last: string): Written => {
    const top = 1 + i * 5;
    return {
      [`A${String(top)}`]: 'Fuel',
      [`B${String(top)}`]: `=0.11*$H$${String(3 + i * i)}`,
      [`A${String(top + 1)}`]: 'Carbon dioxide',
      [`B${String(top + 1)}`]: last,
      [`A${String(top + 2)}`]: 'Sulfur',
      [`B${String(top + 2)}`]: `=B${String(top)}/${String(2 + i * 3)}`,
    };
  };
  const blocks = (odd: Written['']): Written => ({
    ...block(0, '=B1*2.74'),
    ...block(1, '=B6*3.15'),
    ...block(2, '=B11*1.37'),
    ...block(3, '=B16*3'),
    ...block(4, '=B21*2.2'),
    B12: odd ?? null,
  });

  it('finds the operator that differs, and the number typed over a formula', () => {
    expect(told(blocks('=B11/1.37'))).toEqual(['elsewhere B12']);
    expect(told(blocks(0.4))).toEqual(['constant B12']);
  });

  it('finds nothing where only numbers differ', () => {
    expect(told(blocks('=B11*1.37'))).toEqual([]);
  });
});

describe('references that go on by a step', () => {
  it('finds the one that leaves it', () => {
    const cells: Written = {};
    for (let row = 1; row <= 8; row++) {
      cells[`B${String(row)}`] = `=Z${String(row === 5 ? 12 : row * 3)}`;
    }
    expect(told(cells)).toEqual(['step B5 =Z15']);
  });

  it('leaves references without a step alone', () => {
    const cells: Written = {};
    [3, 9, 4, 17, 21, 2, 30, 8].forEach((target, i) => {
      cells[`B${String(i + 1)}`] = `=Z${String(target)}`;
    });
    expect(told(cells)).toEqual([]);
  });
});

describe('sums', () => {
  it.each<[string, Written, string[]]>([
    ['a row between the range and its sum', { 'A2:A9': 4, A10: '=SUM(A2:A8)' }, ['left-out A10']],
    ['a row before the range', { A1: 'Sales', 'A2:A9': 4, A10: '=SUM(A3:A9)' }, ['left-out A10']],
    [
      'a number as large as a date',
      { A1: 45292, 'A2:A9': 4, A10: '=SUM(A2:A9)' },
      ['left-out A10'],
    ],
    [
      'a number among such, with others beside it',
      { A1: 45292, B1: 45323, 'A2:B9': 45000, A10: '=SUM(A2:A9)' },
      ['left-out A10'],
    ],
    ['the sum itself', { 'A2:A9': 4, A10: '=SUM(A2:A10)' }, ['own-total A10']],
  ])('finds %s', (_, cells, expected) => {
    expect(told(cells)).toEqual(expected);
  });

  it.each<[string, Written]>([
    ['a year over the column', { A1: 2024, 'A2:A9': 4, A10: '=SUM(A2:A9)' }],
    ['a total under the range', { 'A2:A9': 4, A10: '=SUM(A2:A9)', A11: '=AVERAGE(A2:A9)' }],
    ['a part of a long list', { 'A2:A90': 4, C1: '=SUM(A2:A13)' }],
    ['text beside the range', { A1: 'Sales', 'A2:A9': 4, A10: 'Total', A11: '=SUM(A2:A9)' }],
  ])('leaves alone %s', (_, cells) => {
    expect(told(cells)).toEqual([]);
  });
});

describe('ranges of one formula', () => {
  it.each<[string, Written, string[]]>([
    ['unequal ones', { 'A1:B9': 4, D1: '=SUMPRODUCT(A1:A9,B1:B8)' }, ['unequal D1']],
    ['unequal conditions', { 'A1:B9': 4, D1: '=SUMIFS(A1:A9,B1:B8,4)' }, ['unequal D1']],
    [
      'a lookup table that slides',
      { 'A1:A9': 4, 'F1:G20': 4, 'B1:B9': '=VLOOKUP(A1,F1:G9,2,FALSE)' },
      ['sliding B1:B9'],
    ],
  ])('finds %s', (_, cells, expected) => {
    expect(told(cells)).toEqual(expected);
  });

  it.each<[string, Written]>([
    ['equal ones', { 'A1:B9': 4, D1: '=SUMPRODUCT(A1:A9,B1:B9)' }],
    ['a fixed table', { 'A1:A9': 4, 'F1:G20': 4, 'B1:B9': '=VLOOKUP(A1,F$1:G$9,2,FALSE)' }],
    ['a vector in INDEX', { 'A1:B9': 4, D1: '=INDEX(A1:A9,2)' }],
  ])('leaves alone %s', (_, cells) => {
    expect(told(cells)).toEqual([]);
  });
});

describe('what is gone or leads out', () => {
  it('tells references to deleted cells once for a sheet', () => {
    expect(told({ A1: 1, B1: '=#REF!+1', B9: '=SUM(#REF!)' })).toEqual(['broken B1 B9']);
  });

  it('says what was deleted and where', () => {
    expect(sentences({ A1: 1, B1: '=#REF!+1', B9: '=SUM(#REF!)' })).toEqual([
      'B1 and 1 other cell of the sheet refer to cells that were deleted: =#REF!+1.',
    ]);
  });

  it('tells a single link to another workbook', () => {
    expect(told({ A1: 1, B1: '=A1*2', B9: '=[Other.xlsx]Sheet1!A1' })).toEqual(['link B9']);
  });
});

describe('the list', () => {
  it('gives others a turn after every row and column that is looked at', () => {
    const cells: Written = {};
    for (let row = 1; row <= 400; row++)
      cells[`B${String(row)}`] = `=A${String(row)}*${String(row)}`;
    let turns = 0;
    for (const work = audit(modelOf({ Sheet: cells })); work.next().done !== true;) turns++;
    // Along rows as neighbours and as sequences, and three times by surroundings of each way.
    expect(turns).toBeGreaterThan(8 * 400);
  });

  it('has one finding for a cell that several detectors saw', () => {
    const found = findingsOf({
      Sheet: { 'A1:F9': 2, 'A10:F10': '=SUM(A1:A9)', D10: '=SUM(D1:D8)' },
    });
    expect(found).toHaveLength(1);
    expect(found[0]).toMatchObject({ rank: 1, kind: 'differs', confidence: 'high', reach: 0 });
  });

  it('is told of a sheet whose last cell is far away', () => {
    const near = pieceOf({ 'A1:A12': 3, 'B1:B12': '=A1*2', B6: '=A5*2' });
    const model = new WorkbookModel({ book: 'Model.xlsx', sheets: ['Sheet'], names: [] });
    const far = { top: 1_048_576, left: 16_384, bottom: 1_048_576, right: 16_384 };
    model.beginSheet('Sheet');
    model.piece('Sheet', near.area, near.formulas, near.values);
    model.piece('Sheet', far, [['=1/0']], [['#DIV/0!']]);
    model.endSheet('Sheet');
    expect(drain(audit(model)).map(line)).toEqual(['differs B6 =A6*2', 'error XFD1048576']);
  });

  it('changes nothing of the model, also where it writes what is expected', () => {
    const cells: Written = {};
    for (let row = 1; row <= 8; row++) {
      cells[`B${String(row)}`] = `=Z${String(row === 5 ? 12 : row * 3)}`;
    }
    const model = modelOf({ Sheet: cells });
    const before = model.formulas.count;
    expect(drain(audit(model)).map(line)).toEqual(['step B5 =Z15']);
    expect(model.formulas.count).toBe(before);
  });

  it('counts what rests on a cell', () => {
    const found = findingsOf({
      Sheet: { 'A1:A9': 2, 'B1:B9': '=A1*2', B5: 10, C1: '=SUM(B1:B9)', C2: '=C1*2' },
    });
    expect(found.map(({ kind, reach }) => [kind, reach])).toEqual([['constant', 2]]);
  });
});
