// What the explorer needs from outside.

import type { EvaluationQuestions } from '../evaluation/Asker';
import type { SheetFollower } from '../follow/SheetFollower';
import type { ReviewKeeper } from '../review/Sayings';
import type { Scans } from '../scan/Scans';
import type { Outcome } from '../protocol/Outcome';
import type { Clock } from '../time/Clock';
import type { ListQuestions } from '../workbook/Lists';

export type ExplorerQuestions = EvaluationQuestions &
  ListQuestions & {
    select(addresses: readonly string[]): Promise<Outcome<{ areas: number }>>;
  };

export type ExplorerPorts = {
  questions: ExplorerQuestions;
  follower: SheetFollower;
  clock: Clock;
  /** The workbooks that are read whole; nothing where there is no room for that. */
  scans?: Scans;
  /** Where what the user says of findings is kept; nothing: it is not. */
  reviews?: ReviewKeeper;
  /** Something shown may have changed, or there may be something to ask. */
  changed(): void;
  /** There may be something to ask. */
  wake(): void;
  /** The spreadsheet gets the keyboard back, or the panel goes. */
  leave(how: 'focus' | 'hide'): void;
};
