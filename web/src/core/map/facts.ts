// What is told of each sheet beside its picture, and which sheets take cells of which. Pure.

import { cellCount } from '../address/area';
import { Kind } from '../model/SheetCells';
import type { Index } from '../model/Index';
import type { WorkbookModel } from '../model/WorkbookModel';
import { sheetsAndLinks } from '../report/inventory';
import type { Flow, SheetsTold } from './told';

/** So many regions are gone through before whoever waits may take a turn. */
const turn = 2_000;

export function* sheetsTold(model: WorkbookModel): Generator<undefined, SheetsTold> {
  const index = yield* model.index();
  const { sheets, links } = yield* sheetsAndLinks(model);
  const linked = linkedFormulas(index);
  const told = sheets.map((sheet, number) => {
    let inputs = 0;
    for (const { kinds, formulas } of index.sheets[number]?.blocks ?? []) {
      for (let at = 0; at < kinds.length; at++) {
        const kind = kinds[at] as Kind;
        if (formulas[at] === 0 && (kind === Kind.Number || kind === Kind.Truth)) inputs += 1;
      }
    }
    return { ...sheet, inputs, links: linked.get(number) ?? 0 };
  });
  return { sheets: told, flows: yield* flowsOf(model, index), links };
}

function linkedFormulas(index: Index): Map<number, number> {
  const found = new Map<number, number>();
  for (let region = 0; region < index.regionCount; region++) {
    if (index.definitions.oddity(index.definitionOf(region))?.external !== true) continue;
    const sheet = index.sheetOf(region);
    found.set(sheet, (found.get(sheet) ?? 0) + cellCount(index.areaOf(region)));
  }
  return found;
}

/** So many are told; more lines between sheets nobody tells apart. */
const flowsLimit = 3_000;

/** The most first. A formula that takes several cells of a sheet counts once. */
export function* flowsOf(model: WorkbookModel, index: Index): Generator<undefined, Flow[]> {
  const counts = new Map<number, number>();
  const sheets = model.entry.sheets.length;
  for (let region = 0; region < index.regionCount; region++) {
    const to = index.sheetOf(region);
    const [first, end] = index.definitions.range(index.definitionOf(region));
    const from = new Set<number>();
    for (let reference = first; reference < end; reference++) {
      from.add(index.definitions.sheetOf(reference, to));
    }
    for (const sheet of from) {
      if (sheet === to) continue;
      const key = sheet * sheets + to;
      counts.set(key, (counts.get(key) ?? 0) + cellCount(index.areaOf(region)));
    }
    if (region % turn === 0) yield undefined;
  }
  return [...counts]
    .map(([key, cells]) => ({
      from: model.sheetName(Math.floor(key / sheets)),
      to: model.sheetName(key % sheets),
      cells,
    }))
    .sort((a, b) => b.cells - a.cells)
    .slice(0, flowsLimit);
}
