import { beforeEach, describe, expect, test } from 'vitest';

import { Explorer } from '../../../src/core/explorer/Explorer';
import { SheetFollower } from '../../../src/core/follow/SheetFollower';
import { commandOf } from '../../../src/core/keyboard/keys';
import { succeeded } from '../../../src/core/protocol/Outcome';
import { FakeClock } from '../../fakes/FakeClock';
import { cell } from '../../fakes/FakeSpreadsheet';
import { FakeWorkbook } from '../../fakes/FakeWorkbook';
import { settled } from '../evaluation/bench';

class Desk extends FakeWorkbook {
  formulas: Record<string, [formula: string, value: number]> = {};
  areas = '$G$12';

  readFormulas(address: string) {
    this.asked.push(`readFormulas ${address}`);
    const [formula, value] = this.formulas[address] ?? ['', 0];
    return Promise.resolve(
      succeeded({ rows: 1, cols: 1, formulas: [[formula]], values: [[value]] }),
    );
  }
  dependents(address: string) {
    this.asked.push(`dependents ${address}`);
    return Promise.resolve(succeeded(this.areas));
  }
  workbookMap() {
    this.asked.push('workbookMap');
    return Promise.resolve(
      succeeded({ book: 'Model.xlsx', sheets: [], sheetsTruncated: false, names: [] }),
    );
  }
  select(addresses: readonly string[]) {
    this.asked.push(`select ${addresses.join()}`);
    return Promise.resolve(succeeded({ areas: 1 }));
  }
}

let desk: Desk;
let clock: FakeClock;
let explorer: Explorer;
let followed: string[];
let left: string[];

beforeEach(() => {
  desk = new Desk();
  clock = new FakeClock();
  followed = [];
  left = [];
  const follower = new SheetFollower(
    {
      markCells: () => Promise.resolve(succeeded({ applied: 1, shadowed: false, moved: false })),
      reveal: () => Promise.resolve(succeeded({ revealed: true })),
      clearMarks: () => Promise.resolve(succeeded({ removed: 1 })),
      locate: (name) => Promise.resolve(name),
    },
    clock,
    () => undefined,
    () => undefined,
    false,
  );
  follower.follow = (destination) => followed.push(destination()?.label ?? 'nothing');
  follower.clear = () => followed.push('clear');
  explorer = new Explorer({
    questions: desk,
    follower,
    clock,
    changed: () => undefined,
    wake: () => undefined,
    leave: (how) => left.push(how),
  });
});

function select(addr: string, formula: string, value: number | string = 1): void {
  explorer.selection({
    status: 'ready',
    content: cell(addr, { formula, value, row: 3, col: 2 }),
    fresh: true,
    slow: false,
    paused: false,
  });
}

async function press(...keys: string[]): Promise<void> {
  for (const key of keys) {
    const command = commandOf({ key, alt: false, control: false, meta: false }, explorer.finding);
    if (command) explorer.command(command);
    await settled();
  }
}

const way = () => explorer.trail.stops.map((stop) => stop.place.addr).join(' ');

describe('another workbook in front', () => {
  const content = { ...cell('A1'), book: 'Other.xlsx' };
  const other = { status: 'ready', content, fresh: true, slow: false, paused: false } as const;

  test('is not asked for the values of the tree that stays', () => {
    select('F12', '=B4+C4');
    explorer.command({ do: 'pin' });
    explorer.selection(other);
    const item = explorer.here?.tree?.active;
    if (item) explorer.see([item]);
    expect(explorer.here?.place.book).toBe('Model.xlsx');
    expect(explorer.evaluator.next()).toBeUndefined();
    expect(explorer.notice).toContain('Model.xlsx');
    select('F12', '=B4+C4');
    expect(explorer.evaluator.next()).toBeDefined();
    expect(explorer.notice).toBe('');
  });

  test('is asked for its own values once the user follows again', () => {
    select('F12', '=B4+C4');
    explorer.command({ do: 'pin' });
    explorer.selection({ ...other, content: { ...content, formula: '=B4', value: 2 } });
    explorer.pin(false);
    const item = explorer.here?.tree?.active;
    if (item) explorer.see([item]);
    expect(explorer.here?.place).toMatchObject({ book: 'Other.xlsx', addr: 'A1' });
    expect(explorer.evaluator.next()).toBeDefined();
    expect(explorer.notice).toBe('');
  });

  test('is not taken for that of the tree: nothing is marked, selected, opened or listed', async () => {
    select('F12', '=B4+C4');
    await press('f');
    explorer.selection(other);
    followed = [];
    await press('ArrowDown', 'Enter', ' ');
    await explorer.select();
    explorer.show('deps');
    await settled();
    explorer.show('tree');
    expect(followed).toEqual([]);
    expect(desk.asked).toEqual([]);
    expect(explorer.here?.place.addr).toBe('F12');
    expect(explorer.notice).toContain('while “Model.xlsx” is in front');
    // Back again, the same keys do what they say.
    select('F12', '=B4+C4');
    await press('ArrowDown', 'Enter');
    expect(desk.asked).toContain("readFormulas 'Summary'!C4");
  });

  test('takes what was on its way to the one that was', async () => {
    select('F12', '=B4+C4');
    await press('f', 'ArrowDown');
    explorer.command({ do: 'drill' });
    explorer.selection(other);
    await settled();
    expect(explorer.here?.place.addr).toBe('F12');
  });
});

