import { describe, expect, test } from 'vitest';

import {
  cautionOf,
  combinationOf,
  isModifier,
  nameOf,
  type KeyPress,
} from '../../../src/core/settings/combination';

const press = (code: string, held = '', key = ''): KeyPress => ({
  code,
  key,
  alt: held.includes('A'),
  control: held.includes('C'),
  meta: held.includes('M'),
  shift: held.includes('S'),
});

describe('combinationOf', () => {
  // Numbers as HIToolbox's Events.h has them: kVK_ANSI_A and so on.
  test.each([
    ['KeyA', 0],
    ['KeyS', 1],
    ['KeyD', 2],
    ['KeyG', 5],
    ['KeyV', 9],
    ['IntlBackslash', 10],
    ['KeyB', 11],
    ['KeyT', 17],
    ['Digit5', 23],
    ['Equal', 24],
    ['Digit0', 29],
    ['KeyP', 35],
    ['Enter', 36],
    ['KeyJ', 38],
    ['KeyM', 46],
    ['Space', 49],
    ['Backspace', 51],
    ['NumpadMultiply', 67],
    ['Numpad0', 82],
    ['Numpad7', 89],
    ['Numpad8', 91],
    ['F5', 96],
    ['F11', 103],
    ['F12', 111],
    ['F1', 122],
    ['Home', 115],
    ['ArrowLeft', 123],
    ['ArrowUp', 126],
  ])('%s is %i', (place, code) => {
    expect(combinationOf(press(place))).toEqual({ code, modifiers: 0 });
  });

  test('tells what is held', () => {
    expect(combinationOf(press('KeyA', 'AS'))?.modifiers).toBe(2560);
    expect(combinationOf(press('KeyA', 'AC'))?.modifiers).toBe(6144);
    expect(combinationOf(press('KeyA', 'M'))?.modifiers).toBe(256);
  });

  test('knows no other keys', () => {
    expect(combinationOf(press('AudioVolumeUp'))).toBeUndefined();
    expect(combinationOf(press(''))).toBeUndefined();
  });
});

test('writes combinations as the platform does', () => {
  expect(nameOf({ code: 0, modifiers: 2560 }, 'linux')).toBe('Alt+Shift+A');
  expect(nameOf({ code: 0, modifiers: 2560 }, 'mac')).toBe('⌥⇧A');
  expect(nameOf({ code: 123, modifiers: 6144 }, 'linux')).toBe('Ctrl+Alt+←');
  expect(nameOf({ code: 43, modifiers: 4096 + 256 }, 'mac')).toBe('⌃⌘,');
  expect(nameOf({ code: 83, modifiers: 256 }, 'linux')).toBe('Super+Keypad 1');
  expect(nameOf({ code: 127, modifiers: 0 }, 'linux')).toBe('key 127');
});

test('says what a combination costs', () => {
  expect(cautionOf({ code: 8, modifiers: 4096 }, 'linux')).toContain('Ctrl+C no longer reaches');
  expect(cautionOf({ code: 8, modifiers: 256 }, 'mac')).toContain('⌘C no longer reaches');
  expect(cautionOf({ code: 49, modifiers: 256 }, 'mac')).toBe(
    'macOS keeps ⌘Space for itself: it opens Spotlight.',
  );
  expect(cautionOf({ code: 49, modifiers: 256 }, 'linux')).toBe('');
  expect(cautionOf({ code: 0, modifiers: 2560 }, 'linux')).toBe('');
});

test('knows keys that are only held', () => {
  expect(isModifier(press('ShiftLeft', '', 'Shift'))).toBe(true);
  expect(isModifier(press('AltRight', '', 'AltGraph'))).toBe(true);
  expect(isModifier(press('KeyA', 'A', 'a'))).toBe(false);
});
