// The user's settings as the native side tells them.

import type { Combination } from '../settings/combination';
import { isListOf, isNumber, isObject, isText } from './json';

/** The hot keys that the user chooses. */
export type KeyName = 'summonKey' | 'depsKey' | 'mapKey';
export const keyNames: readonly KeyName[] = ['summonKey', 'depsKey', 'mapKey'];

/** `combination`: nothing for none. `trouble`: why it does not come, empty where it does. */
export type KeySetting = { combination: Combination | undefined; trouble: string };

/** `unavailable` is a few words, and empty for what can be had. */
export type Settings = {
  keys: Record<KeyName, KeySetting>;
  /** Why no hot key comes; empty where they may. */
  keysTrouble: string;
  pollMs: number;
  highlightRGB: number[];
  following: boolean;
  login: { on: boolean; unavailable: string };
  updates: { unavailable: string };
  file: string;
  /** Why the file cannot be understood; empty where it was. */
  fileTrouble: string;
};

export type SettingName = KeyName | 'pollMs' | 'following' | 'login';

function keySetting(value: unknown): KeySetting | undefined {
  if (!isObject(value) || !isText(value.trouble)) return undefined;
  const { code, modifiers, trouble } = value;
  if (code === null && modifiers === null) return { combination: undefined, trouble };
  return isNumber(code) && isNumber(modifiers)
    ? { combination: { code, modifiers }, trouble }
    : undefined;
}

export function settings(payload: unknown): Settings | undefined {
  if (!isObject(payload) || !isObject(payload.keys)) return undefined;
  const summonKey = keySetting(payload.keys.summonKey);
  const depsKey = keySetting(payload.keys.depsKey);
  const mapKey = keySetting(payload.keys.mapKey);
  const { keysTrouble, pollMs, highlightRGB, following, login, updates, file, fileTrouble } =
    payload;
  if (!summonKey || !depsKey || !mapKey || !isText(keysTrouble) || !isNumber(pollMs)) {
    return undefined;
  }
  if (!isListOf(highlightRGB, isNumber) || typeof following !== 'boolean') return undefined;
  if (!isObject(login) || typeof login.on !== 'boolean' || !isText(login.unavailable)) {
    return undefined;
  }
  if (!isObject(updates) || !isText(updates.unavailable)) return undefined;
  if (!isText(file) || !isText(fileTrouble)) return undefined;
  return {
    keys: { summonKey, depsKey, mapKey },
    keysTrouble,
    pollMs,
    highlightRGB,
    following,
    login: { on: login.on, unavailable: login.unavailable },
    updates: { unavailable: updates.unavailable },
    file,
    fileTrouble,
  };
}
