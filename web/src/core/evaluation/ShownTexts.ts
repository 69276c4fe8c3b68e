// What cells show on their sheet, which the spreadsheet tells for several at once: a number there is a
// year, a date or so many thousands, by the format of its cell.

import { areaAddress, cellCount, qualified, type Area } from '../address/area';
import type { Job } from '../protocol/Conveyor';
import type { Outcome } from '../protocol/Outcome';
import type { ShownGrid } from '../protocol/verbs';
import { addressOf, type Home } from './expression';
import { keyOf, toldOf } from './front';
import { locate, type PlaceQuestions } from './locate';
import type { Result } from './Result';
import type { ResultCache } from './ResultCache';
import type { Route } from './routes';

type Texts = { texts: (ShownGrid | null)[] };

export type TextQuestions = PlaceQuestions & {
  readTexts(addresses: readonly string[]): Promise<Outcome<Texts>>;
};

/** The most cells whose texts are told at once. */
export const textsLimit = 5_000;
/** The address of one takes some events. */
const atOnce = 12;

/** Cells, or a name of some: it may be another on each sheet. */
export type Shown = { address: string; named: boolean };

export function shownCell({ sheet, row, col }: Home): Shown {
  return { address: qualified(sheet, addressOf(row, col)), named: false };
}

/** The cells that an item's route reads; nothing where it reads none, or too many. */
export function shownOfRoute(route: Route): Shown | undefined {
  if (route.by === 'range') return { address: route.text, named: true };
  if (route.by !== 'cells') return undefined;
  return cellCount(route.area) > textsLimit ? undefined : shownArea(route.sheet, route.area);
}

function shownArea(sheet: string, area: Area): Shown {
  return { address: qualified(sheet, areaAddress(area)), named: false };
}

/** The text where it says something: a cell too narrow for its number shows hashes, or nothing. */
export function saysSomething(text: string | undefined): text is string {
  return text !== undefined && !/^#*$/.test(text.trim());
}

export class ShownTexts {
  private readonly tried = new Set<string>();
  /**
   * What was answered, be it nothing. It holds as long as the formula in view does, which may stay
   * while another cell is selected and nothing else is known any more.
   */
  private readonly answered = new Map<string, Result | undefined>();
  /** Names were asked about while another sheet was in front. */
  private missed = false;

  constructor(
    private readonly questions: TextQuestions,
    private readonly cache: ResultCache,
  ) {}

  /** Another formula is in view, or the same again: what `same` shows stays until it is told anew. */
  clear(same?: Home): void {
    const known = same && key(shownCell(same), same);
    const text = known === undefined ? undefined : this.answered.get(known);
    this.tried.clear();
    this.answered.clear();
    if (known !== undefined && text) this.answered.set(known, text);
    this.missed = false;
  }

  /** Another sheet may be in front now. */
  moved(): void {
    if (!this.missed) return;
    this.tried.clear();
    this.missed = false;
  }

  /** True if it is still to be told what they show. */
  isOpen(shown: Shown, home: Home): boolean {
    const known = key(shown, home);
    return !this.answered.has(known) && !this.cache.find(known);
  }

  grid(shown: Shown, home: Home): ShownGrid | undefined {
    const asked = key(shown, home);
    let known = this.answered.get(asked);
    if (!known) {
      known = this.cache.find(asked);
      if (known) this.answered.set(asked, known);
    }
    return known?.kind === 'array' ? (known.values as ShownGrid | undefined) : undefined;
  }

  /** What a single cell shows. */
  of(shown: Shown, home: Home): string | undefined {
    const grid = this.grid(shown, home);
    return grid?.length === 1 && grid[0]?.length === 1 ? grid[0][0] : undefined;
  }

  next(wanted: readonly Shown[], home: Home, changed: () => void): Job | undefined {
    const asked: Shown[] = [];
    for (const shown of wanted) {
      const known = key(shown, home);
      // What a name stands for depends on the sheet in front, so names are asked for apart.
      if (asked.length === atOnce || (asked[0] && asked[0].named !== shown.named)) continue;
      if (this.tried.has(known) || this.cache.find(known)) continue;
      this.tried.add(known);
      asked.push(shown);
    }
    if (asked.length === 0) return undefined;
    const { epoch } = this.cache;
    const ask = () => this.questions.readTexts(asked.map(({ address }) => address));
    return async () => {
      const outcome = asked[0]?.named
        ? ((await toldOf({ home, far: undefined }, '', this.questions, ask))?.answer ??
          (await this.fromAfar(asked, home)))
        : await ask();
      this.missed ||= outcome === undefined;
      const late = epoch !== this.cache.epoch;
      asked.forEach((shown, i) => {
        const known = key(shown, home);
        const values = outcome?.ok ? outcome.value.texts[i] : undefined;
        // Perhaps the text of a number that is shown no more.
        if (late) this.tried.delete(known);
        else if (!values) this.answered.set(known, undefined);
        else {
          const [rows, cols] = [values.length, values[0]?.length ?? 0];
          const result: Result = { kind: 'array', rows, cols, values };
          this.cache.keep(known, result);
          this.answered.set(known, result);
        }
      });
      changed();
    };
  }

  /** The texts of names while another sheet is in front: by where their cells are, if that can be told. */
  private async fromAfar(names: readonly Shown[], home: Home): Promise<Outcome<Texts> | undefined> {
    const places: string[] = [];
    for (const { address } of names) {
      const place = await locate(address, home, this.questions, this.cache);
      if (place === undefined || place === address) return undefined;
      places.push(place);
    }
    return this.questions.readTexts(places);
  }
}

function key({ address, named }: Shown, home: Home): string {
  return `shown ${keyOf(address, named ? home : undefined)}`;
}
