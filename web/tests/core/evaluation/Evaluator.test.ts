import { expect, describe, test, beforeEach } from 'vitest';

import { succeeded } from '../../../src/core/protocol/Outcome';
import { parse } from '../../../src/core/formula/Parser';
import { outlineOf } from '../../../src/core/outline/Item';
import { excelError, reaches } from '../../fakes/FakeWorkbook';
import { Bench, home, settled } from './bench';

let bench: Bench;
beforeEach(() => {
  bench = new Bench();
});

describe('the parts of a formula are asked for', () => {
  test('cells of one sheet together, then what is computed', async () => {
    bench.workbook.cells = { 'Summary!B4': 12, 'Summary!C4': 5 };
    bench.workbook.expressions = { "'Summary'!B4*'Summary'!C4+1": 61 };
    await bench.run('=B4*C4+1', { kind: 'value', value: 61 });
    expect(bench.of('B4')).toBe(12);
    expect(bench.of('C4')).toBe(5);
    expect(bench.workbook.asked.slice(0, 3)).toEqual([
      "readRange 'Summary'!B4:C4",
      "evaluate 'Summary'!B4*'Summary'!C4",
      "evaluate 'Summary'!B4*'Summary'!C4+1",
    ]);
    expect(bench.evaluator.verification).toEqual({ state: 'same' });
  });

  test('one question at a time', async () => {
    let most = 0;
    let open = 0;
    const evaluate = bench.workbook.evaluate.bind(bench.workbook);
    bench.workbook.evaluate = async (text) => {
      most = Math.max(most, ++open);
      await settled();
      open -= 1;
      return evaluate(text);
    };
    bench.show('=SUM(A1,2)+MAX(B1,3)+MIN(C1,4)');
    bench.evaluator.look(bench.items);
    bench.conveyor.wake();
    for (let i = 0; i < 40; i++) {
      bench.conveyor.wake();
      await settled();
    }
    expect(most).toBe(1);
    expect(bench.workbook.asked.length).toBeGreaterThan(3);
  });

  test('but not where looking is enough, of which nobody need hear', () => {
    bench.show('=IF(TRUE,SUM(1,ABS(2)),3)', { kind: 'value', value: 1 });
    bench.cache.keep('ABS(2)', { kind: 'value', value: 2 });
    bench.evaluator.look(bench.items);
    expect(bench.of('ABS(2)')).toBe(2);
    expect(bench.of('1')).toBe(1);
    expect(bench.of('SUM(1,ABS(2))')).toBe('waiting');
    expect(bench.of('3')).toBe('waiting');
    expect(bench.changes).toBe(0);
  });

  test('and what looking finds out about an error is told', () => {
    bench.show('=1/ABS(0)', { kind: 'error', text: '#DIV/0!' });
    bench.cache.keep('ABS(0)', { kind: 'error', text: '#DIV/0!' });
    bench.evaluator.look(bench.items);
    expect(bench.evaluator.failure?.item).toBe(bench.item('ABS(0)'));
    expect(bench.changes).toBe(1);
  });

  test('only as far as someone looks', async () => {
    bench.workbook.otherwise = () => 1;
    bench.show('=SUM(1,ABS(2))+SUM(3,ABS(4))', { kind: 'value', value: 1 });
    bench.evaluator.look([bench.item('ABS(2)')]);
    await bench.finish();
    expect(bench.of('ABS(2)')).toBe(1);
    expect(bench.of('ABS(4)')).toBe('waiting');
  });

  test('no further when another formula is shown', async () => {
    bench.workbook.otherwise = () => 7;
    bench.show('=ABS(A1)+1');
    bench.evaluator.look(bench.items);
    bench.conveyor.wake();
    bench.show('=ABS(-3)', { kind: 'value', value: 3 });
    bench.evaluator.look(bench.items);
    await bench.finish();
    expect(bench.of('ABS(-3)')).toBe(3);
    expect(bench.workbook.asked.filter((asked) => asked.includes('A1'))).toHaveLength(1);
  });

  test('and an answer for the formula before is let go', async () => {
    bench.workbook.otherwise = () => 7;
    bench.show('=SUM(ABS(1),2)');
    bench.evaluator.look(bench.items);
    const job = bench.evaluator.next();
    bench.show('=SUM(ABS(2),2)');
    await job?.();
    expect(bench.workbook.asked).toEqual(['evaluate ABS(1)']);
    expect(bench.of('ABS(2)')).toBe('waiting');
  });

  test('and nothing is asked twice while it holds', async () => {
    bench.workbook.otherwise = () => 7;
    await bench.run('=ABS(A1)+1', { kind: 'value', value: 7 });
    const before = bench.workbook.asked.length;
    await bench.run('=ABS(A1)+2', { kind: 'value', value: 7 });
    const since = bench.workbook.asked.slice(before).filter((asked) => !asked.includes('CELL('));
    expect(since).toEqual(["evaluate ABS('Summary'!A1)+2"]);
    bench.cache.clear();
    await bench.run('=ABS(A1)+2', { kind: 'value', value: 7 });
    expect(bench.workbook.asked.slice(before + 1)).toContain("evaluate ABS('Summary'!A1)");
  });
});

