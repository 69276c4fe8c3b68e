import { Show, type JSX } from 'solid-js';

import { notUsedWhy, whyOf } from '../core/help/why';
import type { Item } from '../core/outline/Item';
import { WarningIcon } from './icons';
import type { Page } from './page';
import type { RowFace } from './rowFace';

/** A longer value is told by its copy alone. */
const exactLimit = 1_000;

/** The value at the end of a row, or why there is none. Its room is kept while it is awaited. */
export function RowValue(props: { page: Page; item: Item; face: RowFace }): JSX.Element {
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
  const title = () => {
    const { type, note, reason } = props.face;
    return type === undefined
      ? [reason, whyOf(reason)].filter(Boolean).join(' ')
      : [type, note].filter(Boolean).join(' · ');
  };
  // The elements stay while values come and go, as the row itself does, and the usual value needs
  // no others: with each a row takes longer to lay out.
  return (
    <span class="rowValue" data-testid="row-value" data-state={props.face.status}>
      <Show when={props.face.status === 'offered' || props.face.type === 'Error'}>
        <Sign {...props} />
      </Show>
      <bdi
        class={props.face.type ? `is-${props.face.type.toLowerCase()}` : 'quiet'}
        title={title()}
        data-type={props.face.type}
        data-exact={exact()}
        textContent={text()}
      />
      <Show when={props.face.unused && props.face.status !== 'known'}>
        <span class="quiet" title={notUsedWhy}>
          not used
        </span>
      </Show>
    </span>
  );
}

/** What stands before a value that is an error, or in the place of one that is only asked on demand. */
function Sign(props: { page: Page; item: Item; face: RowFace }): JSX.Element {
  return (
    <Show when={props.face.status === 'offered'} fallback={<WarningIcon />}>
      <button
        type="button"
        class="textButton"
        tabindex="-1"
        title={[props.face.reason, whyOf(props.face.reason)].filter(Boolean).join(' ')}
        onClick={(event) => {
          event.stopPropagation();
          props.page.explorer.want(props.item);
        }}
      >
        Ask
      </button>
    </Show>
  );
}
