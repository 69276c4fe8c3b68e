// Workbooks written down by address, read into a model.

import { parseArea } from '../../../src/core/address/area';
import { parse } from '../../../src/core/formula/Parser';
import { printInStyle } from '../../../src/core/formula/print';
import type { QuestionName, Questions } from '../../../src/core/model/messages';
import { ModelHost } from '../../../src/core/model/ModelHost';
import type { NameEntry } from '../../../src/core/model/Names';
import type { Scalar } from '../../../src/core/protocol/json';
import { drain } from './RandomWorkbook';

/** By address: a value, or a formula in A1; after a blank and "->" what the formula shows. */
export type Written = Record<string, Scalar>;

export const book = 'Model.xlsx';

export function area(address: string) {
  const found = parseArea(address);
  if (!found) throw new Error(`no address: ${address}`);
  return found;
}

/** As a scan reads it: formulas in R1C1 and what they show. */
export function pieceOf(cells: Written) {
  const all = Object.keys(cells).map(area);
  const bottom = Math.max(1, ...all.map((one) => one.bottom));
  const right = Math.max(1, ...all.map((one) => one.right));
  const formulas = Array.from({ length: bottom }, () => Array<string>(right).fill(''));
  const values = Array.from({ length: bottom }, () => Array<Scalar>(right).fill(null));
  for (const [address, content] of Object.entries(cells)) {
    const { top, left, bottom: last, right: end } = area(address);
    for (let row = top; row <= last; row++) {
      for (let col = left; col <= end; col++) {
        const [text = '', shown = '0'] = String(content).split(' -> ');
        const isFormula = typeof content === 'string' && content.startsWith('=');
        const line = formulas[row - 1] as string[];
        const isText = shown === '' || Number.isNaN(Number(shown));
        const value = isFormula ? (isText ? shown : Number(shown)) : content;
        (values[row - 1] as Scalar[])[col - 1] = value;
        // Written for the first cell of the area, as when it is filled.
        const at = { row: top, col: left };
        line[col - 1] = isFormula ? `=${printInStyle(parse(text, 'a1'), 'r1c1', at)}` : '';
      }
    }
  }
  return { area: { top: 1, left: 1, bottom, right }, formulas, values };
}

export class Reader {
  readonly host = new ModelHost();

  constructor(sheets: Record<string, Written>, names: NameEntry[] = []) {
    this.ask('begin', { book, sheets: Object.keys(sheets), names });
    for (const [sheet, cells] of Object.entries(sheets)) this.read(sheet, cells);
  }

  read(sheet: string, cells: Written): void {
    this.ask('beginSheet', { sheet });
    this.ask('piece', { sheet, ...pieceOf(cells) });
    this.ask('endSheet', { sheet });
  }

  ask<N extends QuestionName>(ask: N, args: Questions[N]['args']): Questions[N]['answer'] {
    const question = { id: 1, book, ask, args } as Parameters<ModelHost['answer']>[0];
    return drain(this.host.answer(question)) as Questions[N]['answer'];
  }

  /** The direct users, as "Sheet!address". */
  users(sheet: string, address: string): string[] {
    return this.ask('users', { sheet, area: area(address) }).rows.map(placeOf);
  }
}

export function placeOf({ sheet, area }: { sheet: string; area: ReturnType<typeof parseArea> }) {
  if (!area) return sheet;
  const letter = (col: number) => String.fromCharCode(64 + col);
  const first = letter(area.left) + String(area.top);
  const last = letter(area.right) + String(area.bottom);
  return `${sheet}!${first === last ? first : `${first}:${last}`}`;
}
