// Who uses what, in a workbook as it was read: regions of cells with the same relative formula, and
// for each of their references the box that it sweeps. Questions are answered for whole areas at
// once and cost by regions, not by cells. Built once; a workbook read anew gets a new one.

import { type Area, covers, maxColumns, maxRows, meet } from '../address/area';
import { BoxTree } from './BoxTree';
import type { Definitions } from './Definitions';
import { distanceWithin, findRegions, partsWithin } from './regions';
import { Rows } from './Rows';
import type { SheetCells } from './SheetCells';
import { reach, users, type Span } from './span';

export type SheetArea = { sheet: number; area: Area };

/** Cells of one region. */
export type Part = { region: number; area: Area };

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
  /** By sheet: the boxes on it, and for each box its region and its reference. */
  private readonly boxes: { tree: BoxTree; owners: Int32Array }[] = [];

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

  /** The cells that name any cell of the area, by region and reference; some more than once. */
  usersOf({ sheet, area }: SheetArea, tell: (part: Part, reference: number) => void): void {
    const held = this.boxes[sheet];
    held?.tree.search(area, (box) => {
      const region = held.owners[box * 2] as number;
      const reference = held.owners[box * 2 + 1] as number;
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
    const held = this.boxes[sheet];
    held?.tree.search(area, (box) => {
      const region = held.owners[box * 2] as number;
      const reference = held.owners[box * 2 + 1] as number;
      tell(this.boxOf(region, reference, this.areaOf(region)));
    });
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
    const found: number[] = [];
    const cells = this.sheets[sheet];
    if (cells) findRegions(cells, (...region) => found.push(...region));
    for (let i = 0; i < found.length; i += 5) {
      const [top = 0, left = 0, bottom = 0, right = 0, formula = 0] = found.slice(i, i + 5);
      const definition = definitions.of(formula, sheet);
      const { rows, cols } = definitions.distances(definition);
      for (const part of partsWithin({ top, left, bottom, right }, rows, cols)) {
        regions.add([sheet, part.top, part.left, part.bottom, part.right, formula, definition]);
      }
      if (i % (5 * turn) === 0) yield undefined;
    }
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
    const held = this.sheets.map(() => ({ bounds: new Rows(4), owners: new Rows(2) }));
    for (let region = 0; region < this.regions.count; region++) {
      this.usedBy({ region, area: this.areaOf(region) }, ({ sheet, area }, reference) => {
        const own = held[sheet];
        own?.bounds.add([area.top, area.left, area.bottom, area.right]);
        own?.owners.add([region, reference]);
      });
      if (region % turn === 0) yield undefined;
    }
    for (const { bounds, owners } of held) {
      this.boxes.push({ tree: new BoxTree(bounds.all), owners: owners.all.slice() });
      yield undefined;
    }
  }
}

function within(span: Span, line: number, limit: number): Span {
  const { a, aFixed, b, bFixed } = span;
  return {
    a: aFixed ? a : distanceWithin(a, line, limit),
    aFixed,
    b: bFixed ? b : distanceWithin(b, line, limit),
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
