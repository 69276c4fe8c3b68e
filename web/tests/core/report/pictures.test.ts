import { describe, expect, it } from 'vitest';

import { Code } from '../../../src/core/map/codes';
import { pictureHtml, patterns, picturesHtml } from '../../../src/core/report/pictureHtml';
import type { SheetPicture } from '../../../src/core/report/pictures';
import { Reader, type Written } from '../model/written';

function pictures(sheets: Record<string, Written>, rank = 100) {
  return new Reader(sheets).ask('pictures', { rank });
}

function first(sheets: Record<string, Written>): SheetPicture {
  const [one] = pictures(sheets).sheets;
  if (!one) throw new Error('no picture');
  return one;
}

/** Each part as its code and its place. */
function parts({ parts: all }: SheetPicture): number[][] {
  return Array.from({ length: all.length / 5 }, (_, i) => all.slice(i * 5, i * 5 + 5));
}

const column: Written = { A1: 'Cost', 'A2:A9': 2, 'B2:B9': '=A2*2', B6: '=A6*3 -> 6' };

describe('the picture of a sheet', () => {
  it('has a part for all cells that are alike side by side', () => {
    const { width, height, rows, cols, area, ...one } = first({ Data: column });
    expect([width, height, rows, cols, area]).toEqual([2, 9, 1, 1, 'A1:B9']);
    const [text, inputs, above, odd, below] = parts({ ...one, width, height, rows, cols, area });
    expect(text).toEqual([Code.Text, 0, 0, 1, 1]);
    expect(inputs).toEqual([Code.Input, 0, 1, 1, 8]);
    expect(above?.slice(1)).toEqual([1, 1, 1, 4]);
    expect(odd?.slice(1)).toEqual([1, 5, 1, 1]);
    expect(below?.slice(1)).toEqual([1, 6, 1, 3]);
    expect(above?.[0]).toBe(below?.[0]);
    expect(above?.[0]).not.toBe(odd?.[0]);
    expect(above?.[0]).toBeGreaterThanOrEqual(Code.Formula);
  });

  it('has an error in it, and where the findings lie', () => {
    const { findings, ...one } = first({ Data: { ...column, A12: '=1/0 -> #DIV/0!' } });
    expect(parts({ ...one, findings })).toContainEqual([Code.Error, 0, 11, 1, 1]);
    expect(findings).toContainEqual({
      rank: expect.any(Number) as number,
      boxes: [{ left: 1, top: 5, width: 1, height: 1 }],
    });
  });

  it('has findings up to a rank, and none of style', () => {
    const style: Written = { 'A1:A9': 2, B1: '=A1*1.234', C1: '=A2*1.234', D1: '=A3/1.234' };
    expect(new Reader({ Data: style }).ask('findings', { from: 0 }).total).toBe(1);
    expect(pictures({ Data: style }).sheets[0]?.findings).toEqual([]);
    const sheets = { Data: column, More: column };
    const ranks = (rank: number) =>
      pictures(sheets, rank).sheets.flatMap(({ findings }) => findings.map((one) => one.rank));
    expect(ranks(100).sort()).toEqual([1, 2]);
    expect(ranks(1)).toEqual([1]);
  });

  it('is coarser where there is more than can be drawn', () => {
    const large: Written = { 'A1:CV700': 3 };
    const { width, height, rows, cols } = first({ Data: large });
    expect([width, height, rows, cols]).toEqual([100, 88, 8, 1]);
  });

  it('is bounded however unlike each other the cells are', () => {
    const sheet = (isText: (row: number, col: number) => boolean): Written => {
      const cells: Written = {};
      for (let row = 1; row <= 160; row++)
        for (let col = 0; col < 26; col++) {
          const address = `${String.fromCharCode(65 + col)}${String(row)}`;
          cells[address] = isText(row, col) ? 'text' : 5;
        }
      return cells;
    };
    const one = first({ Data: sheet((row, col) => (row + col) % 2 === 0) });
    expect(one.parts.length / 5).toBeLessThanOrEqual(2_500);
    expect(one.rows).toBeGreaterThan(1);
    const noise = sheet((row, col) => (row * 7 + col * 13 + row * row * col) % 5 < 2);
    const all = pictures(
      Object.fromEntries(Array.from({ length: 130 }, (_, i) => [`S${String(i)}`, noise])),
    );
    expect([all.sheets.length, all.left]).toEqual([120, 10]);
    const number = all.sheets.reduce((sum, { parts: some }) => sum + some.length / 5, 0);
    expect(number).toBeLessThanOrEqual(20_000);
    expect(picturesHtml(all, String).length).toBeLessThan(900_000);
    expect(picturesHtml(all, String)).toContain('<p>10 sheets more without a picture.</p>');
  });

  it('is there for each sheet that has something in it', () => {
    const all = pictures({ Data: column, Empty: {}, Notes: { B2: 'x' } });
    expect(all.sheets.map(({ sheet, area }) => [sheet, area])).toEqual([
      ['Data', 'A1:B9'],
      ['Notes', 'A1:B2'],
    ]);
    expect(picturesHtml({ sheets: [], left: 0 }, String)).toBe('');
  });
});

