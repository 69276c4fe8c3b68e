// The two lists beside the tree, each asked for when it is looked at.

import { qualified } from '../address/area';
import type { ViewName } from '../protocol/events';
import type { Outcome } from '../protocol/Outcome';
import type { CellPlace, WorkbookMap } from '../protocol/verbs';
import { dependentRows, mapRows } from './PlaceList';
import { PlaceView } from './PlaceView';

export type ListQuestions = {
  dependents(address: string): Promise<Outcome<string>>;
  workbookMap(): Promise<Outcome<WorkbookMap>>;
};

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
    if (view === 'map') this.map.load('map', () => this.questions.workbookMap(), mapRows);
    if (view !== 'deps' || !place) return;
    const address = qualified(place.sheet, place.addr);
    this.dependents.load(
      `${place.book}\n${address}`,
      () => this.questions.dependents(address),
      (answer) => dependentRows(answer, place.sheet),
    );
  }

  /** The workbook may have changed. */
  forget(): void {
    this.map.forget();
    this.dependents.forget();
  }
}