describe('branches', () => {
  const formula = '=IF(B4>0,SUM(C1,1),SUM(D1,2))';

  test('that are not taken are not asked for', async () => {
    bench.workbook.expressions = { "'Summary'!B4>0": true, "SUM('Summary'!C1,1)": 9 };
    bench.workbook.cells = { 'Summary!B4': 3 };
    await bench.run(formula, { kind: 'value', value: 9 });
    expect(bench.of('SUM(C1,1)')).toBe(9);
    expect(bench.of('SUM(D1,2)')).toBe('waiting');
    expect(bench.evaluator.countsOf(bench.item('SUM(D1,2)'))).toBe('no');
    expect(bench.evaluator.countsOf(bench.item('D1'))).toBe('no');
    expect(bench.workbook.asked).not.toContain("evaluate SUM('Summary'!D1,2)");
    expect(bench.workbook.asked).not.toContain("readRange 'Summary'!D1");
  });

  test('of which nobody can tell whether they are taken are shown all the same', async () => {
    bench.workbook.expressions = { "SUM('Summary'!C1,1)": 9 };
    await bench.run('=IF(RAND()>0.5,SUM(C1,1),7)');
    expect(bench.of('RAND()>0.5')).toBe('refused: Changes every calculation.');
    expect(bench.of('SUM(C1,1)')).toBe(9);
    expect(bench.of('7')).toBe(7);
  });

  test('until the user opens them', async () => {
    bench.workbook.expressions = { "'Summary'!B4>0": true, "SUM('Summary'!D1,2)": 2 };
    await bench.run(formula);
    bench.evaluator.want(bench.item('SUM(D1,2)'));
    await bench.finish();
    expect(bench.of('SUM(D1,2)')).toBe(2);
  });

  test('give a nested IF its value without a question', async () => {
    bench.workbook.expressions = { "'Summary'!B4>0": true, "SUM('Summary'!C1,1)": 9 };
    await bench.run(`${formula}+1`);
    expect(bench.of(formula.slice(1))).toBe(9);
    expect(bench.workbook.asked.filter((text) => text.startsWith('evaluate IF'))).toEqual([
      "evaluate IF('Summary'!B4>0,SUM('Summary'!C1,1),SUM('Summary'!D1,2))+1",
    ]);
  });

  test.each([
    ['=IFERROR(1/0,SUM(2))', { '1/0': excelError('#DIV/0!') }, 'SUM(2)', 'yes'],
    ['=IFERROR(ABS(1),SUM(2))', { 'ABS(1)': 1 }, 'SUM(2)', 'no'],
    ['=IFNA(1/0,SUM(2))', { '1/0': excelError('#DIV/0!') }, 'SUM(2)', 'no'],
    ['=IFS(ABS(0),SUM(1),TRUE,SUM(2))', { 'ABS(0)': 0 }, 'SUM(1)', 'no'],
    ['=IFS(ABS(0),SUM(1),TRUE,SUM(2))', { 'ABS(0)': 0 }, 'SUM(2)', 'yes'],
    ['=SWITCH(ABS(2),1,SUM(1),2,SUM(2),SUM(3))', { 'ABS(2)': 2 }, 'SUM(1)', 'no'],
    ['=SWITCH(ABS(2),1,SUM(1),2,SUM(2),SUM(3))', { 'ABS(2)': 2 }, 'SUM(2)', 'yes'],
    ['=SWITCH(ABS(2),1,SUM(1),2,SUM(2),SUM(3))', { 'ABS(2)': 2 }, 'SUM(3)', 'no'],
    ['=SWITCH(ABS(9),1,SUM(1),2,SUM(2),SUM(3))', { 'ABS(9)': 9 }, 'SUM(3)', 'yes'],
    ['=CHOOSE(ABS(2),SUM(1),SUM(2))', { 'ABS(2)': 2 }, 'SUM(1)', 'no'],
    ['=CHOOSE(ABS(2),SUM(1),SUM(2))', { 'ABS(2)': 2 }, 'SUM(2)', 'yes'],
    ['=IF(FALSE,SUM(1),SUM(2))', {}, 'SUM(1)', 'no'],
    ['=IF(ABS("x"),SUM(1),SUM(2))', { 'ABS("x")': excelError('#VALUE!') }, 'SUM(2)', 'no'],
  ])('%s', async (text, expressions, part, expected) => {
    bench.workbook.otherwise = () => 5;
    bench.workbook.expressions = expressions as typeof bench.workbook.expressions;
    await bench.run(text);
    expect(bench.evaluator.countsOf(bench.item(part))).toBe(expected);
  });
});

