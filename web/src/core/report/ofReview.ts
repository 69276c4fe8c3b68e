// The report of a workbook that is reviewed in the panel: what its Review lists, with what was said.

import type { FindingRow } from '../model/messages';
import type { ModelClient } from '../model/ModelClient';
import type { Said } from '../review/said';
import type { SeenCount } from '../review/Seen';
import type { BookScan } from '../scan/BookScan';
import { hiddenTracksOf } from './hidden';
import { reported, saidCounts, type Report } from './Report';
import { written, type Format } from './written';

export type ReportFormat = Exclude<Format, 'text' | 'jsonl'>;

/** Throws where the model cannot tell of the workbook. */
export async function reportOfReview(
  book: string,
  findings: readonly FindingRow[],
  total: number,
  saidOf: (finding: FindingRow) => Said | undefined,
  scan: BookScan,
  model: ModelClient,
  seen: SeenCount | undefined,
  withPictures: boolean,
): Promise<Report> {
  const { formulas, distinct } = await model.ask(book, 'state', {});
  const inventory = await model.ask(book, 'inventory', {});
  const hidden = await hiddenTracksOf(scan, inventory.sheets);
  const pictures = withPictures
    ? { pictures: await model.ask(book, 'pictures', { rank: findings.length }) }
    : {};
  const { sheetsRead, cells, notRead } = scan.state;
  const sure = (confidence: string) =>
    findings.filter((finding) => finding.confidence === confidence).length;
  return {
    file: book,
    summary: {
      sheets: sheetsRead,
      cells,
      formulas,
      distinctFormulas: distinct,
      findings: total,
      high: sure('high'),
      medium: sure('medium'),
      low: sure('low'),
      ...(seen ? { seen: seen.seen } : {}),
      said: saidCounts(findings.flatMap((finding) => saidOf(finding) ?? [])),
      notRead,
    },
    findings: findings.map((finding) => reported(finding, finding.formula, saidOf(finding))),
    inventory: { ...inventory, hidden },
    ...pictures,
  };
}

/** A file name that any folder takes, and what is written there. */
export function reportFile(report: Report, format: ReportFormat): { name: string; text: string } {
  const plain = report.file
    .replace(/\.[^.]*$/, '')
    .replace(/[\p{Cc}/\\:*?"<>|]/gu, '_')
    .replace(/^\.+/, '')
    .slice(0, 40)
    .trim();
  const name = `${plain === '' ? 'Workbook' : plain} review.${format}`;
  return { name, text: written([report], format, '') };
}
