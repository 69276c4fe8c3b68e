// What `quorinctl audit` tells of one workbook, as plain data.

import { areaAddress, qualified } from '../address/area';
import type { Confidence, Finding, Kind, Level } from '../audit/Finding';
import type { NotRead } from '../scan/BookScan';
import type { Inventory } from './inventory';

export type ReportedFinding = {
  rank: number;
  kind: Kind;
  level: Level;
  sheet: string;
  /** Addresses on that sheet; those on others say theirs. */
  cells: string[];
  message: string;
  expected: string;
  confidence: Confidence;
  reach: number;
};

export type Summary = {
  sheets: number;
  cells: number;
  formulas: number;
  distinctFormulas: number;
  /** Of all that were found, also those that are left out by their rank. */
  findings: number;
  high: number;
  medium: number;
  low: number;
  notRead: NotRead[];
};

export type Report =
  | { file: string; summary: Summary; findings: ReportedFinding[]; inventory: Inventory }
  | { file: string; error: string };

/** The address with its sheet's name, in quotes where the name needs them. */
export function at(sheet: string, address: string): string {
  return /^[\p{L}_][\p{L}\p{N}_]*$/u.test(sheet)
    ? `${sheet}!${address}`
    : qualified(sheet, address);
}

export function reported(finding: Finding): ReportedFinding {
  const { rank, kind, level, cells, sentence, expected, confidence, reach } = finding;
  const sheet = cells[0]?.sheet ?? '';
  return {
    rank,
    kind,
    level,
    sheet,
    cells: cells.map((one) => {
      const address = areaAddress(one.area);
      return one.sheet === sheet ? address : at(one.sheet, address);
    }),
    message: sentence,
    expected,
    confidence,
    reach,
  };
}

export function placeOf({ sheet, cells }: ReportedFinding): string {
  return at(sheet, cells.join(', '));
}
