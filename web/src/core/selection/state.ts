// What the page knows of the selected cell and of the spreadsheet that holds it.

import type { Cell, ProbeState } from '../protocol/verbs';
import type { Failure } from '../protocol/Outcome';

/**
 * "starting": nothing was heard yet. "ready": the spreadsheet answers. "unreadable": it answers,
 * but this cell cannot be read. "detached": the page is not in the panel. The rest as probed.
 */
export type SelectionStatus =
  'starting' | 'ready' | 'unreadable' | 'detached' | Exclude<ProbeState, 'ok'>;

/** `error`: the text of the cell's error value; the value itself is null then. */
export type CellContent = Cell & { error?: string };

export type SelectionState = {
  status: SelectionStatus;
  /** The cell last read, kept while it may still be what the user looks at. */
  content?: CellContent;
  /** True if `content` is the newest there is to know. */
  fresh: boolean;
  /** True if an answer has been awaited for so long that the user should know. */
  slow: boolean;
  /** Following is paused from the menu. */
  paused: boolean;
  failure?: Failure;
};
