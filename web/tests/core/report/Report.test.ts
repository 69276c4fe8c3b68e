import { describe, expect, it } from 'vitest';
import type { Finding } from '../../../src/core/audit/Finding';
import type { Inventory } from '../../../src/core/report/inventory';
import { reported, topOf, type Report } from '../../../src/core/report/Report';
import { written } from '../../../src/core/report/written';

const area = (top: number, left: number, bottom = top, right = left) => ({
  top,
  left,
  bottom,
  right,
});

const finding: Finding = {
  rank: 1,
  kind: 'differs',
  level: 'doubt',
  cells: [
    { sheet: 'My "Data"', area: area(7, 3) },
    { sheet: 'My "Data"', area: area(9, 3, 12, 4) },
    { sheet: "Other's", area: area(1, 1) },
  ],
  sentence: 'C7 takes B7 away, the others add it.',
  expected: '=A7+B7',
  confidence: 'high',
  reach: 1,
};

const summary = {
  sheets: 1,
  cells: 30,
  formulas: 1_234,
  distinctFormulas: 2,
  findings: 3,
  high: 1,
  medium: 0,
  low: 2,
  notRead: [{ sheet: 'Far', address: 'A1:B2', reason: 'It is protected.' }],
};

const inventory: Inventory = {
  sheets: [],
  names: { all: 0, listed: [] },
  links: [],
  unlabelled: { all: 0, listed: [] },
};

const good: Report = {
  file: 'a b.xlsx',
  summary,
  findings: [reported(finding, '=A7-B7')],
  inventory,
};
const bad: Report = { file: 'c.xlsx', error: '"c.xlsx" is not a workbook' };

