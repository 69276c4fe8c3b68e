import { beforeEach, describe, expect, test } from 'vitest';

import { closed, remark, type PlaceRow } from '../../../src/core/workbook/PlaceList';
import { placesOf } from '../../../src/core/workbook/places';
import { PlaceView } from '../../../src/core/workbook/PlaceView';
import { settled } from '../evaluation/bench';

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

test('rows stay while the same list is asked anew, and go where another one is', async () => {
  const list = new PlaceView(() => undefined);
  const ask = (key: string, text: string) =>
    list.load(
      key,
      () => Promise.resolve({ ok: true as const, value: null }),
      () => [remark(text)],
    );
  const texts = () => list.rows.map(({ row }) => row.text);
  await ask('B2', 'before');
  list.outdate();
  const again = ask('B2', 'after');
  expect([texts(), list.state.status]).toEqual([['before'], 'known']);
  await again;
  expect(texts()).toEqual(['after']);
  list.outdate();
  const other = ask('B3', 'other');
  expect([texts(), list.state.status]).toEqual([[], 'asking']);
  await other;
  expect(texts()).toEqual(['other']);
  list.outdate();
  await list.load(
    'B3',
    () =>
      Promise.resolve({ ok: false as const, failure: { kind: 'transport' as const, message: '' } }),
    () => [],
  );
  expect([texts(), list.state.status]).toEqual([[], 'failed']);
});

describe('in a list that is read again the active row is the one that was', () => {
  let list: PlaceView;
  /** Answers what was asked of rows that hold others. */
  let answers: (() => void)[];
  const later = (rows: () => readonly PlaceRow[]) => () =>
    new Promise<readonly PlaceRow[]>((resolve) => {
      answers.push(() => {
        resolve(rows());
      });
    });
  const rows = () => [
    remark('Users'),
    closed(
      'Inputs',
      '',
      later(() => [
        remark('A1'),
        closed(
          'A2',
          '',
          later(() => [remark('A3')]),
        ),
      ]),
    ),
    remark('Results'),
  ];
  const load = () =>
    list.load('B2', () => Promise.resolve({ ok: true as const, value: null }), rows);
  const answer = async () => {
    for (const one of answers.splice(0)) one();
    await settled();
  };
  const readAgain = async () => {
    list.outdate();
    await load();
  };

  beforeEach(async () => {
    answers = [];
    list = new PlaceView(() => undefined);
    await load();
    list.toggle(1);
    await answer();
    list.toggle(3);
    await answer();
    expect(list.rows.map(({ row }) => row.text)).toEqual([
      'Users',
      'Inputs',
      'A1',
      'A2',
      'A3',
      'Results',
    ]);
  });

  test('a group that leads nowhere', async () => {
    list.activate(1);
    await readAgain();
    expect(list.active?.text).toBe('Inputs');
    await answer();
    list.activate(5);
    await readAgain();
    expect(list.active?.text).toBe('Results');
  });

  test('one that is told a moment later; what holds it until then', async () => {
    list.activate(4);
    await readAgain();
    expect(list.active?.text).toBe('Inputs');
    await answer();
    expect(list.active?.text).toBe('A2');
    await readAgain();
    await answer();
    await answer();
    expect(list.active?.text).toBe('A3');
  });

  test('unless the user went on meanwhile', async () => {
    list.activate(4);
    await readAgain();
    list.move('up', 10);
    await answer();
    await answer();
    expect(list.active?.text).toBe('Users');
  });
});
