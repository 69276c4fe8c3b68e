import { For, type JSX } from 'solid-js';

import type { Kind } from '../../core/audit/Finding';
import { oneLine } from '../../core/format/visible';
import { kindName } from '../../core/review/kinds';
import type { Page } from '../page';

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
    </div>
  );
}
