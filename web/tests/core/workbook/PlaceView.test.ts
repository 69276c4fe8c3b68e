import { expect, test } from 'vitest';

import { closed, remark } from '../../../src/core/workbook/PlaceList';
import { placesOf } from '../../../src/core/workbook/places';
import { PlaceView } from '../../../src/core/workbook/PlaceView';

const view = new PlaceView(() => undefined);
const shown = () => view.rows.map(({ row, level }) => `${String(level)} ${row.text}`);
const load = (key: string) =>
  view.load(
    key,
    () => Promise.resolve({ ok: true as const, value: null }),
    () => [closed('Users', '', () => [remark('B2')])],
  );

test('a list that is read again keeps open what was opened, another one does not', async () => {
  await load('F12');
  view.toggle(0);
  expect(shown()).toEqual(['1 Users', '2 B2']);
  view.forget();
  await load('F12');
  expect(shown()).toEqual(['1 Users', '2 B2']);
  await load('F13');
  expect(shown()).toEqual(['1 Users']);
  await load('F12');
  expect(shown()).toEqual(['1 Users']);
});

test('the active row stays when more is known, also beside the same address on another sheet', async () => {
  const list = new PlaceView(() => undefined);
  const rows = () =>
    placesOf("'One'!A1,'Two'!A1,A1").map((place) => ({ text: 'A1', detail: '', tag: '', place }));
  await list.load('B2', () => Promise.resolve({ ok: true as const, value: null }), rows);
  for (const index of [1, 2, 0]) {
    list.activate(index);
    list.refine('B2', rows(), '');
    expect(list.activeIndex).toBe(index);
  }
});
