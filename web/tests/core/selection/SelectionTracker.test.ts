import { beforeEach, describe, expect, test } from 'vitest';

import type { NativeEvent } from '../../../src/core/protocol/events';
import { SelectionTracker } from '../../../src/core/selection/SelectionTracker';
import type { SelectionState } from '../../../src/core/selection/state';
import { FakeClock } from '../../fakes/FakeClock';
import { cell, FakeSpreadsheet } from '../../fakes/FakeSpreadsheet';

let spreadsheet: FakeSpreadsheet;
let clock: FakeClock;
let tracker: SelectionTracker;
let states: SelectionState[];

const now = (): SelectionState => {
  const last = states.at(-1);
  if (!last) throw new Error('nothing was published');
  return last;
};
const shown = (): string | undefined => now().content?.addr;
const moved = (addr: string, sheet = 'Summary'): NativeEvent => ({
  name: 'selectionChanged',
  place: { book: 'Model.xlsx', sheet, addr },
});
const timeout = { kind: 'timeout', message: 'busy' } as const;
const refusal = { kind: 'transport', message: 'no active cell' } as const;
const surface = (wasVisible: boolean): NativeEvent => ({
  name: 'surface',
  view: 'tree',
  wasVisible,
  wasKey: false,
});

beforeEach(() => {
  spreadsheet = new FakeSpreadsheet();
  clock = new FakeClock();
  states = [];
  tracker = new SelectionTracker(spreadsheet, clock, (state) => states.push(state));
});

async function startAt(addr: string): Promise<void> {
  tracker.start();
  await spreadsheet.answer('probe', { state: 'ok' });
  await spreadsheet.answer('readCell', cell(addr));
  spreadsheet.asked.length = 0;
}

describe('at the start', () => {
  test('probes, then reads', async () => {
    tracker.start();
    expect(spreadsheet.asked).toEqual(['probe']);
    await spreadsheet.answer('probe', { state: 'ok' });
    expect(spreadsheet.asked).toEqual(['probe', 'readCell']);
    await spreadsheet.answer('readCell', cell('B7'));
    expect(now()).toEqual({
      status: 'ready',
      content: cell('B7'),
      fresh: true,
      slow: false,
      paused: false,
    });
    expect(clock.waiting).toBe(0);
  });

  test('reads nothing from a page outside the panel, and does not insist', async () => {
    tracker.start();
    await spreadsheet.fail('probe', { kind: 'detached', message: 'no panel' });
    expect(now().status).toBe('detached');
    clock.advance(120_000);
    expect(spreadsheet.asked).toEqual(['probe']);
  });
});

describe('when the selection moves', () => {
  test('reads the new cell, once for many moves', async () => {
    await startAt('A1');
    tracker.handle(moved('A2'));
    tracker.handle(moved('A3'));
    tracker.handle(moved('A4'));
    expect(spreadsheet.inFlight).toBe(1);
    expect(now().fresh).toBe(false);
    await spreadsheet.answer('readCell', cell('A2'));
    expect(shown()).toBe('A1');
    await spreadsheet.answer('readCell', cell('A4'));
    expect(shown()).toBe('A4');
    expect(spreadsheet.asked).toEqual(['readCell', 'readCell']);
    expect(states.map((state) => state.content?.addr)).not.toContain('A2');
  });

  test('takes an answer that shows the announced cell, though asked before', async () => {
    await startAt('A1');
    tracker.handle(moved('A2'));
    tracker.handle(moved('A3'));
    await spreadsheet.answer('readCell', cell('A3'));
    expect(now()).toMatchObject({ status: 'ready', fresh: true, content: { addr: 'A3' } });
    expect(spreadsheet.inFlight).toBe(0);
  });

  test('does not take an answer for the same address on another sheet', async () => {
    await startAt('A1');
    tracker.handle(moved('A2'));
    tracker.handle(moved('A2', 'Other'));
    await spreadsheet.answer('readCell', cell('A2'));
    expect(shown()).toBe('A1');
    expect(spreadsheet.inFlight).toBe(1);
  });

  test('keeps what is newer: an old failure does not replace it', async () => {
    await startAt('A1');
    tracker.handle(moved('A2'));
    tracker.handle(moved('A3'));
    await spreadsheet.fail('readCell', timeout);
    expect(now().status).toBe('ready');
    await spreadsheet.answer('readCell', cell('A3'));
    expect(shown()).toBe('A3');
  });

  test('shows the cell the user has gone on to', async () => {
    await startAt('A1');
    tracker.handle(moved('A2'));
    await spreadsheet.answer('readCell', cell('A3'));
    expect(shown()).toBe('A3');
  });

  test('reads at once even where the spreadsheet did not answer before', async () => {
    tracker.start();
    await spreadsheet.answer('probe', { state: 'notRunning' });
    tracker.handle(moved('A2'));
    await spreadsheet.answer('readCell', cell('A2'));
    expect(now().status).toBe('ready');
    clock.advance(60_000);
    expect(spreadsheet.asked).toEqual(['probe', 'readCell']);
  });
});

