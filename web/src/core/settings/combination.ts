// Global key combinations: as the settings keep them, which is as macOS numbers keys by their places
// on an ANSI keyboard, as a browser tells them, and as the user reads them. Pure.

import type { Platform } from '../selection/sentences';

export type Combination = { code: number; modifiers: number };

export const command = 256;
export const shift = 512;
export const option = 2048;
export const control = 4096;

/** What a key event tells. `code` is the key's place, whatever is printed on it. */
export type KeyPress = {
  code: string;
  key: string;
  alt: boolean;
  control: boolean;
  meta: boolean;
  shift: boolean;
};

const inARow = (first: number, names: string): [string, number][] =>
  names.split(' ').flatMap((name, index) => (name === '-' ? [] : [[name, first + index]]));

/** By the event's code. */
const places = new Map<string, number>([
  ...inARow(0, 'KeyA KeyS KeyD KeyF KeyH KeyG KeyZ KeyX KeyC KeyV IntlBackslash KeyB KeyQ KeyW'),
  ...inARow(14, 'KeyE KeyR KeyY KeyT Digit1 Digit2 Digit3 Digit4 Digit6 Digit5 Equal Digit9'),
  ...inARow(26, 'Digit7 Minus Digit8 Digit0 BracketRight KeyO KeyU BracketLeft KeyI KeyP Enter'),
  ...inARow(37, 'KeyL KeyJ Quote KeyK Semicolon Backslash Comma Slash KeyN KeyM Period Tab Space'),
  ...inARow(50, 'Backquote Backspace'),
  ...inARow(
    82,
    'Numpad0 Numpad1 Numpad2 Numpad3 Numpad4 Numpad5 Numpad6 Numpad7 - Numpad8 Numpad9',
  ),
  ...inARow(
    96,
    'F5 F6 F7 F3 F8 F9 - F11 - F13 F16 F14 - F10 - F12 - F15 Insert Home PageUp Delete',
  ),
  ...inARow(118, 'F4 End F2 PageDown F1 ArrowLeft ArrowRight ArrowDown ArrowUp'),
  ['NumpadDecimal', 65],
  ['NumpadMultiply', 67],
  ['NumpadAdd', 69],
  ['NumpadDivide', 75],
  ['NumpadEnter', 76],
  ['NumpadSubtract', 78],
]);

const printed: Record<string, string | undefined> = {
  IntlBackslash: '<',
  Equal: '=',
  Minus: '-',
  BracketRight: ']',
  BracketLeft: '[',
  Quote: "'",
  Semicolon: ';',
  Backslash: '\\',
  Comma: ',',
  Slash: '/',
  Period: '.',
  Backquote: '`',
  PageUp: 'Page Up',
  PageDown: 'Page Down',
  ArrowLeft: '←',
  ArrowRight: '→',
  ArrowDown: '↓',
  ArrowUp: '↑',
};

const names = new Map<number, string>(
  [...places].map(([place, code]) => [
    code,
    printed[place] ?? place.replace(/^(Key|Digit)/, '').replace(/^Numpad/, 'Keypad '),
  ]),
);

const modifierKeys: ReadonlySet<string> = new Set([
  'Alt',
  'AltGraph',
  'CapsLock',
  'Control',
  'Fn',
  'Hyper',
  'ISO_Level3_Shift',
  'Meta',
  'NumLock',
  'OS',
  'Shift',
  'Super',
]);

export function isModifier({ key, code }: KeyPress): boolean {
  return modifierKeys.has(key) || /^(Alt|Control|Meta|OS|Shift)(Left|Right)$/.test(code);
}

/** Nothing where the key has no number. */
export function combinationOf(press: KeyPress): Combination | undefined {
  const code = places.get(press.code);
  if (code === undefined) return undefined;
  const modifiers =
    (press.meta ? command : 0) +
    (press.shift ? shift : 0) +
    (press.alt ? option : 0) +
    (press.control ? control : 0);
  return { code, modifiers };
}

/** As the platform writes it: "⌥⇧A", "Alt+Shift+A". */
export function nameOf({ code, modifiers }: Combination, platform: Platform): string {
  const key = names.get(code) ?? `key ${String(code)}`;
  const held: [bit: number, mac: string, linux: string][] = [
    [control, '⌃', 'Ctrl'],
    [option, '⌥', 'Alt'],
    [shift, '⇧', 'Shift'],
    [command, '⌘', 'Super'],
  ];
  const parts = held.filter(([bit]) => (modifiers & bit) !== 0);
  if (platform === 'mac') return parts.map(([, mac]) => mac).join('') + key;
  return [...parts.map(([, , linux]) => linux), key].join('+');
}

/** What the system itself does with it. */
const keptByMac: Record<string, string | undefined> = {
  '⌘Tab': 'changes between programs',
  '⌘Space': 'opens Spotlight',
  '⌘Q': 'ends the program in front',
  '⌘H': 'hides the program in front',
  '⌘M': 'puts the window away',
  '⌘`': 'changes between windows',
  '⌃↑': 'opens Mission Control',
  '⌃↓': 'shows the windows of the program',
  '⌃←': 'changes between desktops',
  '⌃→': 'changes between desktops',
  '⇧⌘3': 'takes a picture of the screen',
  '⇧⌘4': 'takes a picture of the screen',
  '⇧⌘5': 'takes a picture of the screen',
};

/** What a combination costs that can be had; empty for nothing. */
export function cautionOf(combination: Combination, platform: Platform): string {
  const { code, modifiers } = combination;
  const name = nameOf(combination, platform);
  const kept = platform === 'mac' ? keptByMac[name] : undefined;
  if (kept !== undefined) return `macOS keeps ${name} for itself: it ${kept}.`;
  const own = platform === 'mac' ? command : control;
  const types = (names.get(code) ?? '').length === 1;
  if (types && (modifiers === own || modifiers === own + shift)) {
    return `${name} no longer reaches other programs, many of which have a use for it.`;
  }
  return '';
}
