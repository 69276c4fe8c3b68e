// The values of a formula's parts, for whoever looks at them: what is visible first, from the focus
// outward, one question at a time. A new formula raises the generation, and answers of an older one
// are let go (what they say stays in the cache while it holds).

import { cellCount, covers, type Area } from '../address/area';
import type { ShownAs } from '../format/value';
import type { Item, Outline } from '../outline/Item';
import type { Share } from '../protocol/activity';
import type { Job, Source } from '../protocol/Conveyor';
import type { ShownGrid } from '../protocol/verbs';
import { Asker, type Answer, type EvaluationQuestions } from './Asker';
import { counts, deciders, type Counts } from './branches';
import { derive, takesArgument } from './derive';
import type { Home } from './expression';
import { firstFailure, type FirstFailure } from './firstFailure';
import { Formats } from './Formats';
import { planReads } from './readPlan';
import { resultOfCells, type Result } from './Result';
import type { ResultCache } from './ResultCache';
import { routeOf, type Route, type RouteOf } from './routes';
import { saysSomething, shownCell, shownOfRoute, ShownTexts, type Shown } from './ShownTexts';
import { compare, type Verification } from './verification';

export type Subject = {
  home: Home;
  outline: Outline;
  /** What the cell itself holds. */
  result: Result;
};

export type ItemState =
  | { status: 'waiting' | 'asking' }
  | { status: 'known'; result: Result }
  /** Asked only when the user wants it. */
  | { status: 'offered'; reason: string }
  | { status: 'refused'; reason: string };

/** Ranges with more cells are read when someone opens them; until then their size is shown. */
export const readAtOnce = 1_000;
/** How many parts are asked for to find where an error comes from. */
const huntLimit = 100;
/** After so many answers that came too late, nothing more is asked until the user wants it. */
const patience = 2;

const waiting: ItemState = { status: 'waiting' };

export class Evaluator implements Source {
  private subject: Subject | undefined;
  private generation = 0;
  private states: ItemState[] = [];
  private routes: (RouteOf | undefined)[] = [];
  private looked: readonly Item[] = [];
  private wanted = new Set<Item>();
  /** Read one by one, because a range that held several was refused. */
  private readonly alone = new Set<Item>();
  /** Can be asked only while their formula's sheet is in front, and it was not. */
  private readonly away = new Set<Item>();
  /** Found to reach out of the workbook. */
  private readonly reaching = new Set<Item>();
  /** What the user asked for although it reaches out. */
  private readonly asked = new Set<Item>();
  private elsewhere = false;
  private verified: Verification = { state: 'open' };
  private hunted = 0;
  private late = 0;
  private halted = false;
  /** Why nothing more is asked, once `late` or `halted` say so. */
  private trouble = '';
  private readonly asker: Asker;
  private readonly formats: Formats;
  private readonly texts: ShownTexts;
  /** A cell without a formula that shows a number. */
  private constant: Home | undefined;
  /** What the details are of: of several cells, too, it is told what they show. */
  private detailed: Item | undefined;

  constructor(
    questions: EvaluationQuestions,
    private readonly cache: ResultCache,
    /** Hears that something is known now that was not. */
    private readonly changed: () => void,
  ) {
    this.asker = new Asker(questions, cache);
    this.formats = new Formats(questions, cache);
    this.texts = new ShownTexts(questions, cache);
  }

  /**
   * From now on this formula, or this cell that has none; nothing at all without either. `same`: the
   * cell was in view and holds what it held.
   */
  show(subject: Subject | undefined, constant?: Home, same = false): void {
    this.generation += 1;
    // A formula that is read again stays in sight as it is, and nobody looks at it anew.
    if (subject?.outline !== this.subject?.outline) this.looked = [];
    this.subject = subject;
    this.constant = constant;
    this.detailed = undefined;
    this.states = [];
    this.routes = [];
    this.wanted.clear();
    this.alone.clear();
    this.away.clear();
    this.reaching.clear();
    this.asked.clear();
    this.verified = { state: 'open' };
    this.hunted = 0;
    this.late = 0;
    this.halted = false;
    this.formats.clear();
    this.texts.clear(same ? (subject?.home ?? constant) : undefined);
    if (subject) this.states[0] = { status: 'known', result: subject.result };
  }

