// What is said of each verb in one place: how long its reply is waited for, and what the panel says
// while the spreadsheet works on it. A new verb has its line here. Pure.

import type { Verb } from './verbs';

/**
 * How long the page waits for a reply, in milliseconds. The native side bounds every call itself and
 * answers in turn, so this only ends waits for replies that were lost.
 */
export const replyDeadline = 120_000;

/** The same for questions that the native side gives up after ten seconds at most. */
export const quickDeadline = 30_000;

/** And for what waits for the user. */
export const userDeadline = 24 * 3_600_000;

export type Traits = {
  deadline: number;
  /** What the spreadsheet does, in words; none of what is no question to it, or not waited for. */
  doing?: (subject: string, application: string) => string;
  /** True if it asks for parts of the formula: how many are known is said with it. */
  asksParts?: true;
  /** True if nothing more of its kind is asked when the user stops it. */
  canStop?: true;
};

export const traits: Readonly<Record<Verb, Traits>> = {
  probe: { deadline: quickDeadline, doing: whichCell },
  readCell: { deadline: quickDeadline, doing: whichCell },
  pollCell: { deadline: replyDeadline, doing: whichCell },
  evaluate: {
    deadline: quickDeadline,
    doing: () => 'Working out parts of the formula…',
    asksParts: true,
    canStop: true,
  },
  deepEval: {
    deadline: replyDeadline,
    doing: () => 'Working out a long part in a scratch workbook…',
    asksParts: true,
    canStop: true,
  },
  readRange: {
    deadline: quickDeadline,
    doing: (subject) => `Reading ${subject}…`,
    asksParts: true,
    canStop: true,
  },
  readTexts: {
    deadline: quickDeadline,
    doing: () => 'Reading what cells show…',
    canStop: true,
  },
  readFormulas: {
    deadline: quickDeadline,
    doing: (subject) => `Reading formulas of ${subject}…`,
  },
  dependents: {
    deadline: quickDeadline,
    doing: (subject) => `Asking which cells use ${subject}…`,
  },
  workbookMap: {
    deadline: quickDeadline,
    doing: () => 'Asking which sheets and names there are…',
  },
  markCells: { deadline: replyDeadline, doing: () => 'Marking cells on the sheet…' },
  reveal: { deadline: replyDeadline, doing: () => 'Showing cells on the sheet…' },
  clearMarks: { deadline: replyDeadline, doing: () => 'Taking marks back…' },
  select: { deadline: quickDeadline, doing: () => 'Selecting cells…' },
  activate: { deadline: replyDeadline },
  log: { deadline: replyDeadline },
  getHighlightColor: { deadline: replyDeadline },
  setHighlightColor: { deadline: replyDeadline },
  setPanelWidth: { deadline: replyDeadline },
  isWelcomed: { deadline: replyDeadline },
  setWelcomed: { deadline: replyDeadline },
  hidePanel: { deadline: replyDeadline },
  focusExcel: { deadline: replyDeadline },
  setConventions: { deadline: replyDeadline },
  loadReview: { deadline: replyDeadline },
  saveReview: { deadline: replyDeadline },
  saveReport: { deadline: userDeadline },
  getSettings: { deadline: replyDeadline },
  setSetting: { deadline: replyDeadline },
  pauseHotKeys: { deadline: replyDeadline },
  checkForUpdates: { deadline: replyDeadline },
  quittingDrawn: { deadline: replyDeadline },
};

function whichCell(_subject: string, application: string): string {
  return `Asking ${application} which cell is selected…`;
}
