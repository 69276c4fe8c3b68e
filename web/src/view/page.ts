// What every part of the page is given: the explorer, and a way to look at it again whenever it has
// changed.

import type { Explorer } from '../core/explorer/Explorer';
import type { SheetFollower } from '../core/follow/SheetFollower';
import type { ReportFormat } from '../core/report/ofReview';
import type { Left } from '../core/protocol/events';
import type { Colour } from '../core/protocol/verbs';
import type { Platform } from '../core/selection/sentences';
import type { SettingsPanel } from '../core/settings/SettingsPanel';
import type { View } from '../core/explorer/view';
import type { TakenForm } from '../core/take/written';

/** What is being done, and how far it is; `stop` where it can be stopped. */
export type Activity = { text: string; stop?: () => void };

export type Page = {
  explorer: Explorer;
  follower: SheetFollower;
  settings: SettingsPanel;
  platform: Platform;
  /** Leaves the settings for a view. */
  show(view: View): void;
  /** What `read` gives, followed: read again after every change. */
  look<T>(read: (explorer: Explorer) => T): T;
  copy(text: string, what: string): void;
  /** Copies what is in view, with where and when it is from. */
  take(form: TakenForm): void;
  /** The user is asked where to. */
  saveReport(format: ReportFormat): void;
  colour(): Colour;
  setColour(colour: Colour): void;
  /** True if an answer has been awaited for so long that the user should know. */
  waiting(): boolean;
  /** What has been under way for over a second. */
  activity(): Activity | undefined;
  wide(): boolean;
  setWide(wide: boolean): void;
  checkForUpdates(): void;
  hide(): void;
  /** What is taken back while Quorin ends; before that nothing. */
  quitting(): Left | undefined;
  /** True on first starts, until the card of help is dismissed. */
  welcome(): boolean;
  dismissWelcome(): void;
};
