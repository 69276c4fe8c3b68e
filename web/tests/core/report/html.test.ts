import { describe, expect, it } from 'vitest';

import type { Inventory } from '../../../src/core/report/inventory';
import type { Report } from '../../../src/core/report/Report';
import { written } from '../../../src/core/report/written';

const hostile = '<img src=x onerror="alert(1)">&\u202e\'';

const report: Report & { inventory: Inventory } = {
  file: 'a<b>.xlsx',
  summary: {
    sheets: 1,
    cells: 1_234,
    formulas: 2,
    distinctFormulas: 1,
    findings: 3,
    high: 1,
    medium: 0,
    low: 2,
    notRead: [{ sheet: hostile, address: 'A1:B2', reason: 'It is protected.' }],
  },
  findings: [
    {
      rank: 1,
      kind: 'left-out',
      level: 'fact',
      sheet: 'My Data',
      cells: ['C7', 'C9:D12'],
      message: `adds rows 3 to 12 ${hostile}`,
      expected: '=SUM(A3:A13)&"<b>"',
      confidence: 'high',
      reach: 1,
    },
  ],
  inventory: {
    sheets: [
      { name: hostile, area: 'A1:B9', cells: 1_234, formulas: 2, distinctFormulas: 1, errors: 0 },
    ],
    names: { all: 1_002, listed: [{ name: hostile, refersTo: '=1' }] },
    links: [{ workbook: 'Rates.xlsx', formulas: 0, sheets: [] }],
    unlabelled: { all: 2, listed: [{ sheet: hostile, address: 'D5', value: 0.5 }] },
  },
};

const entities: Record<string, string> = { lt: '<', gt: '>', quot: '"', '#39': "'", amp: '&' };

