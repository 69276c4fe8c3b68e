import { createEffect, createMemo, Index, on, onCleanup, onMount, Show, type JSX } from 'solid-js';

import { visibleText } from '../core/format/visible';
import { highlight } from '../core/formula/highlight';
import { CopyIcon } from './icons';
import type { Page } from './page';

/** Pieces up to this length stay on one line; it fits into the narrowest panel. */
const unbrokenLength = 30;

/** Milliseconds without another row. */
const restingTime = 80;

/** The first piece that begins at `start` or behind it. */
function pieceAt(pieces: readonly { start: number }[], start: number): number {
  let low = 0;
  let high = pieces.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if ((pieces[middle]?.start ?? 0) < start) low = middle + 1;
    else high = middle;
  }
  return low;
}

/** The formula's text: the part of the active row is marked, and a click makes its row active. */
export function FormulaLine(props: { page: Page; text: string }): JSX.Element {
  const pieces = createMemo(() => {
    let start = 0;
    return highlight(props.text).map((piece) => {
      const at = start;
      start += piece.text.length;
      return { ...piece, start: at };
    });
  });
  let code: HTMLElement | undefined;
  const span = createMemo(() => {
    const node = props.page.look((explorer) => explorer.here?.tree?.active.node);
    return node ? `${String(node.start)}:${String(node.end)}` : '';
  });
  // A formula may have thousands of pieces: only those that change are touched.
  let marked: Element[] = [];
  const mark = (text: string): void => {
    if (!code) return;
    const [start = 0, end = 0] = text.split(':').map(Number);
    for (const old of marked) old.classList.remove('current');
    marked = [];
    if (end - start >= props.text.trimEnd().length - 1) return;
    const whole = pieces();
    for (let i = pieceAt(whole, start); i < whole.length; i++) {
      const piece = whole[i];
      const element = code.children[i];
      if (!piece || !element || piece.start + piece.text.length > end) break;
      element.classList.add('current');
      marked.push(element);
    }
    bringIntoView();
  };
  const showMarked = (): void => {
    const first = marked[0] as HTMLElement | undefined;
    // Nothing but the formula itself may scroll.
    if (code && first) code.scrollTop = Math.max(0, first.offsetTop - 24);
  };
  // Where a piece stands in a formula of thousands is slow to tell: only once the row rests.
  let resting: number | undefined;
  const bringIntoView = (): void => {
    clearTimeout(resting);
    resting = setTimeout(showMarked, restingTime);
  };
  // In another width the formula's lines break elsewhere; they were just laid out, and what is
  // shown in the new width is shown rightly from the first frame.
  onMount(() => {
    const observer = new ResizeObserver(showMarked);
    if (code) observer.observe(code);
    onCleanup(() => {
      observer.disconnect();
      clearTimeout(resting);
    });
  });
  createEffect(on([span, pieces], ([text]) => mark(text)));
  const choose = (event: MouseEvent): void => {
    const at = (event.target as HTMLElement).dataset.start;
    const tree = props.page.explorer.here?.tree;
    if (at !== undefined && tree) props.page.explorer.activate(tree.itemAt(Number(at)));
  };
  return (
    <section class="formulaBlock" aria-label="Formula">
      {/* A long formula scrolls within its frame, also by keyboard; clicking is a short cut for
          what the tree's keys do. */}
      <code
        class="formula"
        dir="ltr"
        tabindex="0"
        data-testid="formula"
        aria-label="Formula text"
        ref={(element) => (code = element)}
        onClick={choose}
      >
        <Index each={pieces()}>
          {(piece) => (
            <span
              class={
                piece().class !== 'plain' && piece().text.length <= unbrokenLength
                  ? `is-${piece().class} unbroken`
                  : `is-${piece().class}`
              }
              data-start={piece().start}
            >
              {visibleText(piece().text)}
              <Show when={piece().class === 'plain'}>
                <wbr />
              </Show>
            </span>
          )}
        </Index>
      </code>
      <button
        type="button"
        class="iconButton"
        data-testid="copy-formula"
        aria-label="Copy formula"
        title="Copy formula"
        onClick={() => props.page.copy(props.text, 'Formula')}
      >
        <CopyIcon />
      </button>
    </section>
  );
}
