import type { ViewName } from '../protocol/events';

/** What the page can show of a workbook. */
export type View = ViewName | 'review';
