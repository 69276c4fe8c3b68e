import { For, onCleanup, onMount, type JSX } from 'solid-js';

import { keysInFront, type InFront } from '../core/help/keysInFront';
import type { TakenForm } from '../core/take/written';
import { CloseIcon } from './icons';
import './help.css';

/** The keys that count in the view in front. It has the keyboard until it is closed. */
export function HelpCard(props: {
  front: InFront;
  onClose(): void;
  onTake(form: TakenForm): void;
}): JSX.Element {
  let card: HTMLElement | undefined;
  const before = document.activeElement;
  onMount(() => card?.focus({ preventScroll: true }));
  onCleanup(() => {
    if (before instanceof HTMLElement && before.isConnected) before.focus({ preventScroll: true });
  });
  return (
    <section
      ref={(element) => (card = element)}
      class="help"
      role="dialog"
      aria-label="Keys"
      tabindex="-1"
      data-testid="help"
    >
      <button
        type="button"
        class="iconButton helpClose"
        aria-label="Close"
        title="Close (Esc)"
        data-testid="help-close"
        onClick={() => props.onClose()}
      >
        <CloseIcon />
      </button>
      <For each={keysInFront(props.front)}>
        {(group) => (
          <>
            <h2 class="label">{group.title}</h2>
            <dl class="keys">
              <For each={group.keys}>
                {(key) => (
                  <div>
                    <dt>{key.keys}</dt>
                    <dd>{key.does}</dd>
                  </div>
                )}
              </For>
            </dl>
          </>
        )}
      </For>
      <p class="takes">
        <button
          type="button"
          class="button"
          data-testid="take-text"
          onClick={() => props.onTake('text')}
        >
          Copy the view as text
        </button>
        <button
          type="button"
          class="button"
          data-testid="take-markdown"
          onClick={() => props.onTake('markdown')}
        >
          Copy it as a Markdown table
        </button>
      </p>
    </section>
  );
}

/** On a first start: what the panel does, and the three keys. Gone for good once dismissed. */
export function WelcomeCard(props: {
  application: string;
  onKeys(): void;
  onDismiss(): void;
}): JSX.Element {
  return (
    <section class="welcome" aria-label="First steps" data-testid="welcome">
      <p>
        Select a cell in {props.application}: here you see what its formula is made of, with the
        value of each part. Your workbook is not changed, and marks on the sheet are taken back.
      </p>
      <p class="welcomeKeys">
        <kbd>↓</kbd> walks through the parts, <kbd>Enter</kbd> opens the cell behind one,{' '}
        <kbd>Esc</kbd> gives the keyboard back.
      </p>
      <p class="welcomeEnd">
        <button
          type="button"
          class="button"
          data-testid="welcome-dismiss"
          onClick={() => props.onDismiss()}
        >
          Understood
        </button>
        <button
          type="button"
          class="textButton"
          data-testid="welcome-keys"
          onClick={() => props.onKeys()}
        >
          All keys (?)
        </button>
      </p>
    </section>
  );
}
