import { createComputed, createMemo, Index, onMount, type Accessor, type JSX } from 'solid-js';

import { createRows, rowHeight } from './createRows';

/** A row that is drawn: what it shows, and where it stands. */
export type Slot<T> = {
  item: T;
  index: number;
  /** Its upper edge, in pixels from that of the first row. */
  top: number;
};

export type RowTreeProps<T> = {
  items: readonly T[];
  /** -1 for none. */
  activeIndex: number;
  /** What the rows are of: another one is seen from its active row. */
  of: unknown;
  label: string;
  testid: string;
  /** The id of the active row's element. */
  activeId: string | undefined;
  /** Hears which rows will be drawn before they are, and again when something that it reads changes. */
  onShown?: (first: number, items: readonly T[]) => void;
  children: (slot: Accessor<Slot<T>>) => JSX.Element;
};

/** A tree of any length that takes the keyboard and draws the rows in sight. */
export function RowTree<T>(props: RowTreeProps<T>): JSX.Element {
  const rows = createRows(
    () => props.items.length,
    () => props.activeIndex,
    () => props.of,
  );
  const shown = createMemo(() => props.items.slice(rows.first(), rows.last()));
  createComputed(() => {
    props.onShown?.(rows.first(), shown());
  });
  // A row that leaves at one end is used again at the other: the item at `i` is in slot `i` modulo
  // their number, so that rows that stay in sight are not touched.
  const slots = createMemo<Slot<T>[]>((before) => {
    const list = shown();
    const first = rows.first();
    const places: Slot<T>[] = [];
    list.forEach((item, i) => {
      const index = first + i;
      const at = index % list.length;
      const old = before[at];
      const stays = old?.item === item && old.index === index;
      places[at] = stays ? old : { item, index, top: index * rowHeight };
    });
    return places;
  }, []);
  let element: HTMLDivElement | undefined;
  onMount(() => element?.focus({ preventScroll: true }));
  return (
    <div
      class="tree"
      role="tree"
      tabindex="0"
      data-keys="all"
      data-testid={props.testid}
      aria-label={props.label}
      aria-activedescendant={props.activeId}
      ref={(one) => {
        element = one;
        rows.attach(one);
      }}
    >
      <div
        role="presentation"
        class="rows"
        style={{ height: `${String(props.items.length * rowHeight)}px` }}
      >
        <Index each={slots()}>{props.children}</Index>
      </div>
    </div>
  );
}
