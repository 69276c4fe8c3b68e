// What the kinds of findings are called.

import type { Confidence, Kind } from '../audit/Finding';
import type { State } from './said';

const names: Record<Kind, string> = {
  differs: 'Unlike its neighbours',
  constant: 'Number instead of a formula',
  blank: 'Gap in a filled range',
  step: 'Leaves the step of its line',
  elsewhere: 'Unlike the same block elsewhere',
  partner: 'Unlike its partner',
  kin: 'Unlike formulas of its form',
  mixed: 'One cell written in two ways',
  signs: 'Dollar signs change',
  lookup: 'Lookup that misses',
  'left-out': 'Range stops short',
  stops: 'Formulas stop before the data',
  'own-total': 'Takes in its own total',
  'text-number': 'Number kept as text',
  empty: 'Calculates with a blank cell',
  text: 'Calculates with a text',
  unequal: 'Ranges of unequal length',
  sliding: 'Table slides when filled',
  label: 'Takes a row of another name',
  broken: 'Reference that is gone',
  name: 'Name that leads nowhere',
  'unused-name': 'Names that nothing uses',
  link: 'Link to another workbook',
  error: 'Error',
  circle: 'Circle',
  inside: 'Numbers inside formulas',
  'run-time': 'Decided at run time',
  nest: 'Nested too deep to read',
};

export function kindName(kind: Kind): string {
  return names[kind];
}

const confidences: Record<Confidence, string> = {
  high: 'High confidence',
  medium: 'Medium confidence',
  low: 'Low confidence',
};

export function confidenceName(confidence: Confidence): string {
  return confidences[confidence];
}

const stateNames: Record<State, string> = { fault: 'Fault', fine: 'Fine', later: 'Later' };

export function stateName(state: State): string {
  return stateNames[state];
}
