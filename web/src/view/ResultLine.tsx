import { Show, type JSX } from 'solid-js';

import type { Evaluator } from '../core/evaluation/Evaluator';
import { resultView } from '../core/format/resultView';
import type { Stop } from '../core/explorer/Trail';
import { CopyIcon, CopyTextIcon } from './icons';
import type { Page } from './page';
import { ValueText } from './ValueText';

/** What the formula gives now where that is not what its cell holds; empty where it is. */
export function doubtOf(evaluator: Evaluator, stop: Stop | undefined): string {
  const { verification } = evaluator;
  if (verification.state !== 'differs') return '';
  const root = stop?.tree?.outline.root;
  const shown = root && evaluator.formatOf(root);
  const given = resultView(verification.now, { isCell: false, shown });
  return `Gives ${given.text} now; it may wait for a calculation.`;
}

/** What the cell holds, and whether the formula gives the same now. */
export function ResultLine(props: { page: Page; stop: Stop }): JSX.Element {
  const root = () => props.stop.tree?.outline.root;
  const view = () =>
    props.page.look(({ evaluator }) => {
      const item = root();
      const shown = item ? evaluator.shownAs(item) : evaluator.constantShownAs;
      return resultView(props.stop.result, { isCell: !item, shown });
    });
  // Until it is told how its cell shows it, a number stands there with all its digits and is marked.
  const isRead = () =>
    view().type !== 'Number' || !props.page.look(({ evaluator }) => evaluator.isTextOpen);
  // Its room is kept where there is nothing of that, so that nothing moves.
  const isRounded = () => view().type === 'Number' && view().text !== view().copy;
  const verification = () => props.page.look((explorer) => explorer.evaluator.verification);
  const verdict = () => {
    const { state } = verification();
    return { open: '', same: 'Verified', differs: 'Differs from the cell', skipped: '' }[state];
  };
  const more = () => {
    const now = verification();
    if (now.state === 'skipped') return now.reason;
    return props.page.look(({ evaluator }) => doubtOf(evaluator, props.stop));
  };
  return (
    <section class="result" aria-label="Result">
      <span class="label">Result</span>
      <span
        class={`value is-${view().type.toLowerCase()}`}
        classList={{ reading: !isRead() }}
        aria-busy={!isRead()}
        data-testid="value"
        data-type={view().type}
        data-exact={view().type === 'Number' ? view().copy : undefined}
        title={view().type === 'Number' ? view().note || view().copy : view().copy.slice(0, 1_000)}
      >
        <ValueText view={view()} />
      </span>
      <button
        type="button"
        class="iconButton"
        classList={{ absentButton: !isRounded() }}
        data-testid="copy-shown"
        aria-label="Copy as shown"
        title="Copy as shown"
        onClick={() => props.page.copy(view().text, 'Text')}
      >
        <CopyTextIcon />
      </button>
      <span class="verdicts">
        <span class="note" data-testid="type">
          {view().type}
        </span>
        <Show when={root()}>
          <span
            class="verdict"
            classList={{ differs: verification().state === 'differs' }}
            data-testid="verification"
            data-state={verification().state}
            title={more()}
          >
            {verdict()}
          </span>
        </Show>
      </span>
      <button
        type="button"
        class="iconButton"
        data-testid="copy-value"
        aria-label="Copy value"
        title="Copy value"
        onClick={() => props.page.copy(view().copy, 'Value')}
      >
        <CopyIcon />
      </button>
    </section>
  );
}
