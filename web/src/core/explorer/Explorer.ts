// What the page shows and what its keys do: one cell's formula as a tree (or one of the lists),
// the way the user came, and the sheet that follows. Holds no element of the document; whoever draws
// it is told when something changed and looks again.

import { Evaluator } from '../evaluation/Evaluator';
import { locate } from '../evaluation/locate';
import { ResultCache } from '../evaluation/ResultCache';
import { compare } from '../evaluation/verification';
import { addressLimit } from '../follow/SheetFollower';
import { print } from '../formula/print';
import type { Command } from '../keyboard/keys';
import { TypeAhead } from '../keyboard/TypeAhead';
import { Atlas, type MapMode } from '../map/Atlas';
import type { Item } from '../outline/Item';
import type { NativeEvent } from '../protocol/events';
import { isScalar, type Json } from '../protocol/json';
import type { CellPlace } from '../protocol/verbs';
import { Review } from '../review/Review';
import type { CellContent, SelectionState } from '../selection/state';
import { CellLabels } from '../scan/CellLabels';
import { Lists, type ListedCells } from '../workbook/Lists';
import type { Place } from '../workbook/places';
import type { PlaceView } from '../workbook/PlaceView';
import { areaAddress, parseArea, qualified } from '../address/area';
import { targetOf } from '../evaluation/routes';
import { destinationOf, placesOfRow } from './destination';
import { nextFinding } from './findings';
import { leadOf } from './lead';
import type { ExplorerPorts } from './ports';
import type { View } from './view';
import { homeOf, isPlainNumber, stopAt, stopOf } from './stops';
import { samePlace, Trail, type Stop } from './Trail';

const pageRows = 10;

export class Explorer {
  readonly trail = new Trail();
  readonly cache = new ResultCache();
  readonly evaluator: Evaluator;
  readonly lists: Lists;
  readonly review: Review;
  readonly atlas: Atlas;
  private readonly labels: CellLabels | undefined;
  view: View = 'tree';
  pinned = false;
  /** What came of the last command, where that is worth a word; empty where it is not. */
  private said = '';
  private latest: CellContent | undefined;
  private left = false;
  private readonly typing: TypeAhead;

  constructor(private readonly ports: ExplorerPorts) {
    this.evaluator = new Evaluator(ports.questions, this.cache, ports.changed);
    this.lists = new Lists(ports.questions, ports.changed, ports.scans);
    this.review = new Review(ports.changed, ports.scans, ports.reviews);
    this.atlas = new Atlas(ports.changed, ports.scans);
    this.labels = ports.scans && new CellLabels(ports.scans, ports.changed);
    this.typing = new TypeAhead(ports.clock);
  }

  get here(): Stop | undefined {
    return this.trail.here;
  }

  get finding(): boolean {
    return this.typing.active;
  }

  get list(): PlaceView | undefined {
    if (this.view === 'map' && this.atlas.mode !== 'list') return undefined;
    return this.view === 'review' ? this.review.list : this.lists.of(this.view);
  }

  /** The selected cell was read, or cannot be. */
  selection(state: SelectionState): void {
    const { content, status } = state;
    const { follower } = this.ports;
    if (status === 'noWorkbook' || status === 'notRunning') follower.lose();
    if (status !== 'ready' || !state.fresh || !content || content === this.latest) return;
    const before = this.latest;
    const otherBook = before !== undefined && before.book !== content.book;
    this.latest = content;
    follower.regain();
    // What was marked belongs to the tree that is left, and its workbook may have been closed.
    const { marked, changed } = follower.current;
    if (otherBook && !this.pinned && (marked !== '' || changed)) follower.clear();
    // It was read because something may have happened to the workbook.
    this.cache.enter(content.book);
    this.ports.scans?.enter(content.book);
    this.observe(content, content.formula, content.value);
    this.cache.clear();
    // Another cell of the same workbook tells nothing new about the one that stays.
    const isBeside =
      this.pinned && before !== undefined && !otherBook && !samePlace(before, content);
    if (otherBook) this.lists.forget();
    else if (!isBeside) this.lists.outdate();
    if (!this.pinned) this.begin(content);
    else {
      this.evaluator.leave(this.elsewhere);
      this.load();
    }
    this.moved();
  }

