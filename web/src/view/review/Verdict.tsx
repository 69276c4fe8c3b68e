import { createEffect, createMemo, For, on, Show, type JSX } from 'solid-js';

import { visibleText } from '../../core/format/visible';
import type { FindingRow } from '../../core/model/messages';
import { stateName } from '../../core/review/kinds';
import { noteLimit, type State } from '../../core/review/said';
import type { Page } from '../page';

const states: readonly { state: State; title: string }[] = [
  { state: 'fault', title: 'It is a mistake' },
  { state: 'fine', title: 'It is meant so' },
  { state: 'later', title: 'To be looked at again' },
];

/** What the reviewer says of a finding, and a note; pressed again it is taken back. */
export function Verdict(props: { page: Page; finding: FindingRow }): JSX.Element {
  const sayings = () => props.page.explorer.review.sayings;
  const look = <T,>(read: () => T): T => props.page.look(read);
  const said = createMemo(() => look(() => sayings().of(props.finding)));
  const isOpen = () => look(() => sayings().isOpen);
  let note: HTMLTextAreaElement | undefined;
  // What is being typed stays; another finding has a note of its own.
  createEffect(
    on(
      () => [props.finding, said()?.note] as const,
      ([finding, text], before) => {
        if (note && (finding !== before?.[0] || document.activeElement !== note))
          note.value = text ?? '';
      },
    ),
  );
  const keep = (): void => {
    const now = said();
    const text = note?.value.trim() ?? '';
    if (now && text !== now.note) props.page.explorer.review.say(props.finding, now.state, text);
  };
  return (
    <div class="judgement" data-testid="verdict">
      <div class="judgementStates" role="group" aria-label="Judgement">
        <For each={states}>
          {({ state, title }) => (
            <button
              type="button"
              class="button"
              title={title}
              aria-pressed={said()?.state === state}
              disabled={!isOpen()}
              data-testid={`say-${state}`}
              onClick={() => {
                const next = said()?.state === state ? undefined : state;
                props.page.explorer.review.say(
                  props.finding,
                  next,
                  next ? (note?.value.trim() ?? '') : '',
                );
              }}
            >
              {stateName(state)}
            </button>
          )}
        </For>
      </div>
      <textarea
        ref={(element) => (note = element)}
        class="judgementNote"
        rows="1"
        maxlength={noteLimit}
        aria-label="Note"
        placeholder={said() ? 'Note' : 'Note, kept with a judgement'}
        disabled={!isOpen()}
        data-testid="say-note"
        onChange={keep}
      />
      <Show when={look(() => sayings().trouble)}>
        {(text) => (
          <p class="note trouble" role="alert" data-testid="say-trouble">
            {visibleText(text())}
          </p>
        )}
      </Show>
    </div>
  );
}