describe('an error value', () => {
  test('is named by reading its cell as a range', async () => {
    await startAt('A1');
    tracker.handle({
      name: 'selectionChanged',
      place: { book: 'Model.xlsx', sheet: "Bob's", addr: 'A2' },
    });
    const broken = cell('A2', { sheet: "Bob's", value: null, formula: '=1/0' });
    await spreadsheet.answer('readCell', broken);
    expect(spreadsheet.asked.at(-1)).toBe("readRange 'Bob''s'!A2");
    await spreadsheet.answer('readRange', { rows: 1, cols: 1, values: [['#DIV/0!']] });
    expect(now().content).toEqual({ ...broken, error: '#DIV/0!' });
  });

  test('stays nameless when that gives no name', async () => {
    await startAt('A1');
    tracker.handle(moved('A2'));
    await spreadsheet.answer('readCell', cell('A2', { value: null }));
    await spreadsheet.answer('readRange', { rows: 1, cols: 1, values: [[null]] });
    expect(now().content).toEqual(cell('A2', { value: null }));
  });

  test('is dropped when the selection has moved on meanwhile', async () => {
    await startAt('A1');
    tracker.handle(moved('A2'));
    await spreadsheet.answer('readCell', cell('A2', { value: null }));
    tracker.handle(moved('A3'));
    await spreadsheet.answer('readRange', { rows: 1, cols: 1, values: [['#N/A']] });
    expect(shown()).toBe('A1');
    await spreadsheet.answer('readCell', cell('A3'));
    expect(shown()).toBe('A3');
  });
});

describe('a spreadsheet that does not answer', () => {
  test.each(['notRunning', 'noWorkbook', 'busy'])(
    'as %s is probed again, less and less often',
    async (state) => {
      tracker.start();
      for (const wait of [500, 1000, 2000, 4000, 5000, 5000]) {
        await spreadsheet.answer('probe', { state });
        expect(now().status).toBe(state);
        clock.advance(wait - 1);
        expect(spreadsheet.inFlight).toBe(0);
        clock.advance(1);
        expect(spreadsheet.inFlight).toBe(1);
      }
      await spreadsheet.answer('probe', { state: 'ok' });
      await spreadsheet.answer('readCell', cell('C3'));
      expect(now()).toMatchObject({ status: 'ready', content: { addr: 'C3' } });
    },
  );

  test('is awaited patiently from the beginning after an event', async () => {
    tracker.start();
    for (const wait of [500, 1000, 2000]) {
      await spreadsheet.answer('probe', { state: 'busy' });
      clock.advance(wait);
    }
    tracker.handle({ name: 'probeNeeded' });
    await spreadsheet.answer('probe', { state: 'busy' });
    await spreadsheet.answer('probe', { state: 'busy' });
    clock.advance(499);
    expect(spreadsheet.inFlight).toBe(0);
    clock.advance(1);
    expect(spreadsheet.inFlight).toBe(1);
  });

  test('keeps the last cell, not fresh, while it is busy', async () => {
    await startAt('A1');
    tracker.handle({ name: 'probeNeeded' });
    await spreadsheet.answer('probe', { state: 'busy' });
    expect(now()).toMatchObject({ status: 'busy', fresh: false, content: { addr: 'A1' } });
  });

  test.each(['notRunning', 'noWorkbook', 'denied'])(
    'drops the last cell when %s',
    async (state) => {
      await startAt('A1');
      tracker.handle({ name: 'probeNeeded' });
      await spreadsheet.answer('probe', { state });
      expect(now().status).toBe(state);
      expect(now().content).toBeUndefined();
    },
  );

  test('is not asked again by itself when it is denied, but on request', async () => {
    tracker.start();
    await spreadsheet.answer('probe', { state: 'denied' });
    clock.advance(120_000);
    expect(spreadsheet.asked).toEqual(['probe']);
    tracker.retry();
    await spreadsheet.answer('probe', { state: 'ok' });
    expect(spreadsheet.asked).toEqual(['probe', 'probe', 'readCell']);
  });

  test('counts as busy when a read times out', async () => {
    await startAt('A1');
    tracker.handle(moved('A2'));
    await spreadsheet.fail('readCell', timeout);
    expect(now()).toMatchObject({ status: 'busy', content: { addr: 'A1' } });
    clock.advance(500);
    expect(spreadsheet.asked).toEqual(['readCell', 'probe']);
  });

  test('counts as not running when a read says so', async () => {
    await startAt('A1');
    tracker.handle(moved('A2'));
    await spreadsheet.fail('readCell', { kind: 'transport', message: 'gone', code: -600 });
    expect(now().status).toBe('notRunning');
  });

  test('is probed when a read fails, before the cell is called unreadable', async () => {
    await startAt('A1');
    tracker.handle(moved('A2'));
    await spreadsheet.fail('readCell', refusal);
    expect(now().status).toBe('ready');
    await spreadsheet.answer('probe', { state: 'ok' });
    await spreadsheet.fail('readCell', refusal);
    expect(now()).toMatchObject({ status: 'unreadable', failure: refusal });
    clock.advance(500);
    expect(spreadsheet.asked).toEqual(['readCell', 'probe', 'readCell', 'probe']);
  });
});

