// The audit of a workbook as it was read: every detector in turn, then the list by rank. Pure; yields
// where others may take a turn.

import type { WorkbookModel } from '../model/WorkbookModel';
import { aggregateClues } from './aggregates';
import { blankClues } from './blanks';
import { brokenClues } from './broken';
import { circleClues, errorClues } from './causes';
import { endClues } from './ends';
import { Evidence } from './Evidence';
import type { Clue, Finding } from './Finding';
import { insideClues } from './inside';
import { kinClues } from './kin';
import { labelClues } from './labels';
import { lookupClues } from './lookups';
import { mixedClues } from './mixed';
import { nameClues } from './names';
import { neighbourClues } from './neighbours';
import { partnerClues } from './partners';
import { rangeClues } from './ranges';
import { nestClues } from './nests';
import { ranked } from './rank';
import { runTimeClues } from './runTime';
import { sequenceClues } from './sequences';
import { signClues } from './signs';
import { formSurroundingClues, surroundingClues } from './surroundings';
import { textClues } from './texts';
import { textNumberClues } from './textNumbers';

const detectors: readonly ((evidence: Evidence) => Generator<undefined, Clue[]>)[] = [
  neighbourClues,
  surroundingClues,
  formSurroundingClues,
  sequenceClues,
  partnerClues,
  kinClues,
  labelClues,
  mixedClues,
  aggregateClues,
  endClues,
  textNumberClues,
  blankClues,
  textClues,
  rangeClues,
  brokenClues,
  nameClues,
  signClues,
  lookupClues,
  errorClues,
  circleClues,
  insideClues,
  runTimeClues,
  nestClues,
];

export function* audit(model: WorkbookModel): Generator<undefined, Finding[]> {
  const evidence = new Evidence(model, yield* model.index());
  const clues: Clue[] = [];
  for (const detector of detectors) {
    for (const clue of yield* detector(evidence)) clues.push(clue);
    yield undefined;
  }
  return yield* ranked(evidence, clues);
}
