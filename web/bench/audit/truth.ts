// Mistakes that the maintainers of real workbooks have mended, as a table: where each is in the list
// of findings, and whether it is gone once it is mended.

import { existsSync, readFileSync } from 'node:fs';
import { join } from 'node:path';
import { parseArea } from '../../src/core/address/area';
import type { Finding } from '../../src/core/audit/Finding';
import { parse } from '../../src/core/formula/Parser';
import { printInStyle } from '../../src/core/formula/print';
import { Workbook, type Place } from './plant';
import type { Recording } from './recording';

export type Truth = { file: string; place: Place; address: string; fixed: string };

function fields(line: string): string[] {
  const found: string[] = [];
  for (const [, quoted, plain] of line.matchAll(/(?:"((?:[^"]|"")*)"|([^,]*))(?:,|$)/g)) {
    found.push(quoted === undefined ? (plain ?? '') : quoted.replaceAll('""', '"'));
  }
  return found;
}

export function readTruth(folder: string): Truth[] {
  const path = join(folder, 'ground-truth.csv');
  if (!existsSync(path)) return [];
  const lines = readFileSync(path, 'utf8').trim().split(/\r?\n/).slice(1);
  return lines.flatMap((line) => {
    const [file = '', sheet = '', address = '', , , fixed = ''] = fields(line);
    const area = parseArea(address);
    return area ? [{ file, address, fixed, place: { sheet, row: area.top, col: area.left } }] : [];
  });
}

export function has(finding: Finding, { sheet, row, col }: Place): boolean {
  return finding.cells.some(
    ({ sheet: own, area }) =>
      own === sheet &&
      area.top <= row &&
      area.bottom >= row &&
      area.left <= col &&
      area.right >= col,
  );
}

/** Mends what the table mends in this workbook. */
export function mend(recording: Recording, truths: readonly Truth[]): void {
  const book = new Workbook(recording);
  for (const { place, fixed } of truths) {
    book.set(place, `=${printInStyle(parse(fixed, 'a1'), 'r1c1', place)}`);
  }
}
