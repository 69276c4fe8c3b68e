import { expect, test } from 'vitest';

import { commandOf } from '../../../src/core/keyboard/keys';
import { TypeAhead } from '../../../src/core/keyboard/TypeAhead';
import { FakeClock } from '../../fakes/FakeClock';

const plain = (key: string) => ({ key, alt: false, control: false, meta: false });

test.each([
  ['ArrowDown', { do: 'move', how: 'down' }],
  ['ArrowRight', { do: 'move', how: 'in' }],
  ['End', { do: 'move', how: 'last' }],
  ['Enter', { do: 'drill' }],
  ['Backspace', { do: 'back' }],
  [' ', { do: 'reveal' }],
  ['*', { do: 'openSiblings' }],
  ['n', { do: 'finding', direction: 1 }],
  ['P', { do: 'finding', direction: -1 }],
  ['1', { do: 'view', view: 'tree' }],
  ['2', { do: 'view', view: 'deps' }],
  ['3', { do: 'view', view: 'map' }],
  ['f', { do: 'pin' }],
  ['Escape', { do: 'leave' }],
  ['s', { do: 'find', character: 's' }],
  ['Tab', undefined],
  ['Shift', undefined],
])('%s', (key, command) => {
  expect(commandOf(plain(key), false)).toEqual(command);
});

test('what is typed on belongs to the search', () => {
  expect(commandOf(plain('n'), true)).toEqual({ do: 'find', character: 'n' });
  expect(commandOf(plain('Escape'), true)).toEqual({ do: 'leave' });
});

test('keys of the system are left alone', () => {
  expect(commandOf({ ...plain('f'), control: true }, false)).toBeUndefined();
  expect(commandOf({ ...plain('1'), meta: true }, false)).toBeUndefined();
  expect(commandOf({ ...plain('ArrowLeft'), alt: true }, false)).toEqual({ do: 'back' });
  expect(commandOf({ ...plain('x'), alt: true }, false)).toBeUndefined();
});

test('characters that follow each other soon belong together', () => {
  const clock = new FakeClock();
  const typing = new TypeAhead(clock);
  expect(typing.add('s')).toBe('s');
  clock.advance(600);
  expect(typing.add('u')).toBe('su');
  expect(typing.active).toBe(true);
  clock.advance(700);
  expect(typing.active).toBe(false);
  expect(typing.add('m')).toBe('m');
});
