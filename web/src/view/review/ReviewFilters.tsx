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
  const counted = (text: string, findings: number) => `${text} (${String(findings)})`;
  return (
    <div class="filters" role="group" aria-label="Which findings are listed">
      <Filter
        name="Kind"
        all="All kinds"
        chosen={filter().kind}
        choices={props.page.look(() =>
          review().kinds.map(({ value, findings }) => ({
            value,
            text: counted(kindName(value), findings),
          })),
        )}
        choose={(value) => {
          review().setFilter({ ...filter(), kind: value as Kind | '' });
        }}
      />
      <Filter
        name="Sheet"
        all="All sheets"
        chosen={filter().sheet}
        choices={props.page.look(() =>
          review().sheets.map(({ value, findings }) => ({
            value,
            text: counted(oneLine(value), findings),
          })),
        )}
        choose={(value) => {
          review().setFilter({ ...filter(), sheet: value });
        }}
      />
      <Filter
        name="State"
        all="All states"
        chosen={filter().state}
        choices={[
          { value: 'open', text: 'Not judged' },
          ...states.map((state) => ({ value: state, text: stateName(state) })),
        ]}
        choose={(value) => {
          review().setFilter({ ...filter(), state: value as ReviewFilter['state'] });
        }}
      />
    </div>
  );
}

type FilterProps = {
  name: string;
  /** The text of the choice that leaves nothing out; its value is empty. */
  all: string;
  chosen: string;
  choices: readonly { value: string; text: string }[];
  choose(value: string): void;
};

function Filter(props: FilterProps): JSX.Element {
  return (
    <select
      class="filter"
      aria-label={props.name}
      data-testid={`filter-${props.name.toLowerCase()}`}
      onChange={({ currentTarget: field }) => {
        props.choose(field.value);
      }}
    >
      <option value="" selected={props.chosen === ''}>
        {props.all}
      </option>
      <For each={props.choices}>
        {({ value, text }) => (
          <option value={value} selected={props.chosen === value}>
            {text}
          </option>
        )}
      </For>
    </select>
  );
}
