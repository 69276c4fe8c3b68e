// The map of the workbook: the picture of a sheet, all sheets with what flows between them, or the same
// as a list. What tests of the panel read stands under "map-heading", "map-absent", "map-ties".

import {
  createEffect,
  createSignal,
  For,
  Match,
  onCleanup,
  Show,
  Switch,
  type JSX,
} from 'solid-js';

import { oneLine, visibleText } from '../../core/format/visible';
import type { MapMode } from '../../core/map/Atlas';
import { zoomStep } from '../../core/map/Picture';
import type { Theme } from '../../core/map/palette';
import { factsText, hiddenText, tiesText } from '../../core/map/words';
import { coverageOf } from '../../core/scan/coverage';
import { MinusIcon, PlusIcon, WholeIcon } from '../icons';
import type { Page } from '../page';
import { PlaceListView } from '../PlaceListView';
import { ScanBar } from '../ScanBar';
import { Legend } from './Legend';
import { OverviewView } from './OverviewView';
import { PictureView } from './PictureView';
import './map.css';

const modes: { mode: MapMode; name: string; title: string }[] = [
  { mode: 'picture', name: 'Picture', title: 'The cells of one sheet' },
  { mode: 'sheets', name: 'Sheets', title: 'All sheets, and which takes from which' },
  { mode: 'list', name: 'List', title: 'Sheets and names as a list' },
];

/** The theme that the system asks for, followed. */
function createTheme(): () => Theme {
  const dark = window.matchMedia('(prefers-color-scheme: dark)');
  const [theme, setTheme] = createSignal<Theme>(dark.matches ? 'dark' : 'light');
  const follow = (): void => {
    setTheme(dark.matches ? 'dark' : 'light');
  };
  dark.addEventListener('change', follow);
  onCleanup(() => {
    dark.removeEventListener('change', follow);
  });
  return theme;
}

export function MapView(props: { page: Page; book: string }): JSX.Element {
  const explorer = () => props.page.explorer;
  const atlas = () => explorer().atlas;
  const look = <T,>(read: () => T): T => props.page.look(read);
  const mode = () => look(() => atlas().mode);
  const theme = createTheme();
  const scan = () => look(() => atlas().scan);
  const sheet = () => look(() => atlas().sheet);
  const facts = () =>
    look(() => {
      const told = atlas().told?.sheets.find(({ name }) => name === sheet());
      if (!told || !atlas().hasRead(sheet())) return '';
      return [factsText(told), hiddenText(atlas().hiddenOf(sheet()))].filter(Boolean).join(' · ');
    });
  const coverage = () =>
    look(() => {
      const state = atlas().scan?.state;
      return state ? coverageOf(state, false) : '';
    });
  createEffect(() => {
    if (mode() === 'list') explorer().lists.describe(look(() => atlas().told));
  });
  return (
    <div class="places map">
      <div class="mapBar">
        <div class="modes" role="radiogroup" aria-label="Shown as">
          <For each={modes}>
            {(one) => (
              <button
                type="button"
                role="radio"
                class="modeButton"
                aria-checked={mode() === one.mode}
                data-testid={`mode-${one.mode}`}
                title={one.title}
                onClick={() => {
                  explorer().showMap(one.mode);
                }}
              >
                {one.name}
              </button>
            )}
          </For>
        </div>
        <Show when={mode() === 'picture'}>
          <PictureBar page={props.page} />
        </Show>
      </div>
      <div class="mapLine" classList={{ done: look(() => atlas().scan?.state.status === 'done') }}>
        <p
          class="note mapFacts"
          data-testid="map-heading"
          title={mode() === 'picture' ? oneLine(facts()) : undefined}
        >
          {mode() === 'picture' ? oneLine(facts()) : ''}
        </p>
        <ScanBar page={props.page} scan={scan()} />
      </div>
      <Switch>
        <Match when={mode() === 'list'}>
          <PlaceListView
            page={props.page}
            list={explorer().lists.map}
            name="Map"
            heading={props.book}
            under=""
            nothing="This workbook has no sheets."
            next="Sheets that are charts are not listed; open another workbook to see its map."
            missing={coverage()}
          />
        </Match>
        <Match when={mode() === 'sheets'}>
          <OverviewView page={props.page} theme={theme()} />
          <p class="note mapNote" data-testid="list-note">
            {visibleText(coverage())}
          </p>
        </Match>
        <Match when={mode() === 'picture'}>
          <div class="pictureRoom">
            <PictureView
              page={props.page}
              theme={theme()}
              onAll={() => {
                atlas().picture.showAll();
                explorer().show('map');
              }}
            />
            <Absent page={props.page} />
          </div>
          <p class="note mapTies" data-testid="map-ties">
            {oneLine(
              look(() => {
                const { here, ties } = atlas();
                return here && ties ? tiesText(here, ties) : '';
              }),
            )}
          </p>
          <Legend theme={theme()} page={props.page} />
          <p class="note mapNote" data-testid="list-note">
            {visibleText(coverage())}
          </p>
        </Match>
      </Switch>
    </div>
  );
}

