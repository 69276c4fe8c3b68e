// All sheets as nodes, in rows from those that others take from to those that take: where each stands,
// and what flows between them. Pure.

import type { Flow } from './told';

export type Node = {
  name: string;
  /** From the top, and within the row from the left. */
  row: number;
  place: number;
};

export type Overview = {
  nodes: Node[];
  /** How many nodes the widest row has. */
  width: number;
  rows: number;
};

/**
 * By how far sheets are from those that take from none. Of two sheets that take from each other the one
 * that gives more stands above. Sheets without any flow come last. `most`: no row is wider; what does
 * not fit goes on in the next one.
 */
export function overviewOf(
  sheets: readonly string[],
  flows: readonly Flow[],
  most: number,
): Overview {
  const tied = new Set(flows.flatMap(({ from, to }) => [from, to]));
  const depth = depthsOf(
    sheets.filter((name) => tied.has(name)),
    flows,
  );
  const levels: string[][] = [];
  for (const name of sheets) {
    const own = depth.get(name);
    if (own === undefined) continue;
    (levels[own] ??= []).push(name);
  }
  const alone = sheets.filter((name) => !tied.has(name));
  if (alone.length > 0) levels.push(alone);
  const nodes: Node[] = [];
  let row = 0;
  for (const level of levels) {
    const rows = Math.ceil(level.length / most);
    // As many in each of its rows, as far as that goes.
    const wide = Math.ceil(level.length / rows);
    level.forEach((name, i) => {
      nodes.push({ name, row: row + Math.floor(i / wide), place: i % wide });
    });
    row += rows;
  }
  const width = nodes.reduce((widest, { place }) => Math.max(widest, place + 1), 0);
  return { nodes, width, rows: row };
}

/**
 * How many flows lead to each sheet one after the other. Of flows in a circle those count that lead on
 * in an order in which the sheet that gives most more than it takes comes first.
 */
function depthsOf(names: readonly string[], flows: readonly Flow[]): Map<string, number> {
  const order = inOrderOfFlow(names, flows);
  const rank = new Map(order.map((name, i) => [name, i]));
  const after = new Map<string, string[]>();
  for (const { from, to } of flows) {
    if ((rank.get(from) ?? 0) >= (rank.get(to) ?? 0)) continue;
    const known = after.get(from);
    if (known) known.push(to);
    else after.set(from, [to]);
  }
  const depth = new Map<string, number>(names.map((name) => [name, 0]));
  for (const name of order) {
    const own = depth.get(name) ?? 0;
    for (const to of after.get(name) ?? []) depth.set(to, Math.max(depth.get(to) ?? 0, own + 1));
  }
  return depth;
}

type Balance = { gives: number; takes: number; to: Flow[]; from: Flow[] };

function inOrderOfFlow(names: readonly string[], flows: readonly Flow[]): string[] {
  const left = new Map<string, Balance>();
  for (const name of names) left.set(name, { gives: 0, takes: 0, to: [], from: [] });
  for (const flow of flows) {
    const giver = left.get(flow.from);
    const taker = left.get(flow.to);
    if (!giver || !taker) continue;
    giver.gives += flow.cells;
    giver.to.push(flow);
    taker.takes += flow.cells;
    taker.from.push(flow);
  }
  const order: string[] = [];
  while (left.size > 0) {
    let best: [string, Balance] | undefined;
    let most = -Infinity;
    for (const one of left) {
      const { gives, takes } = one[1];
      // One that takes from none that is left comes before all others.
      const worth = takes === 0 ? Infinity : gives - takes;
      if (!best || worth > most) [best, most] = [one, worth];
      if (worth === Infinity) break;
    }
    const [name, { to, from }] = best as [string, Balance];
    left.delete(name);
    order.push(name);
    for (const flow of to) {
      const taker = left.get(flow.to);
      if (taker) taker.takes -= flow.cells;
    }
    for (const flow of from) {
      const giver = left.get(flow.from);
      if (giver) giver.gives -= flow.cells;
    }
  }
  return order;
}

export type Point = { x: number; y: number };

/** How wide a flow's line is, in points: with the logarithm of its cells. */
export function lineWidth(cells: number): number {
  return Math.min(6, 1 + Math.log10(Math.max(1, cells)) * 1.2);
}

/** A line from the one node's lower edge to the other's upper edge, or around to it where it leads up. */
export function flowPath(from: Point, to: Point): string {
  const at = ({ x, y }: Point) => `${x.toFixed(1)} ${y.toFixed(1)}`;
  const bend = Math.max(14, Math.abs(to.y - from.y) / 2);
  const first = { x: from.x, y: from.y + bend };
  const second = { x: to.x, y: to.y - bend };
  return `M${at(from)}C${at(first)} ${at(second)} ${at(to)}`;
}
