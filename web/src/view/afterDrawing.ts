// A frame is drawn when the next one begins. The window has taken it from the page two frames later.
const handedOver = 34;

/** Acts once what the page shows now stands on the screen. */
export function afterDrawing(action: () => void): void {
  requestAnimationFrame(() => {
    requestAnimationFrame(() => {
      setTimeout(action, handedOver);
    });
  });
}
