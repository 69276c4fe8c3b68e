// What a key means in the picture of a sheet. Pure.

import type { Key } from '../keyboard/keys';
import type { CursorMove } from './Picture';

export type PictureCommand =
  | { do: 'move'; how: CursorMove }
  /** In steps to the right and down. */
  | { do: 'pan'; x: number; y: number }
  | { do: 'zoom'; in: boolean }
  | { do: 'all' | 'go' | 'mark' }
  | { do: 'finding' | 'sheet'; direction: 1 | -1 };

const moves: Record<string, CursorMove | undefined> = {
  ArrowUp: 'up',
  ArrowDown: 'down',
  ArrowLeft: 'left',
  ArrowRight: 'right',
  PageUp: 'pageUp',
  PageDown: 'pageDown',
  Home: 'first',
  End: 'last',
};

const pans: Record<string, readonly [number, number] | undefined> = {
  ArrowUp: [0, -1],
  ArrowDown: [0, 1],
  ArrowLeft: [-1, 0],
  ArrowRight: [1, 0],
};

/** Nothing for a key that means what it means everywhere on the page. */
export function pictureCommandOf(key: Key & { shift: boolean }): PictureCommand | undefined {
  if (key.alt || key.meta) return undefined;
  if (key.control) {
    if (key.key === 'PageDown') return { do: 'sheet', direction: 1 };
    return key.key === 'PageUp' ? { do: 'sheet', direction: -1 } : undefined;
  }
  const pan = key.shift ? pans[key.key] : undefined;
  if (pan) return { do: 'pan', x: pan[0], y: pan[1] };
  const how = moves[key.key];
  if (how) return { do: 'move', how };
  switch (key.key) {
    case '+':
    case '=':
      return { do: 'zoom', in: true };
    case '-':
      return { do: 'zoom', in: false };
    case '0':
      return { do: 'all' };
    case 'Enter':
      return { do: 'go' };
    case ' ':
      return { do: 'mark' };
    case 'n':
    case 'N':
      return { do: 'finding', direction: 1 };
    case 'p':
    case 'P':
      return { do: 'finding', direction: -1 };
    default:
      return undefined;
  }
}
