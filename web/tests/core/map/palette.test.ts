// Colours as those see them who do not tell red (protanopia), green (deuteranopia) or blue
// (tritanopia) apart: the matrices are those of Machado, Oliveira and Fernandes (2009) for the
// complete loss, on linear light. Distances are those of OKLab.

import { describe, expect, test } from 'vitest';

import { Code } from '../../../src/core/map/codes';
import { palettes, pixelsOf } from '../../../src/core/map/palette';

type Three = [number, number, number];

const sights: Record<string, [Three, Three, Three]> = {
  everybody: [
    [1, 0, 0],
    [0, 1, 0],
    [0, 0, 1],
  ],
  'those without red': [
    [0.152286, 1.052583, -0.204868],
    [0.114503, 0.786281, 0.099216],
    [-0.003882, -0.048116, 1.051998],
  ],
  'those without green': [
    [0.367322, 0.860646, -0.227968],
    [0.280085, 0.672501, 0.047413],
    [-0.01182, 0.04294, 0.968881],
  ],
  'those without blue': [
    [1.255528, -0.076749, -0.178779],
    [-0.078411, 0.930809, 0.147602],
    [0.004733, 0.691367, 0.3039],
  ],
};

function linear(colour: string): Three {
  const of = (at: number) => {
    const value = parseInt(colour.slice(at, at + 2), 16) / 255;
    return value <= 0.04045 ? value / 12.92 : ((value + 0.055) / 1.055) ** 2.4;
  };
  return [of(1), of(3), of(5)];
}

const times = (matrix: [Three, Three, Three], [x, y, z]: Three): Three =>
  matrix.map(([a, b, c]) => a * x + b * y + c * z) as Three;

function lab(light: Three): Three {
  const [l, m, s] = times(
    [
      [0.4122214708, 0.5363325363, 0.0514459929],
      [0.2119034982, 0.6806995451, 0.1073969566],
      [0.0883024619, 0.2817188376, 0.6299787005],
    ],
    light.map((one) => Math.min(1, Math.max(0, one))) as Three,
  ).map(Math.cbrt) as Three;
  return times(
    [
      [0.2104542553, 0.793617785, -0.0040720468],
      [1.9779984951, -2.428592205, 0.4505937099],
      [0.0259040371, 0.7827717662, -0.808675766],
    ],
    [l, m, s],
  );
}

const apart = ([a, b, c]: Three, [x, y, z]: Three) => Math.hypot(a - x, b - y, c - z);

function contrast(one: string, other: string): number {
  const light = (colour: string) => {
    const [red, green, blue] = linear(colour);
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
  };
  const [low, high] = [light(one), light(other)].sort((a, b) => a - b) as [number, number];
  return (high + 0.05) / (low + 0.05);
}

describe.each(Object.entries(palettes))('the %s palette', (_, palette) => {
  test.each(Object.keys(sights))('has colours that %s can tell apart', (whose) => {
    const matrix = sights[whose] as [Three, Three, Three];
    const seen = palette.cells.map((colour) => lab(times(matrix, linear(colour))));
    const close = seen.flatMap((one, i) =>
      seen.flatMap((other, j) => (j < i && apart(one, other) < 0.1 ? [[i, j]] : [])),
    );
    expect(close).toEqual([]);
  });

  test('has outlines that stand out from what is around them', () => {
    for (const colour of [palette.here, palette.uses, palette.used, palette.finding]) {
      expect(contrast(colour, palette.halo)).toBeGreaterThanOrEqual(4.5);
      expect(contrast(colour, palette.blank)).toBeGreaterThanOrEqual(4.5);
    }
    for (const colour of [palette.ink, palette.quiet]) {
      expect(contrast(colour, palette.around)).toBeGreaterThanOrEqual(4.5);
    }
  });

  test('is turned into pixels, blank ones clear', () => {
    const pixels = pixelsOf(palette);
    expect(pixels[Code.Blank]).toBe(0);
    const [red, green, blue] = [1, 3, 5].map((at) =>
      parseInt((palette.cells[Code.Error] ?? '').slice(at, at + 2), 16),
    );
    const bytes = new Uint8Array(pixels.buffer, Code.Error * 4, 4);
    expect([...bytes]).toEqual([red, green, blue, 255]);
  });
});
