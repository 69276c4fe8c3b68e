// Which rows and columns are named at the edge of a sheet's picture. Pure.

import { trackAtPlace, type Tracks } from './Tracks';

export type Tick = {
  track: number;
  /** Where it begins, in points. */
  at: number;
};

/** At least `apart` points from each other, at round numbers where not every track has room. */
export function ticks(
  tracks: Tracks,
  from: number,
  scale: number,
  room: number,
  apart: number,
): Tick[] {
  const found: Tick[] = [];
  const step = niceStep(apart / scale);
  const last = Math.min(tracks.count - 1, from + room / scale);
  // Track 10 is at place 9.
  const shift = step === 1 ? 0 : -1;
  for (let k = Math.floor(from / step); k * step + shift <= last; k++) {
    const place = k * step + shift;
    if (place < 0 || place < from - 0.5) continue;
    found.push({ track: trackAtPlace(tracks, place), at: (place - from) * scale });
  }
  return found;
}

/** 1, 2, 5, 10, 20, 50 and so on. */
function niceStep(least: number): number {
  if (least <= 1) return 1;
  const power = 10 ** Math.floor(Math.log10(least));
  return [1, 2, 5].map((by) => by * power).find((step) => step >= least) ?? power * 10;
}
