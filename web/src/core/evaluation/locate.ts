// Where a name's cells are, as the spreadsheet tells it: marking, showing and reading texts take a name
// for cells of the sheet in front.

import { areaAddress, qualified } from '../address/area';
import type { Json } from '../protocol/json';
import type { Outcome } from '../protocol/Outcome';
import { whereAnswer, whereQuestion } from '../workbook/places';
import type { Home } from './expression';
import { keyOf, toldOf, type FrontQuestions } from './front';
import type { ResultCache } from './ResultCache';
import { expressionLimit } from './routes';

export type PlaceQuestions = FrontQuestions & {
  evaluate(expression: string, asked?: boolean): Promise<Outcome<Json>>;
};

/** "'Inputs'!B4:B9"; nothing where the name stands for no cells. Those in front come without a sheet. */
function addressIn(answer: Json, front: string): string | undefined {
  const place = whereAnswer(answer);
  return place && qualified(place.sheet ?? front, areaAddress(place.area));
}

/** Nothing where another sheet is in front, whose own name it may be. */
export async function locate(
  name: string,
  home: Home,
  questions: PlaceQuestions,
  cache: ResultCache,
): Promise<string | undefined> {
  const question = whereQuestion(name);
  if (question.length > expressionLimit) return name;
  const known = cache.find(keyOf(question, home));
  if (known?.kind === 'value') return String(known.value);
  const { epoch } = cache;
  const isTable = name.includes('[');
  const far = whereQuestion(isTable ? name : qualified(home.sheet, name));
  const bound = { home, far: far.length > expressionLimit ? undefined : far };
  const told = await toldOf(bound, question, questions, (text) => questions.evaluate(text));
  if (!told) return undefined;
  const { answer, front, isFar } = told;
  const found = answer.ok ? addressIn(answer.value, front) : undefined;
  const address = found ?? (isFar ? undefined : name);
  if (address !== undefined && answer.ok && epoch === cache.epoch) {
    cache.keep(keyOf(question, home), { kind: 'value', value: address });
  }
  return address;
}
