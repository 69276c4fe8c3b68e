// What a key means on the page. Pure: an event's names in, a command out.

import type { Move } from '../outline/TreeModel';
import { views, type View } from '../explorer/view';
import type { TakenForm } from '../take/written';

export type Command =
  | { do: 'move'; how: Move }
  | { do: 'openSiblings' | 'drill' | 'back' | 'forward' | 'reveal' | 'pin' | 'leave' | 'help' }
  | { do: 'finding'; direction: 1 | -1 }
  | { do: 'view'; view: View }
  | { do: 'find'; character: string }
  | { do: 'take'; form: TakenForm };

export type Key = {
  key: string;
  alt: boolean;
  control: boolean;
  meta: boolean;
  shift?: boolean;
};

const moves: Record<string, Move | undefined> = {
  ArrowUp: 'up',
  ArrowDown: 'down',
  ArrowRight: 'in',
  ArrowLeft: 'out',
  PageUp: 'pageUp',
  PageDown: 'pageDown',
  Home: 'first',
  End: 'last',
};

/** `finding`: a search by typing is under way, so that every character belongs to it. */
export function commandOf(key: Key, finding: boolean): Command | undefined {
  if (key.control !== key.meta && !key.alt && key.key.toLowerCase() === 'c') {
    return { do: 'take', form: key.shift ? 'markdown' : 'text' };
  }
  if (key.control || key.meta) return undefined;
  if (key.alt) {
    if (key.key === 'ArrowLeft') return { do: 'back' };
    return key.key === 'ArrowRight' ? { do: 'forward' } : undefined;
  }
  const how = moves[key.key];
  if (how) return { do: 'move', how };
  if (finding && key.key.length === 1) return { do: 'find', character: key.key };
  const tab = views.find((each) => each.key === key.key);
  if (tab) return { do: 'view', view: tab.view };
  switch (key.key) {
    case 'Enter':
      return { do: 'drill' };
    case 'Backspace':
      return { do: 'back' };
    case ' ':
      return { do: 'reveal' };
    case '*':
      return { do: 'openSiblings' };
    case 'n':
    case 'N':
      return { do: 'finding', direction: 1 };
    case 'p':
    case 'P':
      return { do: 'finding', direction: -1 };
    case 'f':
    case 'F':
      return { do: 'pin' };
    case '?':
      return { do: 'help' };
    case 'Escape':
      return { do: 'leave' };
    default:
      return key.key.length === 1 ? { do: 'find', character: key.key } : undefined;
  }
}
