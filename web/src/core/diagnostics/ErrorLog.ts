// Uncaught errors of the page, on their way to the diagnostic log. Bounded: a page that fails in a
// loop must not fill the log or the channel.

export const errorTextLimit = 2_000;
export const errorCountLimit = 50;

function describe(error: unknown): string {
  try {
    // WebKit's stack holds the frames alone, without name and message.
    return error instanceof Error
      ? `${String(error)} at ${error.stack ?? 'unknown'}`
      : String(error);
  } catch {
    return 'an error that cannot be described';
  }
}

export class ErrorLog {
  private count = 0;
  private previous = '';

  constructor(private readonly write: (text: string) => void) {}

  report(where: string, error: unknown): void {
    const text = `page ${where}: ${describe(error)}`.slice(0, errorTextLimit);
    if (text === this.previous || this.count > errorCountLimit) return;
    this.previous = text;
    this.count += 1;
    this.write(this.count > errorCountLimit ? 'page: further errors are not logged' : text);
  }
}
