// What the panel puts into the page, and what it calls there.

// eslint-disable-next-line @typescript-eslint/consistent-type-definitions -- merges into the DOM's
interface Window {
  /** The spreadsheet's name, put here by the panel before the page runs. */
  __qxApp?: unknown;
  __qxResolve: (id: unknown, envelope: unknown) => void;
  __qxEvent: (name: unknown, payload: unknown) => void;
  webkit?: { messageHandlers?: { qx?: { postMessage(body: unknown): void } } };
}
