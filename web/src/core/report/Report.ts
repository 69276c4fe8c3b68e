// What `quorinctl audit` tells of one workbook, as plain data.

import { areaAddress, qualified } from '../address/area';
import type { Confidence, Finding, Kind, Level } from '../audit/Finding';
import type { Said, State } from '../review/said';
import type { NotRead } from '../scan/BookScan';
import type { Inventory } from './inventory';
import type { Pictures } from './pictures';

export type ReportedFinding = {
  rank: number;
  kind: Kind;
  level: Level;
  sheet: string;
  /** Addresses on that sheet; those on others say theirs. */
  cells: string[];
  message: string;
  /** In the first cell; only where it has one. */
  formula?: string;
  expected: string;
  confidence: Confidence;
  reach: number;
  /** What the reviewer said of it, and why; only where something was said. */
  state?: State;
  note?: string;
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
  /** Distinct formulas that the reviewer has seen; only where that is known. */
  seen?: number;
  /** What was said of how many; only where what was said is known. */
  said?: Record<State, number>;
  notRead: NotRead[];
};

export type Report =
  | {
      file: string;
      summary: Summary;
      findings: ReportedFinding[];
      inventory: Inventory;
      /** Only for a report that is looked at. */
      pictures?: Pictures;
    }
  | { file: string; error: string };

/** The address with its sheet's name, in quotes where the name needs them. */
export function at(sheet: string, address: string): string {
  return /^[\p{L}_][\p{L}\p{N}_]*$/u.test(sheet)
    ? `${sheet}!${address}`
    : qualified(sheet, address);
}

export function reported(finding: Finding, formula: string, said?: Said): ReportedFinding {
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
    ...(formula === '' ? {} : { formula }),
    expected,
    confidence,
    reach,
    ...(said ? { state: said.state, note: said.note } : {}),
  };
}

export function saidCounts(said: readonly Said[]): Record<State, number> {
  const counts = { fault: 0, fine: 0, later: 0 };
  for (const { state } of said) counts[state]++;
  return counts;
}

/** The first findings by rank; those that were said to be fine leave the others their places. */
export function topOf(findings: readonly ReportedFinding[], top: number): ReportedFinding[] {
  let left = top;
  return findings.filter(({ state }) => left > 0 && (state === 'fine' || left-- > 0));
}

/** The file without its folders. */
export function nameOf({ file }: Report): string {
  return file.slice(file.lastIndexOf('/') + 1);
}

export function placeOf({ sheet, cells }: ReportedFinding): string {
  return at(sheet, cells.join(', '));
}