  /**
   * The items that are or soon will be visible, the one with the focus first. What is known of them
   * without asking is known from here on: whoever draws them next need not hear of it.
   */
  look(items: readonly Item[]): void {
    this.looked = items;
    if (this.subject && this.settleAll(items).settled > 0 && this.failure) this.changed();
  }

  /** The user wants this one's value, whatever it costs. */
  want(item: Item): void {
    const result = this.resultOf(item);
    const isUnread = result?.kind === 'array' && !result.values;
    const { status } = this.ownStateOf(item);
    // What the row said is what the user agrees to: that it reaches out.
    if (status === 'offered' && (this.reaching.delete(item) || this.routeOf(item).reaches)) {
      this.asked.add(item);
    }
    if (isUnread || status === 'refused' || status === 'offered') this.states[item.id] = waiting;
    this.wanted.add(item);
    this.late = 0;
    this.halted = false;
  }

  /** Nothing more is asked about this formula until the user wants a value. */
  stop(): void {
    this.halted = true;
    this.trouble = 'Stopped.';
    this.changed();
  }

  /** How many of the parts in sight are known or will not be. */
  get share(): Share {
    const waits = (item: Item) => ['waiting', 'asking'].includes(this.ownStateOf(item).status);
    const all = this.looked.filter((item) => this.countsOf(item) !== 'no');
    return { known: all.filter((item) => !waits(item)).length, all: all.length };
  }

  /** Another sheet may be in front now. */
  moved(): void {
    this.formats.moved();
    this.texts.moved();
    if (this.away.size === 0) return;
    const { root } = this.subject?.outline ?? {};
    for (const item of this.away) {
      if (this.stateOf(item).status === 'refused') this.states[item.id] = waiting;
      if (item === root) this.verified = { state: 'open' };
    }
    this.away.clear();
    this.changed();
  }

  /** While another workbook is in front, nothing can be asked. */
  leave(elsewhere: boolean): void {
    this.elsewhere = elsewhere;
  }

  /** What is not asked any more does not wait: it is there to be asked for. */
  stateOf(item: Item): ItemState {
    const state = this.ownStateOf(item);
    return state.status === 'waiting' && this.hasStopped
      ? { status: 'offered', reason: this.trouble }
      : state;
  }

  private ownStateOf(item: Item): ItemState {
    return this.states[item.id] ?? waiting;
  }

  private get hasStopped(): boolean {
    return this.halted || this.late >= patience;
  }

  readonly resultOf = (item: Item): Result | undefined => {
    const state = this.states[item.id];
    return state?.status === 'known' ? state.result : undefined;
  };

  countsOf(item: Item): Counts {
    return counts(item, this.resultOf);
  }

  routeOf(item: Item): RouteOf {
    const known = this.routes[item.id];
    if (known || !this.subject) return known ?? { route: { by: 'nothing', reason: '' } };
    return (this.routes[item.id] = routeOf(item.node, item.scope, this.subject.home));
  }

  /** How the item's number stands on the sheet; for the whole formula how its cell shows it. */
  shownAs(item: Item): ShownAs | undefined {
    const { subject } = this;
    const shown = this.shownOf(item);
    if (!subject || !shown) return undefined;
    const text = this.texts.of(shown, subject.home);
    return saysSomething(text) ? { text } : this.formatOf(item);
  }

  /** True if it is still to be told how the cell in view, with a formula or without, shows its number. */
  get isTextOpen(): boolean {
    const { subject } = this;
    const home = subject?.home ?? this.constant;
    if (!home || this.elsewhere || (subject && this.hasStopped)) return false;
    return this.texts.isOpen(shownCell(home), home);
  }

  /** As numbers of the item's cell are shown, others than the one it holds, too. */
  formatOf(item: Item): ShownAs | undefined {
    const { subject } = this;
    const format = subject && this.formats.of(item, this.routeOf(item).route, subject.home);
    return format && { format };
  }

  /** What the cells of the item show, where it is several and was asked for by `detail`. */
  gridOf(item: Item): ShownGrid | undefined {
    const shown = this.shownOf(item);
    return this.subject && shown && this.texts.grid(shown, this.subject.home);
  }

  /** The same of the cell that has no formula. */
  get constantShownAs(): ShownAs | undefined {
    const { constant } = this;
    const text = constant && this.texts.of(shownCell(constant), constant);
    return saysSomething(text) ? { text } : undefined;
  }

  /** The item whose details are looked at. */
  detail(item: Item | undefined): void {
    this.detailed = item;
  }

