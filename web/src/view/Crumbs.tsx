import { For, Show, type JSX } from 'solid-js';

import { oneLine } from '../core/format/visible';
import { ChevronIcon, DetailsIcon } from './icons';
import type { Page } from './page';

export type CrumbsProps = {
  page: Page;
  /** True if the details are open; nothing where there is always room for them. */
  details: boolean | undefined;
  onDetails(): void;
};

/** Where the shown cell is, and the way that led to it. */
export function Crumbs(props: CrumbsProps): JSX.Element {
  const here = () => props.page.look((explorer) => explorer.here);
  const index = () => props.page.look((explorer) => explorer.trail.index);
  const total = () => props.page.look((explorer) => explorer.trail.stops.length);
  const before = () => props.page.look((explorer) => explorer.trail.stops.slice(0, index()));
  const label = () => props.page.look((explorer) => explorer.hereLabel);
  const go = (to: number) => {
    props.page.explorer.go(to);
  };
  return (
    <nav class="crumbs" aria-label="Way to this cell">
      <button
        type="button"
        class="iconButton back"
        data-testid="back"
        aria-label="Back"
        title="Back (Backspace)"
        disabled={index() <= 0}
        onClick={() => {
          go(index() - 1);
        }}
      >
        <ChevronIcon />
      </button>
      <button
        type="button"
        class="iconButton"
        data-testid="forward"
        aria-label="Forward"
        title="Forward (Alt+Right)"
        disabled={index() >= total() - 1}
        onClick={() => {
          go(index() + 1);
        }}
      >
        <ChevronIcon />
      </button>
      <h1 class="place">
        <Show when={here()} fallback={<span class="brand">Quorin</span>}>
          {(stop) => (
            <>
              <bdi class="book" data-testid="book" title={oneLine(stop().place.book)}>
                {oneLine(stop().place.book)}
              </bdi>
              <ChevronIcon />
              <For each={before()}>
                {(earlier, at) => (
                  <>
                    <button
                      type="button"
                      class="crumb"
                      data-testid="crumb"
                      title={oneLine(`${earlier.place.sheet}!${earlier.place.addr}`)}
                      onClick={() => {
                        go(at());
                      }}
                    >
                      {oneLine(earlier.place.addr)}
                    </button>
                    <ChevronIcon />
                  </>
                )}
              </For>
              <bdi class="sheet" data-testid="sheet" title={oneLine(stop().place.sheet)}>
                {oneLine(stop().place.sheet)}
              </bdi>
              <ChevronIcon />
              <bdi class="address" data-testid="address">
                {oneLine(stop().place.addr)}
              </bdi>
              <bdi class="placeLabel" title={oneLine(label())} textContent={oneLine(label())} />
            </>
          )}
        </Show>
      </h1>
      <Show when={props.details !== undefined}>
        <button
          type="button"
          class="iconButton"
          data-testid="details"
          aria-pressed={props.details}
          aria-label="Details"
          title="Details of the active row"
          onClick={() => {
            props.onDetails();
          }}
        >
          <DetailsIcon />
        </button>
      </Show>
    </nav>
  );
}
