// A small workbook with several sheets, as it is answered to a scan.

import type { Answer } from './FakePanel';
import { ready, success } from './samples';

export type Content = string | number | { formula: string; gives: string | number };

export function sheet(rows: Content[][]): Answer {
  const cols = Math.max(...rows.map((row) => row.length));
  const each = <T>(take: (content: Content) => T, blank: T): T[][] =>
    rows.map((row) =>
      Array.from({ length: cols }, (_, i) => {
        const content = row[i];
        return content === undefined ? blank : take(content);
      }),
    );
  return success({
    rows: rows.length,
    cols,
    formulas: each((content) => (typeof content === 'object' ? content.formula : ''), ''),
    values: each<string | number>(
      (content) => (typeof content === 'object' ? content.gives : content),
      '',
    ),
  });
}

const blank = Array<Content>(8).fill('');
const cashFlow: Content[][] = [
  ['', '', '', '', '', 2030, 2031, 2032],
  ...Array.from({ length: 10 }, () => blank),
  [
    'Revenue',
    '',
    '',
    '',
    '',
    { formula: '=Inputs!R1C2*Inputs!R2C2', gives: 1000 },
    { formula: '=RC[-1]*1.02', gives: 1020 },
    { formula: '=RC[-1]*1.02', gives: 980 },
  ],
];

const summary = sheet([
  ['Summary'],
  ['Total', { formula: "=SUM('Cash flow'!R12C6:R12C8)", gives: 3000 }],
  ['With tax', { formula: '=R[-1]C*1.1', gives: 3300 }],
  ['Rounded', { formula: '=ROUND(R[-1]C,0)', gives: 3300 }],
  ['Share', { formula: '=1/Inputs!R3C2', gives: '#DIV/0!' }],
]);

export const park: Record<string, Answer> & { summary: Answer } = {
  ...ready({ formula: '=Inputs!$B$1*Inputs!$B$2', value: 1000 }),
  summary,
  "dependents 'Cash flow'!F12": success('$G$12'),
  workbookMap: success({
    book: 'Solar park.xlsx',
    sheets: [
      { name: 'Inputs', usedRange: '$A$1:$B$3' },
      { name: 'Cash flow', usedRange: '$A$1:$H$12' },
      { name: 'Summary', usedRange: '$A$1:$B$5' },
    ],
    sheetsTruncated: false,
    names: [],
  }),
  "readFormulas 'Cash flow'!G12": success({
    rows: 1,
    cols: 1,
    formulas: [['=RC[-1]*1.02']],
    values: [],
  }),
  "readFormulas '[Solar park.xlsx]Inputs'!A1:B3": sheet([
    ['Price', 50],
    ['Energy', 20],
    ['Plants', 0],
  ]),
  "readFormulas '[Solar park.xlsx]Cash flow'!A1:H12": sheet(cashFlow),
  "readFormulas '[Solar park.xlsx]Summary'!A1:B5": summary,
};
