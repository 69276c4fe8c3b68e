// What the page has asked and still waits for, in words. Pure.

import { oneLine } from '../format/visible';
import { traits } from './traits';
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
  const { doing, asksParts } = traits[verb];
  if (!doing) return '';
  const known =
    asksParts && share.all > 0 ? ` ${String(share.known)} of ${String(share.all)} known.` : '';
  return doing(shown, application) + known;
}
