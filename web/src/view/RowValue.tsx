import { Show, type JSX } from 'solid-js';

import type { Item } from '../core/outline/Item';
import { GridIcon, WarningIcon } from './icons';
import type { Page } from './page';
import type { RowFace } from './rowFace';

/** A longer value is told by its copy alone. */
const exactLimit = 1_000;

/** The value at the end of a row, or why there is none. Its room is kept while it is awaited. */
export function RowValue(props: { page: Page; item: Item; face: RowFace }): JSX.Element {
  const known = () => props.face.type;
  const exact = () => {
    const { type, copy } = props.face;
    return type !== undefined && copy.length <= exactLimit ? copy : undefined;
  };
  const text = () => {
    const { status, reason } = props.face;
    if (status === 'known') return props.face.text;
    if (status === 'asking') return '…';
    return status === 'refused' ? reason : '';
  };
  // The elements stay while values come and go, as the row itself does.
  return (
    <span class="rowValue" data-testid="row-value" data-state={props.face.status}>
      <Show when={props.face.status === 'offered'}>
        <button
          type="button"
          class="textButton"
          tabindex="-1"
          title={props.face.reason}
          onClick={(event) => {
            event.stopPropagation();
            props.page.explorer.want(props.item);
          }}
        >
          Ask
        </button>
      </Show>
      <span
        class={known() ? `is-${String(known()).toLowerCase()}` : 'quiet'}
        title={known() ?? props.face.reason}
        data-type={known()}
        data-exact={exact()}
      >
        {/* Errors and arrays carry a sign, so that colour says nothing alone. */}
        <Show when={known() === 'Error'}>
          <WarningIcon />
        </Show>
        <Show when={known() === 'Array'}>
          <GridIcon />
        </Show>
        <bdi class="valueText" textContent={text()} />
      </span>
      <Show when={props.face.unused && props.face.status !== 'known'}>
        <span class="quiet">not used</span>
      </Show>
    </span>
  );
}
