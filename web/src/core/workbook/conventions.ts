// Which sign the user puts between arguments, from a formula in both writings. Pure.

/** How often "," and ";" stand outside of texts, quoted names, brackets and array constants. */
function separators(formula: string): { commas: number; semicolons: number } {
  let commas = 0;
  let semicolons = 0;
  let quote = '';
  let depth = 0;
  for (const sign of formula) {
    if (quote !== '') {
      if (sign === quote) quote = '';
    } else if (sign === '"' || sign === "'") quote = sign;
    else if (sign === '[' || sign === '{') depth += 1;
    else if (sign === ']' || sign === '}') depth -= 1;
    else if (depth === 0 && sign === ',') commas += 1;
    else if (depth === 0 && sign === ';') semicolons += 1;
  }
  return { commas, semicolons };
}

/** Nothing where the formula has no separators, or the two writings do not go together. */
export function argumentSeparator(formula: string, local: string): ',' | ';' | undefined {
  const english = separators(formula);
  const own = separators(local);
  if (english.commas === 0 || english.semicolons > 0) return undefined;
  if (own.semicolons === english.commas) return ';';
  return own.semicolons === 0 && own.commas === english.commas ? ',' : undefined;
}