describe('the way', () => {
  beforeEach(() => {
    desk.formulas = { "'Summary'!B4": ['=C7*2', 8], "'Data'!C7": ['', 4] };
    select('F12', '=B4+Data!C7');
  });

  test('leads into a precedent and back, without moving the selection', async () => {
    await press('ArrowDown', 'Enter');
    expect(way()).toBe('F12 B4');
    expect(explorer.here?.text).toBe('=C7*2');
    expect(explorer.here?.result).toEqual({ kind: 'value', value: 8 });
    expect(desk.asked).toContain("readFormulas 'Summary'!B4");
    expect(desk.asked.join()).not.toContain('select');
    await press('Backspace');
    expect(explorer.here?.place.addr).toBe('F12');
    expect(explorer.here?.tree?.activeIndex).toBe(1);
    explorer.command({ do: 'forward' });
    expect(explorer.here?.place.addr).toBe('B4');
  });

  test('ends at a constant, which has no tree', async () => {
    await press('End', 'Enter');
    expect(explorer.here).toMatchObject({ text: '', tree: undefined });
    expect(explorer.here?.place).toEqual({ book: 'Model.xlsx', sheet: 'Data', addr: 'C7' });
  });

  test('begins anew where the user goes', async () => {
    await press('ArrowDown', 'Enter');
    select('A1', '=1+1');
    expect(way()).toBe('A1');
  });

  test('stays while it is pinned, and is caught up with afterwards', async () => {
    await press('f');
    select('A1', '=1+1');
    expect(way()).toBe('F12');
    await press('f');
    expect(way()).toBe('A1');
  });

  test('keeps the tree as it is when the same cell is read again', async () => {
    await press('ArrowDown');
    select('F12', '=B4+Data!C7', 99);
    expect(explorer.here?.tree?.activeIndex).toBe(1);
    expect(explorer.here?.result).toEqual({ kind: 'value', value: 99 });
  });

  test('is asked for where only the spreadsheet knows it', async () => {
    desk.expressions = { 'CELL("address",Rate)': "'Data'!$C$7" };
    select('F13', '=Rate*2');
    await press('ArrowDown', 'Enter');
    expect(explorer.here?.place).toMatchObject({ sheet: 'Data', addr: 'C7' });
  });

  test('that leads nowhere is said', async () => {
    select('F13', '=SUM(1,2)');
    await press('ArrowDown', 'Enter');
    expect(explorer.notice).toBe('No cell stands behind this part.');
    await press('ArrowUp');
    expect(explorer.notice).toBe('');
  });
});

describe('the sheet', () => {
  test('follows the active row, by keys and by steps from the spreadsheet', async () => {
    select('F12', '=B4+Data!C7');
    expect(followed).toEqual([]);
    await press('ArrowDown');
    explorer.handle({ name: 'step', direction: 1 });
    expect(followed).toEqual(['Summary!B4', 'Data!C7']);
    explorer.handle({ name: 'step', direction: -1 });
    expect(followed.at(-1)).toBe('Summary!B4');
  });

  test('is left clean when the panel is about to go', () => {
    select('F12', '=B4');
    explorer.handle({ name: 'cleanHide' });
    expect(followed).toEqual(['clear']);
  });

  test('gets everything and the keyboard back by Escape; a second one hides the panel', async () => {
    select('F12', '=B4+1');
    await press('Escape', 'Escape');
    expect(left).toEqual(['focus', 'hide']);
    expect(followed).toEqual(['clear', 'clear']);
    await press('ArrowDown', 'Escape');
    expect(left.at(-1)).toBe('focus');
  });
});

describe('views', () => {
  test('are asked for when they are looked at, once', async () => {
    select('F12', '=B4');
    await press('2');
    expect(explorer.lists.dependents.rows.map(({ row }) => row.text)).toEqual([
      'This sheet',
      'G12',
    ]);
    await press('1', '2', '3');
    explorer.showMap('list');
    await settled();
    expect(desk.asked.filter((text) => /dependents|Map/.test(text))).toEqual([
      "dependents 'Summary'!F12",
      'workbookMap',
    ]);
  });

  test('lead to cells', async () => {
    select('F12', '=B4');
    await press('2', 'ArrowDown', 'Enter');
    expect(explorer.view).toBe('tree');
    expect(way()).toBe('F12 G12');
    expect(followed).toContain('Summary!G12');
  });

  test('mark all areas that a row stands for', async () => {
    desk.areas = '$G$12,$J$12';
    desk.formulas = { "'Summary'!G12": ['=R12C6', 0], "'Summary'!J12": ['=R12C6', 0] };
    select('F12', '=B4');
    await press('2', 'ArrowDown');
    expect(followed.at(-1)).toBe('2 areas');
    expect(explorer.destination()?.addresses).toEqual(["'Summary'!G12", "'Summary'!J12"]);
  });

  test('are opened by a hot key', () => {
    explorer.handle({ name: 'surface', view: 'map', wasVisible: true, wasKey: false });
    expect(explorer.view).toBe('map');
  });
});

test('findings are gone through in order', async () => {
  select('F12', '=SUM(#N/A,1)+SUM(#REF!,2)', 0);
  const tree = explorer.here?.tree;
  explorer.evaluator.look(tree?.outline.items ?? []);
  for (let job = explorer.evaluator.next(); job; job = explorer.evaluator.next()) await job();
  const at = () => tree?.active.node;
  await press('n');
  expect(at()).toMatchObject({ kind: 'error', text: '#N/A' });
  await press('n');
  expect(at()).toMatchObject({ kind: 'error', text: '#REF!' });
  await press('n');
  expect(at()).toMatchObject({ text: '#N/A' });
  await press('p');
  expect(at()).toMatchObject({ text: '#REF!' });
});
