// What the spreadsheet might answer.

import type { Answer } from './FakePanel';

export const success = (payload: unknown): Answer => ({ ok: true, payload });
export const failure = (payload: unknown): Answer => ({ ok: false, payload });

export const probe = (state: string) => success({ state });

export function cell(more: Record<string, unknown> = {}): Answer {
  const formula = more.formula ?? '';
  return success({
    book: 'Solar park.xlsx',
    sheet: 'Cash flow',
    addr: 'F12',
    row: 12,
    col: 6,
    formula,
    formulaLocal: formula,
    value: 1284.5,
    selection: '$F$12',
    region: '$A$3:$N$48',
    ...more,
  });
}

export const longFormula = `=IFERROR(IF(AND($B$4>0,Inputs!$C$7<>"off"),SUMIFS('Energy yield'!$F$8:$F$371,'Energy yield'!$B$8:$B$371,">="&F$5,'Energy yield'!$B$8:$B$371,"<"&EDATE(F$5,1))*INDEX(Prices[Merchant],MATCH(YEAR(F$5),Prices[Year],0))*(1+Inflation)^(YEAR(F$5)-BaseYear)-MAX(0,F31-F$14)*0.5%,NA()),#N/A)`;

export const ready = (more: Record<string, unknown> = {}): Record<string, Answer> => ({
  probe: probe('ok'),
  readCell: cell(more),
  log: success(null),
  focusExcel: success(null),
});
