/** Puts `text` on the clipboard, as far as the web view allows; says whether it is there. */
export async function copyText(text: string): Promise<boolean> {
  const focused = document.activeElement;
  const source = document.createElement('textarea');
  source.className = 'offscreen';
  source.value = text;
  document.body.append(source);
  source.select();
  // The clipboard interface is refused to a page loaded from a file in some web views; the old
  // command works in all of them while a key or click is being handled.
  const done = document.execCommand('copy');
  source.remove();
  if (focused instanceof HTMLElement) focused.focus();
  if (done) return true;
  try {
    await navigator.clipboard.writeText(text);
    return true;
  } catch {
    return false;
  }
}