describe('the cell', () => {
  test.each([
    [{ kind: 'value', value: 0.3 } as const, 0.1 + 0.2, 'same'],
    [{ kind: 'value', value: 2 } as const, 3, 'differs'],
    [{ kind: 'value', value: '' } as const, 0, 'differs'],
    [{ kind: 'value', value: true } as const, 1, 'same'],
    [{ kind: 'error', text: '#N/A' } as const, 3, 'differs'],
    [{ kind: 'value', value: 4 } as const, [[1], [4]], 'skipped'],
    [{ kind: 'value', value: 5 } as const, [[1], [4]], 'differs'],
    [{ kind: 'value', value: 1 } as const, [[1], [4]], 'same'],
  ])('holding %j beside %j', async (result, now, state) => {
    bench.workbook.expressions = { 'ABS(1)': now };
    await bench.run('=ABS(1)', result);
    expect(bench.evaluator.verification.state).toBe(state);
  });

  test('that changes with time is not compared', async () => {
    await bench.run('=NOW()+1');
    expect(bench.evaluator.verification).toEqual({
      state: 'skipped',
      reason: 'Changes with time.',
    });
  });
});

describe('what may not be asked', () => {
  test.each([
    ['=RAND()*2', 'RAND()', 'refused: Changes every calculation.'],
    ['=1+WEBSERVICE("x")', 'WEBSERVICE("x")', 'offered: Runs “WEBSERVICE”, so only when you ask.'],
    ['=1+MINE(1)', 'MINE(1)', 'offered: Runs “MINE”, so only when you ask.'],
    ['=1+CUBEVALUE("x")', 'CUBEVALUE("x")', 'offered: Runs “CUBEVALUE”, so only when you ask.'],
    [
      '=SUM(Jan:Dec!A1)',
      'Jan:Dec!A1',
      'refused: Cells of several sheets have no value of their own.',
    ],
    ['=SUM((A1,B2))', '(A1,B2)', undefined],
  ])('%s', async (text, part, expected) => {
    await bench.run(text);
    if (expected !== undefined) expect(bench.of(part)).toBe(expected);
    const asked = bench.workbook.asked.join();
    expect(asked).not.toMatch(/RAND|WEBSERVICE|MINE|CUBE/);
  });

  test('is asked when the user wants it', async () => {
    bench.workbook.expressions = { 'MINE(1)': 8 };
    await bench.run('=1+MINE(1)');
    bench.evaluator.want(bench.item('MINE(1)'));
    await bench.finish();
    expect(bench.of('MINE(1)')).toBe(8);
    expect(bench.workbook.asked).toContain('evaluate MINE(1) asked');
  });

  test('because of what a name stands for: that is told, and asked when the user wants it', async () => {
    bench.workbook.otherwise = (text) => (/\bW\b/.test(text) ? reaches('WEBSERVICE') : 2);
    await bench.run('=LEN(W)+ABS(A1)+MAX(W,1)+MIN(W,2)');
    const offered = 'offered: Runs “WEBSERVICE”, so only when you ask.';
    for (const part of ['W', 'LEN(W)', 'MAX(W,1)', 'MIN(W,2)'])
      expect(bench.of(part)).toBe(offered);
    expect(bench.of('ABS(A1)')).toBe(2);
    expect(bench.evaluator.verification).toEqual({
      state: 'skipped',
      reason: 'Runs “WEBSERVICE”, so only when you ask.',
    });
    expect(bench.workbook.asked.join()).not.toContain(' asked');
    bench.workbook.otherwise = () => 4;
    bench.evaluator.want(bench.item('LEN(W)'));
    await bench.finish();
    expect(bench.of('LEN(W)')).toBe(4);
    expect(bench.of('MAX(W,1)')).toBe(offered);
    expect(bench.workbook.asked.filter((text) => text.endsWith(' asked'))).toEqual([
      'evaluate LEN(W) asked',
    ]);
  });

  test('and a wish that came to nothing is not carried over to the next one', async () => {
    bench.workbook.otherwise = () => reaches('RTD');
    await bench.run('=LEN(W)+1');
    bench.workbook.otherwise = () => ({ kind: 'timeout', message: 'late' });
    bench.evaluator.want(bench.item('LEN(W)'));
    await bench.finish();
    expect(bench.of('LEN(W)')).toBe('offered: The spreadsheet took too long.');
    bench.evaluator.want(bench.item('LEN(W)'));
    await bench.finish();
    expect(bench.workbook.asked.filter((text) => /^evaluate LEN.W.( asked)?$/.test(text))).toEqual([
      'evaluate LEN(W)',
      'evaluate LEN(W) asked',
      'evaluate LEN(W)',
    ]);
  });

  test('longer than the spreadsheet takes: in a scratch workbook, for a part that is opened', async () => {
    const long = Array.from({ length: 30 }, (_, i) => `LEN(A${String(i + 1)})`).join('+');
    bench.workbook.otherwise = () => 4;
    await bench.run(`=SUM(1,${long})`);
    expect(bench.of(long)).toBe('offered: Long: worked out in a scratch workbook when you ask.');
    expect(bench.workbook.asked.every((text) => text.length <= 255 + 9)).toBe(true);
    bench.evaluator.want(bench.item(long));
    await bench.finish();
    expect(bench.of(long)).toBe(4);
    const plan = bench.workbook.asked.find((text) => text.startsWith('deepEval'));
    expect(plan).toContain("LEN('[Model.xlsx]Summary'!A1)");
    expect(plan?.split(' | ').every((entry) => entry.replace('deepEval ', '').length <= 254)).toBe(
      true,
    );
  });
});

