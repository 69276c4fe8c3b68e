// The keys that count in the view that is in front, as the help lists them. Pure.

import type { View } from '../explorer/view';
import type { MapMode } from '../map/Atlas';

export type KeyHelp = { keys: string; does: string };
export type KeyGroup = { title: string; keys: readonly KeyHelp[] };

export type InFront = {
  view: View;
  mode: MapMode;
  /** The tree has a formula in it. */
  hasTree: boolean;
};

const throughRows: KeyHelp[] = [
  { keys: '↑ ↓', does: 'go through the rows' },
  { keys: '→ ←', does: 'open a row, close it' },
  { keys: 'Home End', does: 'the first row, the last one' },
];

const mark: KeyHelp = { keys: 'Space', does: 'marks and shows the row’s cells on the sheet' };
const letters: KeyHelp = { keys: 'a letter', does: 'the next row that begins with it' };

const inTree: KeyHelp[] = [
  ...throughRows,
  { keys: 'Enter', does: 'opens the formula of the cell behind the row' },
  mark,
  { keys: 'N P', does: 'next error, previous error' },
  { keys: '*', does: 'opens the row and its siblings' },
  letters,
];

const inList: KeyHelp[] = [
  ...throughRows,
  { keys: 'Enter', does: 'opens the cell’s formula as a tree' },
  mark,
];

const inReview: KeyHelp[] = [
  ...throughRows,
  { keys: 'Enter', does: 'selects the finding’s cells in the spreadsheet' },
  mark,
  { keys: 'N P', does: 'next and previous finding of high confidence' },
];

const inPicture: KeyHelp[] = [
  { keys: '↑ ↓ ← →', does: 'move the cursor' },
  { keys: 'Shift + arrows', does: 'move the picture' },
  { keys: '+ − 0', does: 'larger, smaller, all of the sheet' },
  { keys: 'Enter', does: 'selects the cell in the spreadsheet' },
  { keys: 'Space', does: 'marks and shows it' },
  { keys: 'N P', does: 'next and previous finding on the sheet' },
  { keys: 'Ctrl + Page Up, Down', does: 'the sheet before, the next one' },
];

const inOverview: KeyHelp[] = [
  { keys: '↑ ↓ ← →', does: 'go from sheet to sheet' },
  { keys: 'Enter', does: 'opens the sheet’s picture' },
];

const everywhere: KeyHelp[] = [
  { keys: '1 2 3 4', does: 'tree, dependents, map, review' },
  { keys: 'Ctrl or ⌘ + C', does: 'copies the open rows as text; with Shift as a Markdown table' },
  { keys: 'Backspace', does: 'back to the cell before' },
  { keys: 'F', does: 'stays with this cell, or follows the selection again' },
  { keys: 'Esc', does: 'clears the marks and gives the keyboard back; once more hides the panel' },
  { keys: '?', does: 'shows and hides these keys' },
];

function ofView({ view, mode, hasTree }: InFront): KeyGroup {
  switch (view) {
    case 'tree':
      return { title: 'In the tree', keys: hasTree ? inTree : [] };
    case 'deps':
      return { title: 'In the dependents', keys: inList };
    case 'review':
      return { title: 'In the review', keys: inReview };
    case 'map':
      if (mode === 'picture') return { title: 'In the picture', keys: inPicture };
      if (mode === 'sheets') return { title: 'Among the sheets', keys: inOverview };
      return { title: 'In the list', keys: inList };
  }
}

export function keysInFront(front: InFront): KeyGroup[] {
  const groups = [ofView(front), { title: 'Everywhere', keys: everywhere }];
  return groups.filter(({ keys }) => keys.length > 0);
}
