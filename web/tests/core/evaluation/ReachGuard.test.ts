import { beforeEach, describe, expect, test } from 'vitest';

import { ReachGuard, type GuardedQuestions } from '../../../src/core/evaluation/ReachGuard';
import { failed, succeeded } from '../../../src/core/protocol/Outcome';
import { FakeWorkbook } from '../../fakes/FakeWorkbook';

const refersTo: Record<string, unknown> = {
  W: '=WEBSERVICE("http://x/"&Data!$A$4)',
  Nested: '=LEN(w)+Rate',
  Rate: '=Data!$B$1',
  Round: '=Other+1',
  Other: '=Round+1',
  "'My sheet'!Own": '=MINE(1)',
  Odd: 5,
  Broken: '=1+*(',
  Safe: '=LET(x,Rate,x*2)',
  Makes: '=LAMBDA(f,f(1))',
  Far: "='/Users/me/[Far.xlsx]Data'!$A$1",
};

let workbook: FakeWorkbook;
let maps: number;
let epoch: number;
let guard: ReachGuard;
let works: boolean;

beforeEach(() => {
  workbook = new FakeWorkbook();
  workbook.otherwise = () => 1;
  maps = 0;
  epoch = 1;
  works = true;
  const questions: GuardedQuestions = Object.assign(workbook, {
    workbookMap: () => {
      maps += 1;
      if (!works) return Promise.resolve(failed('timeout', 'late'));
      const names = Object.entries(refersTo).map(([name, text]) => ({
        name,
        refersTo: text as string,
      }));
      return Promise.resolve(
        succeeded({ book: 'Model.xlsx', sheets: [], sheetsTruncated: false, names }),
      );
    },
  });
  guard = new ReachGuard(questions, () => epoch);
});

function refusedFor(message: string) {
  return { ok: false, failure: { kind: 'transport', message, code: -9993 } };
}

describe('nothing is asked that calls what may reach out', () => {
  test.each([
    ['LEN(W)+1', 'WEBSERVICE'],
    ['W', 'WEBSERVICE'],
    ['Nested*2', 'WEBSERVICE'],
    ["'My sheet'!w", 'WEBSERVICE'],
    ['own+1', 'MINE'],
    ['IFERROR(CELL("format",W),"")', 'WEBSERVICE'],
    ['WEBSERVICE("x")', 'WEBSERVICE'],
    ['FILTERXML("<a/>","a")', 'FILTERXML'],
    ['MINE(1)', 'MINE'],
    ['Odd', 'Odd'],
    ['Broken', 'Broken'],
    ['LET(y,W,y)', 'WEBSERVICE'],
    // A name of LET or LAMBDA hides one of the workbook where it stands, and nowhere else.
    ['LET(W,W,W)', 'WEBSERVICE'],
    ['LET(y,W,LET(W,1,W+y))', 'WEBSERVICE'],
    ['LET(y,LET(W,1,W),W)', 'WEBSERVICE'],
    ['LAMBDA(W,W)(W)', 'WEBSERVICE'],
    ['MINE(LET(MINE,LAMBDA(x,x),MINE(1)))', 'MINE'],
    ['SUM(W[Net])', 'WEBSERVICE'],
    ["cmd|'/c calc'!A1", '?'],
    ['FIELDVALUE(A1,"Price")', 'FIELDVALUE'],
    ["'[Model.xlsx]Data'!W", 'WEBSERVICE'],
  ])('%s', async (expression, name) => {
    const refused = refusedFor(`Runs “${name}”, so only when you ask.`);
    expect(await guard.evaluate(expression)).toEqual(refused);
    expect(await guard.readRange(expression)).toEqual(refused);
    expect(await guard.deepEval(['1+1', expression])).toEqual(refused);
    expect(workbook.asked).toEqual([]);
  });

  test.each(['[Other.xlsx]Data!Total', "'[Other.xlsx]Da ta'!Total", 'Other.xlsx!Total'])(
    'nor a name of another workbook: %s',
    async (expression) => {
      expect(await guard.evaluate(expression)).toMatchObject({ failure: { code: -9993 } });
      expect(workbook.asked).toEqual([]);
    },
  );

  test.each([
    ["'/Users/me/[Far.xlsx]Data'!A1", "'/Users/me/[Far.xlsx]Data'!"],
    ["SUM('https://x/y/[Far.xlsx]Data'!A1:B2)", "'https://x/y/[Far.xlsx]Data'!"],
    ["'\\\\server\\share\\[Far.xlsx]Data'!A1+1", "'\\\\server\\share\\[Far.xlsx]Data'!"],
    ["'Disk:Folder:[Far.xlsx]Data'!A1", "'Disk:Folder:[Far.xlsx]Data'!"],
    ["SUM('/x/Far.xlsx'!Sales[Net])", "'/x/Far.xlsx'!"],
    ['Far+1', "'/Users/me/[Far.xlsx]Data'!"],
  ])('nor cells of a workbook that lies elsewhere: %s', async (expression, place) => {
    const refused = refusedFor(`Uses “${place}”, so only when you ask.`);
    expect(await guard.evaluate(expression)).toEqual(refused);
    expect(await guard.readRange(expression)).toEqual(refused);
    expect(await guard.deepEval(['1+1', expression])).toEqual(refused);
    expect(workbook.asked).toEqual([]);
  });

  test('nor anything with names while these cannot be read', async () => {
    works = false;
    expect(await guard.evaluate('Rate*2')).toEqual(
      refusedFor('The names of the workbook cannot be read, so only when you ask.'),
    );
    expect(await guard.evaluate('A1*2')).toEqual(succeeded(1));
  });
});

test('what stays inside is asked, and the names are read once until something changed', async () => {
  for (const expression of ['Rate*2', 'Round', 'Safe', 'Nowhere', 'LET(W,2,W)', 'Table1[Net]']) {
    expect(await guard.evaluate(expression)).toEqual(succeeded(1));
  }
  expect(maps).toBe(1);
  for (const expression of [
    "'Data'!A1:B2+1",
    "'[Other.xlsx]Data'!A1",
    "'[Other.xlsx]First:Last'!A1",
    'LET(MINE,LAMBDA(W,W+1),MINE(2))',
  ]) {
    expect(await guard.evaluate(expression)).toEqual(succeeded(1));
  }
  epoch = 2;
  await guard.evaluate('Rate*3');
  expect(maps).toBe(2);
});

test('what the user asked for is asked, and only that', async () => {
  const seen: boolean[] = [];
  workbook.evaluate = (_, asked = false) => {
    seen.push(asked);
    return Promise.resolve(succeeded(4));
  };
  expect(await guard.evaluate('LEN(W)', true)).toEqual(succeeded(4));
  expect(await guard.evaluate('LEN(W)')).toMatchObject({ ok: false });
  expect(await guard.evaluate('1+1')).toEqual(succeeded(4));
  expect(seen).toEqual([true, false]);
});