  private shownOf(item: Item): Shown | undefined {
    const { subject } = this;
    if (!subject) return undefined;
    return item === subject.outline.root
      ? shownCell(subject.home)
      : shownOfRoute(this.routeOf(item).route);
  }

  get verification(): Verification {
    return this.verified;
  }

  get failure(): FirstFailure | undefined {
    return this.subject && firstFailure(this.subject.outline.root, this.resultOf);
  }

  next(): Job | undefined {
    if (this.elsewhere) return undefined;
    const { subject, constant } = this;
    if (constant) return this.texts.next([shownCell(constant)], constant, this.changed);
    if (!subject || this.hasStopped) return undefined;
    return (
      this.firstOf([...this.wanted]) ??
      this.firstOf(this.looked) ??
      this.texts.next(this.textsWanted(), subject.home, this.changed) ??
      this.verify() ??
      this.hunt() ??
      this.formats.next(subject.home, this.formatsWanted(), this.changed)
    );
  }

  /** The most urgent question among `items`; what needs none is settled on the way. */
  private firstOf(items: readonly Item[]): Job | undefined {
    const { settled, needed } = this.settleAll(items);
    if (settled > 0) this.changed();
    const cells = this.readJob(needed);
    // What takes one of its arguments is known without asking once that argument is.
    const other = needed.find((item) => !takesArgument(item)) ?? needed[0];
    return cells ?? (other && this.job([other], this.routeOf(other).route));
  }

  /** Settles what needs no question, and what then needs none; what still needs one is left. */
  private settleAll(items: readonly Item[]): { settled: number; needed: Item[] } {
    for (let all = 0; ;) {
      const open = new Set<Item>();
      for (const item of items) {
        if (this.ownStateOf(item).status !== 'waiting') continue;
        for (const one of this.opened(item)) open.add(one);
      }
      const needed = [...open].filter((item) => !this.settle(item));
      const settled = open.size - needed.length;
      all += settled;
      if (settled === 0) return { settled: all, needed };
    }
  }

  /** The item itself, or what must be known before it is clear whether it counts. */
  private opened(item: Item): Item[] {
    if (this.wanted.has(item)) return [item];
    switch (this.countsOf(item)) {
      case 'yes':
        return [item];
      case 'no':
        return [];
      case 'open': {
        const status = (decider: Item) => this.ownStateOf(decider).status;
        const open = deciders(item, this.resultOf);
        const waits = open.some((decider) => ['waiting', 'asking'].includes(status(decider)));
        // What decides cannot be had, or only when the user wants it: the part is shown all the same.
        return waits ? open.filter((decider) => status(decider) === 'waiting') : [item];
      }
    }
  }

  /** Settles what needs no question; says whether the item is settled now. */
  private settle(item: Item): boolean {
    const { route, ask } = this.routeOf(item);
    const large = route.by === 'cells' && cellCount(route.area) > readAtOnce;
    const known = this.asker.known(route) ?? derive(item, this.resultOf);
    if (known) this.states[item.id] = { status: 'known', result: known };
    else if (route.by === 'nothing') {
      this.states[item.id] = { status: 'refused', reason: route.reason };
    } else if (this.wanted.has(item)) return false;
    else if (ask !== undefined) this.states[item.id] = { status: 'offered', reason: ask };
    else if (large) {
      this.states[item.id] = { status: 'known', result: sizeOf(route.area) };
    } else return false;
    this.wanted.delete(item);
    return true;
  }

  /** Reads the cells of the first item that names some, and with it those of its neighbours. */
  private readJob(items: readonly Item[]): Job | undefined {
    const named = items.flatMap((item) => {
      const { route } = this.routeOf(item);
      return route.by === 'cells' ? [{ item, route }] : [];
    });
    const first = named[0];
    if (!first) return undefined;
    const { sheet } = first.route;
    const ofSheet = this.alone.has(first.item)
      ? [first]
      : named.filter(({ item, route }) => route.sheet === sheet && !this.alone.has(item));
    const area = planReads(ofSheet.map(({ route }) => route.area))[0];
    if (!area) return undefined;
    const inside = ofSheet.filter(({ route }) => covers(area, route.area));
    return this.job(
      inside.map(({ item }) => item),
      { by: 'cells', sheet, area },
      (item) => {
        const { route } = this.routeOf(item);
        const values = route.by === 'cells' && this.cache.cells(route.sheet, route.area);
        return values ? resultOfCells(values) : undefined;
      },
    );
  }