/** Which sheet is shown, and how large. */
function PictureBar(props: { page: Page }): JSX.Element {
  const atlas = () => props.page.explorer.atlas;
  const look = <T,>(read: () => T): T => props.page.look(read);
  const names = () => look(() => atlas().sheetNames);
  const sheet = () => look(() => atlas().sheet);
  const zoom = (factor: number): void => {
    const { width, height } = atlas().picture.size;
    atlas().picture.zoom(factor, { x: width / 2, y: height / 2 });
    props.page.explorer.show('map');
  };
  return (
    <>
      <select
        class="filter mapSheet"
        aria-label="Sheet"
        data-testid="map-sheet"
        onChange={(event) => {
          atlas().open(event.currentTarget.value);
        }}
      >
        <For each={names().length > 0 ? names() : [sheet()]}>
          {(name) => (
            <option value={name} selected={name === sheet()}>
              {oneLine(name)}
            </option>
          )}
        </For>
      </select>
      <button
        type="button"
        class="iconButton"
        aria-label="Smaller"
        title="Smaller (-)"
        data-testid="zoom-out"
        onClick={() => {
          zoom(1 / zoomStep);
        }}
      >
        <MinusIcon />
      </button>
      <button
        type="button"
        class="iconButton"
        aria-label="Larger"
        title="Larger (+)"
        data-testid="zoom-in"
        onClick={() => {
          zoom(zoomStep);
        }}
      >
        <PlusIcon />
      </button>
      <button
        type="button"
        class="iconButton"
        aria-label="All of the sheet"
        title="All of the sheet (0)"
        data-testid="zoom-all"
        onClick={() => {
          atlas().picture.showAll();
          props.page.explorer.show('map');
        }}
      >
        <WholeIcon />
      </button>
    </>
  );
}

/** Why there is no picture, in its place. */
function Absent(props: { page: Page }): JSX.Element {
  const text = () =>
    props.page.look(({ atlas }) => {
      const { sheet, scan } = atlas;
      if (!scan) return `The sheets can be shown while “${atlas.book}” is in front.`;
      const frame = atlas.frameOf(sheet);
      if (frame && frame.rows.count > 0) return '';
      if (atlas.hasRead(sheet)) {
        return frame ? 'This sheet is empty. Choose another one above.' : 'Drawing…';
      }
      const { status } = scan.state;
      if (status === 'starting' || status === 'reading') return `“${sheet}” is not read yet…`;
      return `“${sheet}” was not read. The line above tells why, and how to go on.`;
    });
  return (
    <Show when={text()}>
      {(one) => (
        <p class="absent pictureAbsent" data-testid="map-absent">
          {oneLine(one())}
        </p>
      )}
    </Show>
  );
}