describe('answers that are none', () => {
  test('an error without a name is asked for its type', async () => {
    bench.workbook.expressions = { 'ABS(1)': excelError('no value'), 'ERROR.TYPE(ABS(1))': 7 };
    await bench.run('=SUM(ABS(1),2)');
    expect(bench.of('ABS(1)')).toBe('#N/A');
  });

  test('a time-out is offered again, and ends the asking when it repeats', async () => {
    bench.workbook.otherwise = () => ({ kind: 'timeout', message: 'late' });
    await bench.run('=ABS(1)+ABS(2)+ABS(3)+ABS(4)');
    expect(bench.of('ABS(1)')).toBe('offered: The spreadsheet took too long.');
    expect(bench.workbook.asked).toHaveLength(2);
    // Nothing waits for what nobody asks.
    expect(bench.of('ABS(4)')).toBe('offered: The spreadsheet took too long.');
    bench.workbook.otherwise = () => 1;
    bench.evaluator.want(bench.item('ABS(1)'));
    await bench.finish();
    expect(bench.of('ABS(4)')).toBe(1);
  });

  test('a refusal is said in its own words', async () => {
    bench.workbook.otherwise = () => ({ kind: 'transport', message: 'cannot' });
    await bench.run('=ABS(1)+2');
    expect(bench.of('ABS(1)')).toBe('refused: cannot');
  });

  test('a spreadsheet that is gone is asked nothing more', async () => {
    bench.workbook.otherwise = () => ({ kind: 'transport', message: 'gone', code: -600 });
    await bench.run('=ABS(1)+ABS(2)+ABS(3)');
    expect(bench.workbook.asked).toHaveLength(1);
    expect(bench.of('ABS(3)')).toBe('offered: gone');
  });

  test('a range that is refused takes no other with it', async () => {
    bench.workbook.unreadable = { "'Summary'!A1:A2": 'protected', "'Summary'!A2": 'protected' };
    bench.workbook.cells = { 'Summary!A1': 5 };
    await bench.run('=A1+A2');
    expect(bench.of('A1')).toBe(5);
    expect(bench.of('A2')).toBe('refused: protected');
  });

  test.each([
    ['fewer rows', [[1, 2]]],
    ['more rows', [[1], [2], [3]]],
    ['fewer columns', [[1], [2]]],
    ['rows of different lengths', [[1, 2], [3]]],
  ])('values with %s than asked for are not shown as these cells', async (_, values) => {
    bench.workbook.readRange = () => Promise.resolve(succeeded({ rows: 2, cols: 2, values }));
    await bench.run('=SUM(A1:B2)', { kind: 'value', value: 1 });
    expect(bench.of('A1:B2')).toBe('refused: The answer has an unexpected shape.');
  });

  test('a range with an error in its first column is read in two parts', async () => {
    const refusal = 'range has an error in its first column - Excel cannot read it as a grid';
    bench.workbook.unreadable = { "'Summary'!A1:B2": refusal };
    bench.workbook.cells = { 'Summary!A1': '#N/A', 'Summary!B2': 4 };
    await bench.run('=SUM(A1:B2)', { kind: 'error', text: '#N/A' });
    expect(bench.of('A1:B2')).toBe('2×2');
    expect(bench.evaluator.resultOf(bench.item('A1:B2'))).toMatchObject({
      values: [
        ['#N/A', null],
        [null, 4],
      ],
    });
  });
});

