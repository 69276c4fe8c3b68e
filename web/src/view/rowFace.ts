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
  /** What more there is to say of it: every digit of what is rounded. */
  note: string;
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
    note: '',
  };
  if (state.status !== 'known') return face;
  const isCell = evaluator.routeOf(item).route.by === 'cells';
  const view = resultView(state.result, { isCell, shown: evaluator.shownAs(item) });
  face.type = view.type;
  face.text = view.type === 'Blank' ? 'Empty' : oneLine(view.text);
  face.copy = view.copy;
  face.note = view.note;
  return face;
}

export function sameFace(one: RowFace, other: RowFace): boolean {
  return (
    one.status === other.status &&
    one.text === other.text &&
    one.copy === other.copy &&
    one.note === other.note &&
    one.type === other.type &&
    one.open === other.open &&
    one.unused === other.unused &&
    one.reason === other.reason
  );
}
