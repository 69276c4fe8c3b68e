// A part's result for reading.

import type { Result } from '../evaluation/Result';
import type { Scalar } from '../protocol/json';
import { valueView, type ShownAs, type ValueView } from './value';
import { grouped } from './words';

/** Tabs between columns and line breaks between rows, as spreadsheets take it from a clipboard. */
function asTable(result: Result & { kind: 'array' }): string {
  return (result.values ?? []).map((row) => row.map(textOf).join('\t')).join('\n');
}

function textOf(cell: Scalar): string {
  if (cell === null) return '';
  return typeof cell === 'boolean' ? String(cell).toUpperCase() : String(cell);
}

export type ResultContext = {
  /** The value stands in a cell: empty means that the cell is blank. */
  isCell: boolean;
  shown?: ShownAs | undefined;
  whole?: boolean;
};

export function resultView(result: Result, context: ResultContext): ValueView {
  switch (result.kind) {
    case 'error':
      return valueView({ value: null, formula: '=', error: result.text });
    case 'function':
      return {
        type: 'Unknown',
        text: 'a function',
        copy: '',
        note: 'waits for a call',
        cut: false,
      };
    case 'array': {
      const size = `${grouped(String(result.rows))} × ${grouped(String(result.cols))}`;
      const note = 'rows × columns';
      return { type: 'Array', text: size, copy: asTable(result), note, cut: false };
    }
    case 'value': {
      const { isCell, shown, whole = false } = context;
      const { value } = result;
      if (value === null) return valueView({ value: null, formula: '' });
      return valueView({ value, formula: isCell ? '' : '=', shown }, whole);
    }
  }
}