  /** What was read of a cell tells whether the model of the workbook is still true. */
  private observe(place: CellPlace, formula: string, value: Json): void {
    if (isScalar(value)) void this.ports.scans?.observe(place, formula, value);
  }

  /** Another sheet may be in front now. */
  moved(): void {
    this.evaluator.moved();
  }

  /** True while another workbook than that of the formula in view is in front, which alone answers. */
  private get elsewhere(): boolean {
    const { here, latest } = this;
    return here !== undefined && latest !== undefined && here.place.book !== latest.book;
  }

  get notice(): string {
    const { here, said } = this;
    if (said !== '' || !here || !this.elsewhere) return said;
    return `Values can be asked for while “${here.place.book}” is in front.`;
  }

  handle(event: NativeEvent): void {
    this.left = false;
    if (event.name === 'surface') this.show(event.view);
    if (event.name === 'step') this.step(event.direction);
    if (event.name === 'cleanHide') this.ports.follower.clear();
  }

  /** The panel has the keyboard again. */
  entered(): void {
    this.left = false;
  }

  show(view: View): void {
    this.view = view;
    this.load();
    this.ports.changed();
  }

  /** The list that is the view is loaded. Who uses cells of a workbook is asked while it is in front. */
  private load(): void {
    const { here } = this;
    if (this.view === 'review' && here) this.review.look(here.place.book, !this.elsewhere);
    if (this.view === 'map') this.loadMap();
    if (this.view === 'map' && this.atlas.mode !== 'list') return;
    if (this.view === 'deps' && this.elsewhere) return;
    this.lists.load(this.view, this.listed, this.beside);
  }

  private loadMap(): void {
    const { listed } = this;
    const area = listed && parseArea(listed.addr);
    if (area) this.atlas.look(listed.book, { sheet: listed.sheet, area }, !this.elsewhere);
  }

  /** One sheet's picture, all sheets, or the list. */
  showMap(mode: MapMode): void {
    this.atlas.mode = mode;
    this.show('map');
  }

  /** The cells whose dependents are listed: those selected around the cell, or the cell alone. */
  get listed(): ListedCells | undefined {
    const { here, latest } = this;
    if (!here || !latest || !samePlace(here.place, latest)) return here?.place;
    const area = latest.selection === undefined ? undefined : parseArea(latest.selection);
    return area ? { ...here.place, addr: areaAddress(area) } : here.place;
  }

  /** What is selected while another cell of the same workbook stays in view. */
  private get beside(): ListedCells | undefined {
    const { here, latest } = this;
    if (!here || !latest || latest.book !== here.place.book || samePlace(here.place, latest)) {
      return undefined;
    }
    const area = latest.selection === undefined ? undefined : parseArea(latest.selection);
    return { ...latest, addr: area ? areaAddress(area) : latest.addr };
  }

  /** What a human would call the listed cells; empty as long as that is not known. */
  get listedLabel(): string {
    const { listed } = this;
    const area = listed && parseArea(listed.addr);
    return area ? (this.labels?.of(listed.book, { sheet: listed.sheet, area }) ?? '') : '';
  }

  /** The same for the cell whose formula is shown. */
  get hereLabel(): string {
    const { here } = this;
    if (!here) return '';
    const { place, row, col } = here;
    const area = { top: row, left: col, bottom: row, right: col };
    return this.labels?.of(place.book, { sheet: place.sheet, area }) ?? '';
  }

  /** What a human would call the cells that a part of the formula is; empty for other parts. */
  labelOf(item: Item): string {
    const { here, labels } = this;
    if (!here || !labels || item.node.kind !== 'reference') return '';
    const target = targetOf(item.node, item.scope, homeOf(here));
    return target ? labels.of(here.place.book, target) : '';
  }

