import { createSignal, type Accessor } from 'solid-js';

import type { SelectionState } from '../core/selection/state';

/** The selection's state as a signal. */
export function createSelection(): {
  state: Accessor<SelectionState>;
  publish: (state: SelectionState) => void;
} {
  const [state, setState] = createSignal<SelectionState>({
    status: 'starting',
    fresh: false,
    slow: false,
    paused: false,
  });
  return { state, publish: (next) => setState(next) };
}
