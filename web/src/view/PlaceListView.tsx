import { createMemo, Show, type JSX } from 'solid-js';

import { oneLine, visibleText } from '../core/format/visible';
import type { PlaceView, ShownRow } from '../core/workbook/PlaceView';
import { WarningIcon } from './icons';
import type { Page } from './page';
import { RowTree, type Slot } from './RowTree';
import { Twisty } from './Twisty';

export type PlaceListViewProps = {
  page: Page;
  list: PlaceView;
  name: string;
  /** What is said above the list. */
  heading: string;
  /** What a human would call the cells that it is of; empty where nobody would. */
  label?: string;
  /** What is said under that, in quiet words; empty for nothing. */
  under: string;
  /** What is said where it holds nothing. */
  nothing: string;
  /** What can be done then. */
  next: string;
  /** What the list does not hold, said under it. */
  missing: string;
  /** What stands between heading and list. */
  children?: JSX.Element;
};

/** A list of places in the workbook, in groups; Enter goes to one. */
export function PlaceListView(props: PlaceListViewProps): JSX.Element {
  const state = () => props.page.look(() => props.list.state);
  const items = createMemo(() => props.page.look(() => props.list.rows));
  const active = createMemo(() => props.page.look(() => props.list.activeIndex));
  const failed = () => {
    const now = state();
    return now.status === 'failed' ? now.reason || 'The spreadsheet refused.' : '';
  };
  const note = () => {
    const now = state();
    return now.status === 'known' ? now.note : '';
  };
  const isEmpty = () => state().status === 'known' && items().length === 0;
  return (
    <section class="places" aria-label={props.name}>
      <h2 class="listHead" data-testid="list-heading">
        {oneLine(props.heading)} <bdi class="placeLabel" textContent={oneLine(props.label ?? '')} />
      </h2>
      <Show when={props.under}>
        <p class="note padded" data-testid="list-under">
          {props.under}
        </p>
      </Show>
      {props.children}
      <Show when={state().status === 'asking'}>
        <p class="note padded waiting">Asking…</p>
      </Show>
      <Show when={isEmpty()}>
        <p class="absent" data-testid="list-empty">
          {oneLine(props.nothing)}
        </p>
        <p class="note padded" data-testid="list-next">
          {props.next}
        </p>
      </Show>
      <Show when={failed()}>
        {(reason) => (
          <p class="absent" data-testid="list-failed">
            {visibleText(reason())}
          </p>
        )}
      </Show>
      <RowTree
        items={items()}
        activeIndex={active()}
        of={props.list}
        label={props.name}
        testid="list"
        activeId={items().length > 0 ? `place-${String(active())}` : undefined}
      >
        {(slot) => (
          <PlaceItem
            page={props.page}
            list={props.list}
            slot={slot()}
            active={active() === slot().index}
          />
        )}
      </RowTree>
      <p class="note padded" data-testid="list-note">
        {[note(), props.missing].filter(Boolean).join(' ')}
      </p>
    </section>
  );
}

type PlaceItemProps = { page: Page; list: PlaceView; slot: Slot<ShownRow>; active: boolean };

function PlaceItem(props: PlaceItemProps): JSX.Element {
  const row = () => props.slot.item.row;
  const where = () => {
    const { place, places } = row();
    const isOne = (places?.length ?? 1) === 1;
    return place && isOne ? oneLine(`${place.sheet ?? ''}!${place.address}`) : undefined;
  };
  const level = () => props.slot.item.level;
  const isOpen = createMemo(() => props.page.look(() => props.list.isOpen(row())));
  return (
    <div
      role="treeitem"
      id={`place-${String(props.slot.index)}`}
      class="row"
      classList={{ active: props.active, group: level() === 1 }}
      data-testid="place"
      aria-level={level()}
      aria-expanded={row().inner ? isOpen() : undefined}
      aria-selected={props.active}
      style={{
        transform: `translateY(${String(props.slot.top)}px)`,
        'padding-left': `${String(16 + (level() - 1) * 14)}px`,
      }}
      onClick={() => props.page.explorer.choose(props.slot.index)}
      onDblClick={() => {
        const { place } = row();
        if (place) void props.page.explorer.visitPlace(place);
      }}
    >
      <Twisty
        open={isOpen()}
        none={!row().inner}
        onToggle={() => props.page.explorer.toggleRow(props.slot.index)}
      />
      <span class="rowText">
        <bdi
          classList={{
            code: row().place !== undefined && level() > 1,
            lead: row().place !== undefined,
          }}
          title={where()}
          textContent={oneLine(row().text)}
        />{' '}
        <bdi class="placeLabel" textContent={oneLine(row().label ?? '')} />
      </span>
      <span class="rowValue">
        <Show when={row().tag}>
          <span class="tag">
            <WarningIcon />
            {row().tag}
          </span>
        </Show>
        <bdi class="quiet" title={oneLine(row().detail)} textContent={oneLine(row().detail)} />
      </span>
    </div>
  );
}
