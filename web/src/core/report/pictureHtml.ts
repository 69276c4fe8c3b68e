// The pictures of a report, drawn as SVG. Kinds differ by their hatching as well as by colour, so that
// they are told apart in black and white, too.

import { count } from '../format/words';
import { Code, hueCount } from '../map/codes';
import { palettes } from '../map/palette';
import type { Box, Pictures, SheetPicture } from './pictures';

const colours = palettes.light.cells;

/** By hue: the lines of a pattern of 8 by 8. */
const hatchings = [
  'M-1 9L9 -1M-1 1L1 -1M7 9L9 7',
  'M-1 -1L9 9M-1 7L1 9M7 -1L9 1',
  'M0 2H8M0 6H8',
  'M2 0V8M6 0V8',
  'M-1 9L9 -1M-1 -1L9 9',
  'M0 4H8M4 0V8',
];

function pattern(id: string, size: number, inner: string): string {
  return `<pattern id="${id}" width="${String(size)}" height="${String(size)}" patternUnits="userSpaceOnUse">${inner}</pattern>`;
}

/** What all pictures of a page are filled with. */
export function patterns(): string {
  const hue = (number: number): string => {
    const colour = colours[Code.Formula + number] ?? '';
    const lines = `<path d="${hatchings[number] ?? ''}" stroke="${colour}" stroke-width="1.6" fill="none"/>`;
    const ground = `<path d="M0 0H8V8H0z" fill="${colour}" fill-opacity=".22"/>`;
    return pattern(`q${String(Code.Formula + number)}`, 8, ground + lines);
  };
  const error = colours[Code.Error] ?? '';
  const all = [
    pattern(
      `q${String(Code.Text)}`,
      4,
      '<path d="M0 0H4V4H0z" fill="#edf1f3"/><path d="M1 1h1v1H1z" fill="#7b8a94"/>',
    ),
    pattern(
      `q${String(Code.Input)}`,
      4,
      `<path d="M0 0H4V4H0z" fill="${colours[Code.Input] ?? ''}"/>`,
    ),
    pattern(
      `q${String(Code.Error)}`,
      6,
      `<path d="M0 0H6V6H0z" fill="${error}"/><path d="M0 0L6 6M0 6L6 0" stroke="#fff" stroke-width="1.6"/>`,
    ),
    ...Array.from({ length: hueCount }, (_, number) => hue(number)),
  ];
  return `<svg width="0" height="0" class="patterns" aria-hidden="true"><defs>${all.join('')}</defs></svg>`;
}

/** What the hatchings mean. */
export function legend(): string {
  const swatch = (code: number) =>
    `<svg width="26" height="14" aria-hidden="true"><rect width="26" height="14" fill="url(#q${String(code)})" stroke="#555"/></svg>`;
  const hues = Array.from({ length: hueCount }, (_, number) => swatch(Code.Formula + number));
  return `<p class="legend"><span>${swatch(Code.Input)} number typed in</span> <span>${swatch(Code.Text)} text</span> <span>${swatch(Code.Error)} error</span> <span>${hues.join('')} formulas: the same one has the same hatching</span> <span><svg width="26" height="14" aria-hidden="true"><rect x="2" y="2" width="22" height="10" fill="none" stroke="#000" stroke-width="2"/></svg> finding, with its number</span></p>`;
}

/** How wide and how high a sample is drawn. */
function unitsOf({ width, height }: SheetPicture): { across: number; down: number } {
  const within = (size: number, least: number, most: number) =>
    Math.round(Math.max(least, Math.min(most, size)));
  const down = within(640 / height, 4, 12);
  return { across: within(620 / width, 4, 3 * down), down };
}

