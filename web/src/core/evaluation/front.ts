// Some questions mean something else while another sheet is in front: names of which each sheet may
// have its own, INDIRECT of a text without a sheet. The page itself brings sheets to the front, to
// show the cells of a row, and the user may at any time. So it is asked afterwards where they are,
// and where that is elsewhere, once more in words that name the sheet, if there are such words.

import type { Outcome } from '../protocol/Outcome';
import type { CellPlace } from '../protocol/verbs';
import type { Home } from './expression';

export type FrontQuestions = {
  pollCell(): Promise<Outcome<CellPlace>>;
};

/** The home's sheet, and the words that mean the same whichever sheet is in front. */
export type Bound = { home: Home; far: string | undefined };

export type Told<T> = { answer: T; /** The sheet in front. */ front: string; isFar: boolean };

/** What is told of the home's sheet; nothing where it is not in front and has to be. */
export async function toldOf<T>(
  { home, far }: Bound,
  near: string,
  questions: FrontQuestions,
  ask: (text: string) => Promise<T>,
): Promise<Told<T> | undefined> {
  const answer = await ask(near);
  const place = await questions.pollCell();
  if (!place.ok) return undefined;
  const { book, sheet } = place.value;
  if (home.book !== undefined && book !== home.book) return undefined;
  if (sheet === home.sheet) return { answer, front: sheet, isFar: false };
  return far === undefined ? undefined : { answer: await ask(far), front: sheet, isFar: true };
}

export function onlyInFront({ sheet }: Home): string {
  return `Only while “${sheet}” is in front.`;
}

/** What is known of a question, by the sheet it was asked for. */
export function keyOf(text: string, home: Home | undefined): string {
  return home ? `${home.sheet}\n${text}` : text;
}
