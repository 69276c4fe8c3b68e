// What the native side tells the page without being asked.

import { isCount, isObject } from './json';
import { cellPlace, type CellPlace } from './verbs';

/** The views that hot keys bring up. */
const summonedViews = ['tree', 'deps', 'map'] as const;
export type ViewName = (typeof summonedViews)[number];

export type NativeEvent =
  /** The user moved to another cell. */
  | { name: 'selectionChanged'; place: CellPlace }
  /** The spreadsheet stopped answering the native side: ask it how it is. */
  | { name: 'probeNeeded' }
  /** The panel was brought up; `resume`: beside the spreadsheet, which kept the focus. */
  | { name: 'summon'; resume: boolean }
  /** A hot key asked for one of the views. */
  | { name: 'surface'; view: ViewName; wasVisible: boolean; wasKey: boolean }
  | { name: 'followState'; paused: boolean }
  /** A hot key walks the tree while the spreadsheet has the focus. */
  | { name: 'step'; direction: -1 | 1 }
  /** The panel is about to disappear: nothing of ours may stay on the sheet. */
  | { name: 'cleanHide' }
  /** The menu asks for the settings. */
  | { name: 'showSettings' }
  /** The settings are others now, by another hand than the page's. */
  | { name: 'settingsChanged' }
  /** Quorin ends once this is drawn, and takes back before what it has marked and shown. */
  | { name: 'quitting'; left: Left };

/** What there is to take back; `names`: what is marked by a name, of however many cells. */
export type Left = { cells: number; names: number; rows: number; columns: number };

function left({ cells, names, rows, columns }: Record<string, unknown>): Left | undefined {
  return isCount(cells) && isCount(names) && isCount(rows) && isCount(columns)
    ? { cells, names, rows, columns }
    : undefined;
}

/** The event, or nothing when the name is unknown or the payload has another shape. */
export function decodeEvent(name: unknown, payload: unknown): NativeEvent | undefined {
  const body = isObject(payload) ? payload : {};
  switch (name) {
    case 'selectionChanged': {
      const place = cellPlace(body);
      return place && { name, place };
    }
    case 'probeNeeded':
    case 'cleanHide':
    case 'showSettings':
    case 'settingsChanged':
      return { name };
    case 'summon':
      return { name, resume: body.resume === true };
    case 'surface': {
      const view = summonedViews.find((each) => each === body.name);
      return (
        view && {
          name,
          view,
          wasVisible: body.wasVisible === true,
          wasKey: body.wasKey === true,
        }
      );
    }
    case 'followState':
      return typeof body.paused === 'boolean' ? { name, paused: body.paused } : undefined;
    case 'step':
      return body.dir === 1 || body.dir === -1 ? { name, direction: body.dir } : undefined;
    case 'quitting': {
      const counted = left(body);
      return counted && { name, left: counted };
    }
    default:
      return undefined;
  }
}
