// The corpus of formulas that the benchmarks read.

import { existsSync, readFileSync } from 'node:fs';
import { resolve } from 'node:path';

/** Every formula of the file; ends the program with status 2 where there is none. */
export function corpus(): string[] {
  const file = resolve(process.env.QUORIN_FORMULAS ?? '../../shared/formulas', 'formulas.txt');
  if (!existsSync(file)) {
    console.error(`There is no ${file}; QUORIN_FORMULAS names its folder.`);
    process.exit(2);
  }
  return readFileSync(file, 'utf8')
    .split('\n')
    .filter((line) => line !== '');
}
