// What the audit tells of a workbook: something odd, where, what it was compared with, and how much
// rests on it. Plain data.

import type { Area } from '../address/area';
import type { Cells } from '../model/messages';

/** Each detector's kinds. The order means nothing. */
export type Kind =
  | 'differs'
  | 'constant'
  | 'blank'
  | 'step'
  | 'elsewhere'
  | 'partner'
  | 'kin'
  | 'mixed'
  | 'signs'
  | 'lookup'
  | 'left-out'
  | 'stops'
  | 'own-total'
  | 'text-number'
  | 'empty'
  | 'text'
  | 'unequal'
  | 'sliding'
  | 'label'
  | 'broken'
  | 'name'
  | 'unused-name'
  | 'link'
  | 'error'
  | 'circle'
  | 'inside'
  | 'run-time'
  | 'nest';

export type Confidence = 'high' | 'medium' | 'low';

/** "fact": a mistake or something gone. "doubt": to be looked at. "style": how it is written. */
export type Level = 'fact' | 'doubt' | 'style';

/** What a detector says; formulas are numbers of the model's table. */
export type Clue = {
  kind: Kind;
  sheet: number;
  /** Empty where no cell has it: a name that nothing uses. */
  areas: Area[];
  sentence: string;
  /** The relative formula that is expected in the first cell; empty where none is. */
  expected: string;
  /** How surprising it is in this workbook: some 5 is worth a look, 9 and more beyond doubt. */
  weight: number;
  level: Level;
};

export type Finding = {
  rank: number;
  kind: Kind;
  level: Level;
  cells: Cells[];
  sentence: string;
  /** As it would stand in the first cell, in A1; empty where there is none. */
  expected: string;
  confidence: Confidence;
  /** So many cells rest on it; as far as they were counted. */
  reach: number;
};

/** From so much on a clue is sure, and worth a look. A doubt is never sure. */
const sure = 9;
const worth = 5;

export function confidenceOf({ weight, level }: Pick<Clue, 'weight' | 'level'>): Confidence {
  if (level === 'style') return 'low';
  return weight >= sure && level === 'fact' ? 'high' : weight >= worth ? 'medium' : 'low';
}
