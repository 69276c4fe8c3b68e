import { createMemo, For, Show, type JSX } from 'solid-js';

import { visibleText } from '../../core/format/visible';
import type { KeyName, SettingName, Settings } from '../../core/protocol/settings';
import { nameOf } from '../../core/settings/combination';
import type { SettingsPanel } from '../../core/settings/SettingsPanel';
import { colours, css, same } from '../ColourMenu';
import type { Page } from '../page';
import { KeySetting } from './KeySetting';
import './settings.css';

const keys: readonly { name: KeyName; purpose: string }[] = [
  { name: 'summonKey', purpose: 'The formula' },
  { name: 'depsKey', purpose: 'The dependents' },
  { name: 'mapKey', purpose: 'The map' },
];

const steps = [
  { code: 123, modifiers: 6144 },
  { code: 124, modifiers: 6144 },
];

/** In milliseconds. */
const periods = [100, 200, 300, 500, 1000, 2000, 5000];

function periodName(milliseconds: number): string {
  if (milliseconds < 1000) return `${String(milliseconds)} ms`;
  return milliseconds === 1000 ? '1 second' : `${String(milliseconds / 1000)} seconds`;
}

/** What the user can change, each as soon as it is touched. */
export function SettingsView(props: {
  page: Page;
  application: string;
  /** Following is paused, by the menu or here. */
  paused: boolean;
}): JSX.Element {
  const look = <T,>(read: (panel: SettingsPanel) => T): T =>
    props.page.look(() => read(props.page.settings));
  const settings = createMemo(() => look((panel) => panel.settings));
  const trouble = () => look((panel) => panel.trouble);
  const offered = (): number[] => {
    const now = settings()?.pollMs;
    return now === undefined || periods.includes(now)
      ? periods
      : [...periods, now].sort((a, b) => a - b);
  };
  /** Afterwards the field shows what came of it. */
  const set = async (
    name: SettingName,
    value: boolean | number,
    show: (now: Settings) => void,
  ): Promise<void> => {
    const panel = props.page.settings;
    await panel.set(name, value);
    if (panel.settings) show(panel.settings);
  };
  return (
    <section class="settings" data-testid="settings" aria-label="Settings">
      <h1 class="settingsTitle">Settings</h1>
      <Show when={trouble() !== ''}>
        <p class="settingTrouble" role="alert" data-testid="settings-trouble">
          {visibleText(trouble())}
        </p>
      </Show>
      <Show when={settings()}>
        {(now) => (
          <>
            <Show when={now().fileTrouble !== ''}>
              <p class="settingTrouble" role="alert" data-testid="file-trouble">
                config.json cannot be understood, and what was in force stays:{' '}
                {visibleText(now().fileTrouble).replace(/\.$/, '')}.
              </p>
            </Show>
            <section class="settingGroup" aria-labelledby="settings-keys">
              <h2 class="label" id="settings-keys">
                Keys that work everywhere
              </h2>
              <Show when={now().keysTrouble !== ''}>
                <p class="settingTrouble">
                  None of them comes: {now().keysTrouble}. Bind <code>quorin --show tree</code> and
                  its like in the desktop’s settings.
                </p>
              </Show>
              <For each={keys}>
                {({ name, purpose }) => (
                  <KeySetting page={props.page} name={name} purpose={purpose} />
                )}
              </For>
              <div class="setting">
                <span class="settingName">Step through the formula</span>
                <span class="settingFixed">
                  {steps.map((step) => nameOf(step, props.page.platform)).join(' and ')}
                </span>
              </div>
            </section>
            <section class="settingGroup" aria-labelledby="settings-following">
              <h2 class="label" id="settings-following">
                Following
              </h2>
              <Switch
                name="following"
                on={!props.paused}
                set={(on, show) => set('following', on, (now) => show(now.following))}
              >
                Follow the selection in {props.application}
              </Switch>
              <label class="setting">
                <span class="settingName">Ask {props.application} for it every</span>
                <select
                  class="filter"
                  data-testid="set-pollMs"
                  onChange={({ currentTarget: field }) => {
                    void set('pollMs', Number(field.value), (now) => {
                      field.value = String(now.pollMs);
                    });
                  }}
                >
                  <For each={offered()}>
                    {(period) => (
                      <option value={period} selected={period === now().pollMs}>
                        {periodName(period)}
                      </option>
                    )}
                  </For>
                </select>
              </label>
            </section>
            <section class="settingGroup" aria-labelledby="settings-colour">
              <h2 class="label" id="settings-colour">
                Colour of what is marked
              </h2>
              <div class="settingColours" role="radiogroup" aria-labelledby="settings-colour">
                <For each={colours}>
                  {({ name, colour }) => (
                    <button
                      type="button"
                      role="radio"
                      class="swatchButton"
                      data-testid={`set-${name.toLowerCase()}`}
                      aria-checked={same(colour, props.page.colour())}
                      onClick={() => props.page.setColour(colour)}
                    >
                      <span class="swatch" style={{ background: css(colour) }} />
                      {name}
                    </button>
                  )}
                </For>
              </div>
            </section>
            <section class="settingGroup" aria-labelledby="settings-program">
              <h2 class="label" id="settings-program">
                Program
              </h2>
              <Switch
                name="login"
                on={now().login.on}
                disabled={now().login.unavailable !== ''}
                set={(on, show) => set('login', on, (now) => show(now.login.on))}
              >
                Start at login
                <Show when={now().login.unavailable !== ''}> ({now().login.unavailable})</Show>
              </Switch>
              <div class="setting">
                <button
                  type="button"
                  class="button"
                  data-testid="check-updates"
                  disabled={now().updates.unavailable !== ''}
                  onClick={() => props.page.checkForUpdates()}
                >
                  Check for updates
                </button>
                <Show when={now().updates.unavailable !== ''}>
                  <span class="settingFixed">{now().updates.unavailable}</span>
                </Show>
              </div>
            </section>
            <p class="note">
              Kept in <span data-testid="settings-file">{visibleText(now().file)}</span>, which can
              be changed by hand as well.
            </p>
          </>
        )}
      </Show>
    </section>
  );
}

/** A setting that is on or off. `set` has it changed, and tells with `show` what came of it. */
function Switch(props: {
  name: 'following' | 'login';
  on: boolean;
  disabled?: boolean;
  set: (on: boolean, show: (on: boolean) => void) => Promise<void>;
  children: JSX.Element;
}): JSX.Element {
  return (
    <label class="setting">
      <input
        type="checkbox"
        data-testid={`set-${props.name}`}
        checked={props.on}
        disabled={props.disabled}
        onChange={({ currentTarget: field }) => {
          void props.set(field.checked, (on) => (field.checked = on));
        }}
      />
      <span class="settingName">{props.children}</span>
    </label>
  );
}
