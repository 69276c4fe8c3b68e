import { Show, type JSX } from 'solid-js';

import type { Stop } from '../core/explorer/Trail';
import { addressOf } from '../core/evaluation/expression';
import { oneLine } from '../core/format/visible';
import { DetailPane } from './DetailPane';
import { FormulaLine } from './FormulaLine';
import { WarningIcon } from './icons';
import type { Page } from './page';
import { TreeView } from './TreeView';

/** The formula, what is wrong with it, its tree, and the details of the active row. */
export function FormulaPane(props: { page: Page; stop: Stop; details: boolean }): JSX.Element {
  const problem = () => props.stop.formula?.problems[0];
  return (
    <>
      <FormulaLine page={props.page} text={props.stop.text} />
      <Show when={problem()}>
        {(one) => (
          <p class="problem" data-testid="problem">
            <WarningIcon />
            {oneLine(`This formula cannot be read whole. ${one().message}`)}
          </p>
        )}
      </Show>
      <FailureLine page={props.page} />
      <div class="split" classList={{ withDetail: props.details }}>
        <TreeView page={props.page} stop={props.stop} />
        <Show when={props.details}>
          <DetailPane page={props.page} stop={props.stop} />
        </Show>
      </div>
    </>
  );
}

/** Where an error comes from, one key away. */
function FailureLine(props: { page: Page }): JSX.Element {
  const failure = () =>
    props.page.look(({ evaluator }) => {
      const found = evaluator.failure;
      // Named only once nothing under it can still turn out to be the cause.
      return found && found.open.length === 0 && found.item.parent ? found : undefined;
    });
  const text = () => {
    const found = failure();
    const stop = props.page.explorer.here;
    if (!found || !stop) return '';
    const { route } = props.page.explorer.evaluator.routeOf(found.item);
    const { start, end } = found.item.node;
    const part = oneLine(stop.text.slice(start, Math.min(end, start + 80)));
    if (!found.at || route.by !== 'cells') return `${found.error} begins at ${part}`;
    const cell = addressOf(route.area.top + found.at.row, route.area.left + found.at.col);
    return `${found.error} begins in ${cell} of ${part}`;
  };
  return (
    <Show when={failure()}>
      {(found) => (
        <p class="problem" data-testid="failure">
          <WarningIcon />
          <span class="failureText">{text()}</span>
          <button
            type="button"
            class="textButton"
            data-testid="failure-go"
            onClick={() => props.page.explorer.activate(found().item)}
          >
            Show
          </button>
        </p>
      )}
    </Show>
  );
}
