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

/** As long as a formula may be. */
export const longestFormula =
  `=${Array.from({ length: 2_000 }, (_, i) => `A${String(i + 1)}`).join('+')}`.slice(0, 8_192);

export const value = (given: unknown) => success({ ok: true, value: given });
export const error = (text: string) => success({ ok: false, kind: 'excelError', message: text });
export const range = (values: unknown[][]) =>
  success({ rows: values.length, cols: values[0]?.length ?? 0, values });

/** What single cells show. */
export const texts = (...shown: string[]) => success({ texts: shown.map((text) => [[text]]) });

export const formulas = (given: string[][]) =>
  success({ rows: given.length, cols: given[0]?.length ?? 0, formulas: given, values: [] });

export const inFront = (sheet: string) => success({ book: 'Solar park.xlsx', sheet, addr: 'A1' });

export const ready = (more: Record<string, unknown> = {}): Record<string, Answer> => ({
  probe: probe('ok'),
  readCell: cell(more),
  pollCell: inFront('Cash flow'),
  readRange: failure({ kind: 'transport', message: 'not laid ready' }),
  readTexts: success({ texts: [] }),
  evaluate: success({ ok: false, kind: 'transport', message: 'not laid ready' }),
  markCells: success({ applied: 1, shadowed: false, moved: true }),
  reveal: success({ revealed: true, activated: false }),
  clearMarks: success({ removed: 1 }),
  select: success({ areas: 1 }),
  getHighlightColor: success([255, 0, 255]),
  setHighlightColor: success(null),
  setPanelWidth: success(null),
  isWelcomed: success(true),
  setWelcomed: success(null),
  setConventions: success(null),
  loadReview: success(null),
  saveReview: success(null),
  hidePanel: success(null),
  log: success(null),
  focusExcel: success(null),
});

/** A cell of a model, with the values of everything in its formula. */
export const model: Record<string, Answer> = {
  ...ready({ formula: '=IF(B4>0,SUM(Data!C2:C5)/B4,0)', value: 1284.5 }),
  "readRange 'Cash flow'!B4": range([[12]]),
  "readRange 'Data'!C2:C5": range([[4_000], [3_800.25], [3_613.75], [4_000]]),
  "evaluate 'Cash flow'!B4>0": value(true),
  'evaluate SUM(Data!C2:C5)': value(15_414),
  "evaluate SUM(Data!C2:C5)/'Cash flow'!B4": value(1284.5),
  "evaluate IF('Cash flow'!B4>0,SUM(Data!C2:C5)/'Cash flow'!B4,0)": value(1284.5),
  "readTexts 'Data'!C2:C5": success({
    texts: [[['4,000'], ['3,800.3'], ['3,613.8'], ['4,000']]],
  }),
  "readTexts 'Cash flow'!F12,'Cash flow'!B4": texts('1,284.50', '12'),
  "readFormulas 'Data'!C2": success({
    rows: 1,
    cols: 1,
    formulas: [['=B2*Rate']],
    values: [[4_000]],
  }),
  "readFormulas 'Cash flow'!B4": success({ rows: 1, cols: 1, formulas: [['']], values: [[12]] }),
  "dependents 'Cash flow'!F12": success("$G$12:$H$12,$D$20:$F$31,'Summary'!$B$4"),
  "readFormulas 'Cash flow'!G12:H12": formulas([['=RC[-1]*(1+R2C2)', '=RC[-1]*(1+R2C2)']]),
  "readFormulas 'Cash flow'!D20:F31": formulas(
    Array.from({ length: 12 }, (_, i) =>
      i === 5 ? ['=R12C6*RC2', '=1200', '=R12C6*RC2'] : Array<string>(3).fill('=R12C6*RC2'),
    ),
  ),
  "readFormulas 'Summary'!B4": formulas([["=SUM('Cash flow'!R12)"]]),
  workbookMap: success({
    book: 'Solar park.xlsx',
    sheets: [
      { name: 'Cash flow', usedRange: '$A$1:$N$48' },
      { name: 'Data', usedRange: '$A$1:$H$371' },
      { name: 'Empty', usedRange: null },
    ],
    sheetsTruncated: false,
    names: [
      { name: 'Rate', refersTo: '=Data!$B$1' },
      { name: 'Old', refersTo: '=#REF!$A$1' },
      { name: 'Prices', refersTo: "='[Prices.xlsx]2024'!$A$1:$B$9" },
    ],
  }),
};

type KeySample = [code: number, modifiers: number] | null;

/** The settings as the native side tells them. */
export function settings(
  more: { summonKey?: KeySample; depsKey?: KeySample; mapKey?: KeySample } & Record<
    string,
    unknown
  > = {},
): Record<string, unknown> {
  const { summonKey = [0, 2560], depsKey = [1, 2560], mapKey = null, ...others } = more;
  const key = (given: KeySample) => ({
    code: given?.[0] ?? null,
    modifiers: given?.[1] ?? null,
    trouble: '',
  });
  return {
    keys: { summonKey: key(summonKey), depsKey: key(depsKey), mapKey: key(mapKey) },
    keysTrouble: '',
    pollMs: 300,
    highlightRGB: [255, 0, 255],
    following: true,
    login: { on: false, unavailable: 'installed app only' },
    updates: { unavailable: 'not in this build' },
    file: '/home/me/.local/share/Quorin/config.json',
    fileTrouble: '',
    ...others,
  };
}
