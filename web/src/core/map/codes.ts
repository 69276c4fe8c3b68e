// What a place of a sheet's picture shows, as a number. A formula has one of a few hues: the same
// relative formula has the same one wherever it stands.

export const enum Code {
  Blank,
  Text,
  /** A number or truth value that was typed in. */
  Input,
  Error,
  /** The first hue; the others follow. */
  Formula,
}

export const hueCount = 6;
