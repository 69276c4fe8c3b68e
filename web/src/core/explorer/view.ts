import type { ViewName } from '../protocol/events';

/** What the page can show of a workbook. */
export type View = ViewName | 'review';

/** The views in the order of their tabs, and the key that shows each. */
export const views: readonly { view: View; name: string; key: string }[] = [
  { view: 'tree', name: 'Tree', key: '1' },
  { view: 'deps', name: 'Dependents', key: '2' },
  { view: 'map', name: 'Map', key: '3' },
  { view: 'review', name: 'Review', key: '4' },
];