describe('an error', () => {
  test('is followed to where it begins', async () => {
    bench.workbook.otherwise = (text) => (text.includes('/') ? excelError('#DIV/0!') : 1);
    bench.show('=SUM(ABS(2),ABS(ABS(A1/B1)))', { kind: 'error', text: '#DIV/0!' });
    await bench.finish();
    const { failure } = bench.evaluator;
    expect(failure?.item).toBe(bench.item('A1/B1'));
    expect(failure?.error).toBe('#DIV/0!');
    expect(failure?.open).toEqual([]);
  });

  test('of a range is found in its cell', async () => {
    bench.workbook.cells = { 'Summary!A3': '#REF!' };
    bench.workbook.otherwise = () => excelError('#REF!');
    await bench.run('=SUM(A1:A5)', { kind: 'error', text: '#REF!' });
    expect(bench.evaluator.failure).toMatchObject({ error: '#REF!', at: { row: 2, col: 0 } });
    expect(bench.evaluator.failure?.item).toBe(bench.item('A1:A5'));
  });
});

describe('names of LET and LAMBDA', () => {
  test('stand for their values', async () => {
    bench.workbook.expressions = {
      "'Summary'!A1+2": 5,
      "('Summary'!A1+2)*10": 50,
    };
    await bench.run('=LET(rate,A1+2,rate*10)', { kind: 'value', value: 50 });
    expect(bench.of('A1+2')).toBe(5);
    expect(bench.of('rate*10')).toBe(50);
    expect(bench.of('rate')).toBe(5);
    expect(bench.evaluator.verification).toEqual({ state: 'same' });
  });

  test('parameters are those of the call', async () => {
    bench.workbook.expressions = { '(ABS(3))+1': 4, 'ABS(3)': 3, 'ABS(3)+1': 4 };
    await bench.run('=LAMBDA(x,x+1)(ABS(3))', { kind: 'value', value: 4 });
    expect(bench.of('x+1')).toBe(4);
    expect(bench.of('x')).toBe(3);
  });

  test('that no call gives a value depend on it', async () => {
    await bench.run('=SUM(A1,LAMBDA(x,x*2))');
    expect(bench.of('x*2')).toBe('refused: Depends on the call that gives “x” its value.');
    expect(bench.of('LAMBDA(x,x*2)')).toBe('function');
  });

  test.each([
    ['=MAP(A1:A3,LAMBDA(x,x*2))', 'x*2', "'Summary'!A1*2"],
    ['=MAP(A1:A3,B1:B3,LAMBDA(x,y,x*y))', 'x*y', "'Summary'!A1*'Summary'!B1"],
    ['=MAP(ABS(A1:A3),LAMBDA(x,x*2))', 'x*2', "INDEX(ABS('Summary'!A1:A3),1,1)*2"],
    ['=BYROW(A1:C3,LAMBDA(r,SUM(r)))', 'SUM(r)', "SUM('Summary'!A1:C1)"],
    ['=BYCOL(Data!A1:C3,LAMBDA(c,SUM(c)))', 'SUM(c)', 'SUM(Data!A1:A3)'],
    ['=REDUCE(7,A1:A3,LAMBDA(a,x,a+x))', 'a+x', "7+'Summary'!A1"],
    ['=SCAN(B9,A1:A3,LAMBDA(a,x,a+x))', 'a+x', "'Summary'!B9+'Summary'!A1"],
    ['=MAKEARRAY(4,5,LAMBDA(r,c,r+c*2))', 'r+c*2', '1+1*2'],
    ['=LET(k,2,MAP(A1:A3,LAMBDA(x,x*k)))', 'x*k', "'Summary'!A1*2"],
  ])('parameters have the values of the first call: %s', async (formula, part, question) => {
    bench.workbook.expressions = { [question]: 42 };
    await bench.run(formula);
    expect(bench.of(part)).toBe(42);
  });

  test('of REDUCE without a first value have none', async () => {
    await bench.run('=REDUCE(,A1:A3,LAMBDA(a,x,a+1))');
    expect(bench.of('a+1')).toBe('refused: Depends on the call that gives “a” its value.');
  });
});

