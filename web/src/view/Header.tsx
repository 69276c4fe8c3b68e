import { Show, type JSX } from 'solid-js';

import { oneLine } from '../core/format/visible';
import type { CellContent } from '../core/selection/state';
import { ChevronIcon } from './icons';

/** Where the cell is, and whether the page follows the selection. */
export function Header(props: { cell: CellContent | undefined; paused: boolean }): JSX.Element {
  return (
    <header class="header">
      <h1 class="place">
        <Show when={props.cell} fallback={<span class="brand">Quorin</span>}>
          {(cell) => (
            <>
              <bdi class="book" data-testid="book" title={oneLine(cell().book)}>
                {oneLine(cell().book)}
              </bdi>
              <ChevronIcon />
              <bdi class="sheet" data-testid="sheet" title={oneLine(cell().sheet)}>
                {oneLine(cell().sheet)}
              </bdi>
              <ChevronIcon />
              <bdi class="address" data-testid="address">
                {oneLine(cell().addr)}
              </bdi>
            </>
          )}
        </Show>
      </h1>
      <span
        class="follow"
        classList={{ paused: props.paused }}
        data-testid="follow"
        title={props.paused ? 'Following is paused from the menu' : 'Following the selection'}
        data-paused={String(props.paused)}
      >
        <span class="followText">{props.paused ? 'Paused' : 'Following'}</span>
      </span>
    </header>
  );
}
