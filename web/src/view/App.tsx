// The page. What tests of the panel read stands under stable names (data-testid): "book", "sheet",
// "address", "formula", "value", "type", "selection", "region", "follow", and "state", whose
// data-state is the status of the selection and whose text is the sentence shown for it.

import { createSignal, onCleanup, onMount, Show, type JSX } from 'solid-js';

import { commandOf, type Command } from '../core/keyboard/keys';
import { sentenceFor, statusLine, type Platform } from '../core/selection/sentences';
import type { SelectionState } from '../core/selection/state';
import { CellView } from './CellView';
import { HelpCard, WelcomeCard } from './HelpCard';
import { Crumbs } from './Crumbs';
import { FormulaPane } from './FormulaPane';
import { MapView } from './map/MapView';
import { Notice } from './Notice';
import type { Page } from './page';
import { PlaceListView } from './PlaceListView';
import { ReviewView } from './review/ReviewView';
import { doubtOf, ResultLine } from './ResultLine';
import { ScanBar } from './ScanBar';
import { SettingsView } from './settings/SettingsView';
import { StatusBar } from './StatusBar';
import { TopBar } from './TopBar';

export type AppProps = {
  page: Page;
  application: string;
  platform: Platform;
  selection: SelectionState;
  /** A confirmation of something done a moment ago. */
  said: string;
  onRetry(): void;
};

/** What takes every key but Escape for itself. */
const fields = 'select, textarea, input';

/** Keys that a button or a scrolling frame needs for itself. */
const ownKeys: ReadonlySet<Command['do']> = new Set<Command['do']>([
  'move',
  'drill',
  'reveal',
  'find',
  'openSiblings',
]);

