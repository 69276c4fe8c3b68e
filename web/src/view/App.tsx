// The page. What tests of the panel read stands under stable names (data-testid): "book", "sheet",
// "address", "formula", "value", "type", "selection", "region", "follow", and "state", whose
// data-state is the status of the selection and whose text is the sentence shown for it.

import { Show, onCleanup, onMount, type JSX } from 'solid-js';

import { sentenceFor, statusLine, type Platform } from '../core/selection/sentences';
import type { SelectionState } from '../core/selection/state';
import { CellView } from './CellView';
import { Header } from './Header';
import { Notice } from './Notice';

export type AppProps = {
  application: string;
  platform: Platform;
  selection: SelectionState;
  onRetry(): void;
  onLeave(): void;
};

export function App(props: AppProps): JSX.Element {
  const sentence = () => sentenceFor(props.selection, props.application, props.platform);
  const shown = () => (sentence() ? undefined : props.selection.content);

  const leaveOnEscape = (event: KeyboardEvent): void => {
    if (event.key === 'Escape' && !event.defaultPrevented) props.onLeave();
  };
  onMount(() => {
    document.addEventListener('keydown', leaveOnEscape);
  });
  onCleanup(() => {
    document.removeEventListener('keydown', leaveOnEscape);
  });

  return (
    <div class="page" classList={{ dimmed: !props.selection.fresh }}>
      <Header cell={shown()} paused={props.selection.paused} />
      <main class="body">
        <Show when={shown()}>{(cell) => <CellView cell={cell()} />}</Show>
        <Show when={sentence()}>
          {(notice) => <Notice sentence={notice()} onRetry={props.onRetry} />}
        </Show>
      </main>
      <p class="status" role="status" data-testid="state" data-state={props.selection.status}>
        {sentence()?.title ?? statusLine(props.selection, props.application)}
      </p>
    </div>
  );
}