  private job(items: Item[], route: Route, pick?: (item: Item) => Result | undefined): Job {
    const { generation } = this;
    for (const item of items) this.states[item.id] = { status: 'asking' };
    return async () => {
      // Only for the one that was wanted, and once.
      const only = items.length === 1 ? items[0] : undefined;
      const answer = await this.asker.ask(route, only !== undefined && this.asked.delete(only));
      if (generation !== this.generation) return;
      // One bad range must not take the others of its box with it: each is tried alone.
      const apart = 'reason' in answer && !answer.later && items.length > 1;
      for (const item of items) {
        if (!apart) this.wanted.delete(item);
        if (apart) this.alone.add(item);
        this.states[item.id] = apart ? waiting : this.stateFrom(answer, pick?.(item));
        if (isAway(answer)) this.away.add(item);
        if ('reaches' in answer) this.reaching.add(item);
      }
      this.heed(answer);
      this.changed();
    };
  }

  private stateFrom(answer: Answer, own: Result | undefined): ItemState {
    if ('result' in answer) return { status: 'known', result: own ?? answer.result };
    const { reason, later, reaches = false } = answer;
    return { status: later || reaches ? 'offered' : 'refused', reason };
  }

  private heed(answer: Answer): void {
    if ('result' in answer) {
      this.late = 0;
      return;
    }
    if (answer.later) this.late += 1;
    if (answer.halt) this.halted = true;
    this.trouble = answer.reason;
  }

  /** Asks for the whole formula once more, to see whether its cell holds what it gives. */
  private verify(): Job | undefined {
    const { subject } = this;
    if (this.verified.state !== 'open' || !subject) return undefined;
    const { root } = subject.outline;
    const { route, ask } = this.routeOf(root);
    const reason = reasonToSkip(route, ask);
    if (reason !== undefined) {
      this.verified = { state: 'skipped', reason };
      this.changed();
      return undefined;
    }
    const settle = (answer: Answer): void => {
      this.verified =
        'result' in answer
          ? compare(subject.result, answer.result)
          : { state: 'skipped', reason: answer.reason };
      if (isAway(answer)) this.away.add(root);
      this.heed(answer);
      this.changed();
    };
    const known = this.asker.known(route);
    if (known) {
      settle({ result: known });
      return undefined;
    }
    const { generation } = this;
    return async () => {
      const answer = await this.asker.ask(route);
      if (generation === this.generation) settle(answer);
    };
  }

  /** Follows an error down to where it begins. */
  private hunt(): Job | undefined {
    const failure = this.failure;
    if (!failure || this.hunted >= huntLimit) return undefined;
    const open = failure.open.filter((item) => this.ownStateOf(item).status === 'waiting');
    const job = this.firstOf(open);
    if (job) this.hunted += 1;
    return job;
  }

  private numbersShown(): Item[] {
    const root = this.subject?.outline.root;
    return [...(root ? [root] : []), ...this.looked].filter((item) => {
      const result = this.resultOf(item);
      return result?.kind === 'value' && typeof result.value === 'number';
    });
  }

  private textsWanted(): Shown[] {
    const { detailed } = this;
    const values = detailed && this.resultOf(detailed);
    const several = values?.kind === 'array' && values.values ? [detailed as Item] : [];
    return [...this.numbersShown(), ...several].flatMap((item) => this.shownOf(item) ?? []);
  }

  /** Where the text of the cell does not tell, or is not that of the number that is shown. */
  private formatsWanted(): { item: Item; route: Route }[] {
    const { subject, verified } = this;
    if (!subject) return [];
    const wanted = this.numbersShown().filter((item) => {
      if (item === subject.outline.root && verified.state === 'differs') return true;
      const shown = this.shownOf(item);
      return shown && !saysSomething(this.texts.of(shown, subject.home));
    });
    return wanted.map((item) => ({ item, route: this.routeOf(item).route }));
  }
}

function isAway(answer: Answer): boolean {
  return 'away' in answer && answer.away === true;
}

function sizeOf(area: Area): Result {
  const rows = area.bottom - area.top + 1;
  return { kind: 'array', rows, cols: area.right - area.left + 1 };
}

function reasonToSkip(route: Route, ask: string | undefined): string | undefined {
  if (route.by === 'nothing') return route.reason;
  if (ask !== undefined) return ask;
  if (route.by === 'expression' && route.volatile) return 'Changes with time.';
  return undefined;
}