export function App(props: AppProps): JSX.Element {
  const settings = () => props.page.look(() => props.page.settings.isOpen);
  const sentence = () =>
    settings() ? undefined : sentenceFor(props.selection, props.application, props.platform);
  const view = () => props.page.look((explorer) => explorer.view);
  const here = () =>
    settings() || sentence() ? undefined : props.page.look((explorer) => explorer.here);
  const tree = () => here()?.tree;
  const dimmed = () =>
    props.selection.status === 'busy' ||
    props.selection.slow ||
    props.page.quitting() !== undefined;
  const notice = () => props.page.look((explorer) => explorer.notice);
  const doubt = () =>
    props.page.look(({ view, evaluator }) => (view === 'tree' ? doubtOf(evaluator, here()) : ''));
  const content = () => (here()?.text === '' ? props.selection.content : undefined);
  const [drawer, setDrawer] = createSignal(false);
  const [help, setHelp] = createSignal(false);
  const mode = () => props.page.look((explorer) => explorer.atlas.mode);
  const listed = () => props.page.look((explorer) => explorer.listed?.addr ?? '');
  const listedLabel = () => props.page.look((explorer) => explorer.listedLabel);
  const impact = () => props.page.look((explorer) => explorer.lists.impact);
  const coverage = () => props.page.look((explorer) => explorer.lists.coverage);
  const scan = () => props.page.look((explorer) => explorer.lists.scan);
  const isWhole = () => props.page.look((explorer) => explorer.lists.isWhole);

  const press = (event: KeyboardEvent): void => {
    if (event.defaultPrevented || props.page.quitting()) return;
    const { explorer, settings: panel } = props.page;
    if (event.key === ',' && !event.altKey && (event.ctrlKey || event.metaKey)) {
      event.preventDefault();
      panel.toggle();
      return;
    }
    const key = {
      key: event.key,
      alt: event.altKey,
      control: event.ctrlKey,
      meta: event.metaKey,
      shift: event.shiftKey,
    };
    const command = commandOf(key, explorer.finding);
    if (!command) return;
    const target = event.target as HTMLElement;
    if (panel.isOpen) {
      if (command.do !== 'leave' && (command.do !== 'view' || target.matches(fields))) return;
      event.preventDefault();
      panel.close();
      if (command.do === 'view') explorer.command(command);
      return;
    }
    if (target.matches(fields) && command.do !== 'leave') return;
    if (command.do === 'help' || (command.do === 'leave' && help())) {
      event.preventDefault();
      setHelp(command.do === 'help' && !help());
      return;
    }
    const isOurs = target === document.body || target.closest('[data-keys=all]') !== null;
    if (!isOurs && ownKeys.has(command.do)) return;
    if (command.do === 'take') {
      // A text that is selected is what the user means.
      if (window.getSelection()?.isCollapsed === false) return;
      event.preventDefault();
      props.page.take(command.form);
      return;
    }
    if (command.do !== 'leave') event.preventDefault();
    explorer.command(command);
  };
  const entered = (): void => {
    props.page.explorer.entered();
  };
  onMount(() => {
    document.addEventListener('keydown', press);
    window.addEventListener('focus', entered);
  });
  onCleanup(() => {
    document.removeEventListener('keydown', press);
    window.removeEventListener('focus', entered);
  });

  return (
    <div
      class="page"
      classList={{ dimmed: dimmed(), noticed: sentence() !== undefined }}
      inert={props.page.quitting() !== undefined}
    >
      <TopBar page={props.page} paused={props.selection.paused} />
      <Show when={here()}>
        <Crumbs
          page={props.page}
          details={props.page.wide() || !tree() || view() !== 'tree' ? undefined : drawer()}
          onDetails={() => setDrawer(!drawer())}
        />
      </Show>
      <main class="body" id="view" aria-label="View">
        <Show when={settings()}>
          <SettingsView
            page={props.page}
            application={props.application}
            paused={props.selection.paused}
          />
        </Show>
        <Show when={!here() && !settings()}>
          <h1 class="offscreen">Quorin</h1>
        </Show>
        <Show when={props.page.welcome()}>
          <WelcomeCard
            application={props.application}
            onKeys={() => setHelp(true)}
            onDismiss={() => props.page.dismissWelcome()}
          />
        </Show>
        <Show when={sentence()}>
          {(one) => (
            <Notice
              sentence={one()}
              waiting={props.selection.status === 'starting'}
              onRetry={props.onRetry}
            />
          )}
        </Show>
        <Show when={here()}>
          {(stop) => (
            <>
              <Show when={view() === 'tree'}>
                <ResultLine page={props.page} stop={stop()} />
                <Show
                  when={tree()}
                  fallback={<CellView page={props.page} stop={stop()} content={content()} />}
                >
                  <FormulaPane
                    page={props.page}
                    stop={stop()}
                    details={props.page.wide() || drawer()}
                  />
                </Show>
              </Show>
              <Show when={view() === 'deps'}>
                <PlaceListView
                  page={props.page}
                  list={props.page.explorer.lists.dependents}
                  name="Dependents"
                  heading={`Cells that use ${listed()}`}
                  label={listedLabel()}
                  under={impact()}
                  nothing={
                    isWhole()
                      ? `No cell of this workbook uses ${listed()}.`
                      : `No cell on this sheet uses ${listed()}.`
                  }
                  next={
                    isWhole()
                      ? 'Nothing changes with it. Press 1 for its own formula, 3 for the map.'
                      : 'What other sheets use is told once the workbook was read.'
                  }
                  missing={coverage()}
                >
                  <ScanBar page={props.page} scan={scan()} />
                </PlaceListView>
              </Show>
              <Show when={view() === 'map'}>
                <MapView page={props.page} book={stop().place.book} />
              </Show>
              <Show when={view() === 'review'}>
                <ReviewView page={props.page} />
              </Show>
            </>
          )}
        </Show>
      </main>
      <Show when={help()}>
        <HelpCard
          front={{ view: view(), mode: mode(), hasTree: tree() !== undefined }}
          onClose={() => setHelp(false)}
          onTake={(form) => props.page.take(form)}
        />
      </Show>
      <StatusBar
        page={props.page}
        status={props.selection.status}
        here={here()}
        help={help()}
        onHelp={settings() ? undefined : () => setHelp(!help())}
        said={
          sentence()?.title ??
          (notice() ||
            props.said ||
            props.page.activity()?.text ||
            statusLine(props.selection, props.application, props.page.waiting()) ||
            doubt())
        }
      />
    </div>
  );
}
