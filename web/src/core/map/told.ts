// What the map asks of the model, and what it is told. Plain data, as all questions to the model.

import type { Area } from '../address/area';
import type { Confidence, Kind } from '../audit/Finding';
import type { Cells } from '../model/messages';
import type { Scalar } from '../protocol/json';
import type { Frame, Tile, TileSamples } from './tiles';

export type SheetFacts = {
  name: string;
  /** The address around all that was read; empty for an empty sheet. */
  area: string;
  /** Cells that are not blank. */
  cells: number;
  /** Numbers and truth values that were typed in. */
  inputs: number;
  formulas: number;
  distinctFormulas: number;
  errors: number;
  /** Formulas that take cells of other workbooks. */
  links: number;
};

/** So many formula cells of the one sheet take cells of the other. */
export type Flow = { from: string; to: string; cells: number };

export type SheetsTold = {
  sheets: SheetFacts[];
  flows: Flow[];
  /** The other workbooks that formulas and names lead to. */
  links: { workbook: string; formulas: number; sheets: string[] }[];
};

/** What one cell is, for whoever points at it. */
export type CellTold = {
  /** What a human would call it. */
  label: string;
  /** As it stands in the cell, cut where it is long; empty for none. */
  formula: string;
  value: Scalar;
  /** The cells around it that have the same relative formula; nothing for a cell without one. */
  region: Area | undefined;
  /** True if the cell was read. */
  read: boolean;
};

/** Cells of a sheet that are tied to others; of very many the first are told. */
export type TiedSheet = { sheet: string; cells: number; areas: Area[] };

export type Ties = { uses: TiedSheet[]; users: TiedSheet[] };

/** A finding's cells on one sheet. */
export type Break = {
  rank: number;
  kind: Kind;
  confidence: Confidence;
  sentence: string;
  areas: Area[];
};

export type MapQuestions = {
  mapSheets: { args: Record<string, never>; answer: SheetsTold };
  /** Nothing where there is no such sheet; of one that was not read there is nothing in it. */
  mapFrame: { args: { sheet: string }; answer: Frame | undefined };
  /** Nothing where the sheet was read anew since `stamp`. */
  mapTile: { args: { sheet: string; stamp: number; tile: Tile }; answer: TileSamples | undefined };
  mapCell: { args: { sheet: string; row: number; col: number }; answer: CellTold };
  /** What some cells use, and what uses them. */
  mapTies: { args: Cells; answer: Ties };
  mapBreaks: { args: { sheet: string }; answer: Break[] };
};
