// In what a formula differs from another one that was expected in its cell, in words, and how near
// the two are. Pure.

import { areaAddress, maxColumns, maxRows, type Area } from '../address/area';
import {
  translateReference,
  writeReference,
  type CellPosition,
  type Corner,
} from '../formula/reference';
import type { ReferenceSlot, Shape, Slot } from './shape';

export type Difference = {
  /** "adds rows 3 to 12, the others rows 3 to 13" */
  words: string;
  /** Places in which the two differ; more than a few is another formula. */
  places: number;
  /** True if functions, operators and names are the same. */
  alike: boolean;
};

function areaOf(corner: Corner, to: Corner): Area {
  return {
    top: Math.min(corner.row?.at ?? 1, to.row?.at ?? 1),
    left: Math.min(corner.col?.at ?? 1, to.col?.at ?? 1),
    bottom: Math.max(corner.row?.at ?? maxRows, to.row?.at ?? maxRows),
    right: Math.max(corner.col?.at ?? maxColumns, to.col?.at ?? maxColumns),
  };
}

/** The cells that a reference names from a cell, without its sheet. */
export function areaFrom(slot: ReferenceSlot, at: CellPosition): Area {
  const { from, to } = translateReference(slot.shape, 'a1', at);
  return areaOf(from, to ?? from);
}

function addressOf(slot: ReferenceSlot, at: CellPosition): string {
  return slot.prefix + writeReference(translateReference(slot.shape, 'a1', at), 'a1');
}

function tracks(first: number, last: number, word: 'row' | 'column'): string {
  const name = (track: number) =>
    word === 'row'
      ? String(track)
      : areaAddress({ top: 1, bottom: 1, left: track, right: track }).replace(/\d+$/, '');
  return first === last ? `${word} ${name(first)}` : `${word}s ${name(first)} to ${name(last)}`;
}

function ofReferences(own: ReferenceSlot, other: ReferenceSlot, at: CellPosition): string {
  if (own.prefix.toLowerCase() !== other.prefix.toLowerCase()) {
    const place = ({ prefix }: ReferenceSlot) =>
      prefix === '' ? 'its own sheet' : prefix.slice(0, -1);
    return `takes cells of ${place(own)}, the others of ${place(other)}`;
  }
  const mine = areaFrom(own, at);
  const theirs = areaFrom(other, at);
  const sameCols = mine.left === theirs.left && mine.right === theirs.right;
  const sameRows = mine.top === theirs.top && mine.bottom === theirs.bottom;
  const [one, two] = [addressOf(own, at), addressOf(other, at)];
  if (sameCols && sameRows) return `writes ${one}, the others ${two}: the dollar signs differ`;
  const isRange = own.shape.to !== undefined || other.shape.to !== undefined;
  if (sameCols && isRange) {
    const [part, whole] = [
      tracks(mine.top, mine.bottom, 'row'),
      tracks(theirs.top, theirs.bottom, 'row'),
    ];
    return `takes ${part}, the others ${whole}`;
  }
  if (sameRows && isRange) {
    const part = tracks(mine.left, mine.right, 'column');
    return `takes ${part}, the others ${tracks(theirs.left, theirs.right, 'column')}`;
  }
  return `takes ${one}, the others ${two}`;
}

function isSame(one: Slot, other: Slot): boolean {
  if (one.kind !== other.kind || one.text.toUpperCase() !== other.text.toUpperCase()) return false;
  const prefix = (slot: Slot) => (slot.kind === 'reference' ? slot.prefix.toLowerCase() : '');
  return prefix(one) === prefix(other);
}

function ofSlots(own: Slot, other: Slot, at: CellPosition): string {
  if (own.kind === 'reference' && other.kind === 'reference') return ofReferences(own, other, at);
  const written = (slot: Slot): string =>
    slot.kind === 'reference'
      ? addressOf(slot, at)
      : slot.kind === 'text'
        ? `“${slot.text}”`
        : slot.text;
  return `has ${written(own)}, the others ${written(other)}`;
}

/** What of two texts is not at both their beginnings and ends. */
function middles(one: string, other: string): [string, string] {
  const isWord = (c: string | undefined) => c !== undefined && /[\w.]/.test(c);
  const most = Math.min(one.length, other.length);
  let start = 0;
  while (start < most && one[start] === other[start]) start++;
  while (start > 0 && isWord(one[start - 1])) start--;
  let end = 0;
  while (end < most - start && one.at(-1 - end) === other.at(-1 - end)) end++;
  while (end > 0 && isWord(one.at(-end))) end--;
  return [one.slice(start, one.length - end), other.slice(start, other.length - end)];
}

export function differenceOf(own: Shape, expected: Shape, at: CellPosition): Difference {
  if (own.skeleton.toUpperCase() === expected.skeleton.toUpperCase()) {
    const places: string[] = [];
    own.slots.forEach((slot, i) => {
      const other = expected.slots[i];
      if (other && !isSame(slot, other)) places.push(ofSlots(slot, other, at));
    });
    return {
      words: [...new Set(places)].slice(0, 2).join('; '),
      places: places.length,
      alike: true,
    };
  }
  const [one, two] = middles(own.skeleton, expected.skeleton);
  const isShort = one.length <= 12 && two.length <= 12 && own.skeleton.length > 3;
  if (isShort && own.slots.length === expected.slots.length && one !== '' && two !== '') {
    return { words: `has ${one} where the others have ${two}`, places: 1, alike: false };
  }
  const rest = isShort ? 2 : 9;
  return { words: 'is another formula', places: rest, alike: false };
}
