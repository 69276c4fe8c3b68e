// The colours of the map, for both themes. What stands in cells differs by at least a tenth in the
// colour space OKLab, also for those who do not tell red, green or blue apart; what is drawn over the
// cells differs by its shape as well.

import { Code, hueCount } from './codes';

export type Theme = 'light' | 'dark';

export type Palette = {
  /** By code. */
  cells: readonly string[];
  /** Where nothing stands. */
  blank: string;
  /** Beside the picture. */
  around: string;
  line: string;
  ink: string;
  quiet: string;
  here: string;
  uses: string;
  used: string;
  finding: string;
  /** Around what is drawn over the cells, so that it stands out from any of them. */
  halo: string;
};

export const palettes: Readonly<Record<Theme, Palette>> = {
  light: {
    cells: [
      '#ffffff',
      '#c0ced7',
      '#002b50',
      '#b61f00',
      '#00a795',
      '#874c8b',
      '#b47afd',
      '#ffb214',
      '#632fe7',
      '#e86a1e',
    ],
    blank: '#ffffff',
    around: '#f7f7f5',
    line: '#dededa',
    ink: '#1d1f23',
    quiet: '#5b606a',
    here: '#1d1f23',
    uses: '#0050d8',
    used: '#c2007a',
    finding: '#1d1f23',
    halo: '#ffffff',
  },
  dark: {
    cells: [
      '#242629',
      '#484e59',
      '#eef1f5',
      '#d54e11',
      '#008c8c',
      '#86ff2f',
      '#9803c2',
      '#03c592',
      '#c461ff',
      '#ffaaff',
    ],
    blank: '#242629',
    around: '#1b1c1f',
    line: '#35383d',
    ink: '#eceef1',
    quiet: '#a7acb6',
    here: '#ffffff',
    uses: '#6fb7ff',
    used: '#ff8fd0',
    finding: '#ffffff',
    halo: '#141517',
  },
};

/** The colours of formulas, in the order of their hues. */
export function formulaColours({ cells }: Palette): readonly string[] {
  return cells.slice(Code.Formula, Code.Formula + hueCount);
}

/** By code, as pixels are kept: alpha, blue, green, red from the highest byte down. */
export function pixelsOf({ cells }: Palette): Uint32Array {
  return Uint32Array.from(cells, (colour, code) => {
    if (code === Code.Blank) return 0;
    const [red, green, blue] = [1, 3, 5].map((at) => parseInt(colour.slice(at, at + 2), 16));
    return ((255 << 24) | ((blue ?? 0) << 16) | ((green ?? 0) << 8) | (red ?? 0)) >>> 0;
  });
}
