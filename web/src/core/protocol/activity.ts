// What the page has asked and still waits for, in words. Pure.

import { oneLine } from '../format/visible';
import type { Verb } from './verbs';

/** A question that has no answer yet. */
export type Open = { verb: Verb; /** Its first argument, where that is a text. */ subject: string };

/** Of the parts of the formula that are in sight. */
export type Share = { known: number; all: number };

/** Beyond this long it is said what is being done. */
export const tellAfter = 1_000;

const subjectLimit = 60;

/** Empty for what is no question to the spreadsheet. */
export function activityText({ verb, subject }: Open, share: Share, application: string): string {
  const shown = oneLine(subject.slice(0, subjectLimit));
  const known = share.all > 0 ? ` ${String(share.known)} of ${String(share.all)} known.` : '';
  switch (verb) {
    case 'probe':
    case 'readCell':
    case 'pollCell':
      return `Asking ${application} which cell is selected…`;
    case 'evaluate':
      return `Working out parts of the formula…${known}`;
    case 'deepEval':
      return `Working out a long part in a scratch workbook…${known}`;
    case 'readRange':
      return `Reading ${shown}…${known}`;
    case 'readTexts':
      return 'Reading what cells show…';
    case 'readFormulas':
      return `Reading formulas of ${shown}…`;
    case 'dependents':
      return `Asking which cells use ${shown}…`;
    case 'workbookMap':
      return 'Asking which sheets and names there are…';
    case 'markCells':
      return 'Marking cells on the sheet…';
    case 'reveal':
      return 'Showing cells on the sheet…';
    case 'clearMarks':
      return 'Taking marks back…';
    case 'select':
      return 'Selecting cells…';
    default:
      return '';
  }
}

/** True if nothing more of its kind is asked when the user stops it. */
export function canStop({ verb }: Open): boolean {
  return ['evaluate', 'deepEval', 'readRange', 'readTexts'].includes(verb);
}