describe('large ranges', () => {
  test('show their size and are read when they are opened', async () => {
    bench.workbook.otherwise = () => 1;
    await bench.run('=SUM(A1:A5000)');
    expect(bench.of('A1:A5000')).toBe('5000×1');
    expect(bench.workbook.asked.join()).not.toContain('readRange');
    bench.evaluator.want(bench.item('A1:A5000'));
    await bench.finish();
    expect(bench.evaluator.resultOf(bench.item('A1:A5000'))).toHaveProperty('values');
  });

  test('beyond what can be read are never read', async () => {
    await bench.run('=SUM(A:C)');
    bench.evaluator.want(bench.item('A:C'));
    await bench.finish();
    expect(bench.of('A:C')).toBe('1048576×3');
    expect(bench.workbook.asked.join()).not.toContain('readRange');
  });
});

describe('what cells show', () => {
  test('is asked for together, after their values', async () => {
    bench.workbook.cells = { 'Summary!B4': 2041, 'Summary!C4': 0.5 };
    bench.workbook.texts = {
      "'Summary'!F12": [['£ 1.0K']],
      "'Summary'!B4": [['2041']],
      "'Summary'!C4": [['50%']],
    };
    bench.workbook.otherwise = () => 1020.5;
    await bench.run('=B4*C4', { kind: 'value', value: 1020.5 });
    expect(bench.workbook.textsAsked).toEqual(["'Summary'!F12 'Summary'!B4 'Summary'!C4"]);
    expect(bench.evaluator.shownAs(bench.item('B4'))).toEqual({ text: '2041' });
    expect(bench.evaluator.shownAs(bench.item('C4'))).toEqual({ text: '50%' });
    expect(bench.evaluator.shownAs(bench.item('B4*C4'))).toEqual({ text: '£ 1.0K' });
  });

  test('of a name is that of the sheet in front, so it waits for it', async () => {
    bench.workbook.texts = { Start: [['1 Jan 24']] };
    bench.workbook.front = { ...bench.workbook.front, sheet: 'Data' };
    bench.workbook.otherwise = () => 45_292;
    await bench.run('=ABS(Start)', { kind: 'value', value: 'a text' });
    expect(bench.evaluator.shownAs(bench.item('Start'))).toBeUndefined();
    bench.workbook.front = { ...bench.workbook.front, sheet: 'Summary' };
    bench.evaluator.moved();
    await bench.finish();
    expect(bench.evaluator.shownAs(bench.item('Start'))).toEqual({ text: '1 Jan 24' });
  });

  test('of a name is asked for by its place while another sheet is in front', async () => {
    const where = (name: string) =>
      `CELL("address",'Summary'!${name})&"|"&ROWS('Summary'!${name})&"|"&COLUMNS('Summary'!${name})`;
    bench.workbook.texts = {
      Start: [['of another sheet']],
      "'Inputs'!B4": [['1 Jan 24']],
    };
    bench.workbook.front = { ...bench.workbook.front, sheet: 'Data' };
    bench.workbook.expressions = { [where('Start')]: '$Inputs.$B$4|1|1' };
    bench.workbook.otherwise = () => 45_292;
    await bench.run('=ABS(Start)', { kind: 'value', value: 'a text' });
    expect(bench.evaluator.shownAs(bench.item('Start'))).toEqual({ text: '1 Jan 24' });
    expect(bench.workbook.textsAsked.at(-1)).toBe("'Inputs'!B4");
  });

  test('of a range is asked for while its details are looked at', async () => {
    bench.workbook.cells = { 'Summary!B4': 1, 'Summary!B5': 2 };
    bench.workbook.texts = { "'Summary'!B4:B5": [['100%'], ['200%']] };
    bench.workbook.otherwise = () => 'a text';
    await bench.run('=SUM(B4:B5)', { kind: 'value', value: 'a text' });
    expect(bench.workbook.textsAsked).toEqual([]);
    bench.evaluator.detail(bench.item('B4:B5'));
    await bench.finish();
    expect(bench.evaluator.gridOf(bench.item('B4:B5'))).toEqual([['100%'], ['200%']]);
  });

  test('is asked for by a cell without a formula, too', async () => {
    bench.workbook.texts = { "'Summary'!F12": [['2041']] };
    bench.evaluator.show(undefined, home);
    await bench.finish();
    expect(bench.evaluator.constantShownAs).toEqual({ text: '2041' });
    bench.evaluator.show(undefined);
    expect(bench.evaluator.constantShownAs).toBeUndefined();
  });

  test('is told by the format where a column is too narrow for the number', async () => {
    bench.workbook.cells = { 'Summary!B4': 45_292 };
    bench.workbook.texts = { "'Summary'!B4": [['####']], "'Summary'!F12": [['x']] };
    bench.workbook.otherwise = (question) => (question.includes('CELL(') ? 'D1' : 1);
    await bench.run('=B4*1', { kind: 'value', value: 1 });
    expect(bench.workbook.asked.at(-1)).toBe(`evaluate CELL("format",'Summary'!B4)`);
    expect(bench.evaluator.shownAs(bench.item('B4'))).toMatchObject({ format: { kind: 'date' } });
  });
});

