// Which rows of a long list are drawn: those in sight and a few around them. All rows are of the
// same height, so that a place in the list is a number times that height.

import { createEffect, createSignal, onCleanup, onMount, type Accessor } from 'solid-js';

export const rowHeight = 24;
const overscan = 6;

export type Rows = {
  /** The scrolling element. */
  attach(element: HTMLElement): void;
  first: Accessor<number>;
  last: Accessor<number>;
};

/** `active`: the row that is to be in sight; -1 for none. */
export function createRows(total: Accessor<number>, active: Accessor<number>): Rows {
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
  createEffect(() => {
    const index = active();
    if (!scroller || index < 0) return;
    const above = index * rowHeight;
    const below = above + rowHeight - height();
    if (above < scroller.scrollTop) scroller.scrollTop = above;
    else if (below > scroller.scrollTop) scroller.scrollTop = below;
    setTop(scroller.scrollTop);
  });
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
    first: () => Math.max(0, Math.floor(top() / rowHeight) - overscan),
    last: () => Math.min(total(), Math.ceil((top() + height()) / rowHeight) + overscan),
  };
}
