import { createEffect, createSignal, on, Show, type Accessor, type JSX } from 'solid-js';

/** True if a long text is shown whole: only when asked, and closed again for the next `subject`. */
export function createWhole(subject: Accessor<unknown>): {
  whole: Accessor<boolean>;
  open(): void;
} {
  const [whole, setWhole] = createSignal(false);
  createEffect(on(subject, () => setWhole(false), { defer: true }));
  return { whole, open: () => setWhole(true) };
}

/** The button beside a text that is cut. */
export function ShowAll(props: { cut: boolean; onOpen(): void }): JSX.Element {
  return (
    <Show when={props.cut}>
      <button
        type="button"
        class="textButton"
        data-testid="show-all"
        onClick={() => props.onOpen()}
      >
        Show all
      </button>
    </Show>
  );
}
