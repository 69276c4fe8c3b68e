// What a row of the tree says about its part beside the part's own text. It is worked out anew after
// every change anywhere, and the row is drawn anew only where it became another.

import type { Evaluator, ItemState } from '../core/evaluation/Evaluator';
import { resultView } from '../core/format/resultView';
import type { ValueType } from '../core/format/value';
import { oneLine } from '../core/format/visible';
import type { Item } from '../core/outline/Item';

export type RowFace = {
  open: boolean;
  /** In a branch that is not taken. */
  unused: boolean;
  status: ItemState['status'];
  /** Why there is no value. */
  reason: string;
  /** Of its value, nothing as long as that is not known. */
  type: ValueType | undefined;
  text: string;
  copy: string;
};

export function faceOf(item: Item, evaluator: Evaluator, open: boolean): RowFace {
  const state = evaluator.stateOf(item);
  const face: RowFace = {
    open,
    unused: evaluator.countsOf(item) === 'no',
    status: state.status,
    reason: 'reason' in state ? state.reason : '',
    type: undefined,
    text: '',
    copy: '',
  };
  if (state.status !== 'known') return face;
  const isCell = evaluator.routeOf(item).route.by === 'cells';
  const view = resultView(state.result, { isCell, format: evaluator.formatOf(item) });
  face.type = view.type;
  face.text = view.type === 'Blank' ? 'Empty' : oneLine(view.text);
  face.copy = view.copy;
  return face;
}

export function sameFace(one: RowFace, other: RowFace): boolean {
  return (
    one.status === other.status &&
    one.text === other.text &&
    one.copy === other.copy &&
    one.type === other.type &&
    one.open === other.open &&
    one.unused === other.unused &&
    one.reason === other.reason
  );
}
