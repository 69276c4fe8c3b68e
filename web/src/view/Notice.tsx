import { For, Show, type JSX } from 'solid-js';

import { visibleText } from '../core/format/visible';
import type { Sentence } from '../core/selection/sentences';
import { SheetPicture } from './icons';

export type NoticeProps = {
  sentence: Sentence;
  /** Nothing is known yet: shown only when that lasts. */
  waiting: boolean;
  onRetry(): void;
};

/** What stands in the place of a cell: why there is none, and what helps. */
export function Notice(props: NoticeProps): JSX.Element {
  return (
    <section class="notice" classList={{ waiting: props.waiting }}>
      <SheetPicture />
      <h2 class="noticeTitle">{props.sentence.title}</h2>
      <Show when={props.sentence.steps.length > 0}>
        <ol class="steps">
          <For each={props.sentence.steps}>{(step) => <li>{step}</li>}</For>
        </ol>
      </Show>
      <Show when={props.sentence.detail}>
        {(detail) => <p class="detail">{visibleText(detail())}</p>}
      </Show>
      <Show when={props.sentence.retry}>
        <button type="button" class="button" data-testid="retry" onClick={() => props.onRetry()}>
          Check again
        </button>
      </Show>
    </section>
  );
}
