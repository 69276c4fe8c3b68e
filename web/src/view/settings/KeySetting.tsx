import { createEffect, onCleanup, Show, type JSX } from 'solid-js';

import type { KeyName } from '../../core/protocol/settings';
import { isModifier, nameOf, type KeyPress } from '../../core/settings/combination';
import { defaultKeys, type SettingsPanel } from '../../core/settings/SettingsPanel';
import type { Page } from '../page';

function pressOf(event: KeyboardEvent): KeyPress {
  return {
    code: event.code,
    key: event.key,
    alt: event.altKey,
    control: event.ctrlKey,
    meta: event.metaKey,
    shift: event.shiftKey,
  };
}

/** A hot key: pressed anew after a click, taken away, or as it was at first. */
export function KeySetting(props: { page: Page; name: KeyName; purpose: string }): JSX.Element {
  const look = <T,>(read: (panel: SettingsPanel) => T): T =>
    props.page.look(() => read(props.page.settings));
  const combination = () => look((panel) => panel.settings?.keys[props.name].combination);
  const waits = () => look((panel) => panel.waiting === props.name);
  const words = () => look((panel) => panel.wordsOn(props.name));
  const shown = () => {
    const now = combination();
    return now ? nameOf(now, props.page.platform) : 'None';
  };
  const isDefault = () => {
    const now = combination();
    const { code, modifiers } = defaultKeys[props.name];
    return now?.code === code && now.modifiers === modifiers;
  };
  const panel = (): SettingsPanel => props.page.settings;

  // All keys of the page are for the new combination while it is waited for.
  createEffect(() => {
    if (!waits()) return;
    const down = new Set<string>();
    let held = '';
    const press = (event: KeyboardEvent): void => {
      event.preventDefault();
      event.stopPropagation();
      const pressed = pressOf(event);
      if (isModifier(pressed)) {
        down.add(event.code);
        held = [...down].map((code) => code.replace(/(Left|Right)$/, '')).join('+');
      }
      panel().pressed(pressed);
    };
    const release = (event: KeyboardEvent): void => {
      down.delete(event.code);
      if (down.size === 0 && held !== '') panel().released(held.replace('Control', 'Ctrl'));
    };
    const left = (): void => {
      panel().left();
    };
    document.addEventListener('keydown', press, true);
    document.addEventListener('keyup', release, true);
    window.addEventListener('blur', left);
    onCleanup(() => {
      document.removeEventListener('keydown', press, true);
      document.removeEventListener('keyup', release, true);
      window.removeEventListener('blur', left);
    });
  });

  return (
    <div class="settingKey">
      <div class="setting">
        <span class="settingName" id={`name-${props.name}`}>
          {props.purpose}
        </span>
        <button
          type="button"
          class="button settingPress"
          classList={{ waits: waits() }}
          data-testid={`set-${props.name}`}
          aria-describedby={`name-${props.name}`}
          title="Click, then press the new key"
          onClick={() => {
            panel().wait(props.name);
          }}
        >
          {waits() ? 'Press a key…' : shown()}
        </button>
        <button
          type="button"
          class="textButton"
          data-testid={`none-${props.name}`}
          aria-label={`None: no key for ${props.purpose.toLowerCase()}`}
          disabled={combination() === undefined}
          onClick={() => void panel().setKey(props.name, null)}
        >
          None
        </button>
        <button
          type="button"
          class="textButton"
          data-testid={`default-${props.name}`}
          aria-label={`Default: ${nameOf(defaultKeys[props.name], props.page.platform)} for ${props.purpose.toLowerCase()}`}
          disabled={isDefault()}
          onClick={() => void panel().setKey(props.name, defaultKeys[props.name])}
        >
          Default
        </button>
      </div>
      <Show when={words() !== ''}>
        <p class="settingTrouble" role="status" data-testid={`words-${props.name}`}>
          {words()}
        </p>
      </Show>
    </div>
  );
}