  command(command: Command): void {
    if (command.do !== 'leave') this.left = false;
    this.said = '';
    switch (command.do) {
      case 'view':
        this.show(command.view);
        return;
      case 'back':
        this.go(this.trail.index - 1);
        return;
      case 'forward':
        this.go(this.trail.index + 1);
        return;
      case 'pin':
        this.pin(!this.pinned);
        return;
      case 'leave':
        this.leave();
        return;
      default:
        if (this.list) this.inList(this.list, command);
        else if (this.view === 'tree' && this.here?.tree) this.inTree(this.here, command);
        this.ports.changed();
    }
  }

  /** Takes the row as the active one; the sheet follows. */
  activate(item: Item): void {
    this.here?.tree?.activate(item);
    this.follow();
    this.ports.changed();
  }

  /** The user wants a value that is asked for only then. */
  want(item: Item): void {
    this.evaluator.want(item);
    this.ports.changed();
  }

  /** These items are in sight, the nearest to the active one first. */
  see(items: readonly Item[]): void {
    this.evaluator.look(items);
    this.ports.wake();
  }

  /** The details of this item are in sight. */
  detail(item: Item | undefined): void {
    this.evaluator.detail(item);
    this.ports.wake();
  }

  /** Takes a row of the list as the active one. */
  choose(index: number): void {
    this.list?.activate(index);
    if (this.view === 'review') this.review.opened();
    this.follow();
    this.ports.changed();
  }

  toggleRow(index: number): void {
    this.list?.toggle(index);
    this.ports.changed();
  }

  toggle(item: Item): void {
    this.here?.tree?.toggle(item);
    this.ports.changed();
  }

  pin(pinned: boolean): void {
    this.pinned = pinned;
    const { latest, here } = this;
    if (!pinned && latest && !(here && samePlace(here.place, latest))) this.begin(latest);
    this.ports.changed();
  }

  go(index: number): void {
    if (!this.trail.go(index)) return;
    this.enter();
  }

  /** Opens the cell that the item leads to. */
  async drill(item: Item): Promise<void> {
    const { here } = this;
    if (!here || this.elsewhere) return;
    const lead = await leadOf(item, homeOf(here), this.ports.questions);
    if (here !== this.here) return;
    if (lead) await this.visit(lead.sheet, lead.address);
    else {
      this.said = 'No cell stands behind this part.';
      this.ports.changed();
    }
  }

  /** Opens a cell without moving the spreadsheet's selection. */
  async visit(sheet: string, address: string): Promise<void> {
    const { here } = this;
    if (this.elsewhere) return;
    const book = here?.place.book ?? this.latest?.book ?? '';
    const outcome = await this.ports.questions.readFormulas(qualified(sheet, address), 'a1');
    if (here !== this.here || this.elsewhere) return;
    const stop = outcome.ok ? stopAt({ book, sheet, addr: address }, outcome.value) : undefined;
    if (stop) {
      this.trail.push(stop);
      this.view = 'tree';
      this.enter();
      const destination = { label: `${sheet}!${address}`, addresses: [qualified(sheet, address)] };
      this.follow(() => destination);
      return;
    }
    this.said = outcome.ok ? 'This cell cannot be read.' : outcome.failure.message;
    this.ports.changed();
  }

  /** Selects the active row's cells in the spreadsheet itself. */
  async select(): Promise<void> {
    const destination = this.destination();
    if (!destination || this.elsewhere) return;
    const addresses = destination.addresses.slice(0, addressLimit);
    const outcome = await this.ports.questions.select(addresses);
    this.said = outcome.ok ? `Selected ${destination.label}.` : outcome.failure.message;
    this.ports.changed();
  }

  private begin(content: CellContent): void {
    const { here } = this;
    const stop = stopOf(content);
    const sameFormula = here?.text === stop.text && samePlace(here.place, stop.place);
    // Read again: what was open stays open, and the way that led here stays, too.
    if (here && sameFormula) {
      const same = compare(here.result, stop.result).state === 'same';
      here.result = stop.result;
      this.enter(same);
      return;
    }
    this.trail.begin(stop);
    this.enter();
  }

