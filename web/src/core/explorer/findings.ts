// The parts of a formula worth going to by themselves: those that give errors. Pure.

import type { ResultOf } from '../evaluation/branches';
import type { Item } from '../outline/Item';
import type { TreeModel } from '../outline/TreeModel';

/** The next one from the active row on, around the ends; nothing where there is none. */
export function nextFinding(
  tree: TreeModel,
  resultOf: ResultOf,
  direction: 1 | -1,
): Item | undefined {
  const failing = tree.outline.items.filter((item) => resultOf(item)?.kind === 'error');
  if (direction < 0) failing.reverse();
  return failing.find((item) => (item.id - tree.active.id) * direction > 0) ?? failing[0];
}
