/** A whole number with its digits in groups of three. */
export function grouped(digits: string): string {
  return digits.replace(/\B(?=(\d{3})+$)/g, ',');
}

/** "1 row", "1,200 rows". */
export function count(number: number, noun: string): string {
  return `${grouped(String(number))} ${noun}${number === 1 ? '' : 's'}`;
}
