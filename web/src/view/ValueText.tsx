import { Show, type JSX } from 'solid-js';

import { oneLine } from '../core/format/visible';
import type { ValueView } from '../core/format/value';
import { GridIcon, WarningIcon } from './icons';

/** A value on one line; errors and arrays carry a sign, so that colour says nothing alone. */
export function ValueText(props: { view: ValueView }): JSX.Element {
  return (
    <>
      <Show when={props.view.type === 'Error'}>
        <WarningIcon />
      </Show>
      <Show when={props.view.type === 'Array'}>
        <GridIcon />
      </Show>
      <bdi class="valueText">
        {props.view.type === 'Blank' ? 'Empty' : oneLine(props.view.text)}
      </bdi>
    </>
  );
}