function shown(html: string): string {
  return html
    .replace(/<[^>]*>/g, '')
    .replace(/&(#?\w+);/g, (_, name: string) => entities[name] ?? '?')
    .replace(/\s+/g, ' ')
    .trim();
}

/** What stands in each element of that name, and of that class where one is given. */
function texts(html: string, name: string, ofClass = ''): string[] {
  const found = html.matchAll(new RegExp(`<${name}( [^>]*)?>([\\s\\S]*?)</${name}>`, 'g'));
  return [...found]
    .filter(([, attributes = '']) => ofClass === '' || attributes.includes(`class="${ofClass}"`))
    .map(([, , inner = '']) => shown(inner));
}

const pageOf = (...reports: Report[]) => written(reports, 'html', '1.2');

describe('A report as a page', () => {
  it('says of each finding where, what, what is expected, how sure it is and what rests on it', () => {
    const findings = report.findings.map((one) => ({ ...one, message: 'Adds rows 3 to 12.' }));
    const html = pageOf({ ...report, findings });
    expect(texts(html, 'li', 'finding high')).toEqual([
      `1. 'My Data'!C7, C9:D12 Adds rows 3 to 12. Expected: =SUM(A3:A13)&"<b>" Range stops shortHigh confidence1 cell rests on it`,
    ]);
    expect(texts(html, 'p')).toContain('2 findings of lower rank left out.');
    expect(texts(html, 'p')).toContain('3 findings: 1 of high confidence, 0 medium, 2 low.');
    expect(texts(html, 'p')).toContain(
      '1 sheet with 1,234 cells, among them 2 formulas, of which 1 is distinct.',
    );
  });

  it('tells sheets, names, links and inputs without a label, and how many are not listed', () => {
    const html = pageOf(report);
    expect(texts(html, 'h3')).toEqual([
      'Findings',
      'Sheets',
      'Names',
      'Links to other workbooks',
      'Inputs without a label',
    ]);
    expect(texts(html, 'td', 'number').slice(0, 2)).toEqual(['1,234', '2']);
    expect(texts(html, 'p')).toContain('1,001 names more.');
    expect(texts(html, 'p')).toContain('1 cell more.');
    expect(texts(html, 'td')).toContain('in names only');
    const unlabelled = { ...report.inventory.unlabelled, all: 5_000 };
    const many = pageOf({ ...report, inventory: { ...report.inventory, unlabelled } });
    expect(texts(many, 'p')).toContain('At least 4,999 cells more.');
  });

  it('takes no text of a workbook for markup, and asks for nothing', () => {
    const html = pageOf(report);
    const tags = new Set([...html.matchAll(/<\/?([a-z0-9]+)/g)].map(([, name]) => name));
    const known =
      'html head meta title style body h1 h2 h3 section p ol li ul div strong span code table thead tbody tr th td footer';
    expect([...tags].filter((name) => !known.split(' ').includes(name ?? ''))).toEqual([]);
    expect(html).not.toMatch(/<[^>]*\s(on\w+|src|style)=/);
    expect(html).not.toMatch(/https?:|url\(|@import/);
    expect(html).toContain(`content="default-src 'none'; style-src 'unsafe-inline'"`);
    expect(texts(html, 'h2')).toEqual(['a<b>.xlsx']);
    expect(texts(html, 'td')[0]).toBe(hostile.replace('\u202e', '\ufffd'));
    expect(html).not.toContain('\u202e');
  });

  it('leads to each of several workbooks, and tells those that could not be audited', () => {
    const html = pageOf(report, { file: 'c.xlsx', error: 'It is <damaged>.' });
    const links = [...html.matchAll(/<a href="#([^"]*)">([^<]*)</g)];
    expect(links.map(([, id, text]) => [id, shown(text ?? '')])).toEqual([
      ['file0', 'a<b>.xlsx'],
      ['file1', 'c.xlsx'],
    ]);
    for (const [, id] of links) expect(html.split(`id="${String(id)}"`)).toHaveLength(2);
    expect(texts(html, 'p', 'trouble')).toEqual(['Could not be audited: It is <damaged>.']);
    expect(texts(html, 'h1')).toEqual(['Audit of 2 workbooks']);
  });

  it('has the sheets as pictures where there are some, which no list has', () => {
    const pictures = {
      sheets: [
        {
          sheet: hostile,
          area: 'A1:B9',
          width: 1,
          height: 1,
          rows: 9,
          cols: 2,
          parts: [2, 0, 0, 1, 1],
          findings: [],
        },
      ],
      left: 0,
    };
    const drawn = written([{ ...report, pictures }], 'html', '');
    expect(drawn).toContain('<h3>Map</h3>');
    expect(drawn).toContain('<pattern id="q2"');
    expect(drawn).not.toContain('<img');
    expect(written([report], 'html', '')).not.toMatch(/<h3>Map|<pattern/);
    for (const format of ['json', 'jsonl', 'csv', 'sarif', 'text'] as const)
      expect(written([{ ...report, pictures }], format, '')).not.toMatch(/parts|pictures/);
  });

  it('names the first areas of a finding that has many, and counts the others', () => {
    const cells = (areas: number) => Array.from({ length: areas }, (_, i) => `C${String(i + 1)}`);
    const heading = (areas: number) => {
      const [finding] = report.findings;
      if (!finding) throw new Error('no finding');
      const many = { ...report, findings: [{ ...finding, cells: cells(areas) }] };
      return texts(written([many], 'html', ''), 'strong')[0];
    };
    expect(heading(13)).toContain('C12, C13');
    expect(heading(14)).toContain('C11, C12 and 2 more areas');
  });

  it('shows the formula that stands there, unless the sentence has it', () => {
    const [finding] = report.findings;
    if (!finding) throw new Error('no finding');
    const codes = (part: object) => {
      const html = pageOf({ ...report, findings: [{ ...finding, ...part }] });
      return texts(html, 'li', 'finding high').join();
    };
    expect(codes({ formula: '=A1<B1', cells: ['C7:C9', 'E1'] })).toContain('C7: =A1<B1 Expected');
    expect(codes({ formula: '=A1', message: 'C7 has =A1.' })).not.toContain('C7: =A1');
    const long = codes({ formula: `=${'A1+'.repeat(300)}A1` });
    expect(long).toContain(`C7: =${'A1+'.repeat(133)}…`);
    expect(codes({})).not.toContain('C7: ');
  });

  it('is called by the file, with its folders only where two have one name', () => {
    const called = (...files: string[]) => {
      const html = pageOf(...files.map((file) => ({ ...report, file })));
      return [texts(html, 'h2'), texts(html, 'title')[0]];
    };
    expect(called('/home/ann/a.xlsx')).toEqual([['a.xlsx'], 'Audit of a.xlsx']);
    expect(called('x/a.xlsx', 'x/b.xlsx', 'y/a.xlsx')).toEqual([
      ['x/a.xlsx', 'b.xlsx', 'y/a.xlsx'],
      'Audit of 3 workbooks',
    ]);
  });

  it('lists hidden rows and columns', () => {
    const hidden = [{ sheet: hostile, rows: '5:9', cols: 'C', partly: true }];
    const listed = written([{ ...report, inventory: { ...report.inventory, hidden } }], 'html', '');
    expect(texts(listed, 'h3')).toContain('Hidden rows and columns');
    expect(texts(listed, 'code')).toContain('5:9');
    expect(texts(listed, 'td').join()).toContain('(not all of it was looked at)');
    expect(written([report], 'html', '')).not.toContain('Hidden rows');
  });
});
