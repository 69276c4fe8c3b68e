import { createMemo, createSignal, For, Show, type JSX } from 'solid-js';

import type { Result } from '../core/evaluation/Result';
import { formatNumber } from '../core/format/number';
import { factsOf } from '../core/format/rangeFacts';
import { resultView } from '../core/format/resultView';
import { isErrorText } from '../core/evaluation/Result';
import type { Scalar } from '../core/protocol/json';
import type { ShownGrid } from '../core/protocol/verbs';
import { saysSomething } from '../core/evaluation/ShownTexts';
import { grouped } from '../core/format/words';
import { ValueText } from './ValueText';

const cellHeight = 24;
const cellWidth = 96;
const around = 3;

type Cells = Result & { kind: 'array' };

/** The values of a range: what they come to, and each of them, as many as are in sight. */
export function RangeView(props: {
  cells: Cells;
  /** What they show on their sheet, where that is known. */
  texts: ShownGrid | undefined;
  onWant(): void;
}): JSX.Element {
  const facts = createMemo(() => props.cells.values && factsOf(props.cells.values));
  return (
    <Show
      when={facts()}
      fallback={
        <Show
          when={props.cells.rows * props.cells.cols <= 20_000}
          fallback={<p class="note">Too many cells to be read: at most 20,000 at once.</p>}
        >
          <button
            type="button"
            class="button"
            data-testid="read-range"
            onClick={() => props.onWant()}
          >
            Read its cells
          </button>
        </Show>
      }
    >
      {(known) => (
        <>
          <dl class="facts" data-testid="facts">
            <Fact name="Count" value={grouped(String(known().numbers))} />
            <Fact name="Sum" value={numberText(known().sum)} />
            <Fact name="Minimum" value={numberText(known().least)} />
            <Fact name="Maximum" value={numberText(known().most)} />
            <Fact name="Errors" value={grouped(String(known().errors))} />
            <Fact name="Blank" value={grouped(String(known().blanks))} />
          </dl>
          <ValueGrid cells={props.cells} texts={props.texts} />
        </>
      )}
    </Show>
  );
}

function numberText(value: number | undefined): string {
  return value === undefined ? '–' : formatNumber(value).text;
}

function Fact(props: { name: string; value: string }): JSX.Element {
  return (
    <div>
      <dt class="label">{props.name}</dt>
      <dd>{props.value}</dd>
    </div>
  );
}

const viewOf = (value: Scalar, text: string | undefined) =>
  isErrorText(value)
    ? resultView({ kind: 'error', text: value }, { isCell: true })
    : resultView(
        { kind: 'value', value },
        { isCell: true, shown: saysSomething(text) ? { text } : undefined },
      );

function ValueGrid(props: { cells: Cells; texts: ShownGrid | undefined }): JSX.Element {
  const [place, setPlace] = createSignal({ top: 0, left: 0, height: 240, width: 320 });
  const bounds = (at: number, extent: number, size: number, total: number) => {
    const first = Math.max(0, Math.floor(at / size) - around);
    const last = Math.min(total, Math.ceil((at + extent) / size) + around);
    return Array.from({ length: Math.max(0, last - first) }, (_, i) => first + i);
  };
  const rows = () => bounds(place().top, place().height, cellHeight, props.cells.rows);
  const cols = () => bounds(place().left, place().width, cellWidth, props.cells.cols);
  return (
    <div
      class="grid"
      tabindex="0"
      role="region"
      aria-label="Values of the range"
      data-testid="grid"
      onScroll={(event) => {
        const { scrollTop, scrollLeft, clientHeight, clientWidth } = event.currentTarget;
        setPlace({ top: scrollTop, left: scrollLeft, height: clientHeight, width: clientWidth });
      }}
    >
      <div
        class="gridBody"
        style={{
          height: `${String(props.cells.rows * cellHeight)}px`,
          width: `${String(props.cells.cols * cellWidth)}px`,
        }}
      >
        <For each={rows()}>
          {(row) => (
            <For each={cols()}>
              {(col) => {
                const view = () =>
                  viewOf(props.cells.values?.[row]?.[col] ?? null, props.texts?.[row]?.[col]);
                return (
                  <span
                    class={`gridCell is-${view().type.toLowerCase()}`}
                    title={view().note || undefined}
                    style={{
                      transform: `translate(${String(col * cellWidth)}px, ${String(row * cellHeight)}px)`,
                    }}
                  >
                    <Show when={view().type !== 'Blank'}>
                      <ValueText view={view()} />
                    </Show>
                  </span>
                );
              }}
            </For>
          )}
        </For>
      </div>
    </div>
  );
}
