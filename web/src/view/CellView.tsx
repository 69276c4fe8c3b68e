import { Show, type JSX } from 'solid-js';

import { extentOf } from '../core/address/extent';
import { visibleText } from '../core/format/visible';
import { valueView } from '../core/format/value';
import type { CellContent } from '../core/selection/state';

/** The selected cell: formula, value, and what else is selected around it. */
export function CellView(props: { cell: CellContent }): JSX.Element {
  const value = () => valueView(props.cell);
  return (
    <>
      <section class="block">
        <h2 class="label">Formula</h2>
        <Show
          when={props.cell.formula}
          fallback={<p class="quiet">None: the cell holds a constant.</p>}
        >
          {(formula) => (
            <code class="formula" dir="ltr" data-testid="formula">
              {visibleText(formula())}
            </code>
          )}
        </Show>
      </section>
      <section class="block">
        <h2 class="label">Value</h2>
        <p class="value" data-testid="value" data-type={value().type}>
          <bdi>{value().text}</bdi>
        </p>
        <p class="quiet" data-testid="type">
          {value().type}
        </p>
      </section>
      <dl class="facts">
        <Extent name="Selection" address={props.cell.selection} testid="selection" />
        <Extent name="Region" address={props.cell.region} testid="region" />
      </dl>
    </>
  );
}

function Extent(props: { name: string; address: string | undefined; testid: string }): JSX.Element {
  return (
    <Show when={props.address}>
      {(address) => (
        <>
          <dt>{props.name}</dt>
          <dd data-testid={props.testid}>
            {extentOf(address()).address} <span class="quiet">{extentOf(address()).size}</span>
          </dd>
        </>
      )}
    </Show>
  );
}
