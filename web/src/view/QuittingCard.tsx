import { Show, type JSX } from 'solid-js';

import type { Left } from '../core/protocol/events';
import { quittingSentences } from '../core/quitting/sentences';
import './quitting.css';

/**
 * Over everything, while Quorin ends: what is being done and how it ends. A screen reader tells what
 * comes into a status that was there before.
 */
export function QuittingCard(props: { left: Left | undefined; application: string }): JSX.Element {
  return (
    <div class="quitting" role="status" data-testid="quitting">
      <Show when={props.left && quittingSentences(props.left, props.application)}>
        {(sentences) => (
          <div class="quittingCard">
            <p class="quittingTitle">{sentences().title}</p>
            <p>{sentences().doing}</p>
            <p class="quiet">{sentences().end}</p>
          </div>
        )}
      </Show>
    </div>
  );
}
