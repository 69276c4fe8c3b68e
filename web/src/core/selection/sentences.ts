// What the page says of the spreadsheet's state, in words.

import type { SelectionState } from './state';

export type Platform = 'mac' | 'linux';

export type Sentence = {
  title: string;
  /** What the user can do, in order. */
  steps: string[];
  /** What was reported, word for word. */
  detail?: string;
  /** True if asking again on request makes sense. */
  retry: boolean;
};

export const unnamedApplication = 'the spreadsheet';

/** A sentence begins with a capital, also where it begins with the application's name. */
function capital(text: string): string {
  return text.charAt(0).toUpperCase() + text.slice(1);
}

function permissionSteps(application: string, platform: Platform): string[] {
  if (platform === 'mac') {
    return [
      'Open System Settings, then Privacy & Security, then Automation.',
      `Find Quorin and switch on ${application}.`,
      'Come back here and check again.',
    ];
  }
  return [
    `Close ${application} and start it from the applications menu, with your usual profile.`,
    'If it was installed as a Flatpak or a Snap, install the package of your distribution: those are sealed off from other programs.',
    'Then check again.',
  ];
}

/** The sentence that takes the place of a cell; nothing while a cell is shown. */
export function sentenceFor(
  state: SelectionState,
  application: string,
  platform: Platform,
): Sentence | undefined {
  const detail = state.failure?.message;
  const said = detail ? { detail } : {};
  switch (state.status) {
    case 'ready':
      return undefined;
    case 'starting':
      return { title: `Looking at ${application}…`, steps: [], retry: false };
    case 'notRunning':
      return {
        title: `${capital(application)} isn’t open. Open a workbook and this panel will pick it up.`,
        steps: [],
        retry: false,
      };
    case 'noWorkbook':
      return {
        title: 'No workbook is open.',
        steps: [`Open one in ${application}, then select a cell with a formula.`],
        retry: false,
      };
    case 'busy':
      return state.content
        ? undefined
        : { title: `${capital(application)} is busy. Trying again…`, steps: [], retry: true };
    case 'denied':
      return {
        title:
          platform === 'mac'
            ? `Quorin is not allowed to talk to ${application}.`
            : `Quorin cannot reach ${application}, although it is running.`,
        steps: permissionSteps(application, platform),
        ...said,
        retry: true,
      };
    case 'unreadable':
      return { title: 'This selection cannot be read.', steps: [], ...said, retry: true };
    case 'detached':
      return { title: 'This page belongs in Quorin’s panel.', steps: [], ...said, retry: false };
  }
}

/** The one line at the foot of the page while a cell is shown; empty when there is nothing to say. */
export function statusLine(state: SelectionState, application: string, waiting = false): string {
  if (state.status === 'busy') return `${capital(application)} is busy; this was read before.`;
  if (waiting || state.slow) return `Waiting for ${application}…`;
  return '';
}
