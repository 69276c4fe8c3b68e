import { For, type JSX } from 'solid-js';

import { oneLine } from '../../core/format/visible';
import { kindName, stateName } from '../../core/review/kinds';
import type { ReviewFilter } from '../../core/review/Review';
import type { State } from '../../core/review/said';
import type { Page } from '../page';

const states: readonly { value: State | 'open' }[] = [
  { value: 'open' },
  { value: 'fault' },
  { value: 'fine' },
  { value: 'later' },
];

/** Which findings are listed. */
export function ReviewFilters(props: { page: Page }): JSX.Element {
  const review = () => props.page.explorer.review;
  const filter = () => props.page.look(() => review().filter);
  const change = (part: Partial<ReviewFilter>): void => {
    review().setFilter({ ...filter(), ...part });
  };
  return (
    <div class="filters" role="group" aria-label="Which findings are listed">
      <Filter
        name="Kind"
        all="All kinds"
        chosen={filter().kind}
        choices={props.page.look(() => review().kinds)}
        nameOf={kindName}
        choose={(kind) => {
          change({ kind });
        }}
      />
      <Filter
        name="Sheet"
        all="All sheets"
        chosen={filter().sheet}
        choices={props.page.look(() => review().sheets)}
        nameOf={oneLine}
        choose={(sheet) => {
          change({ sheet });
        }}
      />
      <Filter
        name="State"
        all="All states"
        chosen={filter().state}
        choices={states}
        nameOf={(state) => (state === 'open' ? 'Not judged' : stateName(state))}
        choose={(state) => {
          change({ state });
        }}
      />
    </div>
  );
}

type FilterProps<T extends string> = {
  name: string;
  /** The text of the choice that leaves nothing out; its value is empty. */
  all: string;
  chosen: T | '';
  /** The same ones as long as nothing about them is another: the menu may be open. */
  choices: readonly { value: T; findings?: number }[];
  nameOf(value: T): string;
  choose(value: T | ''): void;
};

function Filter<T extends string>(props: FilterProps<T>): JSX.Element {
  return (
    <select
      class="filter"
      aria-label={props.name}
      data-testid={`filter-${props.name.toLowerCase()}`}
      onChange={({ currentTarget: field }) => {
        props.choose(field.value as T | '');
      }}
    >
      <option value="" selected={props.chosen === ''}>
        {props.all}
      </option>
      <For each={props.choices}>
        {({ value, findings }) => (
          <option value={value} selected={props.chosen === value}>
            {props.nameOf(value) + (findings === undefined ? '' : ` (${String(findings)})`)}
          </option>
        )}
      </For>
    </select>
  );
}
