// Text from a workbook may hold characters that change how what stands around them is read: bidi
// controls, zero-width characters, control codes. They are shown by their code instead of acting.
// The two joiners stay as they are: scripts and emoji are written with them.

const acting = /(?![\t\n\r\u200C\u200D])[\p{Cc}\p{Cf}\p{Zl}\p{Zp}]/gu;

export function visibleText(text: string): string {
  return text.replace(acting, (c) => {
    const code = (c.codePointAt(0) ?? 0).toString(16).toUpperCase().padStart(4, '0');
    return `‹U+${code}›`;
  });
}

/** The text on one line. */
export function oneLine(text: string): string {
  return visibleText(text)
    .replace(/\r\n|[\r\n]/g, ' ↵ ')
    .replaceAll('\t', ' ⇥ ');
}
