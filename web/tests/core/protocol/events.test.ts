import { describe, expect, test } from 'vitest';

import { decodeEvent } from '../../../src/core/protocol/events';

describe('decodeEvent', () => {
  test.each([
    [
      'selectionChanged',
      { book: 'B', sheet: 'S', addr: 'A1', more: 1 },
      { name: 'selectionChanged', place: { book: 'B', sheet: 'S', addr: 'A1' } },
    ],
    ['probeNeeded', {}, { name: 'probeNeeded' }],
    ['cleanHide', {}, { name: 'cleanHide' }],
    ['showSettings', {}, { name: 'showSettings' }],
    ['settingsChanged', null, { name: 'settingsChanged' }],
    ['summon', { resume: true }, { name: 'summon', resume: true }],
    ['summon', {}, { name: 'summon', resume: false }],
    ['summon', null, { name: 'summon', resume: false }],
    [
      'surface',
      { name: 'deps', wasVisible: true, wasKey: false },
      { name: 'surface', view: 'deps', wasVisible: true, wasKey: false },
    ],
    ['followState', { paused: false }, { name: 'followState', paused: false }],
    [
      'quitting',
      { cells: 3, names: 0, rows: 2, columns: 1 },
      { name: 'quitting', left: { cells: 3, names: 0, rows: 2, columns: 1 } },
    ],
    ['step', { dir: -1 }, { name: 'step', direction: -1 }],
    ['step', { dir: 1 }, { name: 'step', direction: 1 }],
  ])('reads %s %j', (name, payload, event) => {
    expect(decodeEvent(name, payload)).toEqual(event);
  });

  test.each([
    ['selectionChanged', { book: 'B', sheet: 'S' }],
    ['selectionChanged', 'A1'],
    ['surface', { name: 'settings' }],
    ['followState', { paused: 'yes' }],
    ['step', { dir: 2 }],
    ['quitting', {}],
    ['quitting', { cells: 3, names: 0, rows: 2 }],
    ['quitting', { cells: -3, names: 0, rows: 2, columns: 1 }],
    ['quitting', { cells: 1.5, names: 0, rows: 2, columns: 1 }],
    ['unheardOf', {}],
    [12, {}],
    ['toString', {}],
  ])('lets go of %j %j', (name, payload) => {
    expect(decodeEvent(name, payload)).toBeUndefined();
  });
});