describe('a picture as SVG', () => {
  const html = pictureHtml(first({ 'A "b"': { ...column, C1: '=1/0 -> #N/A' } }), (text) =>
    text.replaceAll('"', '&quot;'),
  );

  it('has a hatching for each kind, which are all there and unlike each other', () => {
    const used = [...html.matchAll(/fill="url\(#(q\d)\)"/g)].map(([, id]) => id);
    expect(new Set(used).size).toBe(5);
    const known = new Map(
      [...patterns().matchAll(/<pattern id="(q\d)"[^>]*>(.*?)<\/pattern>/g)].map(
        ([, id, inner = '']) => [id, inner],
      ),
    );
    expect(known.size).toBe(9);
    for (const id of used) expect(known.has(id)).toBe(true);
    // Without their colours they still differ.
    const shapes = [...known.values()].map((inner) => inner.replace(/#[0-9a-f]{3,6}/g, ''));
    expect(new Set(shapes).size).toBe(9);
  });

  it('is called by its sheet, and says what a place stands for', () => {
    expect(html).toContain('aria-label="Picture of Sheet “A &quot;b&quot;”"');
    expect(html).toContain('<figcaption>Sheet “A &quot;b&quot;”, A1:C9</figcaption>');
    expect(pictureHtml(first({ Data: { 'A1:A700': 3 } }), String)).toContain(
      'A1:A700; each place stands for 8 rows</figcaption>',
    );
    expect(pictureHtml(first({ Data: { 'A1:IV700': 3 } }), String)).toContain(
      'A1:IV700; each place stands for 8 rows and 4 columns</figcaption>',
    );
  });

  it('has each finding outlined, with its number behind all outlines', () => {
    expect(html.match(/<rect/g)).toHaveLength(4);
    expect(html.match(/<text [^>]*>\d<\/text>/g)).toHaveLength(2);
    expect(html.lastIndexOf('<rect')).toBeLessThan(html.indexOf('<text'));
  });

  it('puts no number on another one or on an outline, where there is room', () => {
    const picture = first({ Data: { 'A1:H9': 3 } });
    const box = (left: number, top: number) => ({ left, top, width: 1, height: 1 });
    const findings = [
      { rank: 10, boxes: [box(3, 4)] },
      { rank: 11, boxes: [box(4, 4), box(7, 0)] },
      { rank: 12, boxes: [box(3, 4)] },
      { rank: 13, boxes: [box(3, 4)] },
    ];
    const drawn = pictureHtml({ ...picture, findings }, String);
    const numbers = [...drawn.matchAll(/<text x="([-\d.]+)" y="([-\d.]+)">(\d+)</g)].map(
      ([, x, y, rank]) => ({ x: Number(x), y: Number(y), rank }),
    );
    const frames = [
      ...drawn.matchAll(/<rect x="(-?\d+)" y="(-?\d+)" width="(\d+)" height="(\d+)" [^>]*#000/g),
    ].map(([, x, y, width, height]) => [x, y, width, height].map(Number));
    expect(numbers.map(({ rank }) => rank)).toEqual(['10', '11', '12', '13']);
    expect(frames).toHaveLength(5);
    for (const { x, y, rank } of numbers) {
      const others = numbers.filter((one) => one.rank !== rank);
      expect(others.some((one) => Math.abs(one.x - x) < 13 && Math.abs(one.y - y) < 9)).toBe(false);
      const isOn = ([left = 0, top = 0, width = 0, height = 0]: number[]) =>
        x + 13 > left + 1 && x < left + width - 1 && y > top + 1 && y - 8 < top + height - 1;
      expect(frames.some(isOn)).toBe(false);
    }
  });
});
