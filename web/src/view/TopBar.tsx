import { For, type JSX } from 'solid-js';

import { views } from '../core/explorer/view';
import { ColourMenu } from './ColourMenu';
import { CloseIcon, GearIcon, PinIcon, WidthIcon } from './icons';
import type { Page } from './page';

/** The four views, whether the page follows the selection, and what concerns the panel itself. */
export function TopBar(props: { page: Page; paused: boolean }): JSX.Element {
  const view = () => props.page.look((explorer) => explorer.view);
  const settings = () => props.page.look(() => props.page.settings.isOpen);
  const pinned = () => props.page.look((explorer) => explorer.pinned);
  const state = () => (pinned() ? 'Pinned' : props.paused ? 'Paused' : 'Following');
  return (
    <header class="top">
      <div class="tabs" role="tablist" aria-label="Views">
        <For each={views}>
          {(tab) => (
            <button
              type="button"
              role="tab"
              class="tab"
              id={`tab-${tab.view}`}
              data-testid={`tab-${tab.view}`}
              aria-selected={!settings() && view() === tab.view}
              aria-controls="view"
              title={`${tab.name} (${tab.key})`}
              onClick={() => props.page.show(tab.view)}
            >
              {tab.name}
            </button>
          )}
        </For>
      </div>
      <button
        type="button"
        class="follow"
        classList={{ paused: props.paused && !pinned(), pinned: pinned() }}
        data-testid="follow"
        data-paused={String(props.paused)}
        aria-pressed={pinned()}
        aria-label={`${state()}. Pin to this cell`}
        title={
          pinned()
            ? 'Pinned to this cell (F)'
            : props.paused
              ? 'Following is paused from the menu'
              : 'Following the selection; press F to pin'
        }
        onClick={() => props.page.explorer.pin(!pinned())}
      >
        <span class="followMark" aria-hidden="true">
          {pinned() ? <PinIcon /> : null}
        </span>
        <span class="followText">{state()}</span>
      </button>
      <ColourMenu page={props.page} />
      <button
        type="button"
        class="iconButton"
        data-testid="gear"
        aria-pressed={settings()}
        aria-label="Settings"
        title={props.page.platform === 'mac' ? 'Settings (⌘,)' : 'Settings (Ctrl+,)'}
        onClick={() => {
          props.page.settings.toggle();
        }}
      >
        <GearIcon />
      </button>
      <button
        type="button"
        class="iconButton"
        data-testid="width"
        aria-pressed={props.page.wide()}
        aria-label="Wide panel"
        title="Wide panel"
        onClick={() => props.page.setWide(!props.page.wide())}
      >
        <WidthIcon />
      </button>
      <button
        type="button"
        class="iconButton"
        data-testid="hide"
        aria-label="Hide the panel"
        title="Hide the panel"
        onClick={() => props.page.hide()}
      >
        <CloseIcon />
      </button>
    </header>
  );
}
