import { describe, expect, test } from 'vitest';

import { decodeReply, type Verb } from '../../../src/core/protocol/verbs';

const cell = {
  book: 'Model.xlsx',
  sheet: 'Summary',
  addr: 'F12',
  row: 12,
  col: 6,
  formula: '=A1*2',
  formulaLocal: '=A1*2',
  value: 4,
};

describe('payloads that the page believes', () => {
  test.each<[Verb, unknown, unknown?]>([
    ['probe', { state: 'noWorkbook' }],
    ['probe', { state: 'ok', excelWindow: { x1: 0, y1: 25.5, x2: 800, y2: 600 } }],
    ['probe', { state: 'ok', excelWindow: { x1: 0 } }, { state: 'ok' }],
    ['readCell', cell],
    ['readCell', { ...cell, selection: '$F$12', region: '$A$1:$H$20' }],
    ['readCell', { ...cell, value: null }],
    ['readCell', { ...cell, selection: '' }, cell],
    ['readRange', { rows: 1, cols: 2, values: [[1, '#N/A']] }],
    ['readRange', { tooBig: true, rows: 200, cols: 101 }],
    ['select', { areas: 2 }],
    ['activate', true],
    ['pollCell', { book: 'B', sheet: 'S', addr: 'A1' }],
    ['readFormulas', { rows: 1, cols: 2, formulas: [['=A1', '']], values: [[1, true]] }],
    ['readFormulas', { rows: 1, cols: 1, formulas: [['']], values: [] }],
    ['dependents', ''],
    [
      'workbookMap',
      {
        book: 'B',
        sheets: [
          { name: 'S', usedRange: '$A$1:$C$9' },
          { name: 'T', usedRange: null },
        ],
        sheetsTruncated: false,
        names: [{ name: 'Rate', refersTo: '=S!$A$1' }],
      },
    ],
    ['markCells', { applied: 3, shadowed: false, moved: true }],
    ['markCells', { applied: 3, shadowed: true }, { applied: 3, shadowed: true, moved: false }],
    ['clearMarks', { removed: 0 }],
    ['reveal', { revealed: false, reason: 'multi-sheet' }],
    ['reveal', { revealed: true, activated: true, unhid: 'rows 12–14' }],
    ['getHighlightColor', [255, 0, 255]],
    ['log', null],
    ['setPanelWidth', null],
  ])('%s %j', (verb, payload, value = payload) => {
    expect(decodeReply(verb, true, payload)).toEqual({ ok: true, value });
  });
});

describe('payloads that it refuses', () => {
  test.each<[Verb, unknown]>([
    ['probe', { state: 'fine' }],
    ['probe', null],
    ['readCell', { ...cell, row: 0 }],
    ['readCell', { ...cell, row: 1.5 }],
    ['readCell', { ...cell, formula: null }],
    ['readCell', { ...cell, value: undefined }],
    ['readCell', [cell]],
    ['readRange', { rows: 2, cols: 1, values: [[1]] }],
    ['readRange', { rows: 1, cols: 2, values: [[1]] }],
    ['readRange', { rows: 1, cols: 1, values: [[{ __unmarshalled: 'abcd' }]] }],
    ['readRange', { rows: -1, cols: 1, tooBig: true }],
    ['select', { areas: '2' }],
    ['activate', false],
    ['pollCell', { book: 'B', sheet: 'S' }],
    ['readFormulas', { rows: 1, cols: 1, formulas: [[1]], values: [] }],
    ['dependents', null],
    ['workbookMap', { book: 'B', sheets: [{}], sheetsTruncated: false, names: [] }],
    ['markCells', { applied: 3 }],
    ['reveal', {}],
    ['evaluate', { value: 3 }],
    ['evaluate', { ok: true }],
    ['getHighlightColor', ['red']],
    ['hidePanel', 'done'],
  ])('%s %j', (verb, payload) => {
    expect(decodeReply(verb, true, payload)).toMatchObject({
      ok: false,
      failure: { kind: 'malformed' },
    });
  });
});

describe('evaluations', () => {
  test('that succeed give their value', () => {
    const payload = { ok: true, value: [[1, 2]] };
    expect(decodeReply('evaluate', true, payload)).toEqual({ ok: true, value: [[1, 2]] });
  });

  test('that fail inside a successful reply are failures', () => {
    const payload = { ok: false, kind: 'excelError', message: '#DIV/0!' };
    expect(decodeReply('evaluate', true, payload)).toEqual({
      ok: false,
      failure: { kind: 'excelError', message: '#DIV/0!' },
    });
    expect(
      decodeReply('deepEval', true, {
        ok: false,
        kind: 'refused',
        message: 'deep-eval plan empty',
      }),
    ).toEqual({ ok: false, failure: { kind: 'refused', message: 'deep-eval plan empty' } });
  });
});
