// What is said while Quorin ends and takes back what it has marked and shown. Pure.

import type { Left } from '../protocol/events';

export type QuittingSentences = { title: string; doing: string; end: string };

const numbers = new Intl.NumberFormat('en-GB');

function some(count: number, what: string): string[] {
  return count === 0 ? [] : [`${numbers.format(count)} ${what}${count === 1 ? '' : 's'}`];
}

function listed(parts: string[]): string {
  const last = parts.at(-1) ?? '';
  return parts.length < 2 ? last : `${parts.slice(0, -1).join(', ')} and ${last}`;
}

export function quittingSentences(left: Left, application: string): QuittingSentences {
  const parts = [
    ...some(left.cells, 'marked cell'),
    ...some(left.names, 'marked name'),
    ...some(left.rows, 'shown row'),
    ...some(left.columns, 'shown column'),
  ];
  return {
    title: 'Quorin is quitting.',
    doing: `Taking back ${listed(parts)} in ${application}…`,
    end: `This takes two seconds at most. What ${application} does not give back in time is taken back when Quorin starts the next time.`,
  };
}
