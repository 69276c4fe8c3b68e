import { beforeEach, expect, test } from 'vitest';

import { ErrorLog, errorCountLimit, errorTextLimit } from '../../../src/core/diagnostics/ErrorLog';

let written: string[];
let log: ErrorLog;

beforeEach(() => {
  written = [];
  log = new ErrorLog((text) => written.push(text));
});

test('names where it happened, the error and its stack', () => {
  const error = new TypeError('no such thing');
  error.stack = 'frame@page:1:2';
  log.report('rejection', error);
  expect(written).toEqual(['page rejection: TypeError: no such thing at frame@page:1:2']);
});

test('takes anything that can be thrown', () => {
  log.report('error', 'text');
  log.report('error', undefined);
  log.report('error', Object.create(null));
  expect(written).toEqual([
    'page error: text',
    'page error: undefined',
    'page error: an error that cannot be described',
  ]);
});

test('cuts long texts', () => {
  log.report('error', 'x'.repeat(5_000));
  expect(written[0]).toHaveLength(errorTextLimit);
});

test('says the same thing once in a row', () => {
  for (const text of ['a', 'a', 'b', 'a']) log.report('error', text);
  expect(written).toEqual(['page error: a', 'page error: b', 'page error: a']);
});

test('ends with a line that says so after so many', () => {
  for (let i = 0; i < 200; i++) log.report('error', i);
  expect(written).toHaveLength(errorCountLimit + 1);
  expect(written.at(-1)).toBe('page: further errors are not logged');
});
