import { createEffect, createMemo, Index, onMount, type JSX } from 'solid-js';

import { leads } from '../core/explorer/lead';
import { homeOf } from '../core/explorer/stops';
import type { Stop } from '../core/explorer/Trail';
import { oneLine } from '../core/format/visible';
import type { Item } from '../core/outline/Item';
import { createRows, rowHeight } from './createRows';
import { ChevronIcon } from './icons';
import type { Page } from './page';
import { RowValue } from './RowValue';

/** Deeper rows are indented no further; their level is told to assistive technology all the same. */
const deepestIndent = 12;
/** More text than fits a row on any panel. */
const rowTextLimit = 240;

/** The formula's parts with their values. */
export function TreeView(props: { page: Page; stop: Stop }): JSX.Element {
  const tree = () => props.stop.tree;
  const items = () => props.page.look(() => tree()?.rows ?? []);
  const active = () => props.page.look(() => tree()?.active);
  const activeIndex = () => props.page.look(() => tree()?.activeIndex ?? -1);
  const rows = createRows(() => items().length, activeIndex, tree);
  const shown = createMemo(() => items().slice(rows.first(), rows.last()));
  // A row that leaves at one end is used again at the other: the item at `i` is in slot `i` modulo
  // their number, so that rows that stay in sight are not touched.
  const slots = createMemo(() => {
    const list = shown();
    const first = rows.first();
    const places: { item: Item; top: number }[] = [];
    list.forEach((item, i) => {
      places[(first + i) % list.length] = { item, top: (first + i) * rowHeight };
    });
    return places;
  });
  createEffect(() => {
    const focus = active();
    const near = activeIndex();
    const first = rows.first();
    const order = shown().map((item, i) => ({ item, away: Math.abs(first + i - near) }));
    order.sort((a, b) => a.away - b.away);
    const visible = order.map(({ item }) => item);
    props.page.explorer.see(focus && !visible.includes(focus) ? [focus, ...visible] : visible);
  });
  let element: HTMLDivElement | undefined;
  onMount(() => element?.focus({ preventScroll: true }));
  return (
    <div
      class="tree"
      role="tree"
      tabindex="0"
      data-keys="all"
      data-testid="tree"
      aria-label="Parts of the formula"
      aria-activedescendant={active() && `row-${String(active()?.id)}`}
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
        <Index each={slots()}>
          {(slot) => (
            <TreeRow
              page={props.page}
              stop={props.stop}
              item={slot().item}
              top={slot().top}
              active={active() === slot().item}
            />
          )}
        </Index>
      </div>
    </div>
  );
}

// A row is used for one part after the other while the tree is scrolled, so each has all elements
// that any part needs: what a part does not have is empty or hidden.
type TreeRowProps = { page: Page; stop: Stop; item: Item; top: number; active: boolean };

function TreeRow(props: TreeRowProps): JSX.Element {
  const hasChildren = () => props.item.children.length > 0;
  const siblings = () => props.item.parent?.children ?? [props.item];
  const text = () => {
    const { start, end } = props.item.node;
    return oneLine(props.stop.text.slice(start, Math.min(end, start + rowTextLimit)));
  };
  const isOpen = () => props.page.look(() => props.stop.tree?.isOpen(props.item) ?? false);
  const unused = () => props.page.look(({ evaluator }) => evaluator.countsOf(props.item) === 'no');
  return (
    <div
      role="treeitem"
      id={`row-${String(props.item.id)}`}
      class="row"
      classList={{ active: props.active, unused: unused() }}
      data-testid="row"
      data-span={`${String(props.item.node.start)}:${String(props.item.node.end)}`}
      aria-level={props.item.level}
      aria-setsize={siblings().length}
      aria-posinset={siblings().indexOf(props.item) + 1}
      aria-expanded={hasChildren() ? isOpen() : undefined}
      aria-selected={props.active}
      style={{
        transform: `translateY(${String(props.top)}px)`,
        '--level': String(Math.min(props.item.level - 1, deepestIndent)),
      }}
      onClick={() => props.page.explorer.activate(props.item)}
      onDblClick={() => void props.page.explorer.drill(props.item)}
    >
      <span
        class="twisty"
        classList={{ open: isOpen(), none: !hasChildren() }}
        aria-hidden="true"
        onClick={(event) => {
          event.stopPropagation();
          props.page.explorer.toggle(props.item);
        }}
      >
        <ChevronIcon />
      </span>
      <bdi class="role">{props.item.role}</bdi>
      <bdi class="rowText" dir="ltr" classList={{ lead: leads(props.item, homeOf(props.stop)) }}>
        {text()}
      </bdi>
      <RowValue page={props.page} item={props.item} unused={unused()} />
    </div>
  );
}
