// A small workbook in which some cells are not what their neighbours are, as it is answered to a scan.

import type { Answer } from './FakePanel';
import { sheet, type Content } from './park';
import { ready, success } from './samples';

const formula = (text: string, gives: string | number = 0): Content => ({ formula: text, gives });

/** Twelve rows of numbers and their totals in row 13, one of which ends a row too early. */
const costs: Content[][] = [
  ['', 2030, 2031, 2032, 2033, 2034],
  ...Array.from({ length: 11 }, (_, i): Content[] => [
    `Cost ${String(i + 1)}`,
    ...Array.from({ length: 5 }, (__, j) => 100 + i * 7 + j * 3),
  ]),
  [
    'Total cost',
    ...[2, 3, 4, 5, 6].map((col) =>
      formula(col === 4 ? '=SUM(R[-11]C:R[-2]C)' : '=SUM(R[-11]C:R[-1]C)', 1_485),
    ),
  ],
];

/** Prices that grow by a rate; one of them was typed in, one takes another row. */
const prices: Content[][] = [
  ['Growth', 1.02],
  [
    'Power',
    40,
    ...[3, 4, 5, 6, 7, 8].map((col) => (col === 5 ? 43.2 : formula('=RC[-1]*R1C2', 41))),
  ],
  ['Heat', 30, ...[3, 4, 5, 6, 7, 8].map(() => formula('=RC[-1]*R1C2', 31))],
  [
    'Gas',
    20,
    ...[3, 4, 5, 6, 7, 8].map((col) =>
      formula(col === 6 ? '=R[-1]C[-1]*R1C2' : '=RC[-1]*R1C2', 21),
    ),
  ],
];

export const odd: Record<string, Answer> & { costs: Answer } = {
  ...ready({ formula: '=B2*2', value: 80, sheet: 'Prices', addr: 'H2', row: 2, col: 8 }),
  costs: sheet(costs),
  workbookMap: success({
    book: 'Solar park.xlsx',
    sheets: [
      { name: 'Costs', usedRange: '$A$1:$F$13' },
      { name: 'Prices', usedRange: '$A$1:$H$4' },
    ],
    sheetsTruncated: false,
    names: [],
  }),
  "readFormulas '[Solar park.xlsx]Costs'!A1:F13": sheet(costs),
  "readFormulas '[Solar park.xlsx]Prices'!A1:H4": sheet(prices),
};

/** A workbook of 5,400 formulas, each of which takes one cell with other dollar signs once. */
export function many(): Record<string, Answer> {
  const names = Array.from({ length: 9 }, (_, i) => `Sheet ${String(i + 1)}`);
  const rows = (name: number) =>
    Array.from({ length: 600 }, (_, i): Content[] => {
      const own = `ROUND(R1C1,${String(name * 600 + i)})`;
      return [i === 0 ? 5 : '', formula(`=R1C1+${own}-R[${String(-i)}]C[-1]`, 7)];
    });
  return {
    ...ready(),
    workbookMap: success({
      book: 'Solar park.xlsx',
      sheets: names.map((name) => ({ name, usedRange: '$A$1:$B$600' })),
      sheetsTruncated: false,
      names: [],
    }),
    ...Object.fromEntries(
      names.map((name, i) => [`readFormulas '[Solar park.xlsx]${name}'!A1:B600`, sheet(rows(i))]),
    ),
  };
}
