import { createMemo, For, Show, type JSX } from 'solid-js';

import { oneLine, visibleText } from '../../core/format/visible';
import { count } from '../../core/format/words';
import type { FindingRow } from '../../core/model/messages';
import { compareFormulas, type ComparedPart } from '../../core/review/compareFormulas';
import { confidenceName, kindName } from '../../core/review/kinds';
import { placeOfCells, valueText } from '../../core/workbook/rows';
import type { Page } from '../page';
import { Verdict } from './Verdict';

/** All of a finding: its sentence, and its formula beside the expected one. */
export function FindingPane(props: { page: Page; finding: FindingRow }): JSX.Element {
  const compared = createMemo(() => {
    const { formula, expected } = props.finding;
    if (expected === '') return undefined;
    return formula === '' ? undefined : compareFormulas(formula, expected);
  });
  const plain = (text: string): ComparedPart[] => [{ text, class: 'plain', differs: false }];
  const own = () => {
    const { formula, value } = props.finding;
    if (formula !== '') return compared()?.own ?? plain(formula);
    const text = valueText(value);
    return plain(text === '' ? 'nothing' : `${text}, typed in`);
  };
  const expected = () => compared()?.expected ?? plain(props.finding.expected);
  const first = () => {
    const [cells] = props.finding.cells;
    return cells ? placeOfCells(cells).first : '';
  };
  const facts = () => {
    const { kind, confidence, size, reach } = props.finding;
    const rests = reach === 1 ? '1 cell rests on it' : `${count(reach, 'cell')} rest on it`;
    return [
      kindName(kind),
      confidenceName(confidence),
      count(size, 'cell'),
      reach > 0 ? rests : '',
    ].filter(Boolean);
  };
  return (
    <aside class="detail finding" aria-label="Finding" data-testid="finding-pane">
      <p class="sentence" data-testid="finding-sentence">
        <Show when={props.finding.label}>
          <bdi class="quiet">{`${oneLine(props.finding.label)}: `}</bdi>
        </Show>
        {visibleText(props.finding.sentence)}
      </p>
      <p class="note" data-testid="finding-facts">
        {facts().join(' · ')}
      </p>
      <Show when={props.finding.formula || props.finding.expected}>
        <div class="pair">
          <FormulaBox
            heading={`${first()} has`}
            parts={own()}
            testid="formula-own"
            differs="differs from the expected formula"
          />
          <Show when={props.finding.expected}>
            <FormulaBox
              heading="Expected"
              parts={expected()}
              testid="formula-expected"
              differs="differs from the cell's formula"
            />
          </Show>
        </div>
      </Show>
      <Verdict page={props.page} finding={props.finding} />
      <div class="actions">
        <button
          type="button"
          class="button"
          data-testid="go-there"
          title="Enter"
          onClick={() => {
            props.page.explorer.goThere();
          }}
        >
          Go there
        </button>
        <button
          type="button"
          class="button"
          data-testid="open-formula"
          onClick={() => {
            const [cells] = props.finding.cells;
            if (cells) void props.page.explorer.visitPlace(placeOfCells(cells));
          }}
        >
          Open its formula
        </button>
        <Show when={props.finding.expected}>
          <button
            type="button"
            class="button"
            data-testid="copy-expected"
            onClick={() => {
              props.page.copy(props.finding.expected, 'Expected formula');
            }}
          >
            Copy expected
          </button>
        </Show>
      </div>
    </aside>
  );
}

type FormulaBoxProps = {
  heading: string;
  parts: readonly ComparedPart[];
  testid: string;
  /** What is said of a marked part to those who do not see that it is. */
  differs: string;
};

function FormulaBox(props: FormulaBoxProps): JSX.Element {
  return (
    <div class="pairHalf">
      <h3 class="label">{props.heading}</h3>
      <code
        class="pairText"
        dir="ltr"
        tabindex="0"
        role="group"
        aria-label={props.heading}
        data-testid={props.testid}
      >
        <For each={props.parts}>
          {(part) =>
            part.differs ? (
              <mark class={`is-${part.class}`} title={props.differs}>
                {visibleText(part.text)}
              </mark>
            ) : (
              <span class={`is-${part.class}`}>{visibleText(part.text)}</span>
            )
          }
        </For>
      </code>
    </div>
  );
}
