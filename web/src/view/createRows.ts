// Which rows of a long list are drawn: those in sight and a few around them. All rows are of the
// same height, so that a place in the list is a number times that height.

import {
  createEffect,
  createMemo,
  createSignal,
  on,
  onCleanup,
  onMount,
  type Accessor,
} from 'solid-js';

export const rowHeight = 24;
/** Rows drawn beyond either edge: what a turn of the wheel brings into sight before the next frame. */
const overscan = 3;

export type Rows = {
  /** The scrolling element. */
  attach(element: HTMLElement): void;
  first: Accessor<number>;
  last: Accessor<number>;
};

/**
 * `active`: the row that is brought into sight whenever it becomes another one; -1 for none. `list`:
 * what the rows are of; another one is seen from its active row, wherever the one before was left.
 */
export function createRows(
  total: Accessor<number>,
  active: Accessor<number>,
  list: Accessor<unknown>,
): Rows {
  const [top, setTop] = createSignal(0);
  const [height, setHeight] = createSignal(400);
  let scroller: HTMLElement | undefined;
  const measure = (): void => {
    if (scroller && scroller.clientHeight > 0) setHeight(scroller.clientHeight);
  };
  onMount(() => {
    const observer = new ResizeObserver(measure);
    if (scroller) observer.observe(scroller);
    measure();
    onCleanup(() => {
      observer.disconnect();
    });
  });
  // Told apart by what they give: whatever else changes must not scroll away from where the user is.
  const wanted = createMemo(active);
  const shown = createMemo(list);
  createEffect(
    on([wanted, shown, height], ([index]) => {
      if (!scroller || index < 0) return;
      const above = index * rowHeight;
      const below = above + rowHeight - height();
      if (above < scroller.scrollTop) scroller.scrollTop = above;
      else if (below > scroller.scrollTop) scroller.scrollTop = below;
      setTop(scroller.scrollTop);
    }),
  );
  // Wherever the list is scrolled to, as many rows are drawn: none is made or thrown away for that.
  const room = createMemo(() => Math.ceil(height() / rowHeight) + 1 + 2 * overscan);
  const first = createMemo(() =>
    Math.max(0, Math.min(Math.floor(top() / rowHeight) - overscan, total() - room())),
  );
  return {
    attach(element) {
      scroller = element;
      element.addEventListener(
        'scroll',
        () => {
          setTop(element.scrollTop);
        },
        { passive: true },
      );
    },
    first,
    last: () => Math.min(total(), first() + room()),
  };
}
