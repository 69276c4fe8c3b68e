import { describe, expect, test } from 'vitest';

import { ResultCache } from '../../../src/core/evaluation/ResultCache';
import { locate } from '../../../src/core/evaluation/locate';
import { excelError, FakeWorkbook } from '../../fakes/FakeWorkbook';

const question = 'CELL("address",Rate)&"|"&ROWS(Rate)&"|"&COLUMNS(Rate)';

const home = { book: 'Model.xlsx', sheet: 'Summary', row: 1, col: 1 };

async function located(answer: ReturnType<FakeWorkbook['otherwise']>): Promise<string | undefined> {
  const workbook = new FakeWorkbook();
  workbook.expressions = { [question]: answer };
  return locate('Rate', home, workbook, new ResultCache());
}

describe('a name', () => {
  test.each([
    ['$Inputs.$B$4|1|1', "'Inputs'!B4"],
    ["$'My sheet'.$B$4|6|2", "'My sheet'!B4:C9"],
    ["'[Model.xlsx]My sheet'!$B$4|1|3", "'My sheet'!B4:D4"],
    // Without a sheet it is on the one in front.
    ['$B$4|1|1', "'Summary'!B4"],
    ['nonsense|1|1', 'Rate'],
    ['$Inputs.$B$4|x|1', 'Rate'],
    [12, 'Rate'],
    [excelError('#VALUE!'), 'Rate'],
  ])('told as %j is at %s', async (answer, address) => {
    expect(await located(answer)).toBe(address);
  });

  test('is asked for once while the workbook stays as it is', async () => {
    const workbook = new FakeWorkbook();
    const cache = new ResultCache();
    workbook.expressions = { [question]: '$Inputs.$B$4|1|1' };
    for (let i = 0; i < 3; i++) {
      expect(await locate('Rate', home, workbook, cache)).toBe("'Inputs'!B4");
    }
    expect(workbook.asked).toHaveLength(1);
    cache.clear();
    await locate('Rate', home, workbook, cache);
    expect(workbook.asked).toHaveLength(2);
  });

  test('of another sheet than the one in front is not taken for one of that', async () => {
    const workbook = new FakeWorkbook();
    workbook.front = { ...workbook.front, sheet: 'Data' };
    const far = question.replaceAll('Rate', "'Summary'!Rate");
    workbook.expressions = { [question]: "'Data'!$B$4|1|1", [far]: '$B$9|1|1' };
    const cache = new ResultCache();
    expect(await locate('Rate', home, workbook, cache)).toBe("'Data'!B9");
    workbook.expressions = { [question]: "'Data'!$B$4|1|1" };
    expect(await locate('Rate', home, workbook, new ResultCache())).toBeUndefined();
    expect(await locate('Rate', home, workbook, cache)).toBe("'Data'!B9");
  });
});
