// The names that LET and LAMBDA bring along. They are read as names or as columns of a table, and only
// where they stand tells what they are.

import type { Node } from './syntax';

const bracketed = /^\[([^[\]@#,:]+)\]$/;
const optionalInFiles = /^_xlop\./i;

/** Makes parameters of the names that LET gives values to, or LAMBDA takes. */
export function bindParameters(which: 'LET' | 'LAMBDA', args: Node[]): void {
  const step = which === 'LET' ? 2 : 1;
  for (let i = 0; i < args.length - 1; i += step) {
    const parameter = args[i] && parameterOf(args[i] as Node);
    if (parameter) args[i] = parameter;
  }
}

function parameterOf(arg: Node): Node | undefined {
  const { start, end } = arg;
  if (arg.kind === 'name' && arg.prefix === '') {
    const { name } = arg;
    const optional = optionalInFiles.test(name);
    return { kind: 'parameter', name, optional, text: name, start, end };
  }
  if (arg.kind !== 'columns' || arg.table !== '') return undefined;
  const name = bracketed.exec(arg.text)?.[1];
  if (name === undefined) return undefined;
  return { kind: 'parameter', name, optional: true, text: arg.text, start, end };
}
