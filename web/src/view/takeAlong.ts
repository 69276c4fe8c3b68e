// What is in view, gathered for taking it along: the rows of the tree that are open, or those of a
// list, as they are shown now.

import { areaAddress, qualified } from '../core/address/area';
import { homeOf } from '../core/explorer/stops';
import type { Explorer } from '../core/explorer/Explorer';
import { targetOf } from '../core/evaluation/routes';
import type { Taken, TakenRow } from '../core/take/written';
import { faceOf } from './rowFace';

const titles = { tree: '', deps: 'Dependents', map: 'Map', review: 'Findings' } as const;

function treeRows({ here, evaluator }: Explorer): TakenRow[] {
  const tree = here?.tree;
  if (!here || !tree) return [];
  return tree.rows.map((item): TakenRow => {
    const face = faceOf(item, evaluator, false);
    const target = targetOf(item.node, item.scope, homeOf(here));
    const unknown = face.unused ? 'not used' : face.reason || 'not known';
    const isKnown = face.status === 'known';
    return {
      level: item.level,
      text: here.text.slice(item.node.start, item.node.end),
      value: isKnown ? face.text : unknown,
      exact: isKnown && face.type === 'Number' && face.copy !== face.text ? face.copy : '',
      address: target ? qualified(target.sheet, areaAddress(target.area)) : '',
    };
  });
}

function listRows({ list, here }: Explorer): TakenRow[] {
  return (list?.rows ?? []).map(({ row, level }) => ({
    level,
    text: [row.text, row.label].filter(Boolean).join(' '),
    value: [row.tag, row.detail].filter(Boolean).join(' · '),
    exact: '',
    address: row.place ? `${row.place.sheet ?? here?.place.sheet ?? ''}!${row.place.address}` : '',
  }));
}

/** Nothing where the view has no rows. */
export function takeAlong(explorer: Explorer, time: string): Taken | undefined {
  const { here, view, list } = explorer;
  if (!here) return undefined;
  const isTree = view === 'tree';
  const rows = isTree ? treeRows(explorer) : listRows(explorer);
  if (rows.length === 0) return undefined;
  const { book, sheet, addr } = isTree ? here.place : (explorer.listed ?? here.place);
  return {
    title: titles[view],
    book,
    sheet,
    address: addr,
    label: isTree ? explorer.hereLabel : explorer.listedLabel,
    time,
    formula: isTree ? here.text : '',
    rows,
    missing: list && view === 'deps' ? explorer.lists.coverage : '',
  };
}
