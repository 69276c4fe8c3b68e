import { createEffect, createSignal, For, on, Show, type JSX } from 'solid-js';

import { extentOf } from '../core/address/extent';
import { visibleText } from '../core/format/visible';
import { valueView, type ValueView } from '../core/format/value';
import { highlight, type Piece } from '../core/formula/highlight';
import type { CellContent } from '../core/selection/state';
import { CopyIcon, WarningIcon } from './icons';

export type CellViewProps = {
  cell: CellContent;
  onCopy(text: string, what: string): void;
};

/** The selected cell: formula, value, and what else is selected around it. */
export function CellView(props: CellViewProps): JSX.Element {
  return (
    <div class="cell">
      <div class="main">
        <FormulaBlock cell={props.cell} onCopy={props.onCopy} />
        <ValueBlock cell={props.cell} onCopy={props.onCopy} />
      </div>
      <dl class="extents">
        <Extent name="Selection" address={props.cell.selection} testid="selection" />
        <Extent name="Region" address={props.cell.region} testid="region" />
      </dl>
    </div>
  );
}

function Block(props: {
  title: string;
  copy: string | undefined;
  onCopy(text: string, what: string): void;
  children: JSX.Element;
}): JSX.Element {
  return (
    <section class="block" aria-label={props.title}>
      <div class="blockHead">
        <h2 class="label">{props.title}</h2>
        <button
          type="button"
          class="iconButton"
          aria-label={`Copy ${props.title.toLowerCase()}`}
          title={`Copy ${props.title.toLowerCase()}`}
          data-testid={`copy-${props.title.toLowerCase()}`}
          disabled={props.copy === undefined}
          onClick={() => {
            if (props.copy !== undefined) props.onCopy(props.copy, props.title);
          }}
        >
          <CopyIcon />
        </button>
      </div>
      {props.children}
    </section>
  );
}

function FormulaBlock(props: CellViewProps): JSX.Element {
  const isBlank = () => valueView(props.cell).type === 'Blank';
  return (
    <Block title="Formula" copy={props.cell.formula || undefined} onCopy={props.onCopy}>
      <Show
        when={props.cell.formula}
        fallback={
          <p class="absent" data-testid="no-formula">
            {isBlank() ? 'This cell is empty.' : 'A constant: typed in, not calculated.'}
          </p>
        }
      >
        {(formula) => (
          // A long formula scrolls within its frame, also by keyboard.
          <code
            class="formula"
            dir="ltr"
            tabindex="0"
            data-testid="formula"
            aria-label="Formula text"
          >
            <For each={highlight(formula())}>{(piece) => <FormulaPiece piece={piece} />}</For>
          </code>
        )}
      </Show>
    </Block>
  );
}

/** Pieces up to this length stay on one line; it fits into the narrowest panel. */
const unbrokenLength = 30;

function FormulaPiece(props: { piece: Piece }): JSX.Element {
  return (
    <>
      <span
        class={`is-${props.piece.class}`}
        classList={{
          unbroken: props.piece.class !== 'plain' && props.piece.text.length <= unbrokenLength,
        }}
      >
        {visibleText(props.piece.text)}
      </span>
      <Show when={props.piece.class === 'plain'}>
        <wbr />
      </Show>
    </>
  );
}

function ValueBlock(props: CellViewProps): JSX.Element {
  const [whole, setWhole] = createSignal(false);
  // A text is opened for the cell it stands in; the next cell begins closed again.
  createEffect(
    on(
      () => [props.cell.book, props.cell.sheet, props.cell.addr].join('\n'),
      () => setWhole(false),
      { defer: true },
    ),
  );
  const value = () => valueView(props.cell, whole());
  const canOpen = () => value().cut && !whole();
  return (
    <Block
      title="Value"
      copy={value().type === 'Blank' ? undefined : value().copy}
      onCopy={props.onCopy}
    >
      <div
        class={`value is-${value().type.toLowerCase()}`}
        classList={{ long: value().text.length > 24 }}
        tabindex={value().cut || whole() ? 0 : undefined}
        data-testid="value"
        data-type={value().type}
        data-exact={value().type === 'Number' ? value().copy : undefined}
        title={value().type === 'Number' ? value().copy : undefined}
      >
        <ValueText value={value()} />
      </div>
      <p class="note">
        <span data-testid="type">{value().type}</span>
        <Show when={value().note}>
          <span class="dot" aria-hidden="true">
            ·
          </span>
          <span data-testid="note">{value().note}</span>
        </Show>
        <Show when={canOpen()}>
          <button
            type="button"
            class="textButton"
            data-testid="show-all"
            onClick={() => setWhole(true)}
          >
            Show all
          </button>
        </Show>
      </p>
    </Block>
  );
}

function ValueText(props: { value: ValueView }): JSX.Element {
  return (
    <Show
      when={props.value.type === 'Error'}
      fallback={<bdi>{props.value.type === 'Blank' ? 'Empty' : props.value.text}</bdi>}
    >
      <span class="chip">
        <WarningIcon />
        <bdi>{props.value.text}</bdi>
      </span>
    </Show>
  );
}

function Extent(props: { name: string; address: string | undefined; testid: string }): JSX.Element {
  const extent = () => extentOf(props.address ?? '');
  return (
    <div class="extent">
      <dt class="label">{props.name}</dt>
      <dd>
        <span class="extentAddress" data-testid={props.testid}>
          {extent().address || '–'}
        </span>
        <span class="note">{extent().size}</span>
      </dd>
    </div>
  );
}