describe('formats of cells', () => {
  test('are asked together, after the values', async () => {
    bench.workbook.cells = { 'Summary!B4': 0.5, 'Summary!C4': 45_000 };
    const cell = (address: string) => `CELL("format",'Summary'!${address})`;
    const question = [cell('F12'), cell('B4'), cell('C4')].join('&"|"&');
    bench.workbook.expressions = { [question]: 'G|P0|D1' };
    bench.workbook.otherwise = () => 1;
    await bench.run('=B4*C4', { kind: 'value', value: 1 });
    expect(bench.workbook.asked.at(-1)).toBe(`evaluate ${question}`);
    expect(bench.evaluator.shownAs(bench.item('B4'))).toEqual({
      format: { kind: 'percent', decimals: 0 },
    });
    expect(bench.evaluator.shownAs(bench.item('C4'))).toMatchObject({ format: { kind: 'date' } });
  });

  test('are those of the cells that names stand for', async () => {
    bench.workbook.otherwise = (question) => (question.includes('CELL(') ? 'G|D1|' : 1);
    await bench.run('=Start*Factor', { kind: 'value', value: 1 });
    expect(bench.workbook.asked.at(-1)).toBe(
      `evaluate CELL("format",'Summary'!F12)&"|"&IFERROR(CELL("format",Start),"")&"|"&IFERROR(CELL("format",Factor),"")`,
    );
    expect(bench.evaluator.shownAs(bench.item('Start'))).toMatchObject({
      format: { kind: 'date' },
    });
    expect(bench.evaluator.shownAs(bench.item('Factor'))).toEqual({ format: { kind: 'general' } });
  });

  test('of names are those of the sheet in front, so they wait for it', async () => {
    bench.workbook.front = { ...bench.workbook.front, sheet: 'Data' };
    bench.workbook.otherwise = (question) => (question.includes('CELL(') ? 'G|D1' : 1);
    await bench.run('=ABS(Start)', { kind: 'value', value: 1 });
    expect(bench.evaluator.shownAs(bench.item('Start'))).toBeUndefined();
    bench.workbook.front = { ...bench.workbook.front, sheet: 'Summary' };
    bench.evaluator.moved();
    await bench.finish();
    expect(bench.evaluator.shownAs(bench.item('Start'))).toMatchObject({
      format: { kind: 'date' },
    });
  });

  test('of names too long to be asked about do not keep others from being asked', async () => {
    const name = 'n'.repeat(240);
    bench.workbook.otherwise = (question) => (question.includes('CELL(') ? 'P0' : 0.5);
    bench.workbook.cells = { 'Summary!B4': 0.5 };
    await bench.run(`=${name}*B4`, { kind: 'value', value: 'a text' });
    expect(bench.evaluator.shownAs(bench.item('B4'))).toMatchObject({
      format: { kind: 'percent' },
    });
  });
});

