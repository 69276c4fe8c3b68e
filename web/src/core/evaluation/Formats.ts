// How cells show their numbers: several asked for at once, because CELL tells one at a time and its
// answers can be joined.

import { areaAddress, cellCount, qualified } from '../address/area';
import { parseCellFormat, type CellFormat } from '../format/cellFormat';
import type { Item } from '../outline/Item';
import type { Job } from '../protocol/Conveyor';
import type { EvaluationQuestions } from './Asker';
import { addressOf, type Home } from './expression';
import { keyOf, toldOf } from './front';
import type { Result } from './Result';
import type { ResultCache } from './ResultCache';
import { expressionLimit, type Route } from './routes';

const mark = '|';

const questionOf = (cell: string) => `CELL("format",${cell})`;

/** Asks for the item's format: for the whole formula its own cell's, else that of the cell it names. */
function questionFor(item: Item, route: Route, home: Home): string | undefined {
  if (item.parent === undefined) {
    return questionOf(qualified(home.sheet, addressOf(home.row, home.col)));
  }
  // A name need not be one of cells, and no question of others may fail for that.
  if (route.by === 'range') return `IFERROR(${questionOf(route.text)},"")`;
  if (route.by !== 'cells' || cellCount(route.area) !== 1) return undefined;
  return questionOf(qualified(route.sheet, areaAddress(route.area)));
}

export class Formats {
  private readonly tried = new Set<string>();
  /** Names were asked about while another sheet was in front. */
  private missed = false;

  constructor(
    private readonly questions: EvaluationQuestions,
    private readonly cache: ResultCache,
  ) {}

  clear(): void {
    this.tried.clear();
    this.missed = false;
  }

  /** Another sheet may be in front now. */
  moved(): void {
    if (this.missed) this.clear();
  }

  of(item: Item, route: Route, home: Home): CellFormat | undefined {
    const question = questionFor(item, route, home);
    const known = question === undefined ? undefined : this.find(question, home);
    if (known?.kind !== 'value' || typeof known.value !== 'string') return undefined;
    return parseCellFormat(known.value);
  }

  /** Names are those of the home's sheet. */
  private find(question: string, home: Home): Result | undefined {
    return this.cache.find(keyOf(question, home));
  }

  next(home: Home, shown: { item: Item; route: Route }[], changed: () => void): Job | undefined {
    const asked: string[] = [];
    let text = '';
    let named = false;
    for (const { item, route } of shown) {
      const question = questionFor(item, route, home);
      if (question === undefined || this.tried.has(question)) continue;
      if (this.find(question, home)) continue;
      const longer = text === '' ? question : `${text}&"${mark}"&${question}`;
      if (longer.length > expressionLimit) continue;
      text = longer;
      this.tried.add(question);
      asked.push(question);
      named ||= route.by === 'range';
    }
    if (asked.length === 0) return undefined;
    const { epoch } = this.cache;
    return async () => {
      const ask = (question: string) => this.questions.evaluate(question);
      const bound = { home, far: undefined };
      const outcome = named
        ? (await toldOf(bound, text, this.questions, ask))?.answer
        : await ask(text);
      this.missed ||= outcome === undefined;
      const told = outcome?.ok && typeof outcome.value === 'string' ? outcome.value : undefined;
      if (told === undefined || epoch !== this.cache.epoch) return;
      const codes = told.split(mark);
      if (codes.length !== asked.length) return;
      asked.forEach((question, i) => {
        this.cache.keep(keyOf(question, home), { kind: 'value', value: codes[i] ?? '' });
      });
      changed();
    };
  }
}
