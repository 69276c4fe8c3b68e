import { describe, expect, test } from 'vitest';

import { formatNumber } from '../../../src/core/format/number';
import { shownTextLimit, valueView, wholeTextLimit } from '../../../src/core/format/value';
import { oneLine, visibleText } from '../../../src/core/format/visible';

describe('formatNumber', () => {
  test.each([
    [0, '0'],
    [-0, '0'],
    [5, '5'],
    [-1234, '-1234'],
    [1284.5, '1284.5'],
    [123456789012345, '123456789012345'],
    [1234567.891, '1234567.891'],
    [99999999999.99, '99999999999.99'],
    [1234567890123.25, '1234567890123.25'],
    [0.00001, '0.00001'],
    [0.000123456, '0.000123456'],
    [1e15, '1E+15'],
    [1.5e-7, '1.5E-07'],
    [-6.02214076e23, '-6.02214076E+23'],
    [1e-300, '1E-300'],
  ])('shows %d as %s, exactly', (value, text) => {
    expect(formatNumber(value)).toEqual({
      text,
      exact: String(value === 0 ? 0 : value),
      rounded: false,
    });
  });

  test.each([
    [0.1 + 0.2, '0.3', '0.30000000000000004'],
    [1 / 3, '0.3333333333', '0.3333333333333333'],
    [1234567.123456789, '1234567.123', '1234567.123456789'],
    [12345678901234.56, '12345678901234.6', '12345678901234.56'],
    [3.14159265358979e25, '3.141592654E+25', '3.14159265358979e+25'],
    [0.9999999999999, '1', '0.9999999999999'],
  ])('rounds %d to %s and says so', (value, text, exact) => {
    expect(formatNumber(value)).toEqual({ text, exact, rounded: true });
  });
});

describe('valueView', () => {
  const constant = (value: unknown) => valueView({ value: value as never, formula: '' });

  test('of blank cells', () => {
    expect(constant('')).toMatchObject({ type: 'Blank', text: '' });
    expect(constant(null)).toMatchObject({ type: 'Blank', text: '' });
  });

  test('of a formula that gives an empty text', () => {
    expect(valueView({ value: '', formula: '=""' })).toMatchObject({
      type: 'Text',
      text: '""',
      copy: '',
      note: 'empty text',
    });
  });

  test('of numbers: what is rounded is told in full, and copied in full', () => {
    expect(constant(2)).toEqual({ type: 'Number', text: '2', copy: '2', note: '', cut: false });
    expect(constant(1 / 3)).toEqual({
      type: 'Number',
      text: '0.3333333333',
      copy: '0.3333333333333333',
      note: 'exactly 0.3333333333333333',
      cut: false,
    });
    expect(constant(1234567)).toMatchObject({ text: '1234567', copy: '1234567' });
  });

  test('of numbers as their cells show them, with every digit where that leaves some out', () => {
    const shown = (value: number, text: string) =>
      valueView({ value, formula: '', shown: { text } });
    expect(shown(2041, '2041')).toMatchObject({ text: '2041', copy: '2041', note: '' });
    expect(shown(1_500_000, '£1.5M')).toMatchObject({
      text: '£1.5M',
      copy: '1500000',
      note: 'exactly 1500000',
    });
    expect(shown(1_284.5, ' 1,284.50 ')).toMatchObject({ text: '1,284.50', copy: '1284.5' });
  });

  test('of logical values', () => {
    expect(constant(true)).toMatchObject({ type: 'Logical', text: 'TRUE' });
    expect(constant(false)).toMatchObject({ type: 'Logical', text: 'FALSE' });
  });

  test('of errors, by their text where it is known', () => {
    expect(valueView({ value: null, formula: '=1/0', error: '#DIV/0!' })).toMatchObject({
      type: 'Error',
      text: '#DIV/0!',
      copy: '#DIV/0!',
    });
    expect(valueView({ value: null, formula: '=1/0' })).toMatchObject({
      type: 'Error',
      text: 'Error',
      note: 'of unknown kind',
    });
  });

  test('of texts: quoted, counted, and never taken for an error or a formula', () => {
    expect(constant('#N/A')).toMatchObject({ type: 'Text', text: '"#N/A"', note: '4 characters' });
    expect(constant('=A1')).toMatchObject({ type: 'Text', text: '"=A1"' });
    expect(constant('a')).toMatchObject({
      text: '"a"',
      copy: 'a',
      note: '1 character',
      cut: false,
    });
  });

  test('of long texts: cut when shown, whole on request and in a copy', () => {
    const long = 'x'.repeat(1_000_000);
    const cut = constant(long);
    expect(cut.text).toHaveLength(shownTextLimit + 3);
    expect(cut).toMatchObject({ cut: true, note: '1,000,000 characters' });
    expect(cut.copy).toBe(long);
    const whole = valueView({ value: long, formula: '' }, true);
    expect(whole.text).toHaveLength(wholeTextLimit + 3);
    expect(valueView({ value: 'x'.repeat(401), formula: '' }, true).cut).toBe(false);
  });

  test('of what is no value', () => {
    expect(constant({ __unmarshalled: 'abcd' })).toMatchObject({
      type: 'Unknown',
      text: 'Not a value',
    });
    expect(constant([[1], [2]])).toMatchObject({ type: 'Array', copy: '[[1],[2]]' });
  });
});

describe('visibleText', () => {
  test('shows controls that would act on what stands around them', () => {
    expect(visibleText('a\u202Eb\u2066c\u0000d\u200B\uFEFFe')).toBe(
      'a‹U+202E›b‹U+2066›c‹U+0000›d‹U+200B›‹U+FEFF›e',
    );
    expect(visibleText('\u{E0041}')).toBe('‹U+E0041›');
  });

  test('leaves everything that is read as it stands', () => {
    const text = '=IF(A1>0,\n\t"schön 👩‍👩‍👧 שלום")';
    expect(visibleText(text)).toBe(text);
  });

  test('brings a name onto one line', () => {
    expect(oneLine('a\r\nb\tc\nd')).toBe('a ↵ b ⇥ c ↵ d');
  });
});
