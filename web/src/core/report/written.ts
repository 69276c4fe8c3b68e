// The forms in which `quorinctl audit` writes what it tells.

import type { Level } from '../audit/Finding';
import { count } from '../format/words';
import { stateName } from '../review/kinds';
import { htmlOf } from './html';
import { at, placeOf, type Report, type ReportedFinding, type Summary } from './Report';

export type Format = 'text' | 'json' | 'jsonl' | 'csv' | 'html' | 'sarif';

/** "Said: Fine: agreed with the client"; empty where nothing was said. */
function saidText({ state, note = '' }: ReportedFinding): string {
  if (state === undefined) return '';
  return `      Said: ${stateName(state)}${note === '' ? '' : `: ${note.replace(/\s+/g, ' ')}`}`;
}

function textOf(report: Report): string {
  if ('error' in report) return `${report.file}: could not be audited: ${report.error}\n`;
  const { file, summary, findings } = report;
  const lines = [
    `${file}: ${count(summary.findings, 'finding')} (${String(summary.high)} high, ${String(summary.medium)} medium, ${String(summary.low)} low) in ${count(summary.formulas, 'formula')} on ${count(summary.sheets, 'sheet')}`,
  ];
  for (const finding of findings) {
    const { rank, confidence, message, expected, reach } = finding;
    lines.push(
      `${String(rank).padStart(4)}. ${placeOf(finding)} (${confidence})`,
      `      ${message}`,
    );
    if (expected !== '') lines.push(`      Expected: ${expected}`);
    if (finding.state !== undefined) lines.push(saidText(finding));
    if (reach > 0) lines.push(`      ${count(reach, 'cell')} rest${reach === 1 ? 's' : ''} on it.`);
  }
  if (findings.length < summary.findings)
    lines.push(
      `      ${count(summary.findings - findings.length, 'finding')} of lower rank left out.`,
    );
  if (summary.seen !== undefined)
    lines.push(
      `      Seen by the reviewer: ${String(summary.seen)} of ${count(summary.distinctFormulas, 'distinct formula')}.`,
    );
  for (const { sheet, address, reason } of summary.notRead)
    lines.push(`      Not read: ${at(sheet, address)}: ${reason}`);
  return `${lines.join('\n')}\n`;
}

/**
 * One field as spreadsheets read it: a text that begins like a formula gets an apostrophe, so that
 * nothing in a list of findings is worked out by whoever opens it.
 */
function field(value: string | number): string {
  if (typeof value === 'number') return String(value);
  const text = /^[=+\-@\t\r]/.test(value) ? `'${value}` : value;
  return /[",\r\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text;
}

const columns = [
  'file',
  'rank',
  'kind',
  'level',
  'confidence',
  'sheet',
  'cells',
  'message',
  'expected',
  'reach',
  'state',
  'note',
  'error',
  // Of the workbook, the same in each of its rows: how far the review of it is, and of how much.
  'seen',
  'distinctFormulas',
  'judged',
  'findings',
];

/** Empty where it is not known. */
function progress({ seen, distinctFormulas, said, findings }: Summary): (string | number)[] {
  const judged = said ? said.fault + said.fine + said.later : '';
  return [seen ?? '', distinctFormulas, judged, findings];
}

function csvOf(reports: readonly Report[]): string {
  const rows = [columns.join(',')];
  for (const report of reports) {
    if ('error' in report) {
      rows.push(
        columns
          .map((column) => (column === 'file' || column === 'error' ? field(report[column]) : ''))
          .join(),
      );
      continue;
    }
    for (const one of report.findings) {
      rows.push(
        [
          report.file,
          one.rank,
          one.kind,
          one.level,
          one.confidence,
          one.sheet,
          one.cells.join(' '),
          one.message,
          one.expected,
          one.reach,
          one.state ?? '',
          one.note ?? '',
          '',
          ...progress(report.summary),
        ]
          .map(field)
          .join(),
      );
    }
  }
  return `${rows.join('\r\n')}\r\n`;
}

/** SARIF calls what certainly is wrong an error, what may be a warning, and style a note. */
const sarifLevels: Record<Level, string> = { fact: 'error', doubt: 'warning', style: 'note' };

/** What is fine is suppressed by somebody's word; anything that was said is a property. */
function sarifSaid({ state, note = '' }: ReportedFinding): object {
  if (state === undefined) return {};
  const suppression = { kind: 'external', status: 'accepted', justification: note };
  return {
    properties: { state, note },
    ...(state === 'fine' ? { suppressions: [suppression] } : {}),
  };
}

function sarifOf(reports: readonly Report[], version: string): string {
  const rules = new Set<string>();
  const results = [];
  const artifacts = [];
  const notifications = [];
  for (const report of reports) {
    const uri = encodeURI(report.file);
    if ('error' in report) {
      notifications.push({
        level: 'error',
        message: { text: report.error },
        locations: [{ physicalLocation: { artifactLocation: { uri } } }],
      });
      continue;
    }
    artifacts.push({ location: { uri }, properties: report.summary });
    for (const finding of report.findings) {
      rules.add(finding.kind);
      results.push({
        ruleId: finding.kind,
        level: sarifLevels[finding.level],
        rank: { high: 90, medium: 60, low: 30 }[finding.confidence],
        message: {
          text:
            finding.expected === ''
              ? finding.message
              : `${finding.message} Expected: ${finding.expected}`,
        },
        ...sarifSaid(finding),
        locations: [
          {
            physicalLocation: { artifactLocation: { uri } },
            logicalLocations: finding.cells.map((cells) => ({
              fullyQualifiedName: cells.includes('!') ? cells : at(finding.sheet, cells),
            })),
          },
        ],
      });
    }
  }
  return `${JSON.stringify(
    {
      $schema: 'https://json.schemastore.org/sarif-2.1.0.json',
      version: '2.1.0',
      runs: [
        {
          tool: {
            driver: { name: 'Quorin', version, rules: [...rules].sort().map((id) => ({ id })) },
          },
          invocations: [
            {
              executionSuccessful: notifications.length === 0,
              toolExecutionNotifications: notifications,
            },
          ],
          artifacts,
          results,
        },
      ],
    },
    null,
    2,
  )}\n`;
}

/** Without what is only for the eye. */
function plain(report: Report): Report {
  if ('error' in report) return report;
  const told = { ...report };
  delete told.pictures;
  return told;
}

function jsonOf(reports: readonly Report[]): string {
  return `${JSON.stringify(reports.length === 1 ? reports[0] : { files: reports }, null, 2)}\n`;
}

/** The forms that can be written as soon as one workbook is done. */
export function isLineByLine(format: Format): boolean {
  return format === 'text' || format === 'jsonl';
}

/** All reports in one; `version` is the program's own. */
export function written(reports: readonly Report[], format: Format, version: string): string {
  switch (format) {
    case 'text':
      return reports.map(textOf).join('');
    case 'jsonl':
      return reports.map((report) => `${JSON.stringify(plain(report))}\n`).join('');
    case 'json':
      return jsonOf(reports.map(plain));
    case 'csv':
      return csvOf(reports);
    case 'html':
      return htmlOf(reports, version);
    case 'sarif':
      return sarifOf(reports, version);
  }
}
