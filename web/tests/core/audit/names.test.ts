import { describe, expect, it } from 'vitest';
import type { NameEntry } from '../../../src/core/model/Names';
import type { Written } from '../model/written';
import { findingsOf, line } from './findings';

const cells: Written = { A1: 1, A2: 2, B1: '=Rate*A1', B5: '=SUM(Base)', B9: '=A1&"Gone"' };
const rate = { name: 'Rate', refersTo: '=Sheet!$A$1' };
const base = { name: 'Base', refersTo: '=Sheet!$A$1:$A$2' };

function told(names: NameEntry[], sheet = cells): string[] {
  return findingsOf({ Sheet: sheet }, names).map(line);
}

describe('names', () => {
  it.each<[string, NameEntry[], string[]]>([
    ['used ones', [rate, base], []],
    [
      'several that nothing uses as one',
      [
        rate,
        base,
        { name: 'Old', refersTo: '=Sheet!$A$2' },
        { name: 'Older', refersTo: '=Sheet!$B$1' },
      ],
      ['unused-name A2 B1'],
    ],
    [
      'one that stands for no cells',
      [rate, base, { name: 'Old', refersTo: '=0.19' }],
      ['unused-name '],
    ],
    [
      'one in another name',
      [rate, { name: 'Base', refersTo: '=Start' }, { name: 'Start', refersTo: '=Sheet!$A$1' }],
      [],
    ],
    [
      'one that is in itself alone',
      [rate, base, { name: 'Loop', refersTo: '=Loop+1' }],
      ['unused-name '],
    ],
    [
      "the spreadsheet's own",
      [rate, base, { name: 'Sheet!Print_Area', refersTo: '=Sheet!$A$1:$B$2' }],
      [],
    ],
    ['one that is gone and used', [rate, { name: 'Base', refersTo: '=Sheet!#REF!' }], ['name B5']],
    [
      'one that is gone, and a text of its name',
      [rate, base, { name: 'Gone', refersTo: '=#REF!' }],
      ['name '],
    ],
    ['one that is gone and not used', [rate, base, { name: 'Old', refersTo: '=#REF!' }], ['name ']],
  ])('%s', (_, names, expected) => {
    expect(told(names)).toEqual(expected);
  });

  it('counts a name in a text as used, where INDIRECT finds it', () => {
    const sheet = { ...cells, B9: '=SUM(INDIRECT("Old"))' };
    const findings = told([rate, base, { name: 'Old', refersTo: '=Sheet!$A$1' }], sheet);
    expect(findings.filter((one) => one.startsWith('unused-name'))).toEqual([]);
  });

  it('says which names they are', () => {
    const names = [rate, base, { name: 'Old', refersTo: '=Sheet!$A$2' }];
    expect(findingsOf({ Sheet: cells }, names)[0]).toMatchObject({
      level: 'style',
      confidence: 'low',
      sentence:
        "1 of 3 names is in no cell's formula and in no other name: Old. Charts, conditional formats and lists of choices were not looked at.",
    });
    const gone = [rate, { name: 'Base', refersTo: '=Sheet!#REF!' }];
    expect(findingsOf({ Sheet: cells }, gone)[0]).toMatchObject({
      level: 'fact',
      sentence:
        'The name leads to cells that were deleted: Base (=Sheet!#REF!); Base is used in 1 cell of Sheet.',
    });
  });
});
