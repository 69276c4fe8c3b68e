import { expect, test } from 'vitest';

import { closed, remark } from '../../../src/core/workbook/PlaceList';
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
