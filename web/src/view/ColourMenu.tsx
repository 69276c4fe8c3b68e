import { createSignal, For, onCleanup, onMount, Show, type JSX } from 'solid-js';

import type { Colour } from '../core/protocol/verbs';
import type { Page } from './page';

/** Those that are offered. */
export const colours: { name: string; colour: Colour }[] = [
  { name: 'Magenta', colour: [255, 0, 255] },
  { name: 'Orange', colour: [255, 140, 0] },
  { name: 'Yellow', colour: [255, 221, 0] },
  { name: 'Green', colour: [0, 200, 83] },
  { name: 'Cyan', colour: [0, 200, 255] },
  { name: 'Violet', colour: [149, 97, 255] },
];

export const css = ([red, green, blue]: Colour) => `rgb(${red} ${green} ${blue})`;
export const same = (one: Colour, other: Colour) => one.join() === other.join();

/** The colour in which cells are marked on the sheet. */
export function ColourMenu(props: { page: Page }): JSX.Element {
  const [open, setOpen] = createSignal(false);
  let root: HTMLDivElement | undefined;
  const close = (event: Event): void => {
    if (root && !root.contains(event.target as Node)) setOpen(false);
  };
  onMount(() => {
    document.addEventListener('pointerdown', close);
  });
  onCleanup(() => {
    document.removeEventListener('pointerdown', close);
  });
  return (
    <div
      class="menu"
      ref={(element) => (root = element)}
      onKeyDown={(event) => {
        if (event.key !== 'Escape' || !open()) return;
        event.preventDefault();
        setOpen(false);
        root?.querySelector('button')?.focus();
      }}
    >
      <button
        type="button"
        class="iconButton"
        data-testid="colour"
        aria-haspopup="true"
        aria-expanded={open()}
        aria-label="Highlight colour"
        title="Highlight colour"
        onClick={() => setOpen(!open())}
      >
        <span class="swatch" style={{ background: css(props.page.colour()) }} />
      </button>
      <Show when={open()}>
        <div class="menuBody" role="radiogroup" aria-label="Highlight colour">
          <For each={colours}>
            {({ name, colour }) => (
              <button
                type="button"
                role="radio"
                class="swatchButton"
                aria-checked={same(colour, props.page.colour())}
                onClick={() => {
                  props.page.setColour(colour);
                  setOpen(false);
                }}
              >
                <span class="swatch" style={{ background: css(colour) }} />
                {name}
              </button>
            )}
          </For>
        </div>
      </Show>
    </div>
  );
}
