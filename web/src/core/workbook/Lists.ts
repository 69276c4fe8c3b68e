// The two lists beside the tree, each asked for when it is looked at.

import { qualified } from '../address/area';
import { cellCount, readLimit } from '../evaluation/readPlan';
import { count } from '../format/words';
import type { ViewName } from '../protocol/events';
import type { Outcome } from '../protocol/Outcome';
import type { CellPlace, RangeFormulas, ReferenceStyle, WorkbookMap } from '../protocol/verbs';
import { blocksOf } from './blocks';
import { dependentRows, dependentsOf, type Dependent } from './dependents';
import { mapRows } from './PlaceList';
import { PlaceView } from './PlaceView';

export type ListQuestions = {
  dependents(address: string): Promise<Outcome<string>>;
  workbookMap(): Promise<Outcome<WorkbookMap>>;
  readFormulas(
    address: string,
    style: ReferenceStyle,
    formulasOnly?: boolean,
  ): Promise<Outcome<RangeFormulas>>;
};

/** The formulas of so many areas of dependents are read; each costs a question. */
export const areasRead = 40;

export class Lists {
  readonly dependents: PlaceView;
  readonly map: PlaceView;

  constructor(
    private readonly questions: ListQuestions,
    changed: () => void,
  ) {
    this.dependents = new PlaceView(changed);
    this.map = new PlaceView(changed);
  }

  /** The list that is the view; nothing for the tree. */
  of(view: ViewName): PlaceView | undefined {
    return view === 'tree' ? undefined : view === 'deps' ? this.dependents : this.map;
  }

  load(view: ViewName, place: CellPlace | undefined): void {
    if (view === 'map') void this.map.load('map', () => this.questions.workbookMap(), mapRows);
    if (view === 'deps' && place) void this.loadDependents(place);
  }

  /** The workbook may have changed. */
  forget(): void {
    this.map.forget();
    this.dependents.forget();
  }

  private async loadDependents({ book, sheet, addr }: CellPlace): Promise<void> {
    const address = qualified(sheet, addr);
    const key = `${book}\n${address}`;
    const answer = await this.dependents.load(
      key,
      () => this.questions.dependents(address),
      (areas) => dependentRows(dependentsOf(areas, sheet), sheet),
    );
    if (answer === undefined) return;
    const found = dependentsOf(answer, sheet);
    for (const dependent of found.slice(0, areasRead)) {
      if (!this.dependents.isOf(key)) return;
      await this.readFormulas(dependent);
    }
    const note =
      found.length > areasRead
        ? `Formulas of the first ${count(areasRead, 'area')} of ${String(found.length)} only.`
        : '';
    if (found.length > 0) this.dependents.refine(key, dependentRows(found, sheet), note);
  }

  private async readFormulas(dependent: Dependent): Promise<void> {
    const { place, area } = dependent;
    if (cellCount(area) > readLimit) return;
    const address = qualified(place.sheet, place.address);
    const outcome = await this.questions.readFormulas(address, 'r1c1', true);
    if (!outcome.ok) return;
    const blocks = blocksOf(area, outcome.value.formulas);
    if (blocks.length > 0) dependent.blocks = blocks;
  }
}
