import { For, Show, type JSX } from 'solid-js';

import type { Stop } from '../core/explorer/Trail';
import { oneLine } from '../core/format/visible';
import type { SelectionStatus } from '../core/selection/state';
import type { Page } from './page';

export type StatusBarProps = {
  page: Page;
  status: SelectionStatus;
  /** The cell that is shown, if one is. */
  here: Stop | undefined;
  /** The sentence of the moment; empty for none. */
  said: string;
  /** True if the keys are shown. */
  help: boolean;
  /** Nothing where the view in front has none. */
  onHelp: (() => void) | undefined;
};

/** The foot: where one is in the tree, what was said last, and what of ours is in the workbook. */
export function StatusBar(props: StatusBarProps): JSX.Element {
  const step = () =>
    props.page.look(({ view }) => {
      const tree = view === 'tree' ? props.here?.tree : undefined;
      if (!tree) return '';
      return `Step ${String(tree.activeIndex + 1)} of ${String(tree.rows.length)}`;
    });
  const follow = () => props.page.look(() => props.page.follower.current);
  const marked = () => follow().marked !== '' || follow().changed;
  const left = () => {
    const { marked, unhidden } = follow();
    const all = [marked && `Highlighted ${marked}`, unhidden && `${unhidden} shown`];
    return all.filter(Boolean).join(' · ') || 'Marks may be left on the sheet';
  };
  return (
    <footer class="foot">
      <For each={follow().notes}>
        {(note) => (
          <p class="footNote" data-testid="sheet-note">
            {oneLine(note)}
          </p>
        )}
      </For>
      <div class="footLine">
        <span class="footStep" data-testid="step">
          {step()}
        </span>
        <p class="status" role="status" data-testid="state" data-state={props.status}>
          {props.said}
        </p>
        <Show when={props.page.activity()?.stop}>
          {(stop) => (
            <button type="button" class="textButton" data-testid="stop" onClick={() => stop()()}>
              Stop
            </button>
          )}
        </Show>
        <Show when={marked()}>
          <span class="footMarked" data-testid="marked" title={oneLine(left())}>
            {oneLine(left())}
          </span>
          <button
            type="button"
            class="textButton"
            data-testid="clear"
            title="Esc"
            onClick={() => {
              props.page.follower.clear();
            }}
          >
            Clear
          </button>
        </Show>
        <Show when={props.onHelp}>
          {(show) => (
            <button
              type="button"
              class="iconButton footHelp"
              data-testid="help-button"
              aria-pressed={props.help}
              aria-label="Keys"
              title="Keys (?)"
              onClick={() => show()()}
            >
              ?
            </button>
          )}
        </Show>
      </div>
    </footer>
  );
}
