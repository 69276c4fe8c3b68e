// What some cells use and what uses them, as rectangles by sheet. Pure.

import { cellCount, covers } from '../address/area';
import { directUsers, type Index, type SheetArea } from '../model/Index';
import { AreaSet } from '../model/rectangles';
import type { WorkbookModel } from '../model/WorkbookModel';
import type { TiedSheet, Ties } from './told';

/** So many rectangles of a sheet are drawn; nobody tells more of them apart. */
const areasLimit = 400;

class BySheet {
  private readonly sets = new Map<number, AreaSet>();
  private readonly left = new Map<number, number>();

  add({ sheet, area }: SheetArea): void {
    let set = this.sets.get(sheet);
    if (!set) {
      set = new AreaSet();
      this.sets.set(sheet, set);
    }
    if (set.areas.length < areasLimit) set.add(area);
    else if (!set.areas.some((known) => covers(known, area))) {
      this.left.set(sheet, (this.left.get(sheet) ?? 0) + cellCount(area));
    }
  }

  told(model: WorkbookModel): TiedSheet[] {
    return [...this.sets]
      .sort(([a], [b]) => a - b)
      .map(([sheet, { areas, size }]) => ({
        sheet: model.sheetName(sheet),
        cells: size + (this.left.get(sheet) ?? 0),
        areas: areas.slice(0, areasLimit),
      }));
  }
}

export function tiesOf(model: WorkbookModel, index: Index, cells: SheetArea): Ties {
  const uses = new BySheet();
  const users = new BySheet();
  index.formulasIn(cells, (part) => {
    index.usedBy(part, (used) => {
      uses.add(used);
    });
  });
  for (const { region, area } of directUsers(index, cells)) {
    users.add({ sheet: index.sheetOf(region), area });
  }
  return { uses: uses.told(model), users: users.told(model) };
}
