import { createMemo, type JSX } from 'solid-js';

import type { Home } from '../core/evaluation/expression';
import { leads } from '../core/explorer/lead';
import { homeOf } from '../core/explorer/stops';
import type { Stop } from '../core/explorer/Trail';
import { oneLine } from '../core/format/visible';
import type { Item } from '../core/outline/Item';
import type { Page } from './page';
import { faceOf, sameFace } from './rowFace';
import { RowTree } from './RowTree';
import { RowValue } from './RowValue';
import { Twisty } from './Twisty';

/** Deeper rows are indented no further; their level is told to assistive technology all the same. */
const deepestIndent = 12;
const indent = 14;
/** More text than fits a row on any panel. */
const rowTextLimit = 240;
/** Of a long name so much is told that the part itself keeps most of the row. */
const roleLimit = 24;

/** The formula's parts with their values. */
export function TreeView(props: { page: Page; stop: Stop }): JSX.Element {
  const tree = () => props.stop.tree;
  const items = createMemo(() => props.page.look(() => tree()?.rows ?? []));
  const active = createMemo(() => props.page.look(() => tree()?.active));
  const activeIndex = createMemo(() => props.page.look(() => tree()?.activeIndex ?? -1));
  const home = createMemo(() => homeOf(props.stop));
  const see = (first: number, shown: readonly Item[]): void => {
    const focus = active();
    const near = activeIndex();
    const order = shown.map((item, i) => ({ item, away: Math.abs(first + i - near) }));
    order.sort((a, b) => a.away - b.away);
    const visible = order.map(({ item }) => item);
    props.page.explorer.see(focus && !visible.includes(focus) ? [focus, ...visible] : visible);
  };
  return (
    <RowTree
      items={items()}
      activeIndex={activeIndex()}
      of={tree()}
      label="Parts of the formula"
      testid="tree"
      activeId={active() && `row-${String(active()?.id)}`}
      onShown={see}
    >
      {(slot) => (
        <TreeRow
          page={props.page}
          stop={props.stop}
          home={home()}
          item={slot().item}
          top={slot().top}
          active={active() === slot().item}
        />
      )}
    </RowTree>
  );
}

// A row is used for one part after the other while the tree is scrolled, so each has all elements
// that any part needs: what a part does not have is empty or hidden.
type TreeRowProps = {
  page: Page;
  stop: Stop;
  home: Home;
  item: Item;
  top: number;
  active: boolean;
};

function TreeRow(props: TreeRowProps): JSX.Element {
  const hasChildren = () => props.item.children.length > 0;
  const text = () => {
    const { start, end } = props.item.node;
    return oneLine(props.stop.text.slice(start, Math.min(end, start + rowTextLimit)));
  };
  const role = () => {
    const { role } = props.item;
    return role.length > roleLimit ? `${role.slice(0, roleLimit - 1)}…` : role;
  };
  const isOpen = () => props.stop.tree?.isOpen(props.item) ?? false;
  const face = createMemo(
    () => props.page.look(({ evaluator }) => faceOf(props.item, evaluator, isOpen())),
    undefined,
    { equals: sameFace },
  );
  const label = createMemo(() => props.page.look((explorer) => explorer.labelOf(props.item)));
  return (
    <div
      role="treeitem"
      id={`row-${String(props.item.id)}`}
      class="row"
      classList={{ active: props.active, unused: face().unused }}
      data-testid="row"
      data-span={`${String(props.item.node.start)}:${String(props.item.node.end)}`}
      aria-level={props.item.level}
      aria-setsize={props.item.parent?.children.length ?? 1}
      aria-posinset={props.item.position}
      aria-expanded={hasChildren() ? face().open : undefined}
      aria-selected={props.active}
      style={{
        transform: `translateY(${String(props.top)}px)`,
        'padding-left': `${String(10 + Math.min(props.item.level - 1, deepestIndent) * indent)}px`,
      }}
      onClick={() => props.page.explorer.activate(props.item)}
      onDblClick={() => void props.page.explorer.drill(props.item)}
    >
      <Twisty
        open={face().open}
        none={!hasChildren()}
        onToggle={() => props.page.explorer.toggle(props.item)}
      />
      <span class="rowText">
        <bdi class="role" textContent={role()} />{' '}
        <bdi
          class="code"
          dir="ltr"
          classList={{ lead: leads(props.item, props.home) }}
          textContent={text()}
        />{' '}
        <bdi class="placeLabel" textContent={oneLine(label())} />
      </span>
      <RowValue page={props.page} item={props.item} face={face()} />
    </div>
  );
}
