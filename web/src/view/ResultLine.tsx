import { Show, type JSX } from 'solid-js';

import { resultView } from '../core/format/resultView';
import type { Stop } from '../core/explorer/Trail';
import { CopyIcon } from './icons';
import type { Page } from './page';
import { ValueText } from './ValueText';

/** What the cell holds, and whether the formula gives the same now. */
export function ResultLine(props: { page: Page; stop: Stop }): JSX.Element {
  const root = () => props.stop.tree?.outline.root;
  const view = () =>
    props.page.look((explorer) => {
      const item = root();
      const format = item && explorer.evaluator.formatOf(item);
      return resultView(props.stop.result, { isCell: !item, format });
    });
  const verification = () => props.page.look((explorer) => explorer.evaluator.verification);
  const verdict = () => {
    const { state } = verification();
    return { open: '', same: 'Verified', differs: 'Differs from the cell', skipped: '' }[state];
  };
  const more = () => {
    const now = verification();
    if (now.state === 'skipped') return now.reason;
    if (now.state !== 'differs') return '';
    const given = resultView(now.now, { isCell: false });
    return `The formula gives ${given.text} now; the cell may wait for a calculation.`;
  };
  return (
    <section class="result" aria-label="Result">
      <span class="label">Result</span>
      <span
        class={`value is-${view().type.toLowerCase()}`}
        data-testid="value"
        data-type={view().type}
        data-exact={view().type === 'Number' ? view().copy : undefined}
        title={view().copy.slice(0, 1_000)}
      >
        <ValueText view={view()} />
      </span>
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