export function pictureHtml(picture: SheetPicture, text: (value: string) => string): string {
  const { across, down } = unitsOf(picture);
  const paths = new Map<number, string>();
  for (let i = 0; i + 4 < picture.parts.length; i += 5) {
    const [code, left, top, width, height] = picture.parts.slice(i, i + 5) as [
      number,
      number,
      number,
      number,
      number,
    ];
    const box = `M${String(left * across)} ${String(top * down)}h${String(width * across)}v${String(height * down)}h-${String(width * across)}z`;
    paths.set(code, (paths.get(code) ?? '') + box);
  }
  const drawn = [...paths].sort(([a], [b]) => a - b);
  const parts = drawn.map(([code, path]) => `<path fill="url(#q${String(code)})" d="${path}"/>`);
  const [width, height] = [picture.width * across, picture.height * down];
  const units = { across, down };
  const boxes = picture.findings.flatMap((one) => one.boxes);
  const frames = boxes.map((box) => frameOf(box, units)).join('');
  const taken = boxes.slice(0, mostCompared).map((box) => inPoints(box, units));
  const room = { left: -4, top: -12, width: width + 28, height: height + 16 };
  const numbers = picture.findings.flatMap(({ rank, boxes: [first] }) => {
    if (!first) return [];
    const place = numberPlace(inPoints(first, units), rank, room, taken);
    taken.push(place);
    const [x, y] = [place.left, place.top + numberHeight - 1];
    return [`<text x="${String(x)}" y="${String(y)}">${String(rank)}</text>`];
  });
  const name = `Sheet “${picture.sheet}”`;
  // A margin of a few pixels has the numbers of what lies at the edge.
  return `<figure>
<svg viewBox="-4 -12 ${String(width + 28)} ${String(height + 16)}" width="${String(width + 28)}" role="img" aria-label="${text(`Picture of ${name}`)}">
<path fill="#fff" stroke="#999" d="M0 0h${String(width)}v${String(height)}h-${String(width)}z"/>
${parts.join('\n')}
${frames}${numbers.join('')}</svg>
<figcaption>${text(`${name}, ${picture.area}${sampleText(picture)}`)}</figcaption>
</figure>`;
}

/** ": each place stands for 4 rows and 2 columns"; empty where each stands for a cell. */
function sampleText({ rows, cols }: SheetPicture): string {
  if (rows === 1 && cols === 1) return '';
  const parts = [
    ...(rows > 1 ? [count(rows, 'row')] : []),
    ...(cols > 1 ? [count(cols, 'column')] : []),
  ];
  return `; each place stands for ${parts.join(' and ')}`;
}

type Units = { across: number; down: number };

/** The cells of a finding: an outline that stands out from any hatching. */
function frameOf({ left, top, width, height }: Box, { across, down }: Units): string {
  const [x, y] = [left * across - 1, top * down - 1];
  const box = `x="${String(x)}" y="${String(y)}" width="${String(width * across + 2)}" height="${String(height * down + 2)}" fill="none"`;
  return `<rect ${box} stroke="#fff" stroke-width="4"/><rect ${box} stroke="#000" stroke-width="1.8"/>`;
}

/** How wide a digit is drawn, and how high. */
const digitWidth = 6.5;
const numberHeight = 9;
/** Of more outlines a number may lie on one. */
const mostCompared = 1_000;

function inPoints({ left, top, width, height }: Box, { across, down }: Units): Box {
  return {
    left: left * across,
    top: top * down,
    width: width * across,
    height: height * down,
  };
}

function meets(one: Box, other: Box): boolean {
  return (
    one.left < other.left + other.width &&
    other.left < one.left + one.width &&
    one.top < other.top + other.height &&
    other.top < one.top + one.height
  );
}

function isWithin(inner: Box, outer: Box): boolean {
  return (
    inner.left >= outer.left &&
    inner.top >= outer.top &&
    inner.left + inner.width <= outer.left + outer.width &&
    inner.top + inner.height <= outer.top + outer.height
  );
}

/** Beside the outline, where no other outline or number lies; to the right of it where all is taken. */
function numberPlace(box: Box, rank: number, room: Box, taken: readonly Box[]): Box {
  const size = { width: String(rank).length * digitWidth, height: numberHeight };
  const right = room.left + room.width - size.width;
  const beside = { ...size, left: Math.min(right, box.left + box.width + 3), top: box.top - 1 };
  const places = [
    beside,
    { ...size, left: box.left - size.width - 3, top: box.top - 1 },
    { ...size, left: box.left, top: box.top - numberHeight - 2 },
    { ...size, left: box.left, top: box.top + box.height + 2 },
  ];
  const isFree = (place: Box) =>
    isWithin(place, room) && !taken.some((other) => meets(place, other));
  return places.find(isFree) ?? beside;
}

export function picturesHtml(
  { sheets, left }: Pictures,
  text: (value: string | number) => string,
): string {
  if (sheets.length === 0) return '';
  const more = left > 0 ? `\n<p>${count(left, 'sheet')} more without a picture.</p>` : '';
  return `<h3>Map</h3>
<p>Each sheet that is not empty. Long blank stretches are drawn narrower than they are.</p>
${legend()}
${sheets.map((one) => pictureHtml(one, text)).join('\n')}${more}`;
}
