import { Show, type JSX } from 'solid-js';

import { oneLine } from '../core/format/visible';
import type { BookScan } from '../core/scan/BookScan';
import { progressOf } from '../core/scan/coverage';
import type { Page } from './page';

/** How far the workbook has been read, and what can be done about it. */
export function ScanBar(props: { page: Page; scan: BookScan | undefined }): JSX.Element {
  const scan = () => props.scan;
  const state = () => props.page.look(() => props.scan?.state);
  const text = () => {
    const now = state();
    return now ? progressOf(now) : '';
  };
  const share = () => {
    const now = state();
    return now && now.cells > 0 ? Math.min(1, now.read / now.cells) : 0;
  };
  const isReading = () => state()?.status === 'reading' || state()?.status === 'starting';
  const button = () => {
    switch (state()?.status) {
      case 'asking':
        return 'Read them';
      case 'stopped':
        return 'Go on';
      case 'failed':
      case 'done':
        return 'Read again';
      default:
        return '';
    }
  };
  const press = (): void => {
    const one = scan();
    if (one?.state.status === 'done') one.readAgain();
    else one?.go();
  };
  return (
    <Show when={text() || button()}>
      <div class="scanBar" data-testid="scan">
        <span class="scanText" role="status" data-testid="scan-text">
          {oneLine(text())}
        </span>
        <Show when={state()?.status === 'reading'}>
          <progress class="scanShare" value={share()} max={1} aria-label="Read so far" />
        </Show>
        <Show when={isReading()}>
          <button
            type="button"
            class="textButton"
            data-testid="scan-stop"
            onClick={() => scan()?.stop()}
          >
            Stop
          </button>
        </Show>
        <Show when={button()}>
          <button type="button" class="textButton" data-testid="scan-go" onClick={press}>
            {button()}
          </button>
        </Show>
      </div>
    </Show>
  );
}
