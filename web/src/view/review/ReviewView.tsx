// What is odd in the workbook: filters, the list by rank, and the active finding in whole. What tests
// of the panel read stands under "finding", "finding-sentence", "formula-own", "formula-expected".

import { createMemo, Show, type JSX } from 'solid-js';

import { oneLine, visibleText } from '../../core/format/visible';
import type { Slot } from '../RowTree';
import type { ReportFormat } from '../../core/report/ofReview';
import { stateName } from '../../core/review/kinds';
import type { ShownRow } from '../../core/workbook/PlaceView';
import { WarningIcon } from '../icons';
import type { Page } from '../page';
import { RowTree } from '../RowTree';
import { ScanBar } from '../ScanBar';
import { Twisty } from '../Twisty';
import { FindingPane } from './FindingPane';
import { ReviewFilters } from './ReviewFilters';
import './review.css';

export function ReviewView(props: { page: Page }): JSX.Element {
  const review = () => props.page.explorer.review;
  const look = <T,>(read: () => T): T => props.page.look(read);
  const status = () => look(() => review().status);
  const items = createMemo(() => look(() => review().list.rows));
  const active = createMemo(() => look(() => review().list.activeIndex));
  const finding = createMemo(() => look(() => review().active));
  const absent = () =>
    look(() => {
      switch (review().status) {
        case 'away':
          return `Findings can be told while “${review().book}” is in front.`;
        case 'reading':
          return readingText(review().scan?.state.status);
        case 'looking':
          return 'Looking for what is odd…';
        case 'failed':
          return `Findings cannot be told: ${review().reason}`;
        case 'known':
          if (review().list.rows.length > 0) return '';
          if (!review().hasFormulas)
            return 'This workbook has no formulas. Its map (3) shows what it holds.';
          return review().hasFindings
            ? 'No finding is of that kind, on that sheet and in that state. Choose others above.'
            : 'Nothing odd was found in this workbook. Its map (3) shows which formulas go together.';
      }
    });
  return (
    <section class="places review" aria-label="Review">
      <div class="reviewHead">
        <h2 class="listHead" data-testid="list-heading">
          {look(() => review().heading)}
        </h2>
        <Show when={status() === 'known'}>
          <ReportChoice page={props.page} />
        </Show>
      </div>
      <div class="reviewBar">
        <Show when={look(() => review().progress)}>
          {(text) => (
            <p class="note" data-testid="review-progress">
              {text()}
            </p>
          )}
        </Show>
        <ScanBar page={props.page} scan={look(() => review().scan)} />
      </div>
      <Show when={look(() => review().hasFindings)}>
        <ReviewFilters page={props.page} />
      </Show>
      <Show when={absent()}>
        {(text) => (
          <p
            class="absent"
            classList={{ waiting: status() === 'looking' }}
            data-testid="review-absent"
          >
            {oneLine(text())}
          </p>
        )}
      </Show>
      <Show when={status() === 'failed'}>
        <p class="padded">
          <button
            type="button"
            class="button"
            data-testid="review-again"
            onClick={() => {
              review().again();
            }}
          >
            Read again
          </button>
        </p>
      </Show>
      <div class="reviewSplit" classList={{ withFinding: finding() !== undefined }}>
        <RowTree
          items={items()}
          activeIndex={active()}
          of={review().list}
          label="Findings"
          testid="list"
          activeId={items().length > 0 ? `finding-${String(active())}` : undefined}
        >
          {(slot) => (
            <FindingItem page={props.page} slot={slot()} active={active() === slot().index} />
          )}
        </RowTree>
        <Show when={finding()}>{(one) => <FindingPane page={props.page} finding={one()} />}</Show>
      </div>
      <p class="note padded" data-testid="list-note">
        {visibleText(look(() => review().coverage))}
      </p>
    </section>
  );
}

/** In which form the report is saved; each choice asks where to. */
function ReportChoice(props: { page: Page }): JSX.Element {
  return (
    <select
      class="filter report"
      aria-label="Save a report"
      data-testid="save-report"
      onChange={(event) => {
        const format = event.currentTarget.value;
        event.currentTarget.value = '';
        if (format !== '') props.page.saveReport(format as ReportFormat);
      }}
    >
      <option value="">Save report…</option>
      <option value="html">as a page (HTML)</option>
      <option value="csv">as a table (CSV)</option>
      <option value="json">as JSON</option>
      <option value="sarif">for code scanners (SARIF)</option>
    </select>
  );
}

function readingText(status: string | undefined): string {
  return status === 'starting' || status === 'reading'
    ? 'Reading the workbook…'
    : 'Findings are told once the whole workbook was read.';
}

type FindingItemProps = { page: Page; slot: Slot<ShownRow>; active: boolean };

function FindingItem(props: FindingItemProps): JSX.Element {
  const review = () => props.page.explorer.review;
  const row = () => props.slot.item.row;
  const level = () => props.slot.item.level;
  const said = createMemo(() => props.page.look(() => review().stateOf(row())));
  const isOpen = createMemo(() => props.page.look(() => review().list.isOpen(row())));
  return (
    <div
      role="treeitem"
      id={`finding-${String(props.slot.index)}`}
      class="row"
      classList={{ active: props.active }}
      data-testid="finding"
      aria-level={level()}
      aria-expanded={row().inner ? isOpen() : undefined}
      aria-selected={props.active}
      style={{
        transform: `translateY(${String(props.slot.top)}px)`,
        'padding-left': `${String(16 + (level() - 1) * 14)}px`,
      }}
      onClick={() => props.page.explorer.choose(props.slot.index)}
      onDblClick={() => {
        props.page.explorer.goThere();
      }}
    >
      <Twisty
        open={isOpen()}
        none={!row().inner}
        onToggle={() => props.page.explorer.toggleRow(props.slot.index)}
      />
      <span class="rowText">
        <bdi class="code lead" textContent={oneLine(row().text)} />{' '}
        <bdi
          class="findingText"
          title={oneLine(row().detail)}
          textContent={oneLine(row().detail)}
        />
      </span>
      <Show when={said()}>
        {(state) => (
          <span class={`state is-${state()}`} data-testid="finding-state">
            {stateName(state())}
          </span>
        )}
      </Show>
      <Show when={row().tag}>
        <span class="tag">
          <WarningIcon />
          {row().tag}
        </span>
      </Show>
    </div>
  );
}
