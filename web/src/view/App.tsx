// The page. What tests of the panel read stands under stable names (data-testid): "book", "sheet",
// "address", "formula", "value", "type", "selection", "region", "follow", and "state", whose
// data-state is the status of the selection and whose text is the sentence shown for it.

import { createSignal, onCleanup, onMount, Show, type JSX } from 'solid-js';

import { sentenceFor, statusLine, type Platform } from '../core/selection/sentences';
import type { SelectionState } from '../core/selection/state';
import { CellView } from './CellView';
import { copyText } from './copyText';
import { Header } from './Header';
import { Notice } from './Notice';

export type AppProps = {
  application: string;
  platform: Platform;
  selection: SelectionState;
  onRetry(): void;
  /** The user is done here: the spreadsheet gets the keyboard back. */
  onLeave(): void;
};

/** How long a confirmation stays at the foot of the page. */
const confirmationTime = 2_000;

export function App(props: AppProps): JSX.Element {
  const sentence = () => sentenceFor(props.selection, props.application, props.platform);
  const shown = () => (sentence() ? undefined : props.selection.content);
  const dimmed = () => props.selection.status === 'busy' || props.selection.slow;

  const [confirmation, setConfirmation] = createSignal('');
  let confirmationTimer: ReturnType<typeof setTimeout> | undefined;
  const copy = async (text: string, what: string): Promise<void> => {
    const copied = await copyText(text);
    setConfirmation(copied ? `${what} copied.` : `${what} could not be copied.`);
    clearTimeout(confirmationTimer);
    confirmationTimer = setTimeout(() => setConfirmation(''), confirmationTime);
  };

  const leaveOnEscape = (event: KeyboardEvent): void => {
    if (event.key === 'Escape' && !event.defaultPrevented) props.onLeave();
  };
  onMount(() => {
    document.addEventListener('keydown', leaveOnEscape);
  });
  onCleanup(() => {
    document.removeEventListener('keydown', leaveOnEscape);
    clearTimeout(confirmationTimer);
  });

  return (
    <div class="page" classList={{ dimmed: dimmed(), noticed: sentence() !== undefined }}>
      <Header cell={shown()} paused={props.selection.paused} />
      <main class="body">
        <Show when={shown()}>
          {(cell) => <CellView cell={cell()} onCopy={(text, what) => void copy(text, what)} />}
        </Show>
        <Show when={sentence()}>
          {(notice) => (
            <Notice
              sentence={notice()}
              waiting={props.selection.status === 'starting'}
              onRetry={props.onRetry}
            />
          )}
        </Show>
      </main>
      <p class="status" role="status" data-testid="state" data-state={props.selection.status}>
        {sentence()?.title ?? (confirmation() || statusLine(props.selection, props.application))}
      </p>
    </div>
  );
}
