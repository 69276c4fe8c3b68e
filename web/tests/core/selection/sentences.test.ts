import { describe, expect, test } from 'vitest';

import { sentenceFor, statusLine, unnamedApplication } from '../../../src/core/selection/sentences';
import type { SelectionState } from '../../../src/core/selection/state';
import { cell } from '../../fakes/FakeSpreadsheet';

const state = (more: Partial<SelectionState>): SelectionState => ({
  status: 'ready',
  fresh: false,
  slow: false,
  paused: false,
  ...more,
});
const title = (more: Partial<SelectionState>, application = 'LibreOffice Calc') =>
  sentenceFor(state(more), application, 'linux')?.title;

describe('the sentence of each state', () => {
  test.each<[SelectionState['status'], string]>([
    ['starting', 'Looking at LibreOffice Calc…'],
    ['notRunning', 'LibreOffice Calc isn’t open. Open a workbook and this panel will pick it up.'],
    ['noWorkbook', 'No workbook is open.'],
    ['busy', 'LibreOffice Calc is busy. Trying again…'],
    ['denied', 'Quorin cannot reach LibreOffice Calc, although it is running.'],
    ['unreadable', 'This selection cannot be read.'],
    ['detached', 'This page belongs in Quorin’s panel.'],
  ])('%s', (status, text) => {
    expect(title({ status })).toBe(text);
  });

  test('is none while a cell is shown, also of a busy spreadsheet', () => {
    expect(title({ status: 'ready', content: cell('A1') })).toBeUndefined();
    expect(title({ status: 'busy', content: cell('A1') })).toBeUndefined();
  });

  test('begins with a capital where the spreadsheet has no name', () => {
    expect(title({ status: 'notRunning' }, unnamedApplication)).toBe(
      'The spreadsheet isn’t open. Open a workbook and this panel will pick it up.',
    );
  });

  test('carries what was reported', () => {
    const failure = { kind: 'transport', message: 'no active cell' } as const;
    expect(sentenceFor(state({ status: 'unreadable', failure }), 'Calc', 'linux')?.detail).toBe(
      'no active cell',
    );
  });
});

describe('a refused permission', () => {
  test('is granted in the system settings on a Mac', () => {
    const sentence = sentenceFor(state({ status: 'denied' }), 'Microsoft Excel', 'mac');
    expect(sentence?.title).toBe('Quorin is not allowed to talk to Microsoft Excel.');
    expect(sentence?.steps.join(' ')).toContain('Automation');
    expect(sentence?.retry).toBe(true);
  });

  test('is a matter of profile or packaging on Linux', () => {
    const steps = sentenceFor(state({ status: 'denied' }), 'LibreOffice Calc', 'linux')?.steps;
    expect(steps?.join(' ')).toMatch(/profile.*Flatpak.*Snap/);
  });
});

describe('the line at the foot', () => {
  test('says when what is shown was read before, and when an answer is awaited', () => {
    expect(statusLine(state({ status: 'busy' }), 'Calc')).toBe(
      'Calc is busy; this was read before.',
    );
    expect(statusLine(state({ slow: true }), 'Calc')).toBe('Waiting for Calc…');
    expect(statusLine(state({}), 'Calc')).toBe('');
  });
});
