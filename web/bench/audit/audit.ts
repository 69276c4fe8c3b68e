// How good the audit's findings are: known mistakes of real workbooks, planted ones, and what it says
// of workbooks as they are.
//
//     npm run audit:bench -- QUORINCTL FOLDER [--drawn 500] [--seed 1] [--only TEXT] [--show]
//
// Workbooks are read once through quorinctl and kept outside the tree (recording.ts).

import { readdirSync } from 'node:fs';
import { join } from 'node:path';
import { areaAddress } from '../../src/core/address/area';
import { audit } from '../../src/core/audit/audit';
import type { Finding } from '../../src/core/audit/Finding';
import { drain } from '../../src/core/time/drain';
import { mistakes, plant, random, Workbook, type Mistake } from './plant';
import { modelOf, recordingOf, type Recording } from './recording';
import { has, mend, readTruth } from './truth';

const [program = '', folder = '', ...options] = process.argv.slice(2);
const option = (name: string, otherwise: string): string => {
  const at = options.indexOf(`--${name}`);
  return at < 0 ? otherwise : (options[at + 1] ?? otherwise);
};
const drawn = Number(option('drawn', '500'));
const seed = Number(option('seed', '1'));
const only = option('only', '');
const isShown = options.includes('--show');

function findingsOf(recording: Recording): Finding[] {
  return drain(audit(modelOf(recording)));
}

function told({ rank, kind, confidence, cells, sentence, expected }: Finding): string {
  const [first] = cells;
  const place = first ? `${first.sheet}!${areaAddress(first.area)}` : '';
  const more = cells.length > 1 ? ` +${String(cells.length - 1)}` : '';
  return `  ${String(rank).padStart(3)} ${confidence.padEnd(6)} ${kind.padEnd(10)} ${place}${more}: ${sentence}${expected === '' ? '' : ` → ${expected}`}`;
}

const files = readdirSync(folder).filter((file) => /\.xls[xm]$/i.test(file) && file.includes(only));
const recordings: Recording[] = [];
for (const file of files) recordings.push(await recordingOf(program, join(folder, file)));

const known = new Map<string, Finding[]>();
console.log('Unchanged workbooks');
console.log(
  '  workbook                                     distinct  findings  high  per 1,000   ms',
);
let allDistinct = 0;
let allHigh = 0;
for (const recording of recordings) {
  const started = performance.now();
  const findings = findingsOf(recording);
  const time = performance.now() - started;
  known.set(recording.file, findings);
  const book = new Workbook(recording);
  const distinct = new Set(book.formulas.map((place) => book.formula(place))).size;
  const high = findings.filter(({ confidence }) => confidence === 'high').length;
  allDistinct += distinct;
  allHigh += high;
  console.log(
    `  ${recording.file.slice(0, 42).padEnd(42)}${String(distinct).padStart(10)}${String(findings.length).padStart(10)}${String(high).padStart(6)}${((high / Math.max(1, distinct)) * 1000).toFixed(1).padStart(11)}${time.toFixed(0).padStart(6)}`,
  );
  if (isShown) console.log(findings.slice(0, 25).map(told).join('\n'));
}
console.log(
  `  high per 1,000 distinct formulas: ${((allHigh / Math.max(1, allDistinct)) * 1000).toFixed(1)}`,
);

console.log('Known mistakes: the rank of the first cell, and what is left once all are mended');
const truths = readTruth(folder);
for (const file of new Set(truths.map((truth) => truth.file))) {
  const own = truths.filter((truth) => truth.file === file);
  const recording = recordings.find((one) => one.file === file);
  if (!recording) continue;
  const before = known.get(file) ?? [];
  const first = before.find((finding) => own.some(({ place }) => has(finding, place)));
  const mended = structuredClone(recording);
  mend(mended, own);
  const after = findingsOf(mended);
  const left = own.filter(({ place }) =>
    after.some((finding) => finding.kind === first?.kind && has(finding, place)),
  );
  const ranks = own.map(({ address, place }) => {
    const rank = before.find((finding) => has(finding, place))?.rank;
    const later = after.find((finding) => has(finding, place));
    return `${address} ${rank === undefined ? '-' : String(rank)}${later ? ` (mended: ${later.kind} ${String(later.rank)})` : ''}`;
  });
  console.log(
    `  ${file}: ${first ? String(first.rank) : 'not found'}; of that kind left ${String(left.length)}; ${ranks.join(', ')}`,
  );
  if (first) console.log(told(first));
}

type Score = { drawn: number; five: number; twenty: number; fifty: number };
const scores = new Map<string, Score>();
function count(key: string, rank: number | undefined): void {
  const score = scores.get(key) ?? { drawn: 0, five: 0, twenty: 0, fifty: 0 };
  scores.set(key, score);
  score.drawn += 1;
  if (rank === undefined) return;
  if (rank <= 5) score.five += 1;
  if (rank <= 20) score.twenty += 1;
  if (rank <= 50) score.fifty += 1;
}

const next = random(seed);
const books = recordings
  .map((one) => new Workbook(one))
  .filter(({ formulas }) => formulas.length > 0);
const isLike = new Map<Workbook, boolean[]>();
for (const book of books)
  isLike.set(
    book,
    book.formulas.map((place) => book.like(place).length >= 5),
  );

/** A mistake in a workbook, in a region or elsewhere; nothing where none was found to plant. */
function tryOne(mistake: Mistake): void {
  const wanted = next() < 0.5;
  for (let tries = 0; tries < 3_000; tries++) {
    const book = books[Math.floor(next() * books.length)] as Workbook;
    const at = Math.floor(next() * book.formulas.length);
    if (isLike.get(book)?.[at] !== wanted) continue;
    const place = book.formulas[at];
    const planted = place && plant(book, mistake, place, next);
    if (!planted) continue;
    const before = known.get(book.recording.file) ?? [];
    const findings = findingsOf(book.recording);
    const isNew = (one: Finding) =>
      planted.places.some(
        (own) => has(one, own) && !before.some((old) => old.kind === one.kind && has(old, own)),
      );
    const rank = findings.find(isNew)?.rank;
    planted.undo();
    count(mistake, rank);
    count(wanted ? 'in regions' : 'elsewhere', rank);
    count(`${wanted ? 'r' : 'e'} ${book.recording.file}`, rank);
    if (isShown && (rank ?? 99) > 20) {
      const address = areaAddress({
        top: place.row,
        left: place.col,
        bottom: place.row,
        right: place.col,
      });
      console.log(
        `  missed (${rank === undefined ? '-' : String(rank)}) ${mistake}, ${wanted ? 'region' : 'elsewhere'}: ${book.recording.file} ${place.sheet}!${address}: ${planted.before} → ${planted.after || 'its value'}`.slice(
          0,
          320,
        ),
      );
    }
    return;
  }
}

for (let i = 0; i < drawn; i++) tryOne(mistakes[i % mistakes.length] as Mistake);
console.log(`Planted mistakes: seed ${String(seed)}, share among the first findings`);
console.log('                                                  drawn      5     20     50');
const share = (part: number, of: number) => `${((part / of) * 100).toFixed(0)} %`.padStart(7);
for (const [key, score] of scores) {
  console.log(
    `  ${key.slice(0, 46).padEnd(46)}${String(score.drawn).padStart(7)}${share(score.five, score.drawn)}${share(score.twenty, score.drawn)}${share(score.fifty, score.drawn)}`,
  );
}
