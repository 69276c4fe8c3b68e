// Every state the page can be in, and how it gets there.

import type { Answer, FakePanel } from './FakePanel';
import { odd } from './odd';
import { park } from './park';
import {
  cell,
  error,
  failure,
  longFormula,
  longestFormula,
  model,
  probe,
  range,
  ready,
  settings,
  success,
  value,
} from './samples';

export type Scene = {
  answers: Record<string, Answer>;
  state: string;
  then?: (panel: FakePanel) => Promise<void>;
};

const keys = async (panel: FakePanel, ...pressed: string[]): Promise<void> => {
  await panel.page.getByTestId('tree').focus();
  for (const key of pressed) await panel.page.keyboard.press(key);
};

const failing: Record<string, Answer> = {
  ...ready({ formula: '=ROUND(F9/F31,2)*Inputs!B2', value: null }),
  "readRange 'Cash flow'!F12": range([['#DIV/0!']]),
  "readRange 'Cash flow'!F9:F31": failure({ kind: 'transport', message: 'protected' }),
  "readRange 'Cash flow'!F9": range([[1200]]),
  "readRange 'Cash flow'!F31": range([[0]]),
  "readRange 'Inputs'!B2": range([[0.21]]),
  evaluate: error('#DIV/0!'),
};

const openReview = (panel: FakePanel): Promise<void> =>
  panel.page.getByTestId('tab-review').click();

/** The time of day is another one in each picture. */
const fixTime = (panel: FakePanel): Promise<void> =>
  panel.page.getByTestId('list-note').evaluate((note) => {
    note.textContent = 'All sheets, as read at 10:42.';
  });

const openMap = (panel: FakePanel): Promise<void> => panel.page.getByTestId('tab-map').click();

const allRefused = 'The number of arguments is not what this function takes.';

