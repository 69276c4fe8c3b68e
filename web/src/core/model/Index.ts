// Who uses what, in a workbook as it was read: regions of cells with the same relative formula, and
// for each of their references the box that it sweeps. Questions are answered for whole areas at
// once and cost by regions, not by cells. Built once; a workbook read anew gets a new one.

import { type Area, cellCount, covers, maxColumns, maxRows, meet } from '../address/area';
import { BoxTree } from './BoxTree';
import { CellPlaces, CellUsers } from './CellUsers';
import type { Definitions } from './Definitions';
import { distanceWithin, findRegions, partsWithin } from './regions';
import { Rows } from './Rows';
import type { SheetCells } from './SheetCells';
import { reach, users, type Span } from './span';

export type SheetArea = { sheet: number; area: Area };

/** Cells of one region. */
export type Part = { region: number; area: Area };

/** For each box its region and its reference. */
type Boxes = { tree: BoxTree; owners: Int32Array };

const enum Field {
  Sheet,
  Top,
  Left,
  Bottom,
  Right,
  Formula,
  Definition,
}
const fields = 7;

/** So many regions are gone through before whoever waits may take a turn. */
const turn = 2_000;

export class Index {
  private readonly regions = new Rows(fields);
  /** By sheet: the regions on it, and their numbers. */
  private readonly places: { tree: BoxTree; first: number }[] = [];
  /** By sheet: the boxes on it. Single cells that single cells name stand apart. */
  private readonly boxes: Boxes[] = [];
  private readonly points: Boxes[] = [];
  private cellUsers: CellUsers | undefined;

  private constructor(
    readonly sheets: readonly SheetCells[],
    readonly definitions: Definitions,
  ) {}

  /** Builds it; yields now and then, so that the work can be done a little at a time. */
  static *build(
    sheets: readonly SheetCells[],
    definitions: Definitions,
  ): Generator<undefined, Index> {
    const index = new Index(sheets, definitions);
    for (let sheet = 0; sheet < sheets.length; sheet++) {
      const first = index.regions.count;
      yield* index.addRegions(sheet);
      index.places.push({ tree: index.treeOf(first), first });
      yield undefined;
    }
    yield* index.addBoxes();
    return index;
  }

  get regionCount(): number {
    return this.regions.count;
  }

  sheetOf(region: number): number {
    return this.regions.get(region, Field.Sheet);
  }

  areaOf(region: number): Area {
    return {
      top: this.regions.get(region, Field.Top),
      left: this.regions.get(region, Field.Left),
      bottom: this.regions.get(region, Field.Bottom),
      right: this.regions.get(region, Field.Right),
    };
  }

  /** The number of the region's relative formula. */
  formulaOf(region: number): number {
    return this.regions.get(region, Field.Formula);
  }

  definitionOf(region: number): number {
    return this.regions.get(region, Field.Definition);
  }

  /** The formulas in an area, by region. */
  formulasIn({ sheet, area }: SheetArea, tell: (part: Part) => void): void {
    const place = this.places[sheet];
    place?.tree.search(area, (box) => {
      const region = place.first + box;
      const part = meet(this.areaOf(region), area);
      if (part) tell({ region, area: part });
    });
  }

  /** True if the region is a single cell. */
  isCell(region: number): boolean {
    const { regions } = this;
    return (
      regions.get(region, Field.Top) === regions.get(region, Field.Bottom) &&
      regions.get(region, Field.Left) === regions.get(region, Field.Right)
    );
  }

  /** The cells that name any cell of the area, by region and reference; some more than once. */
  usersOf(cells: SheetArea, tell: (part: Part, reference: number) => void): void {
    this.searched(this.boxes[cells.sheet], cells.area, tell);
    this.searched(this.points[cells.sheet], cells.area, tell);
  }

  /** The same for a region that is a single cell: users that are single cells go to `tellCell`. */
  usersOfCell(
    region: number,
    tellCell: (region: number) => void,
    tell: (part: Part, reference: number) => void,
  ): void {
    this.cellUsers?.each(region, tellCell);
    const held = this.boxes[this.sheetOf(region)];
    if (held && held.owners.length > 0) this.searched(held, this.areaOf(region), tell);
  }

  private searched(
    held: Boxes | undefined,
    area: Area,
    tell: (part: Part, reference: number) => void,
  ): void {
    eachOwner(held, area, (region, reference) => {
      const own = this.areaOf(region);
      const rows = users(
        this.rowsOf(region, reference),
        own.top,
        own.bottom,
        area.top,
        area.bottom,
      );
      if (rows.first > rows.last) return;
      const cols = users(
        this.colsOf(region, reference),
        own.left,
        own.right,
        area.left,
        area.right,
      );
      if (cols.first > cols.last) return;
      const part = { top: rows.first, left: cols.first, bottom: rows.last, right: cols.last };
      tell({ region, area: part }, reference);
    });
  }

  /** Every box that meets the area: what a region's formulas name together by one reference. */
  eachBox({ sheet, area }: SheetArea, tell: (box: Area) => void): void {
    for (const held of [this.boxes[sheet], this.points[sheet]]) {
      eachOwner(held, area, (region, reference) => {
        tell(this.boxOf(region, reference, this.areaOf(region)));
      });
    }
  }

