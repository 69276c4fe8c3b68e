// Areas of a sheet, and address texts as the spreadsheet gives them: "$B$4:$D$9", "$C:$C", "$2:$5",
// several joined by a separator. Only what the page shows of them; the formula parser has references
// of its own. Pure.

export const maxRows = 1_048_576;
export const maxColumns = 16_384;

export type Area = { top: number; left: number; bottom: number; right: number };

export function meet(one: Area, other: Area): Area | undefined {
  const top = Math.max(one.top, other.top);
  const left = Math.max(one.left, other.left);
  const bottom = Math.min(one.bottom, other.bottom);
  const right = Math.min(one.right, other.right);
  return top <= bottom && left <= right ? { top, left, bottom, right } : undefined;
}

export function covers(outer: Area, inner: Area): boolean {
  return (
    outer.top <= inner.top &&
    outer.left <= inner.left &&
    outer.bottom >= inner.bottom &&
    outer.right >= inner.right
  );
}

export function cellCount({ top, left, bottom, right }: Area): number {
  return (bottom - top + 1) * (right - left + 1);
}

/** The smallest area that has both. */
export function union(one: Area, other: Area): Area {
  return {
    top: Math.min(one.top, other.top),
    left: Math.min(one.left, other.left),
    bottom: Math.max(one.bottom, other.bottom),
    right: Math.max(one.right, other.right),
  };
}

const cellPattern = /^([A-Z]{1,3})([1-9]\d{0,6})$/;
const columnPattern = /^([A-Z]{1,3})$/;
const rowPattern = /^([1-9]\d{0,6})$/;

/** 1 for "A", 28 for "AB". */
export function columnNumber(letters: string): number {
  let number = 0;
  for (const letter of letters) number = number * 26 + letter.charCodeAt(0) - 64;
  return number;
}

/** "A" for 1, "AB" for 28. */
export function columnLetters(column: number): string {
  let letters = '';
  for (let rest = column; rest > 0; rest = Math.floor((rest - 1) / 26)) {
    letters = String.fromCharCode(65 + ((rest - 1) % 26)) + letters;
  }
  return letters;
}

type Corner = { row?: number; col?: number };

function corner(text: string): Corner | undefined {
  const cell = cellPattern.exec(text);
  if (cell) return { col: columnNumber(cell[1] ?? ''), row: Number(cell[2]) };
  const column = columnPattern.exec(text);
  if (column) return { col: columnNumber(column[1] ?? '') };
  const row = rowPattern.exec(text);
  return row ? { row: Number(row[1]) } : undefined;
}

/** One area without a sheet, dollar signs allowed; nothing for any other text. */
export function parseArea(text: string): Area | undefined {
  const corners = text.replaceAll('$', '').toUpperCase().split(':');
  const first = corner(corners[0] ?? '');
  const last = corners.length === 1 ? first : corner(corners[1] ?? '');
  if (!first || !last || corners.length > 2) return undefined;
  const whole = corners.length === 1 ? first.row === undefined || first.col === undefined : false;
  const alike = (first.row === undefined) === (last.row === undefined);
  if (whole || !alike || (first.col === undefined) !== (last.col === undefined)) return undefined;
  const rows = [first.row ?? 1, last.row ?? maxRows];
  const cols = [first.col ?? 1, last.col ?? maxColumns];
  const area = {
    top: Math.min(...rows),
    left: Math.min(...cols),
    bottom: Math.max(...rows),
    right: Math.max(...cols),
  };
  return area.bottom <= maxRows && area.right <= maxColumns ? area : undefined;
}

/** "B4:D9", "C:C", "2:5". */
export function areaAddress({ top, left, bottom, right }: Area): string {
  if (top === 1 && bottom === maxRows) return `${columnLetters(left)}:${columnLetters(right)}`;
  if (left === 1 && right === maxColumns) return `${String(top)}:${String(bottom)}`;
  const first = columnLetters(left) + String(top);
  return top === bottom && left === right
    ? first
    : `${first}:${columnLetters(right)}${String(bottom)}`;
}

/** The parts of an address list; separators inside quotes and brackets do not part. */
export function splitAreas(text: string): string[] {
  const parts: string[] = [];
  let quoted = false;
  let depth = 0;
  let start = 0;
  for (let at = 0; at < text.length; at++) {
    const c = text[at];
    if (c === "'") quoted = !quoted;
    else if (quoted) continue;
    else if (c === '[') depth++;
    else if (c === ']') depth = Math.max(0, depth - 1);
    else if ((c === ',' || c === ';') && depth === 0) {
      parts.push(text.slice(start, at));
      start = at + 1;
    }
  }
  parts.push(text.slice(start));
  return parts;
}

/** A sheet name in front of an address, quoted so that any name is read back as it is. */
export function qualified(sheet: string, address: string): string {
  return `'${sheet.replaceAll("'", "''")}'!${address}`;
}

/** The name of a sheet that stands in quotes, or without. */
export function unquoted(sheet: string): string {
  return sheet.startsWith("'") && sheet.endsWith("'")
    ? sheet.slice(1, -1).replaceAll("''", "'")
    : sheet;
}
