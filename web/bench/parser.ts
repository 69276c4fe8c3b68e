// How long reading every formula of the corpus takes, beside @borgar/fx in the same run. The least
// of several rounds counts, in processor time, so that other work of the machine matters little.
// Ends with status 1 when ours takes more than half of the other's time.

import { cpus } from 'node:os';

import { parse as parseTokens, tokenize } from '@borgar/fx';

import { parse } from '../src/core/formula/Parser';
import { corpus } from './formulas';

const rounds = 9;
const formulas = corpus();

/** Milliseconds of processor time, and how many formulas were read. */
function round(read: (formula: string) => boolean): { time: number; count: number } {
  const before = process.cpuUsage();
  let count = 0;
  for (const formula of formulas) if (read(formula)) count++;
  const { user, system } = process.cpuUsage(before);
  return { time: (user + system) / 1000, count };
}

const readers = {
  ours: (formula: string) => parse(formula).problems.length === 0,
  fx: (formula: string) => {
    try {
      parseTokens(tokenize(`=${formula}`, { withLocation: true }));
      return true;
    } catch {
      return false;
    }
  },
};

const best = { ours: Infinity, fx: Infinity };
const counts = { ours: 0, fx: 0 };
for (let i = 0; i < rounds; i++) {
  for (const name of ['ours', 'fx'] as const) {
    const { time, count } = round(readers[name]);
    best[name] = Math.min(best[name], time);
    counts[name] = count;
  }
}

const ratio = best.ours / best.fx;
const row = (name: 'ours' | 'fx') =>
  `${name.padEnd(5)} ${best[name].toFixed(1).padStart(8)} ms   ${String(counts[name])} of ${String(formulas.length)} read`;
console.log(`${cpus()[0]?.model ?? 'unknown processor'}, node ${process.version}`);
console.log(row('ours'));
console.log(row('fx'));
console.log(`ratio ${ratio.toFixed(2)} (at most 0.50)`);
if (ratio > 0.5) process.exitCode = 1;
