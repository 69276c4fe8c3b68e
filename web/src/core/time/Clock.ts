// Time as the core sees it: a port, so that tests can turn the hands.

export type Cancel = () => void;

export type Clock = {
  /** Runs `action` once after `milliseconds`, unless cancelled before. */
  after(milliseconds: number, action: () => void): Cancel;
};
