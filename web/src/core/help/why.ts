// Why a part has no value, or is not used, in one sentence. The reason itself is short, because it
// stands in a row. Pure.

const whys: [reason: RegExp, why: string][] = [
  [
    /^(Runs|Uses) .*so only when you ask\.$|links, so only|finds cells by texts, so only/,
    'It may reach out of the workbook, to the network or to other files, and nothing leaves your workbook unless you want it.',
  ],
  [
    /so only when you ask\.$/,
    'What it would reach cannot be read from the workbook, so it is run only when you want it.',
  ],
  [
    /^Long: /,
    'The spreadsheet evaluates no text of more than 255 characters, so this is worked out by formulas in a workbook that is made for it and thrown away.',
  ],
  [
    /^Too long to be asked/,
    'The spreadsheet evaluates no text of more than 255 characters, and this part cannot be taken apart.',
  ],
  [
    /^Changes every calculation\.$/,
    'Each question would draw another number, and none of them would be the one in the cell.',
  ],
  [
    /^Changes with time\.$/,
    'The cell holds what it was at its last calculation, and asking now would give another value.',
  ],
  [
    /^Depends on the call that gives /,
    'A parameter has a value only while its LAMBDA is being called, and each call may give another.',
  ],
  [/^Depends on the row of the table\.$/, 'A column has one value for each row of its table.'],
  [
    /^The table is not named here\.$/,
    'No question to the spreadsheet tells in which table a cell stands.',
  ],
  [
    /^(Cells of several sheets|Several areas) have no value of their own\.$/,
    'Only the function around them makes one value of them; its row shows it.',
  ],
  [
    /^Only while .* is in front\.$/,
    'A name may mean other cells on each sheet, and the spreadsheet works it out for the sheet in front.',
  ],
  [
    /took too long\.$/,
    'It was still calculating after ten seconds; ask again when it has come to rest.',
  ],
  [
    /is busy\.$/,
    'It answers nobody while a cell is edited, a dialog is open or it calculates; ask again then.',
  ],
  [
    /^This part cannot be read\.$|has no (body|result)\.$/,
    'The formula is not whole here, so there is nothing that could be asked for.',
  ],
  [
    /unexpected shape\.$|gives no value for this part\.$/,
    'The answer cannot be shown as a value, and showing another one would mislead.',
  ],
];

export const notUsedWhy =
  'The condition before it takes another branch, so the spreadsheet did not calculate this one.';

/** Empty where the reason says all there is. */
export function whyOf(reason: string): string {
  return whys.find(([words]) => words.test(reason))?.[1] ?? '';
}
