import { beforeEach, describe, expect, test } from 'vitest';

import type { NativeEvent } from '../../../src/core/protocol/events';
import { ProtocolClient } from '../../../src/core/protocol/ProtocolClient';
import type { Request } from '../../../src/core/protocol/ProtocolClient';
import { FakeClock } from '../../fakes/FakeClock';

let posted: Request[];
let reported: string[];
let clock: FakeClock;
let client: ProtocolClient;

beforeEach(() => {
  posted = [];
  reported = [];
  clock = new FakeClock();
  client = new ProtocolClient({
    post: (request) => posted.push(request),
    clock,
    report: (where, error) => reported.push(`${where}: ${String(error)}`),
    firstId: 100,
  });
});

describe('requests', () => {
  test('carry an id of their own, the verb and its arguments', () => {
    void client.ask('readCell');
    void client.ask('readFormulas', 'A1:B2', 'r1c1', true);
    void client.ask('setConventions', { arg: ';' });
    expect(posted).toEqual([
      { id: 100, verb: 'readCell', args: [] },
      { id: 101, verb: 'readFormulas', args: ['A1:B2', 'r1c1', true] },
      { id: 102, verb: 'setConventions', args: [{ arg: ';' }] },
    ]);
  });

  test('leave out an argument that is not given', () => {
    void client.ask('readFormulas', 'A1', 'a1', undefined);
    void client.ask('activate');
    void client.ask('activate', null);
    expect(posted.map((request) => request.args)).toEqual([['A1', 'a1'], [], [null]]);
  });

  test('end as detached where there is no native side', async () => {
    const alone = new ProtocolClient({
      post: () => {
        throw new Error('nobody there');
      },
      clock,
      report: () => undefined,
      firstId: 1,
    });
    expect(await alone.ask('probe')).toEqual({
      ok: false,
      failure: { kind: 'detached', message: 'Error: nobody there' },
    });
    expect(alone.pendingCount).toBe(0);
    expect(clock.waiting).toBe(0);
  });

  test('that may take long for the native side are awaited for longer', () => {
    void client.ask('deepEval', ['1']);
    clock.advance(119_999);
    expect(client.pendingCount).toBe(1);
    clock.advance(1);
    expect(client.pendingCount).toBe(0);
  });

  test('that are never answered end after the deadline, and a late reply is let go', async () => {
    const outcome = client.ask('probe');
    clock.advance(29_999);
    expect(client.pendingCount).toBe(1);
    clock.advance(1);
    expect(await outcome).toEqual({
      ok: false,
      failure: { kind: 'unanswered', message: '"probe" was not answered.' },
    });
    client.resolve(100, { ok: true, payload: { state: 'ok' } });
    expect(client.pendingCount).toBe(0);
  });
});

describe('replies', () => {
  test('settle the request of their id, in any order', async () => {
    const first = client.ask('dependents', 'A1');
    const second = client.ask('dependents', 'A2');
    client.resolve(101, { ok: true, payload: 'B2' });
    client.resolve(100, { ok: true, payload: '' });
    expect(await first).toEqual({ ok: true, value: '' });
    expect(await second).toEqual({ ok: true, value: 'B2' });
    expect(clock.waiting).toBe(0);
  });

  test('for unknown ids are let go', async () => {
    const outcome = client.ask('dependents', 'A1');
    for (const id of [99, 101, '100', null, undefined, Number.NaN, {}]) {
      client.resolve(id, { ok: true, payload: 'wrong' });
    }
    expect(client.pendingCount).toBe(1);
    client.resolve(100, { ok: true, payload: 'right' });
    expect(await outcome).toEqual({ ok: true, value: 'right' });
  });

  test('settle once: a second reply to the same id changes nothing', async () => {
    const outcome = client.ask('dependents', 'A1');
    client.resolve(100, { ok: true, payload: 'first' });
    expect(client.pendingCount).toBe(0);
    client.resolve(100, { ok: true, payload: 'second' });
    expect(await outcome).toEqual({ ok: true, value: 'first' });
  });

  test.each([
    ['an error object', { kind: 'timeout', message: 'Excel is busy' }, 'timeout', 'Excel is busy'],
    [
      'a bare text',
      'rgb must be three 0…255 integers',
      'refused',
      'rgb must be three 0…255 integers',
    ],
    ['an unknown kind', { kind: 'novel', message: 'm' }, 'transport', 'm'],
    ['no message', { kind: 'busy' }, 'busy', ''],
    ['no reason', null, 'malformed', 'The failure carries no reason.'],
  ])('tell a failure by %s', async (_, payload, kind, message) => {
    const outcome = client.ask('setHighlightColor', [1, 2, 3]);
    client.resolve(100, { ok: false, payload });
    expect(await outcome).toEqual({ ok: false, failure: { kind, message } });
  });

  test('keep the code of a failure', async () => {
    const outcome = client.ask('readCell');
    const payload = { kind: 'transport', message: 'Excel is not running', code: -600 };
    client.resolve(100, { ok: false, payload });
    expect(await outcome).toEqual({ ok: false, failure: payload });
  });

  test.each([
    ['no envelope', undefined],
    ['an envelope that is no object', 'yes'],
    ['an envelope without ok', { payload: 'A1' }],
    ['an ok that is no truth value', { ok: 1, payload: 'A1' }],
    ['a payload of another shape', { ok: true, payload: 12 }],
    ['no payload', { ok: true }],
  ])('with %s are malformed', async (_, envelope) => {
    const outcome = client.ask('dependents', 'A1');
    client.resolve(100, envelope);
    expect(await outcome).toEqual({
      ok: false,
      failure: { kind: 'malformed', message: 'The reply to "dependents" has an unexpected shape.' },
    });
  });
});

describe('events', () => {
  const paused = { name: 'followState', paused: true };

  test('reach every listener', () => {
    const heard: NativeEvent[] = [];
    client.listen((event) => heard.push(event));
    client.listen((event) => heard.push(event));
    client.receive('followState', { paused: true });
    expect(heard).toEqual([paused, paused]);
  });

  test('that come before anyone listens are kept, in order', () => {
    const heard: string[] = [];
    client.receive('summon', { resume: true });
    client.receive('probeNeeded', {});
    client.listen((event) => heard.push(event.name));
    expect(heard).toEqual(['summon', 'probeNeeded']);
  });

  test('end when the listener leaves', () => {
    const heard: NativeEvent[] = [];
    const leave = client.listen((event) => heard.push(event));
    leave();
    client.receive('probeNeeded', {});
    expect(heard).toEqual([]);
  });

  test('reach the other listeners when one throws, and the error is reported', () => {
    const heard: string[] = [];
    client.listen(() => {
      throw new Error('broken');
    });
    client.listen((event) => heard.push(event.name));
    expect(() => {
      client.receive('cleanHide', {});
    }).not.toThrow();
    expect(heard).toEqual(['cleanHide']);
    expect(reported).toEqual(['event cleanHide: Error: broken']);
  });
});