export const scenes: Record<string, Scene> = {
  model: {
    answers: model,
    state: 'ready',
    then: async (panel) => {
      await panel.verified('same');
      await keys(panel, 'ArrowDown', 'ArrowDown');
      await panel.page.getByTestId('marked').waitFor();
    },
  },
  settings: {
    answers: { ...model, getSettings: success(settings({ summonKey: [8, 4096] })) },
    state: 'ready',
    then: async (panel) => {
      await panel.page.getByTestId('gear').click();
      await panel.page.getByTestId('words-summonKey').waitFor();
    },
  },
  settingsAmiss: {
    answers: {
      ...model,
      getSettings: success(
        settings({
          keysTrouble: 'this desktop has no portal for them',
          fileTrouble: '"pollMs" is not a number',
        }),
      ),
    },
    state: 'ready',
    then: async (panel) => {
      await panel.page.getByTestId('gear').click();
      await panel.page.getByTestId('set-summonKey').click();
    },
  },
  range: {
    answers: model,
    state: 'ready',
    then: async (panel) => {
      await panel.verified('same');
      await keys(panel, 'End', 'ArrowUp', 'ArrowUp');
      if (await panel.page.getByTestId('detail').isHidden()) {
        await panel.page.getByTestId('details').click();
      }
      await panel.page.getByTestId('facts').waitFor();
    },
  },
  drilled: {
    answers: {
      ...model,
      "readRange 'Data'!B2": range([[40_000]]),
      'readRange Rate': range([[0.1]]),
    },
    state: 'ready',
    then: async (panel) => {
      await panel.verified('same');
      await keys(panel, 'End', 'ArrowUp', 'ArrowUp', 'Enter');
      await panel.shows('address', 'C2');
      await panel.page.getByTestId('marked').waitFor();
    },
  },
  long: {
    answers: ready({ formula: longFormula, value: 182_204.375_512_3 }),
    state: 'ready',
  },
  longest: {
    answers: { ...ready({ formula: longestFormula, value: 4_096 }), evaluate: value(4_096) },
    state: 'ready',
    then: (panel) => keys(panel, 'End'),
  },
  deep: {
    answers: {
      ...ready({ formula: `=${'ABS('.repeat(64)}A1${')'.repeat(64)}`, value: 5 }),
      evaluate: value(5),
      "readRange 'Cash flow'!A1": range([[5]]),
    },
    state: 'ready',
    then: async (panel) => {
      await keys(panel, 'End');
      await panel.shows('step', 'Step 65 of 65');
    },
  },
  huge: {
    answers: {
      ...ready({ formula: `=MAX(${Array<string>(5_000).fill('-x').join(',')})`, value: -0.1 }),
      evaluate: value(-0.1),
      'readRange x': range([[0.1]]),
    },
    state: 'ready',
    then: async (panel) => {
      await panel.page.getByTestId('row').first().waitFor();
      await keys(panel, '*', 'ArrowDown', '*', 'End');
      await panel.shows('step', 'Step 10001 of 10001');
    },
  },
  welcome: {
    answers: { ...model, isWelcomed: success(false) },
    state: 'ready',
    then: async (panel) => {
      await panel.verified('same');
      await panel.page.getByTestId('welcome').waitFor();
    },
  },
  help: {
    answers: model,
    state: 'ready',
    then: async (panel) => {
      await panel.verified('same');
      await panel.page.keyboard.press('?');
      await panel.page.getByTestId('help').waitFor();
    },
  },
  manual: {
    answers: {
      ...model,
      readCell: cell({ formula: '=IF(B4>0,SUM(Data!C2:C5)/B4,0)', value: 990 }),
      [`evaluate CELL("format",'Cash flow'!F12)`]: value(',2'),
    },
    state: 'ready',
    then: async (panel) => {
      await panel.verified('differs');
      await panel.shows('state', 'Gives 1,284.50 now; it may wait for a calculation.');
    },
  },
  slow: {
    answers: model,
    state: 'ready',
    then: async (panel) => {
      await panel.verified('same');
      await panel.lay('readCell', undefined);
      await panel.send('selectionChanged', { book: 'b', sheet: 's', addr: 'B2' });
      await panel.tells(/^(?!Waiting).+…( \d+ of \d+ known\.)?$/);
    },
  },
  slowValues: {
    answers: {
      ...Object.fromEntries(
        Object.entries(model).filter(([asked]) => !asked.startsWith('evaluate')),
      ),
      evaluate: undefined as never,
    },
    state: 'ready',
    then: async (panel) => {
      await panel.asked('evaluate');
      await panel.tells(/^(?!Waiting).+…( \d+ of \d+ known\.)?$/);
    },
  },
  starting: {
    answers: { ...ready(), probe: undefined as never },
    state: 'starting',
    then: (panel) => panel.page.getByRole('heading', { name: 'Looking at' }).waitFor(),
  },
  closed: {
    answers: model,
    state: 'ready',
    then: async (panel) => {
      await panel.verified('same');
      await keys(panel, 'ArrowDown');
      await panel.page.getByTestId('marked').waitFor();
      await panel.lay('probe', probe('noWorkbook'));
      await panel.send('probeNeeded', {});
      await panel.reaches('noWorkbook');
    },
  },
  multiline: {
    answers: {
      ...ready({
        formula: '=LET(\n  rate, Inputs!$B$2,\n  growth, 1 + rate,\n  F11 * growth ^ 2\n)',
        value: true,
      }),
      evaluate: value(121),
      "readRange 'Inputs'!$B$2": range([[0.1]]),
      "readRange 'Inputs'!B2": range([[0.1]]),
      "readRange 'Cash flow'!F11": range([[100]]),
    },
    state: 'ready',
    then: (panel) => panel.verified('differs'),
  },
  error: {
    answers: failing,
    state: 'ready',
    then: (panel) => panel.page.getByTestId('failure').waitFor(),
  },
  refused: {
    answers: {
      ...ready({ formula: '=RAND()*2+PRICE.OF("x")+SUM(Jan:Dec!A1)+ABS(1)', value: 3 }),
      evaluate: success({ ok: false, kind: 'transport', message: allRefused }),
    },
    state: 'ready',
  },
  problem: {
    answers: ready({ formula: '=SUM(A1,(B2+)*3', value: 3 }),
    state: 'ready',
    then: (panel) => panel.page.getByTestId('problem').waitFor(),
  },
  constant: { answers: ready({ value: 1284.5 }), state: 'ready' },
  blank: { answers: ready({ value: '' }), state: 'ready' },
  text: {
    answers: ready({ value: 'Operation and maintenance, per year and MW. '.repeat(12) }),
    state: 'ready',
  },
  names: {
    answers: ready({
      book: 'A workbook with quite a long name, version 12 (final, really final).xlsx',
      sheet: 'דוח שנתי של החברה',
      addr: 'XFD1048576',
      formula: "=Inputs!B2*(1+Rate)+'דוח שנתי'!C7",
    }),
    state: 'ready',
  },
  dependents: {
    answers: model,
    state: 'ready',
    then: async (panel) => {
      await panel.page.getByTestId('tab-deps').click();
      await panel.page.getByText('and 3 more areas').waitFor();
      for (const key of ['ArrowDown', 'ArrowDown', 'ArrowRight']) {
        await panel.page.keyboard.press(key);
      }
      await panel.tells(/^(?!Waiting).+…( \d+ of \d+ known\.)?$/);
    },
  },
  everywhere: {
    answers: park,
    state: 'ready',
    then: async (panel) => {
      await panel.page.getByTestId('tab-deps').click();
      await panel.page.getByText('All 3 sheets, as read at').waitFor();
      for (const text of ['Where errors start', 'What it rests on', 'B2']) {
        const row = panel.page.getByTestId('place').filter({ hasText: text });
        await row.first().locator('.twisty').click();
        await panel.settled();
      }
      await panel.page.getByText('used 1×').first().waitFor();
      await fixTime(panel);
    },
  },
  noDependents: {
    answers: { ...model, "dependents 'Cash flow'!F12": success('') },
    state: 'ready',
    then: async (panel) => {
      await panel.page.getByTestId('tab-deps').click();
      await panel.page.getByTestId('list-empty').waitFor();
      await panel.tells(/^(?!Waiting).+…( \d+ of \d+ known\.)?$/);
    },
  },
  noAnswer: {
    answers: {
      ...model,
      "dependents 'Cash flow'!F12": failure({
        kind: 'timeout',
        message: 'LibreOffice Calc did not respond within 10s',
      }),
    },
    state: 'ready',
    then: async (panel) => {
      await panel.page.getByTestId('tab-deps').click();
      await panel.page.getByTestId('list-failed').waitFor();
      await panel.tells(/^(?!Waiting).+…( \d+ of \d+ known\.)?$/);
    },
  },
  map: {
    answers: {
      ...odd,
      readCell: cell({
        formula: '=B2*2',
        value: 80,
        sheet: 'Prices',
        addr: 'F2',
        row: 2,
        col: 6,
        selection: '$F$2',
      }),
    },
    state: 'ready',
    then: async (panel) => {
      await openMap(panel);
      await panel.page.getByTestId('legend').getByText('Finding').waitFor();
      for (const key of ['n', '+']) await panel.page.getByTestId('picture').press(key);
      await fixTime(panel);
    },
  },
  mapSheets: {
    answers: park,
    state: 'ready',
    then: async (panel) => {
      await openMap(panel);
      await panel.page.getByTestId('mode-sheets').click();
      await panel.page.getByText('takes from Inputs').waitFor();
      await fixTime(panel);
    },
  },
  mapReading: {
    answers: { ...park, "readFormulas '[Solar park.xlsx]Summary'!A1:B5": undefined as never },
    state: 'ready',
    then: async (panel) => {
      await openMap(panel);
      await panel.page.getByText('So far 2 of 3 sheets.').waitFor();
      await panel.page.getByTestId('map-sheet').selectOption('Summary');
      await panel.tells(/^(?!Waiting).+…( \d+ of \d+ known\.)?$/);
    },
  },
  mapAsking: {
    answers: {
      ...park,
      workbookMap: success({
        book: 'Solar park.xlsx',
        sheets: [{ name: 'Cash flow', usedRange: '$A$1:$ZZ$60000' }],
        sheetsTruncated: false,
        names: [],
      }),
    },
    state: 'ready',
    then: async (panel) => {
      await openMap(panel);
      await panel.page.getByTestId('scan-go').waitFor();
    },
  },
  mapList: {
    answers: model,
    state: 'ready',
    then: async (panel) => {
      await openMap(panel);
      await panel.page.getByTestId('mode-list').click();
      await panel.page.getByTestId('place').first().waitFor();
    },
  },
  review: {
    answers: odd,
    state: 'ready',
    then: async (panel) => {
      await openReview(panel);
      await panel.page.getByText('All 2 sheets, as read at').waitFor();
      await panel.page.getByTestId('list').press('End');
      await panel.page.getByTestId('marked').waitFor();
    },
  },
  reviewJudged: {
    answers: { ...odd, saveReview: failure('could not save the review: No space left on device') },
    state: 'ready',
    then: async (panel) => {
      await openReview(panel);
      await panel.page.getByText('All 2 sheets, as read at').waitFor();
      await panel.page.getByTestId('say-fault').click();
      await panel.page.getByTestId('list').press('ArrowDown');
      await panel.page.getByTestId('say-note').fill('Agreed with the client');
      await panel.page.getByTestId('say-fine').click();
      await panel.page.getByTestId('say-trouble').waitFor();
      await panel.page.getByTestId('marked').waitFor();
    },
  },
  reviewFiltered: {
    answers: odd,
    state: 'ready',
    then: async (panel) => {
      await openReview(panel);
      await panel.page.getByTestId('filter-kind').selectOption('constant');
      await panel.page.getByTestId('filter-sheet').selectOption('Costs');
      await panel.page.getByTestId('review-absent').waitFor();
    },
  },
  reviewReading: {
    answers: { ...odd, "readFormulas '[Solar park.xlsx]Prices'!A1:H4": undefined as never },
    state: 'ready',
    then: async (panel) => {
      await openReview(panel);
      await panel.page.getByText('Reading “Prices”').waitFor();
      await panel.tells(/^(?!Waiting).+…( \d+ of \d+ known\.)?$/);
    },
  },
  reviewEmpty: {
    answers: {
      ...odd,
      workbookMap: success({
        book: 'Solar park.xlsx',
        sheets: [{ name: 'Costs', usedRange: null }],
        sheetsTruncated: false,
        names: [],
      }),
      evaluate: value(0),
    },
    state: 'ready',
    then: async (panel) => {
      await openReview(panel);
      await panel.shows(
        'review-absent',
        'This workbook has no formulas. Its map (3) shows what it holds.',
      );
    },
  },
  noted: {
    answers: {
      ...model,
      markCells: success({ applied: 1, shadowed: true }),
      reveal: success({ revealed: true, activated: false, unhid: 'rows 12–14, column C' }),
    },
    state: 'ready',
    then: async (panel) => {
      await panel.verified('same');
      await keys(panel, 'ArrowDown');
      await panel.page.getByText('column C shown').waitFor();
    },
  },
  colours: {
    answers: model,
    state: 'ready',
    then: async (panel) => {
      await panel.verified('same');
      await panel.page.getByTestId('colour').click();
    },
  },
  pinned: {
    answers: model,
    state: 'ready',
    then: async (panel) => {
      await panel.verified('same');
      await keys(panel, 'f');
      await panel.shows('follow', 'Pinned');
    },
  },
  paused: {
    answers: model,
    state: 'ready',
    then: async (panel) => {
      await panel.verified('same');
      await panel.send('followState', { paused: true });
    },
  },
  busy: {
    answers: model,
    state: 'ready',
    then: async (panel) => {
      await panel.verified('same');
      await panel.lay('probe', probe('busy'));
      await panel.send('probeNeeded', {});
      await panel.reaches('busy');
    },
  },
  busyAtFirst: { answers: { ...ready(), probe: probe('busy') }, state: 'busy' },
  notRunning: { answers: { ...ready(), probe: probe('notRunning') }, state: 'notRunning' },
  noWorkbook: { answers: { ...ready(), probe: probe('noWorkbook') }, state: 'noWorkbook' },
  denied: { answers: { ...ready(), probe: probe('denied') }, state: 'denied' },
  unreadable: {
    answers: {
      ...ready(),
      readCell: failure({ kind: 'transport', message: 'The active sheet holds no cells.' }),
    },
    state: 'unreadable',
  },
  hostile: {
    answers: ready({
      sheet: '<b>x</b>\u202E evil \u2066',
      formula: `="<img src=x onerror=alert(1)>"&"\u202E${'long '.repeat(60)}"`,
      value: `</span><script>alert(1)</script>\u202E${'y'.repeat(300)}`,
    }),
    state: 'ready',
  },
};