describe('A report', () => {
  it('has the cells on the first one’s sheet plain and others with theirs', () => {
    expect(reported(finding, '=A7-B7')).toEqual({
      rank: 1,
      kind: 'differs',
      level: 'doubt',
      sheet: 'My "Data"',
      cells: ['C7', 'C9:D12', "'Other''s'!A1"],
      message: 'C7 takes B7 away, the others add it.',
      formula: '=A7-B7',
      expected: '=A7+B7',
      confidence: 'high',
      reach: 1,
    });
    expect(reported(finding, '')).not.toHaveProperty('formula');
  });

  it('is text to be read', () => {
    expect(written([good, bad], 'text', '1.0')).toBe(
      [
        'a b.xlsx: 3 findings (1 high, 0 medium, 2 low) in 1,234 formulas on 1 sheet',
        `   1. 'My "Data"'!C7, C9:D12, 'Other''s'!A1 (high)`,
        '      C7 takes B7 away, the others add it.',
        '      Expected: =A7+B7',
        '      1 cell rests on it.',
        '      2 findings of lower rank left out.',
        '      Not read: Far!A1:B2: It is protected.',
        'c.xlsx: could not be audited: "c.xlsx" is not a workbook',
        '',
      ].join('\n'),
    );
  });

  it('is JSON of one workbook or of several', () => {
    expect(JSON.parse(written([good], 'json', '1.0'))).toEqual(good);
    expect(JSON.parse(written([good, bad], 'json', '1.0'))).toEqual({ files: [good, bad] });
    const lines = written([good, bad], 'jsonl', '1.0').split('\n');
    expect(lines.map((line) => (line === '' ? '' : (JSON.parse(line) as unknown)))).toEqual([
      good,
      bad,
      '',
    ]);
  });

  it('is CSV that no spreadsheet works out', () => {
    const evil: Report = {
      file: '=HYPERLINK("http://x")',
      summary,
      findings: [
        { ...reported(finding, '=A7-B7'), message: '@SUM(1)\nand more', cells: ['C7', 'C9:D12'] },
      ],
      inventory,
    };
    expect(written([evil, bad], 'csv', '1.0')).toBe(
      [
        'file,rank,kind,level,confidence,sheet,cells,message,expected,reach,state,note,error,seen,distinctFormulas,judged,findings',
        `"'=HYPERLINK(""http://x"")",1,differs,doubt,high,"My ""Data""",C7 C9:D12,"'@SUM(1)\nand more",'=A7+B7,1,,,,,2,,3`,
        'c.xlsx,,,,,,,,,,,,"""c.xlsx"" is not a workbook",,,,',
        '',
      ].join('\r\n'),
    );
  });

  it('says what the reviewer said', () => {
    const fine = reported(finding, '', { state: 'fine', note: '=agreed\n<b>', at: '' });
    const fault = reported({ ...finding, rank: 2 }, '', { state: 'fault', note: '', at: '' });
    const said = { fault: 1, fine: 1, later: 0 };
    const progress = { ...summary, said, seen: 1 };
    const judged: Report = { ...good, summary: progress, findings: [fine, fault] };
    expect(JSON.parse(written([judged], 'json', '1.0'))).toMatchObject({
      summary: { said },
      findings: [
        { state: 'fine', note: '=agreed\n<b>' },
        { state: 'fault', note: '' },
      ],
    });
    const text = written([judged], 'text', '1.0');
    expect(text).toContain('      Said: Fine: =agreed <b>\n');
    expect(text).toContain('      Said: Fault\n');
    const csv = written([judged], 'csv', '1.0');
    expect(csv).toContain(`,1,fine,"'=agreed\n<b>",,1,2,2,3\r\n`);
    expect(csv).toContain(',1,fault,,,1,2,2,3\r\n');
    const html = written([judged], 'html', '1.0');
    expect(html).toContain('<li class="finding fine">');
    expect(html).toContain('<p class="why">=agreed\n&lt;b&gt;</p>');
    expect(html).toContain('Judged: 1 fault, 1 fine, 0 for later.');
    const sarif = JSON.parse(written([judged], 'sarif', '1.0')) as {
      runs: { artifacts: unknown[]; results: Record<string, unknown>[] }[];
    };
    expect(sarif.runs[0]?.artifacts).toEqual([
      { location: { uri: 'a%20b.xlsx' }, properties: progress },
    ]);
    const [one, two] = sarif.runs[0]?.results ?? [];
    expect(one).toMatchObject({
      properties: { state: 'fine', note: '=agreed\n<b>' },
      suppressions: [{ kind: 'external', status: 'accepted', justification: '=agreed\n<b>' }],
    });
    expect(two).toMatchObject({ properties: { state: 'fault' } });
    expect(two).not.toHaveProperty('suppressions');
  });

  it('leaves those that are not fine their places', () => {
    const states = ['fine', undefined, 'fine', 'fault', 'later', 'fine'] as const;
    const all = states.map((state, i) => ({
      ...reported({ ...finding, rank: i + 1 }, ''),
      ...(state ? { state } : {}),
    }));
    expect(topOf(all, 2).map(({ rank }) => rank)).toEqual([1, 2, 3, 4]);
    expect(topOf(all, 9)).toHaveLength(6);
  });

  it('is SARIF', () => {
    const log = JSON.parse(written([good, bad], 'sarif', '1.0')) as {
      version: string;
      runs: Record<string, unknown>[];
    };
    expect(log.version).toBe('2.1.0');
    expect(log.runs).toEqual([
      {
        tool: { driver: { name: 'Quorin', version: '1.0', rules: [{ id: 'differs' }] } },
        invocations: [
          {
            executionSuccessful: false,
            toolExecutionNotifications: [
              {
                level: 'error',
                message: { text: '"c.xlsx" is not a workbook' },
                locations: [{ physicalLocation: { artifactLocation: { uri: 'c.xlsx' } } }],
              },
            ],
          },
        ],
        artifacts: [{ location: { uri: 'a%20b.xlsx' }, properties: summary }],
        results: [
          {
            ruleId: 'differs',
            level: 'warning',
            rank: 90,
            message: { text: 'C7 takes B7 away, the others add it. Expected: =A7+B7' },
            locations: [
              {
                physicalLocation: { artifactLocation: { uri: 'a%20b.xlsx' } },
                logicalLocations: [
                  { fullyQualifiedName: `'My "Data"'!C7` },
                  { fullyQualifiedName: `'My "Data"'!C9:D12` },
                  { fullyQualifiedName: "'Other''s'!A1" },
                ],
              },
            ],
          },
        ],
      },
    ]);
  });
});
