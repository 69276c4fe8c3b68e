import { Match, Show, Switch, type JSX } from 'solid-js';

import { resultView } from '../core/format/resultView';
import type { ValueView } from '../core/format/value';
import type { Item } from '../core/outline/Item';
import type { Page } from './page';
import { ValueText } from './ValueText';

/** A longer value is told by its copy alone. */
const exactLimit = 1_000;

/** The value at the end of a row, or why there is none. Its room is kept while it is awaited. */
export function RowValue(props: { page: Page; item: Item; unused: boolean }): JSX.Element {
  const state = () => props.page.look(({ evaluator }) => evaluator.stateOf(props.item));
  const reason = () => {
    const now = state();
    return 'reason' in now ? now.reason : '';
  };
  const view = (): ValueView | undefined => {
    const now = state();
    if (now.status !== 'known') return undefined;
    const { evaluator } = props.page.explorer;
    const isCell = evaluator.routeOf(props.item).route.by === 'cells';
    return resultView(now.result, { isCell, format: evaluator.formatOf(props.item) });
  };
  return (
    <span class="rowValue" data-testid="row-value" data-state={state().status}>
      <Switch>
        <Match when={view()}>
          {(known) => (
            <span
              class={`is-${known().type.toLowerCase()}`}
              title={known().type}
              data-type={known().type}
              data-exact={known().copy.length <= exactLimit ? known().copy : undefined}
            >
              <ValueText view={known()} />
            </span>
          )}
        </Match>
        <Match when={state().status === 'asking'}>
          <span class="quiet">…</span>
        </Match>
        <Match when={state().status === 'offered'}>
          <button
            type="button"
            class="textButton"
            tabindex="-1"
            title={reason()}
            onClick={(event) => {
              event.stopPropagation();
              props.page.explorer.want(props.item);
            }}
          >
            Ask
          </button>
        </Match>
        <Match when={state().status === 'refused'}>
          <span class="quiet" title={reason()}>
            {reason()}
          </span>
        </Match>
      </Switch>
      <Show when={props.unused && state().status !== 'known'}>
        <span class="quiet">not used</span>
      </Show>
    </span>
  );
}
