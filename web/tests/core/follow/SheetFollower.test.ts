import { beforeEach, describe, expect, test } from 'vitest';

import { SheetFollower, type FollowState } from '../../../src/core/follow/SheetFollower';
import { failed, succeeded, type Outcome } from '../../../src/core/protocol/Outcome';
import type { Marked, Revealed } from '../../../src/core/protocol/verbs';
import { FakeClock } from '../../fakes/FakeClock';

let clock: FakeClock;
let asked: string[];
let marked: Outcome<Marked>;
let revealed: Outcome<Revealed>;
let cleared: Outcome<{ removed: number }>;
let follower: SheetFollower;
let state: FollowState;

const b4 = { label: 'Data!B4', addresses: ["'Data'!B4"] };
const c5 = { label: 'Data!C5', addresses: ["'Data'!C5"] };

async function run(): Promise<void> {
  for (let job = follower.next(); job; job = follower.next()) await job();
}

function start(costsUndo: boolean): void {
  clock = new FakeClock();
  asked = [];
  marked = succeeded({ applied: 1, shadowed: false, moved: false });
  revealed = succeeded({ revealed: true, activated: false });
  cleared = succeeded({ removed: 1 });
  follower = new SheetFollower(
    {
      markCells: (addresses, colour) => {
        asked.push(`mark ${addresses.join(' ')} ${colour.join()}`);
        return Promise.resolve(marked);
      },
      reveal: (addresses) => {
        asked.push(`reveal ${addresses.join(' ')}`);
        return Promise.resolve(revealed);
      },
      clearMarks: () => {
        asked.push('clear');
        return Promise.resolve(cleared);
      },
      locate: (name) => {
        if (name === 'Rate') return Promise.resolve("'Inputs'!B4:B9");
        return Promise.resolve(name === 'Far' ? undefined : name);
      },
    },
    clock,
    () => undefined,
    (next) => {
      state = next;
    },
    costsUndo,
  );
}

beforeEach(() => {
  start(true);
});

test('while it must stay where it is nothing is shown, and marks are taken back', async () => {
  follower.go(b4);
  expect(follower.next(false)).toBeUndefined();
  await run();
  expect(asked).toEqual(["mark 'Data'!B4 255,0,255", "reveal 'Data'!B4"]);
  follower.clear();
  await follower.next(false)?.();
  expect(asked.at(-1)).toBe('clear');
});

describe('the sheet follows', () => {
  test('a moment after a row became the active one', async () => {
    follower.follow(() => b4);
    clock.advance(79);
    expect(follower.next()).toBeUndefined();
    clock.advance(1);
    await run();
    expect(asked).toEqual(["mark 'Data'!B4 255,0,255", "reveal 'Data'!B4"]);
    expect(state).toEqual({
      marked: 'Data!B4',
      unhidden: '',
      changed: false,
      notes: [],
      able: true,
    });
  });

  test('and says so where nobody can tell where the cells are', async () => {
    follower.follow(() => ({ label: 'Far', addresses: ['Far'], names: new Set(['Far']) }));
    clock.advance(80);
    await run();
    expect(asked).toEqual([]);
    expect(state.notes.join()).toContain('only while its sheet is in front');
  });

  test('the last of several rows only', async () => {
    follower.follow(() => b4);
    clock.advance(50);
    follower.follow(() => c5);
    clock.advance(80);
    await run();
    expect(asked[0]).toContain('C5');
    expect(asked).toHaveLength(2);
  });

  test('not to where the user has gone on from meanwhile', async () => {
    follower.go(b4);
    const job = follower.next();
    follower.go(c5);
    await job?.();
    expect(asked).toEqual(["mark 'Data'!B4 255,0,255"]);
    await run();
    expect(asked.at(-1)).toBe("reveal 'Data'!C5");
  });

  test('in the colour that was chosen', async () => {
    follower.useColour([1, 2, 3]);
    follower.go(b4);
    await run();
    expect(asked[0]).toBe("mark 'Data'!B4 1,2,3");
  });
});

describe('what was unhidden', () => {
  test('is known while the same cells are shown, and until it is taken back', async () => {
    revealed = succeeded({ revealed: true, unhid: 'rows 12–14' });
    follower.go(b4);
    await run();
    expect(state).toMatchObject({ unhidden: 'rows 12–14', changed: true });
    revealed = succeeded({ revealed: false });
    follower.go(b4);
    await run();
    expect(state.unhidden).toBe('rows 12–14');
    follower.clear();
    await run();
    expect(state).toMatchObject({ unhidden: '', changed: false });
  });

  test('is hidden again when other cells are shown', async () => {
    revealed = succeeded({ revealed: true, unhid: 'row 3' });
    follower.go(b4);
    await run();
    revealed = succeeded({ revealed: true });
    follower.go(c5);
    await run();
    expect(state).toMatchObject({ marked: 'Data!C5', unhidden: '' });
  });
});