describe('what depends on the sheet in front', () => {
  const ofData: Record<string, number> = { 'INDIRECT("A2")': 0, 'Rate*2': 44, Rate: 22 };
  const ofSummary: Record<string, number> = { 'INDIRECT("A2")': 1, "'Summary'!Rate*2": 10 };

  beforeEach(() => {
    bench.workbook.front = { ...bench.workbook.front, sheet: 'Data' };
    bench.workbook.otherwise = (text) => ofData[text] ?? ofSummary[text] ?? excelError('#NAME?');
  });

  test('is not taken from another sheet, but asked for once its own is in front', async () => {
    await bench.run('=INDIRECT("A2")+0', { kind: 'value', value: 1 });
    expect(bench.of('INDIRECT("A2")')).toBe('refused: Only while “Summary” is in front.');
    expect(bench.evaluator.verification.state).toBe('skipped');
    bench.workbook.front = { ...bench.workbook.front, sheet: 'Summary' };
    bench.workbook.otherwise = (text) => ofSummary[text] ?? excelError('#NAME?');
    bench.evaluator.moved();
    await bench.finish();
    expect(bench.of('INDIRECT("A2")')).toBe(1);
  });

  test('is not taken from the same sheet of another workbook', async () => {
    bench.workbook.front = { book: 'Other.xlsx', sheet: 'Summary', addr: 'A1' };
    await bench.run('=Rate*2', { kind: 'value', value: 10 });
    expect(bench.of('Rate*2')).toBe(10); // what the cell itself holds
    expect(bench.of('Rate')).toBe('refused: Only while “Summary” is in front.');
  });

  test('is asked for with its sheet where only names do', async () => {
    await bench.run('=ABS(Rate*2)', { kind: 'value', value: 10 });
    expect(bench.of('Rate*2')).toBe(10);
    expect(bench.workbook.asked).toContain("evaluate 'Summary'!Rate*2");
    expect(bench.of('Rate')).toBe('refused: Only while “Summary” is in front.');
  });

  test('is known for that sheet alone', async () => {
    bench.workbook.front = { ...bench.workbook.front, sheet: 'Summary' };
    bench.workbook.expressions = { Rate: 5 };
    await bench.run('=ABS(Rate)', { kind: 'value', value: 5 });
    expect(bench.of('Rate')).toBe(5);
    bench.workbook.front = { ...bench.workbook.front, sheet: 'Data' };
    bench.workbook.expressions = { Rate: 22 };
    const outline = outlineOf(parse('=ABS(Rate)').root);
    bench.items = outline.items;
    const result = { kind: 'value', value: 22 } as const;
    bench.evaluator.show({ home: { ...home, sheet: 'Data' }, outline, result });
    bench.evaluator.look(bench.items);
    await bench.finish();
    expect(bench.of('Rate')).toBe(22);
  });

  test('is not asked for at all while another workbook is in front', async () => {
    bench.evaluator.leave(true);
    await bench.run('=B4*C4', { kind: 'value', value: 10 });
    expect(bench.workbook.asked).toEqual([]);
    bench.evaluator.leave(false);
    await bench.finish();
    expect(bench.of('B4')).toBe(null);
  });
});
