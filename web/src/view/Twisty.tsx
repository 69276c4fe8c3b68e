import type { JSX } from 'solid-js';

/** The sign before a row that opens and closes it; its room is kept where there is nothing to open. */
export function Twisty(props: { open: boolean; none: boolean; onToggle: () => void }): JSX.Element {
  return (
    <span
      class="twisty"
      classList={{ open: props.open, none: props.none }}
      aria-hidden="true"
      onClick={(event) => {
        event.stopPropagation();
        props.onToggle();
      }}
    />
  );
}
