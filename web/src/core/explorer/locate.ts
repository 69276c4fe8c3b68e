// Where a name's cells are, as the spreadsheet tells it: marking and showing take a name for cells
// of the sheet in front.

import { areaAddress } from '../evaluation/readPlan';
import type { EvaluationQuestions } from '../evaluation/Asker';
import type { ResultCache } from '../evaluation/ResultCache';
import { expressionLimit } from '../evaluation/routes';
import { parseArea, qualified } from '../address/area';
import { placeOf } from '../workbook/places';

/** "'Inputs'!B4:B9"; nothing where the name stands for no cells, or for cells in front. */
function addressIn(answer: string): string | undefined {
  const [where = '', rows, cols] = answer.split('|');
  const place = placeOf(where);
  const first = place && parseArea(place.first);
  if (place?.sheet === undefined || !first) return undefined;
  const bottom = first.top + Number(rows) - 1;
  const right = first.left + Number(cols) - 1;
  if (!(bottom >= first.top && right >= first.left)) return undefined;
  return qualified(place.sheet, areaAddress({ ...first, bottom, right }));
}

export async function locate(
  name: string,
  questions: Pick<EvaluationQuestions, 'evaluate'>,
  cache: ResultCache,
): Promise<string> {
  const question = `CELL("address",${name})&"|"&ROWS(${name})&"|"&COLUMNS(${name})`;
  if (question.length > expressionLimit) return name;
  const known = cache.find(question);
  if (known?.kind === 'value') return String(known.value);
  const { epoch } = cache;
  const outcome = await questions.evaluate(question);
  const told =
    outcome.ok && typeof outcome.value === 'string' ? addressIn(outcome.value) : undefined;
  const address = told ?? name;
  if (outcome.ok && epoch === cache.epoch) cache.keep(question, { kind: 'value', value: address });
  return address;
}
