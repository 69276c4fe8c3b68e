import { createEffect, createMemo, on, Show, type JSX } from 'solid-js';

import { leads } from '../core/explorer/lead';
import { homeOf } from '../core/explorer/stops';
import { notUsedWhy, whyOf } from '../core/help/why';
import type { Stop } from '../core/explorer/Trail';
import { resultView } from '../core/format/resultView';
import { visibleText } from '../core/format/visible';
import type { Page } from './page';
import { RangeView } from './RangeView';
import { createWhole, ShowAll } from './ShowAll';

/** Everything about the active row: its whole text, its whole value, the cells behind it. */
export function DetailPane(props: { page: Page; stop: Stop }): JSX.Element {
  const item = () => props.page.look((explorer) => explorer.here?.tree?.active);
  const state = () =>
    props.page.look(({ evaluator }) => {
      const one = item();
      return one && evaluator.stateOf(one);
    });
  createEffect(on(item, (one) => props.page.explorer.detail(one)));
  const { whole, open } = createWhole(item);
  const result = () => {
    const now = state();
    return now?.status === 'known' ? now.result : undefined;
  };
  const view = () => {
    const now = result();
    const one = item();
    if (!now || !one) return undefined;
    const { evaluator } = props.page.explorer;
    const isCell = evaluator.routeOf(one).route.by === 'cells';
    return resultView(now, { isCell, shown: evaluator.shownAs(one), whole: whole() });
  };
  const reason = () => {
    const now = state();
    return now && 'reason' in now ? now.reason : '';
  };
  const unused = () =>
    props.page.look(({ evaluator }) => {
      const one = item();
      return one !== undefined && evaluator.countsOf(one) === 'no';
    });
  const why = () => (reason() === '' && unused() && !result() ? notUsedWhy : whyOf(reason()));
  const text = () => {
    const one = item();
    return one ? props.stop.text.slice(one.node.start, one.node.end) : '';
  };
  const destination = createMemo(on(item, () => props.page.explorer.destination()));
  const range = () => {
    const now = result();
    return now?.kind === 'array' ? now : undefined;
  };
  const texts = () =>
    props.page.look(({ evaluator }) => {
      const one = item();
      return one && evaluator.gridOf(one);
    });
  const target = () => {
    const one = item();
    return one && leads(one, homeOf(props.stop)) ? one : undefined;
  };
  return (
    <aside class="detail" aria-label="Details" data-testid="detail">
      <div class="detailHead">
        <h2 class="label">{item()?.role || 'Part'}</h2>
        <button
          type="button"
          class="textButton"
          data-testid="copy-text"
          onClick={() => props.page.copy(text(), 'Text')}
        >
          Copy text
        </button>
        <Show when={view()}>
          {(known) => (
            <button
              type="button"
              class="textButton"
              data-testid="copy-part"
              onClick={() => props.page.copy(known().copy, 'Value')}
            >
              Copy value
            </button>
          )}
        </Show>
        <Show when={view()?.type === 'Number' && view()?.text !== view()?.copy && view()}>
          {(known) => (
            <button
              type="button"
              class="textButton"
              data-testid="copy-part-shown"
              onClick={() => props.page.copy(known().text, 'Text')}
            >
              Copy as shown
            </button>
          )}
        </Show>
      </div>
      <code class="detailText" dir="ltr" tabindex="0" aria-label="Text of the part">
        {visibleText(text())}
      </code>
      <Show when={view()}>
        {(known) => (
          <div>
            <div
              class={`detailValue is-${known().type.toLowerCase()}`}
              tabindex={known().cut || whole() || mayScroll(known().text) ? 0 : undefined}
              data-testid="detail-value"
            >
              <bdi>{known().type === 'Blank' ? 'Empty' : known().text}</bdi>
            </div>
            <p class="note">
              {[known().type, known().note].filter(Boolean).join(' · ')}
              <ShowAll cut={known().cut && !whole()} onOpen={open} />
            </p>
          </div>
        )}
      </Show>
      <Show when={reason()}>
        <p class="note" data-testid="reason">
          {reason()}
        </p>
      </Show>
      <Show when={why()}>
        <p class="note" data-testid="why">
          <strong>Why?</strong> {why()}
        </p>
      </Show>
      <Show when={state()?.status === 'offered' && item()}>
        {(one) => (
          <button
            type="button"
            class="button"
            data-testid="ask"
            onClick={() => props.page.explorer.want(one())}
          >
            Ask now
          </button>
        )}
      </Show>
      <div class="actions">
        <Show when={target()}>
          {(one) => (
            <button
              type="button"
              class="button"
              data-testid="drill"
              title="Enter"
              onClick={() => void props.page.explorer.drill(one())}
            >
              Open its formula
            </button>
          )}
        </Show>
        <Show when={destination()}>
          <button
            type="button"
            class="button"
            data-testid="select"
            onClick={() => void props.page.explorer.select()}
          >
            Select on the sheet
          </button>
        </Show>
      </div>
      <Show when={range()}>
        {(cells) => (
          <RangeView
            cells={cells()}
            texts={texts()}
            onWant={() => {
              const one = item();
              if (one) props.page.explorer.want(one);
            }}
          />
        )}
      </Show>
    </aside>
  );
}

/** True if the text may be higher than there is room for: keys have to get to what scrolls. */
function mayScroll(text: string): boolean {
  return text.length > 100 || text.includes('\n');
}
