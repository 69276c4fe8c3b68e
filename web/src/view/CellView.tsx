import { Show, type JSX } from 'solid-js';

import { extentOf } from '../core/address/extent';
import type { Stop } from '../core/explorer/Trail';
import { resultView } from '../core/format/resultView';
import type { CellContent } from '../core/selection/state';
import type { Page } from './page';
import { createWhole, ShowAll } from './ShowAll';

export type CellViewProps = {
  page: Page;
  stop: Stop;
  /** What was read of the selected cell, while that is the one shown. */
  content: CellContent | undefined;
};

/** A cell without a formula: what it is, its whole value, and what else is selected around it. */
export function CellView(props: CellViewProps): JSX.Element {
  const { whole, open } = createWhole(() => Object.values(props.stop.place).join('\n'));
  const value = () =>
    props.page.look(({ evaluator }) =>
      resultView(props.stop.result, {
        isCell: true,
        shown: evaluator.constantShownAs,
        whole: whole(),
      }),
    );
  return (
    <div class="cell">
      <p class="absent" data-testid="no-formula">
        {value().type === 'Blank' ? 'This cell is empty.' : 'A constant: typed in, not calculated.'}
      </p>
      <p class="note" data-testid="next">
        {value().type === 'Blank'
          ? 'Select a cell with a formula to see what it is made of.'
          : 'Press 2 to see which cells use it.'}
      </p>
      <Show when={value().type === 'Text'}>
        <div class="wholeText" tabindex="0" data-testid="whole-text">
          <bdi>{value().text}</bdi>
        </div>
      </Show>
      <p class="note">
        <span data-testid="note">{value().note}</span>
        <ShowAll cut={value().cut && !whole()} onOpen={open} />
      </p>
      <Show when={props.content}>
        {(content) => (
          <dl class="extents">
            <Extent name="Selection" address={content().selection} testid="selection" />
            <Extent name="Region" address={content().region} testid="region" />
          </dl>
        )}
      </Show>
    </div>
  );
}

function Extent(props: { name: string; address: string | undefined; testid: string }): JSX.Element {
  const extent = () => extentOf(props.address ?? '');
  return (
    <div class="extent">
      <dt class="label">{props.name}</dt>
      <dd>
        <span class="extentAddress" data-testid={props.testid}>
          {extent().address || '–'}
        </span>
        <span class="note">{extent().size}</span>
      </dd>
    </div>
  );
}
