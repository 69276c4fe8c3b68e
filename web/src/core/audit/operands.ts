// The single cells that a formula calculates with, and what stands in them. A formula that chooses by
// a test or catches errors expects that some are blank or hold texts: what is in there is left out.

import { cellCount, unquoted, type Area } from '../address/area';
import type { CellPosition } from '../formula/reference';
import { readReference, translateReference, type ReferenceShape } from '../formula/reference';
import { children, plainName, type Node, type NodeOf } from '../formula/syntax';
import { Kind } from '../model/SheetCells';
import type { Evidence } from './Evidence';
import type { SheetGrid } from './SheetGrid';

export type Operand = {
  shape: ReferenceShape;
  prefix: string;
  /** "+", "-", "*", "/" or "^". */
  operator: string;
  /** Which of the formula's operands it is. */
  number: number;
};

export type Taken = CellPosition & { grid: SheetGrid };

const operators = new Set(['+', '-', '*', '/', '^']);
/** What stands in these is worked out only for some cells, or whatever stands there. */
const cautious = new Set(
  'IF IFS IFERROR IFNA SWITCH CHOOSE ISERROR ISERR ISNA ISNUMBER ISBLANK ISTEXT LET LAMBDA'.split(
    ' ',
  ),
);

/** Of a region so many cells are looked at. */
export const cellsLimit = 5_000;

export class Operands {
  private readonly known = new Map<number, readonly Operand[]>();

  constructor(private readonly evidence: Evidence) {}

  /**
   * Those of a region's formula, where any cell that it names is blank or holds a text. Others are not
   * taken apart.
   */
  ofRegion(region: number, kind: Kind.Blank | Kind.Text): readonly Operand[] {
    const { index } = this.evidence;
    let has = false;
    index.usedBy({ region, area: index.areaOf(region) }, ({ sheet, area }) => {
      has ||= this.hasKind(sheet, area, kind);
    });
    return has ? this.of(index.formulaOf(region)) : [];
  }

  /** The cell that an operand stands for, from a cell of a sheet; nothing where that is not told. */
  taken({ prefix, shape }: Operand, sheet: number, at: CellPosition): Taken | undefined {
    const { model, grids } = this.evidence;
    const number = prefix === '' ? sheet : model.sheetNumber(unquoted(prefix.slice(0, -1)));
    const grid = number === undefined ? undefined : grids[number];
    const { row, col } = translateReference(shape, 'a1', at).from;
    return grid && row && col ? { grid, row: row.at, col: col.at } : undefined;
  }

  private hasKind(sheet: number, area: Area, kind: Kind): boolean {
    const grid = this.evidence.grids[sheet];
    // Of so many nearly always one is blank.
    if (!grid || cellCount(area) > cellsLimit) return true;
    for (let row = area.top; row <= area.bottom; row++) {
      for (let col = area.left; col <= area.right; col++)
        if (grid.kind(row, col) === kind) return true;
    }
    return false;
  }

  private of(formula: number): readonly Operand[] {
    let operands = this.known.get(formula);
    if (!operands) this.known.set(formula, (operands = operandsIn(this.evidence, formula)));
    return operands;
  }
}

function operandsIn(evidence: Evidence, formula: number): Operand[] {
  const operands: Operand[] = [];
  const stack: Node[] = [evidence.shapes.of(formula).root];
  for (let node = stack.pop(); node; node = stack.pop()) {
    if (node.kind === 'call' && cautious.has(plainName(node.name))) continue;
    if (node.kind === 'binary' && operators.has(node.operator)) addOf(node, operands);
    stack.push(...children(node));
  }
  return operands;
}

function addOf(node: NodeOf<'binary'>, operands: Operand[]): void {
  const sides = [node.left, node.right].map(inside);
  // Whoever adds nothing or multiplies by one makes a number of a text.
  if (sides.some((side) => side.kind === 'number' && Number(side.text) <= 1)) return;
  for (const side of sides) {
    if (side.kind !== 'reference') continue;
    const shape = readReference(side.text, 'r1c1');
    if (!shape || shape.to || !shape.from.row || !shape.from.col) continue;
    const { prefix } = side;
    operands.push({ shape, prefix, operator: node.operator, number: operands.length });
  }
}

/** Without brackets, signs and a percent sign around it. */
function inside(node: Node): Node {
  let inner = node;
  for (;;) {
    if (inner.kind === 'group') inner = inner.inner;
    else if (inner.kind === 'unary' || inner.kind === 'postfix') inner = inner.operand;
    else return inner;
  }
}
