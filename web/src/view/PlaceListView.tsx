import { createMemo, For, onMount, Show, type JSX } from 'solid-js';

import { oneLine, visibleText } from '../core/format/visible';
import type { PlaceRow } from '../core/workbook/PlaceList';
import type { PlaceView } from '../core/workbook/PlaceView';
import { createRows, rowHeight } from './createRows';
import { ChevronIcon, WarningIcon } from './icons';
import type { Page } from './page';

export type PlaceListViewProps = {
  page: Page;
  list: PlaceView;
  name: string;
  /** What is said above the list. */
  heading: string;
  /** What is said where it holds nothing. */
  nothing: string;
  /** What the list does not hold, said under it. */
  missing: string;
};

/** A list of places in the workbook, in groups; Enter goes to one. */
export function PlaceListView(props: PlaceListViewProps): JSX.Element {
  const state = () => props.page.look(() => props.list.state);
  const items = () => props.page.look(() => props.list.rows);
  const active = () => props.page.look(() => props.list.activeIndex);
  const rows = createRows(
    () => items().length,
    active,
    () => props.list,
  );
  const shown = createMemo(() =>
    Array.from({ length: Math.max(0, rows.last() - rows.first()) }, (_, i) => rows.first() + i),
  );
  const failed = () => {
    const now = state();
    return now.status === 'failed' ? now.reason || 'The spreadsheet refused.' : '';
  };
  const note = () => {
    const now = state();
    return now.status === 'known' ? now.note : '';
  };
  const isEmpty = () => state().status === 'known' && items().length === 0;
  let element: HTMLDivElement | undefined;
  onMount(() => element?.focus({ preventScroll: true }));
  return (
    <section class="places" aria-label={props.name}>
      <h2 class="listHead" data-testid="list-heading">
        {oneLine(props.heading)}
      </h2>
      <Show when={state().status === 'asking'}>
        <p class="note padded waiting">Asking…</p>
      </Show>
      <Show when={isEmpty()}>
        <p class="absent" data-testid="list-empty">
          {oneLine(props.nothing)}
        </p>
      </Show>
      <Show when={failed()}>
        {(reason) => (
          <p class="absent" data-testid="list-failed">
            {visibleText(reason())}
          </p>
        )}
      </Show>
      <div
        class="tree"
        role="tree"
        tabindex="0"
        data-keys="all"
        data-testid="list"
        aria-label={props.name}
        aria-activedescendant={items().length > 0 ? `place-${String(active())}` : undefined}
        ref={(one) => {
          element = one;
          rows.attach(one);
        }}
      >
        <div
          role="presentation"
          class="rows"
          style={{ height: `${String(items().length * rowHeight)}px` }}
        >
          <For each={shown()}>
            {(index) => {
              const row = () => items()[index]?.row;
              const level = () => items()[index]?.level ?? 1;
              const isOpen = (one: PlaceRow) => props.page.look(() => props.list.isOpen(one));
              return (
                <Show when={row()}>
                  {(one) => (
                    <div
                      role="treeitem"
                      id={`place-${String(index)}`}
                      class="row"
                      classList={{ active: active() === index, group: level() === 1 }}
                      data-testid="place"
                      aria-level={level()}
                      aria-expanded={one().inner ? isOpen(one()) : undefined}
                      aria-selected={active() === index}
                      style={{
                        transform: `translateY(${String(index * rowHeight)}px)`,
                        '--level': String(level() - 1),
                      }}
                      onClick={() => props.page.explorer.choose(index)}
                      onDblClick={() => {
                        const { place } = one();
                        if (place) void props.page.explorer.visitPlace(place);
                      }}
                    >
                      <span
                        class="twisty"
                        classList={{ open: isOpen(one()), none: !one().inner }}
                        aria-hidden="true"
                        onClick={(event) => {
                          event.stopPropagation();
                          props.page.explorer.toggleRow(index);
                        }}
                      >
                        <Show when={one().inner}>
                          <ChevronIcon />
                        </Show>
                      </span>
                      <bdi class="rowText" classList={{ lead: one().place !== undefined }}>
                        {oneLine(one().text)}
                      </bdi>
                      <span class="rowValue">
                        <Show when={one().tag}>
                          <span class="tag">
                            <WarningIcon />
                            {one().tag}
                          </span>
                        </Show>
                        <bdi class="valueText quiet" title={oneLine(one().detail)}>
                          {oneLine(one().detail)}
                        </bdi>
                      </span>
                    </div>
                  )}
                </Show>
              );
            }}
          </For>
        </div>
      </div>
      <p class="note padded" data-testid="list-note">
        {[note(), props.missing].filter(Boolean).join(' ')}
      </p>
    </section>
  );
}
