// What leads back to itself in a graph: its strongly connected components, by Tarjan's way, without
// recursion. Pure.

/** So many nodes are begun with before whoever waits may take a turn. */
const turn = 2_000;

/**
 * Groups of nodes that lead to each other and back; single ones only where they lead to themselves.
 * `targetsOf` is asked once for each node; nothing given by it ends the search, which then gives
 * nothing.
 */
export function* findLoops(
  count: number,
  targetsOf: (node: number) => readonly number[] | undefined,
): Generator<undefined, number[][] | undefined> {
  const order = new Int32Array(count);
  const low = new Int32Array(count);
  const waiting = new Uint8Array(count);
  const stack: number[] = [];
  const loops: number[][] = [];
  let next = 1;
  type Frame = { node: number; targets: readonly number[]; at: number };
  const open = (node: number): Frame | undefined => {
    const targets = targetsOf(node);
    order[node] = low[node] = next++;
    stack.push(node);
    waiting[node] = 1;
    return targets && { node, targets, at: 0 };
  };
  const lower = (node: number, to: number): void => {
    low[node] = Math.min(low[node] as number, to);
  };
  for (let root = 0; root < count; root++) {
    if (root % turn === 0) yield undefined;
    if (order[root] !== 0) continue;
    const first = open(root);
    if (!first) return undefined;
    const frames = [first];
    for (let frame = frames.at(-1); frame; frame = frames.at(-1)) {
      const target = frame.targets[frame.at++];
      if (target !== undefined) {
        if (order[target] === 0) {
          const inner = open(target);
          if (!inner) return undefined;
          frames.push(inner);
        } else if (waiting[target] === 1) lower(frame.node, order[target] as number);
        continue;
      }
      frames.pop();
      const { node, targets } = frame;
      const above = frames.at(-1);
      if (above) lower(above.node, low[node] as number);
      if (low[node] !== order[node]) continue;
      const group: number[] = [];
      for (let one = -1; one !== node;) {
        one = stack.pop() as number;
        waiting[one] = 0;
        group.push(one);
      }
      if (group.length > 1 || targets.includes(node)) loops.push(group);
    }
  }
  return loops;
}
