// The settings as the page shows them: loaded when they are opened, changed one by one, and hot keys
// by pressing them. Holds no element of the document; whoever draws it is told when something
// changed and looks again.

import type { Json } from '../protocol/json';
import type { Outcome } from '../protocol/Outcome';
import type { KeyName, SettingName, Settings } from '../protocol/settings';
import type { Platform } from '../selection/sentences';
import type { Cancel, Clock } from '../time/Clock';
import { cautionOf, combinationOf, isModifier, type KeyPress } from './combination';
import type { Combination } from './combination';

export type SettingsPorts = {
  load(): Promise<Outcome<Settings>>;
  set(name: SettingName, value: Json): Promise<Outcome<Settings>>;
  /** While they are paused, hot keys reach the page. */
  pauseKeys(paused: boolean): void;
  /** The settings were loaded. */
  loaded(settings: Settings): void;
  clock: Clock;
  platform: Platform;
  changed(): void;
};

export const defaultKeys: Record<KeyName, Combination> = {
  summonKey: { code: 0, modifiers: 2560 },
  depsKey: { code: 1, modifiers: 2560 },
  mapKey: { code: 2, modifiers: 2560 },
};

/** The native side ends the pause after twenty seconds. */
const longestWait = 15_000;

export class SettingsPanel {
  isOpen = false;
  settings: Settings | undefined;
  /** Why there are none, or why the last change was not made; empty for nothing. */
  trouble = '';
  /** The key that waits to be pressed. */
  waiting: KeyName | undefined;
  private readonly words = new Map<KeyName, string>();
  private cancelWait: Cancel | undefined;

  constructor(private readonly ports: SettingsPorts) {}

  open(): void {
    this.isOpen = true;
    this.words.clear();
    this.load();
    this.ports.changed();
  }

  close(): void {
    this.stopWaiting('');
    if (!this.isOpen) return;
    this.isOpen = false;
    this.ports.changed();
  }

  toggle(): void {
    if (this.isOpen) this.close();
    else this.open();
  }

  /** The file may have changed. */
  load(): void {
    void this.ports.load().then((outcome) => {
      this.take(outcome);
    });
  }

  async set(name: SettingName, value: Json): Promise<void> {
    this.take(await this.ports.set(name, value));
  }

  /** What is to be said of this key; empty for nothing. */
  wordsOn(name: KeyName): string {
    const key = this.settings?.keys[name];
    const said = this.words.get(name) ?? '';
    if (said !== '' || !key) return said;
    if (key.trouble !== '') return key.trouble;
    return key.combination ? cautionOf(key.combination, this.ports.platform) : '';
  }

  /** The next combination that is pressed is to be this key's. */
  wait(name: KeyName): void {
    this.stopWaiting('');
    this.waiting = name;
    this.words.delete(name);
    this.ports.pauseKeys(true);
    this.cancelWait = this.ports.clock.after(longestWait, () => {
      this.stopWaiting('No key was pressed.');
    });
    this.ports.changed();
  }

  /** A key went down while one is waited for. */
  pressed(press: KeyPress): void {
    const name = this.waiting;
    if (name === undefined || isModifier(press)) return;
    const alone = !press.alt && !press.control && !press.meta && !press.shift;
    if (alone && press.code === 'Escape') {
      this.stopWaiting('');
      return;
    }
    if (alone && (press.code === 'Backspace' || press.code === 'Delete')) {
      this.stopWaiting('');
      void this.setKey(name, null);
      return;
    }
    const combination = combinationOf(press);
    this.stopWaiting(combination ? '' : 'This key cannot be used here.');
    if (combination) void this.setKey(name, combination);
  }

  /** All keys are up again; `held`: those that were down, as the user calls them. */
  released(held: string): void {
    if (this.waiting === undefined) return;
    this.stopWaiting(
      `No key came with ${held}: the desktop or another program keeps what was pressed.`,
    );
  }

  /** Another window has the keyboard. */
  left(): void {
    if (this.waiting === undefined) return;
    this.stopWaiting('Another window came forward: the desktop keeps what was pressed.');
  }

  /** `null`: none. */
  async setKey(name: KeyName, combination: Combination | null): Promise<void> {
    const outcome = await this.ports.set(name, combination);
    if (outcome.ok) {
      this.words.delete(name);
      this.take(outcome);
      return;
    }
    this.words.set(name, outcome.failure.message);
    this.ports.changed();
  }

  private take(outcome: Outcome<Settings>): void {
    if (outcome.ok) {
      this.settings = outcome.value;
      this.ports.loaded(outcome.value);
    }
    this.trouble = outcome.ok ? '' : outcome.failure.message;
    this.ports.changed();
  }

  private stopWaiting(words: string): void {
    const name = this.waiting;
    if (name === undefined) return;
    this.waiting = undefined;
    this.cancelWait?.();
    this.ports.pauseKeys(false);
    if (words !== '') this.words.set(name, words);
    this.ports.changed();
  }
}