  /** What cells of a region name, a rectangle for each reference. */
  usedBy({ region, area }: Part, tell: (cells: SheetArea, reference: number) => void): void {
    const [from, to] = this.definitions.range(this.definitionOf(region));
    for (let reference = from; reference < to; reference++) {
      const sheet = this.definitions.sheetOf(reference, this.sheetOf(region));
      tell({ sheet, area: this.boxOf(region, reference, area) }, reference);
    }
  }

  /** The rows that a reference names, as distances hold within the region. */
  rowsOf(region: number, reference: number): Span {
    return within(this.definitions.rows(reference), this.regions.get(region, Field.Top), maxRows);
  }

  colsOf(region: number, reference: number): Span {
    const left = this.regions.get(region, Field.Left);
    return within(this.definitions.cols(reference), left, maxColumns);
  }

  private boxOf(region: number, reference: number, area: Area): Area {
    const rows = reach(this.rowsOf(region, reference), area.top, area.bottom);
    const cols = reach(this.colsOf(region, reference), area.left, area.right);
    return { top: rows.first, left: cols.first, bottom: rows.last, right: cols.last };
  }

  private *addRegions(sheet: number): Generator<undefined, void> {
    const { definitions, regions } = this;
    const found = new Rows(5);
    const cells = this.sheets[sheet];
    if (cells) findRegions(cells, (...region) => found.add(region));
    for (let i = 0; i < found.count; i++) {
      const area = {
        top: found.get(i, 0),
        left: found.get(i, 1),
        bottom: found.get(i, 2),
        right: found.get(i, 3),
      };
      const formula = found.get(i, 4);
      const definition = definitions.of(formula, sheet);
      for (const { top, left, bottom, right } of this.partsOf(area, definition)) {
        regions.add([sheet, top, left, bottom, right, formula, definition]);
      }
      if (i % turn === 0) yield undefined;
    }
  }

  private partsOf(area: Area, definition: number): Area[] {
    if (cellCount(area) === 1) return [area];
    const { rows, cols } = this.definitions.distances(definition);
    return partsWithin(area, rows, cols);
  }

  private treeOf(first: number): BoxTree {
    const boxes = new Int32Array((this.regions.count - first) * 4);
    for (let region = first; region < this.regions.count; region++) {
      const { top, left, bottom, right } = this.areaOf(region);
      boxes.set([top, left, bottom, right], (region - first) * 4);
    }
    return new BoxTree(boxes);
  }

  private *addBoxes(): Generator<undefined, void> {
    const kinds = [this.boxes, this.points].map((boxes) => ({
      boxes,
      held: this.sheets.map(() => ({ bounds: new Rows(4), owners: new Rows(2) })),
    }));
    const places = new CellPlaces(this.cellsAlone());
    yield undefined;
    const pairs = new Rows(2);
    for (let region = 0; region < this.regions.count; region++) {
      const isCell = this.isCell(region);
      this.usedBy({ region, area: this.areaOf(region) }, ({ sheet, area }, reference) => {
        const { top, left, bottom, right } = area;
        const isPoint = isCell && cellCount(area) === 1;
        const own = kinds[isPoint ? 1 : 0]?.held[sheet];
        own?.bounds.add([top, left, bottom, right]);
        own?.owners.add([region, reference]);
        const used = isPoint ? places.at(sheet, top, left) : -1;
        if (used >= 0) pairs.add([used, region]);
      });
      if (region % turn === 0) yield undefined;
    }
    for (const { boxes, held } of kinds) {
      for (const { bounds, owners } of held) {
        boxes.push({ tree: new BoxTree(bounds.all), owners: owners.all.slice() });
        yield undefined;
      }
    }
    this.cellUsers = new CellUsers(this.regions.count, pairs);
  }

  /** Sheet, row and column of the regions that are single cells, and a row of 0 for others. */
  private cellsAlone(): Rows {
    const cells = new Rows(3);
    for (let region = 0; region < this.regions.count; region++) {
      const row = this.isCell(region) ? this.regions.get(region, Field.Top) : 0;
      cells.add([this.sheetOf(region), row, this.regions.get(region, Field.Left)]);
    }
    return cells;
  }
}

/** The region and the reference of every box that meets the area. */
function eachOwner(
  held: Boxes | undefined,
  area: Area,
  tell: (region: number, reference: number) => void,
): void {
  held?.tree.search(area, (box) => {
    tell(held.owners[box * 2] as number, held.owners[box * 2 + 1] as number);
  });
}

function within(span: Span, track: number, limit: number): Span {
  const { a, aFixed, b, bFixed } = span;
  return {
    a: aFixed ? a : distanceWithin(a, track, limit),
    aFixed,
    b: bFixed ? b : distanceWithin(b, track, limit),
    bFixed,
  };
}

/** The direct users of an area by region, each cell once. */
export function directUsers(index: Index, cells: SheetArea): Part[] {
  const found = new Map<number, Part[]>();
  index.usersOf(cells, (part) => {
    const known = found.get(part.region);
    if (!known) found.set(part.region, [part]);
    else if (!known.some(({ area }) => covers(area, part.area))) known.push(part);
  });
  return [...found.values()].flat();
}
