import { For, type JSX } from 'solid-js';

import type { Kind } from '../../core/audit/Finding';
import { oneLine } from '../../core/format/visible';
import { kindName, stateName } from '../../core/review/kinds';
import type { ReviewFilter } from '../../core/review/Review';
import type { State } from '../../core/review/said';
import type { Page } from '../page';

const states: readonly State[] = ['fault', 'fine', 'later'];

/** Which findings are listed. */
export function ReviewFilters(props: { page: Page }): JSX.Element {
  const review = () => props.page.explorer.review;
  const filter = () => props.page.look(() => review().filter);
  return (
    <div class="filters" role="group" aria-label="Which findings are listed">
      <select
        class="filter"
        aria-label="Kind"
        data-testid="filter-kind"
        onChange={(event) => {
          review().setFilter({ ...filter(), kind: event.currentTarget.value as Kind | '' });
        }}
      >
        <option value="" selected={filter().kind === ''}>
          All kinds
        </option>
        <For each={props.page.look(() => review().kinds)}>
          {({ value, findings }) => (
            <option value={value} selected={filter().kind === value}>
              {`${kindName(value)} (${String(findings)})`}
            </option>
          )}
        </For>
      </select>
      <select
        class="filter"
        aria-label="Sheet"
        data-testid="filter-sheet"
        onChange={(event) => {
          review().setFilter({ ...filter(), sheet: event.currentTarget.value });
        }}
      >
        <option value="" selected={filter().sheet === ''}>
          All sheets
        </option>
        <For each={props.page.look(() => review().sheets)}>
          {({ value, findings }) => (
            <option value={value} selected={filter().sheet === value}>
              {`${oneLine(value)} (${String(findings)})`}
            </option>
          )}
        </For>
      </select>
      <select
        class="filter"
        aria-label="State"
        data-testid="filter-state"
        onChange={(event) => {
          const state = event.currentTarget.value as ReviewFilter['state'];
          review().setFilter({ ...filter(), state });
        }}
      >
        <option value="" selected={filter().state === ''}>
          All states
        </option>
        <option value="open" selected={filter().state === 'open'}>
          Not judged
        </option>
        <For each={states}>
          {(state) => (
            <option value={state} selected={filter().state === state}>
              {stateName(state)}
            </option>
          )}
        </For>
      </select>
    </div>
  );
}