describe('events', () => {
  test.each<NativeEvent>([
    { name: 'summon', resume: true },
    { name: 'probeNeeded' },
    surface(false),
  ])('$name probes and reads', async (event) => {
    await startAt('A1');
    tracker.handle(event);
    await spreadsheet.answer('probe', { state: 'ok' });
    await spreadsheet.answer('readCell', cell('A1', { value: 2 }));
    expect(now()).toMatchObject({ status: 'ready', fresh: true, content: { value: 2 } });
  });

  test('surface of a panel that was visible asks nothing', async () => {
    await startAt('A1');
    tracker.handle(surface(true));
    expect(spreadsheet.asked).toEqual([]);
  });

  test('followState is kept, and following again reads', async () => {
    await startAt('A1');
    tracker.handle({ name: 'followState', paused: true });
    expect(now().paused).toBe(true);
    expect(spreadsheet.asked).toEqual([]);
    tracker.handle({ name: 'followState', paused: false });
    expect(now().paused).toBe(false);
    expect(spreadsheet.asked).toEqual(['readCell']);
  });

  test('a hidden panel asks nothing until it is shown again', async () => {
    tracker.start();
    await spreadsheet.answer('probe', { state: 'busy' });
    tracker.handle({ name: 'cleanHide' });
    clock.advance(120_000);
    tracker.refresh();
    expect(spreadsheet.asked).toEqual(['probe']);
    tracker.handle(surface(true));
    expect(spreadsheet.asked).toEqual(['probe', 'probe']);
  });

  test('a panel hidden during a question asks no second one', async () => {
    tracker.start();
    tracker.handle({ name: 'cleanHide' });
    await spreadsheet.answer('probe', { state: 'ok' });
    expect(spreadsheet.asked).toEqual(['probe']);
    expect(spreadsheet.inFlight).toBe(0);
  });

  test('step changes nothing', async () => {
    await startAt('A1');
    const before = now();
    tracker.handle({ name: 'step', direction: 1 });
    expect(now()).toBe(before);
  });
});

describe('refresh', () => {
  test('reads once more when nothing is being asked', async () => {
    await startAt('A1');
    tracker.refresh();
    tracker.refresh();
    expect(spreadsheet.asked).toEqual(['readCell']);
    await spreadsheet.answer('readCell', cell('A1', { value: 9 }));
    expect(now().content?.value).toBe(9);
  });

  test('stays with the cell when it was the page that left its sheet', async () => {
    await startAt('D5');
    tracker.displace();
    tracker.refresh();
    expect(now().fresh).toBe(false);
    await spreadsheet.answer('readCell', cell('A1', { sheet: 'Debt' }));
    expect(now()).toMatchObject({ content: cell('D5'), fresh: true });
    tracker.refresh();
    await spreadsheet.answer('readCell', cell('A1', { sheet: 'Debt' }));
    expect(shown()).toBe('D5');
  });

  test.each<[string, NativeEvent, boolean]>([
    ['a selection of the user’s', moved('A1', 'Debt'), false],
    ['the panel brought up', { name: 'summon', resume: false }, true],
    ['a view brought up', surface(false), true],
  ])('goes where the user went by %s', async (_, event, probes) => {
    await startAt('D5');
    tracker.displace();
    tracker.handle(event);
    if (probes) await spreadsheet.answer('probe', { state: 'ok' });
    await spreadsheet.answer('readCell', cell('A1', { sheet: 'Debt' }));
    expect(now().content?.sheet).toBe('Debt');
    tracker.refresh();
    await spreadsheet.answer('readCell', cell('B2', { sheet: 'Debt' }));
    expect(shown()).toBe('B2');
  });
});

describe('a slow answer', () => {
  test('is announced after a while and no longer once it is there', async () => {
    await startAt('A1');
    tracker.handle(moved('A2'));
    clock.advance(399);
    expect(now().slow).toBe(false);
    clock.advance(1);
    expect(now().slow).toBe(true);
    await spreadsheet.answer('readCell', cell('A2'));
    expect(now().slow).toBe(false);
  });

  test('is no longer announced when it was a failure', async () => {
    tracker.start();
    clock.advance(400);
    await spreadsheet.answer('probe', { state: 'notRunning' });
    expect(now()).toMatchObject({ status: 'notRunning', slow: false });
  });
});
