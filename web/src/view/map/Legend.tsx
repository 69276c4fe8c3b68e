import { For, Show, type JSX } from 'solid-js';

import { Code } from '../../core/map/codes';
import { formulaColours, palettes, type Theme } from '../../core/map/palette';
import { hiddenText } from '../../core/map/words';
import type { Page } from '../page';

/** What the picture's colours and shapes mean; of those that may be missing only what there is. */
export function Legend(props: { page: Page; theme: Theme }): JSX.Element {
  const palette = () => palettes[props.theme];
  const colour = (code: Code) => palette().cells[code] ?? '';
  const look = <T,>(read: () => T): T => props.page.look(read);
  const atlas = () => props.page.explorer.atlas;
  const facts = () => look(() => atlas().told?.sheets.find(({ name }) => name === atlas().sheet));
  const hasBreaks = () => look(() => atlas().breaksOf(atlas().sheet).length > 0);
  const hasTies = () => look(() => atlas().here !== undefined && atlas().hasRead(atlas().sheet));
  const hasFolds = () =>
    look(() => {
      const frame = atlas().frameOf(atlas().sheet);
      return [...(frame?.rows.stretches ?? []), ...(frame?.cols.stretches ?? [])].some(
        ({ first, last, places }) => places < last - first + 1,
      );
    });
  const hasHidden = () => look(() => hiddenText(atlas().hiddenOf(atlas().sheet)) !== '');
  const hasUnread = () =>
    look(() => atlas().scan?.state.notRead.some(({ sheet }) => sheet === atlas().sheet) === true);
  return (
    <ul class="legend" aria-label="Legend" data-testid="legend">
      <Entry text="Text" colours={[colour(Code.Text)]} sign="text" theme={props.theme} />
      <Entry text="Input" colours={[colour(Code.Input)]} sign="input" theme={props.theme} />
      <Entry
        text="Formula, by kind"
        colours={formulaColours(palette())}
        sign=""
        theme={props.theme}
      />
      <Show when={(facts()?.errors ?? 1) > 0}>
        <Entry text="Error" colours={[colour(Code.Error)]} sign="error" theme={props.theme} />
      </Show>
      <Show when={hasBreaks()}>
        <Entry text="Finding" colours={[]} sign="finding" theme={props.theme} />
      </Show>
      <Show when={hasTies()}>
        <Entry text="Selected" colours={[]} sign="here" theme={props.theme} />
        <Entry text="It uses" colours={[]} sign="uses" theme={props.theme} />
        <Entry text="Uses it" colours={[]} sign="used" theme={props.theme} />
      </Show>
      <Show when={hasFolds()}>
        <Entry text="Blank, folded" colours={[]} sign="fold" theme={props.theme} />
      </Show>
      <Show when={hasHidden()}>
        <Entry text="Hidden" colours={[]} sign="hidden" theme={props.theme} />
      </Show>
      <Show when={hasUnread()}>
        <Entry text="Not read" colours={[]} sign="unread" theme={props.theme} />
      </Show>
    </ul>
  );
}

type Sign =
  | ''
  | 'text'
  | 'input'
  | 'error'
  | 'finding'
  | 'here'
  | 'uses'
  | 'used'
  | 'fold'
  | 'hidden'
  | 'unread';

type EntryProps = { text: string; colours: readonly string[]; sign: Sign; theme: Theme };

function Entry(props: EntryProps): JSX.Element {
  const palette = () => palettes[props.theme];
  return (
    <li class="legendEntry">
      <svg
        class="legendSign"
        viewBox={`0 0 ${String(Math.max(14, props.colours.length * 6))} 14`}
        classList={{ wideSign: props.colours.length > 1 }}
        aria-hidden="true"
      >
        <For each={props.colours}>
          {(colour, i) => (
            <rect
              x={props.colours.length > 1 ? i() * 6 : 1}
              y="1"
              width={props.colours.length > 1 ? 6 : 12}
              height="12"
              fill={colour}
            />
          )}
        </For>
        <Show when={props.sign === 'text'}>
          <path d="M3.5 7.5h7" stroke={palette().quiet} />
        </Show>
        <Show when={props.sign === 'input'}>
          <rect x="5.5" y="5.5" width="3" height="3" fill={palette().halo} />
        </Show>
        <Show when={props.sign === 'error'}>
          <path d="m4 4 6 6m0-6-6 6" stroke={palette().halo} stroke-width="1.5" />
        </Show>
        <Show when={props.sign === 'finding'}>
          <Square from={1.5} side={11} fill={palette().blank} edge={palette().line} />
          <path d="M13 1v8L5 1Z" fill={palette().finding} />
        </Show>
        <Show when={props.sign === 'here'}>
          <Frame colour={palette().here} width={3} />
        </Show>
        <Show when={props.sign === 'uses'}>
          <Frame colour={palette().uses} width={2} />
        </Show>
        <Show when={props.sign === 'used'}>
          <Frame colour={palette().used} width={2} dashes="4 2" />
        </Show>
        <Show when={props.sign === 'fold'}>
          <path d="M0 7h14" stroke={palette().quiet} stroke-dasharray="3 2" />
        </Show>
        <Show when={props.sign === 'hidden'}>
          <Square from={1} side={12} fill={palette().around} edge={palette().line} />
          <rect x="1" y="1" width="3" height="12" fill={palette().quiet} />
        </Show>
        <Show when={props.sign === 'unread'}>
          <path d="M1 13 13 1M1 7l6-6M7 13l6-6" stroke={palette().quiet} />
        </Show>
      </svg>
      {props.text}
    </li>
  );
}

function Square(props: { from: number; side: number; fill: string; edge: string }): JSX.Element {
  return (
    <rect
      x={props.from}
      y={props.from}
      width={props.side}
      height={props.side}
      fill={props.fill}
      stroke={props.edge}
    />
  );
}

/** A cell's edge, as the picture draws it around selected cells and those that go with them. */
function Frame(props: { colour: string; width: number; dashes?: string }): JSX.Element {
  return (
    <rect
      x="2"
      y="2"
      width="10"
      height="10"
      fill="none"
      stroke={props.colour}
      stroke-width={props.width}
      stroke-dasharray={props.dashes}
    />
  );
}
