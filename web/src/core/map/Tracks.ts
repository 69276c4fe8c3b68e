// The rows, or the columns, of a sheet as its picture has them: one beside the other, and long blank
// stretches folded to a narrow one, so that what is filled has the room. A track is a row's or a column's
// number in the sheet, a place is where it stands in the picture. Pure, plain data.

export type Stretch = {
  /** Tracks of the sheet. */
  first: number;
  last: number;
  /** The place of the first one. */
  at: number;
  /** How many places they take: as many as there are tracks, or fewer where they are folded. */
  places: number;
};

export type Tracks = { stretches: Stretch[]; count: number };

/** A longer blank stretch is folded, to so many places. */
export const foldFrom = 60;
export const foldedTo = 3;

export type Run = { first: number; last: number };

/** The runs of tracks that are marked in `filled`, whose first entry stands for `first`. */
export function runsOf(filled: Uint8Array, first: number): Run[] {
  const runs: Run[] = [];
  for (let i = 0; i < filled.length; i++) {
    if (filled[i] === 0) continue;
    const start = i;
    while (i + 1 < filled.length && filled[i + 1] !== 0) i++;
    runs.push({ first: first + start, last: first + i });
  }
  return runs;
}

/** From the sheet's first track to the last one that is filled. `filled`: in order, without overlap. */
export function tracksOf(filled: readonly Run[]): Tracks {
  const stretches: Stretch[] = [];
  let at = 0;
  // What is not folded is one stretch, from the first track after a fold to the last one before the next.
  let open = 1;
  let next = 1;
  const close = (last: number): void => {
    if (last < open) return;
    stretches.push({ first: open, last, at, places: last - open + 1 });
    at += last - open + 1;
  };
  for (const { first, last } of filled) {
    if (first - next > foldFrom) {
      close(next - 1);
      stretches.push({ first: next, last: first - 1, at, places: foldedTo });
      at += foldedTo;
      open = first;
    }
    next = last + 1;
  }
  close(next - 1);
  return { stretches, count: at };
}

export function isFolded({ first, last, places }: Stretch): boolean {
  return places < last - first + 1;
}

function search(tracks: Tracks, isBehind: (stretch: Stretch) => boolean): number {
  let low = 0;
  let high = tracks.stretches.length - 1;
  while (low < high) {
    const middle = Math.ceil((low + high) / 2);
    if (isBehind(tracks.stretches[middle] as Stretch)) high = middle - 1;
    else low = middle;
  }
  return low;
}

/** Where a track begins, in places; in a fold somewhere between. Tracks behind the last one go on. */
export function placeOfTrack(tracks: Tracks, track: number): number {
  const stretch = tracks.stretches[search(tracks, ({ first }) => first > track)];
  if (!stretch) return track - 1;
  const { first, last, at, places } = stretch;
  if (track > last) return tracks.count + track - last - 1;
  return at + ((track - first) * places) / (last - first + 1);
}

/** The track at a place, which need not be a whole number. Places behind the last one go on. */
export function trackAtPlace(tracks: Tracks, place: number): number {
  const stretch = tracks.stretches[search(tracks, ({ at }) => at > place)];
  if (!stretch) return Math.floor(place) + 1;
  const { first, last, at, places } = stretch;
  if (place >= tracks.count) return last + 1 + Math.floor(place - tracks.count);
  return first + Math.floor(((place - at) * (last - first + 1)) / places);
}

/** The place of each track from `first` to `last`, in order; -1 for those in a fold and beyond the end. */
export function placesOfTracks(tracks: Tracks, first: number, last: number): Int32Array {
  const places = new Int32Array(last - first + 1).fill(-1);
  for (let i = search(tracks, (one) => one.first > first); i < tracks.stretches.length; i++) {
    const stretch = tracks.stretches[i] as Stretch;
    if (stretch.first > last) break;
    if (isFolded(stretch)) continue;
    const from = Math.max(first, stretch.first);
    const to = Math.min(last, stretch.last);
    for (let track = from; track <= to; track++)
      places[track - first] = stretch.at + track - stretch.first;
  }
  return places;
}