  private enter(same = false): void {
    const { here } = this;
    this.evaluator.show(
      here?.tree && { home: homeOf(here), outline: here.tree.outline, result: here.result },
      here && isPlainNumber(here) ? homeOf(here) : undefined,
      same,
    );
    this.evaluator.leave(this.elsewhere);
    if (here?.tree) {
      const { place, row, col } = here;
      const area = { top: row, left: col, bottom: row, right: col };
      this.review.sees(place.book, { sheet: place.sheet, area });
    }
    this.lists.dependents.outdate();
    this.load();
    this.ports.changed();
  }

  private inTree(here: Stop, command: Command): void {
    const { tree } = here;
    if (!tree) return;
    const before = tree.active;
    if (command.do === 'move') tree.move(command.how, pageRows);
    if (command.do === 'openSiblings') tree.openSiblings();
    if (command.do === 'find') {
      tree.find(this.typing.add(command.character), ({ node }) => print(node));
    }
    if (command.do === 'finding') {
      const found = nextFinding(tree, this.evaluator.resultOf, command.direction);
      if (found) tree.activate(found);
    }
    if (command.do === 'drill') void this.drill(tree.active);
    if (command.do === 'reveal') this.reveal();
    if (tree.active !== before) this.follow();
  }

  private inList(list: PlaceView, command: Command): void {
    const before = list.active;
    if (command.do === 'move') list.move(command.how, pageRows);
    if (command.do === 'finding') list.find(command.direction);
    if (command.do === 'reveal') this.reveal();
    const place = list.active?.place;
    if (command.do === 'drill' && this.view === 'review') this.goThere();
    else if (command.do === 'drill' && place) void this.visitPlace(place);
    if (this.view === 'review' && (list.active !== before || command.do === 'drill'))
      this.review.opened();
    if (list.active !== before) this.follow();
  }

  /** Marks the active row's cells at once, and selects them in the spreadsheet. */
  goThere(): void {
    if (this.elsewhere) return;
    const destination = this.destination();
    if (destination && this.ports.follower.current.able) this.ports.follower.go(destination);
    void this.select();
  }

  async visitPlace(place: Place): Promise<void> {
    const sheet = place.sheet ?? this.here?.place.sheet;
    if (sheet !== undefined) await this.visit(sheet, place.first);
  }

  /** A step from inside the spreadsheet, which keeps the keyboard. */
  private step(direction: 1 | -1): void {
    const how = direction > 0 ? 'down' : 'up';
    if (this.list) this.list.move(how, pageRows);
    else if (this.view === 'map') this.atlas.toBreak(direction);
    else this.here?.tree?.move(how);
    this.follow();
    this.ports.changed();
  }

  /** The address of a name's cells, for marking and showing them. */
  async locate(name: string): Promise<string | undefined> {
    const { here } = this;
    if (!here || this.elsewhere) return undefined;
    return locate(name, homeOf(here), this.ports.questions, this.cache);
  }

  destination() {
    const { here, list } = this;
    if (list) return list.active && placesOfRow(list.active, here?.place.sheet);
    if (this.view === 'map') return this.atlas.destination;
    return here?.tree && destinationOf(here.tree.active, homeOf(here));
  }

  private follow(destination = () => this.destination()): void {
    if (this.elsewhere) return;
    this.ports.follower.follow(() => (this.elsewhere ? undefined : destination()));
  }

  /** Marks and shows the active row's cells at once. */
  reveal(): void {
    if (this.elsewhere) return;
    const destination = this.destination();
    if (!destination) this.said = 'This part names no cells.';
    else if (this.ports.follower.current.able) this.ports.follower.go(destination);
    else void this.select();
  }

  /** First everything of ours and the keyboard go back, then the panel goes. */
  private leave(): void {
    this.ports.follower.clear();
    this.ports.leave(this.left ? 'hide' : 'focus');
    this.left = true;
  }
}
