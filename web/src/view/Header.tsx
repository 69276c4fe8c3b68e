import { Show, type JSX } from 'solid-js';

import { oneLine } from '../core/format/visible';
import type { CellContent } from '../core/selection/state';

/** Where the cell is, and whether the page follows the selection. */
export function Header(props: { cell: CellContent | undefined; paused: boolean }): JSX.Element {
  return (
    <header class="header">
      <nav class="crumbs" aria-label="Where the cell is">
        <Show when={props.cell} fallback={<span class="crumb book">Quorin</span>}>
          {(cell) => (
            <>
              <bdi class="crumb book" data-testid="book" title={oneLine(cell().book)}>
                {oneLine(cell().book)}
              </bdi>
              <span class="separator" aria-hidden="true" />
              <bdi class="crumb sheet" data-testid="sheet" title={oneLine(cell().sheet)}>
                {oneLine(cell().sheet)}
              </bdi>
              <span class="separator" aria-hidden="true" />
              <bdi class="crumb address" data-testid="address">
                {oneLine(cell().addr)}
              </bdi>
            </>
          )}
        </Show>
      </nav>
      <span class="follow" data-testid="follow" data-paused={String(props.paused)}>
        {props.paused ? 'Paused' : 'Following'}
      </span>
    </header>
  );
}