test('a name is shown where its cells are', async () => {
  follower.go({
    label: '2 areas',
    addresses: ["'Data'!B4", 'Rate', 'Odd'],
    names: new Set(['Rate', 'Odd']),
  });
  await run();
  expect(asked).toEqual([
    "mark 'Data'!B4 'Inputs'!B4:B9 Odd 255,0,255",
    "reveal 'Data'!B4 'Inputs'!B4:B9 Odd",
  ]);
});

test('nothing is said of the undo history where marking costs none', async () => {
  start(false);
  marked = succeeded({ applied: 1, shadowed: true, moved: false });
  follower.follow(() => b4);
  clock.advance(80);
  await run();
  expect(state.marked).toBe('Data!B4');
  expect(state.notes).toEqual([]);
});

describe('what the user should know is said', () => {
  test.each<[string, () => void, string]>([
    [
      'undo history lost',
      () => {
        marked = succeeded({ applied: 1, shadowed: true, moved: false });
      },
      'A rule of yours lies on these cells, so marking them cleared the undo history.',
    ],
    [
      'several sheets',
      () => {
        revealed = succeeded({ revealed: false, reason: 'multi-sheet' });
      },
      'On several sheets: marked, not scrolled to.',
    ],
    [
      'no such cells',
      () => {
        revealed = succeeded({ revealed: false, reason: 'unbound' });
      },
      'Not scrolled to: there are no such cells.',
    ],
    [
      'a refusal',
      () => {
        marked = failed('transport', 'protected');
      },
      'Not marked: protected',
    ],
  ])('%s', async (_, lay, note) => {
    lay();
    follower.go(b4);
    await run();
    expect(state.notes).toEqual([note]);
  });

  test('and the sheet still moves where marking is refused', async () => {
    marked = failed('transport', 'protected');
    follower.go(b4);
    await run();
    expect(asked.at(-1)).toBe("reveal 'Data'!B4");
    expect(state).toMatchObject({ marked: '', changed: true, able: true });
  });

  test('a list that was cut', async () => {
    const addresses = Array.from({ length: 250 }, (_, i) => `A${String(i + 1)}`);
    follower.go({ label: '250 areas', addresses });
    await run();
    expect(asked[0]?.split(' ')).toHaveLength(42);
    expect(state.notes).toEqual(['Only the first 40 areas of 250 are marked.']);
  });
});

describe('everything is taken back', () => {
  test('when asked, and then nothing is left to say', async () => {
    revealed = succeeded({ revealed: true, unhid: 'row 3' });
    follower.go(b4);
    await run();
    expect(state.changed).toBe(true);
    follower.clear();
    await run();
    expect(asked.at(-1)).toBe('clear');
    expect(state).toEqual({ marked: '', unhidden: '', changed: false, notes: [], able: true });
  });

  test('also what is only on its way', async () => {
    follower.follow(() => b4);
    follower.clear();
    clock.advance(1_000);
    await run();
    expect(asked).toEqual(['clear']);
  });

  test('and what could not be is still told', async () => {
    follower.go(b4);
    await run();
    cleared = failed('timeout', 'late');
    follower.clear();
    await run();
    expect(state.marked).toBe('Data!B4');
    expect(state.changed).toBe(true);
  });
});

test('a spreadsheet that refuses twice for the same reason is left alone until all is cleared', async () => {
  marked = failed('transport', 'no formats');
  for (const cells of [b4, c5, b4]) {
    follower.go(cells);
    await run();
  }
  expect(asked.filter((text) => text.startsWith('mark'))).toHaveLength(2);
  expect(state.able).toBe(false);
  expect(state.notes).toEqual(['Cells cannot be marked here. Space selects them instead.']);
  follower.clear();
  await run();
  expect(state).toEqual({ marked: '', unhidden: '', changed: false, notes: [], able: true });
});

test('a native side that cannot mark is asked once', async () => {
  marked = failed('transport', 'unknown verb markCells');
  follower.go(b4);
  await run();
  follower.go(c5);
  follower.clear();
  await run();
  expect(asked).toHaveLength(1);
  expect(state.able).toBe(false);
});

describe('a workbook that is gone', () => {
  test('takes what was marked with it, and the record of it once there is one again', async () => {
    follower.go(b4);
    await run();
    follower.lose();
    expect(state.marked).toBe('');
    await run();
    expect(asked).not.toContain('clear');
    follower.regain();
    await run();
    follower.regain();
    await run();
    expect(asked.filter((one) => one === 'clear')).toHaveLength(1);
  });
});
