// All sheets as small pictures, with lines from those that give to those that take. What tests of the
// panel read stands under "node", "map-flow".

import {
  createEffect,
  createMemo,
  createSignal,
  For,
  onCleanup,
  onMount,
  Show,
  type JSX,
} from 'solid-js';

import { oneLine } from '../../core/format/visible';
import { count } from '../../core/format/words';
import { smallTile } from '../../core/map/Camera';
import { flowPath, lineWidth, overviewOf, type Node } from '../../core/map/Overview';
import { palettes, type Theme } from '../../core/map/palette';
import { factsText, flowsText } from '../../core/map/words';
import type { Page } from '../page';
import { Bitmaps } from './painter';

/** Sizes of a node and of its row, in points. */
const node = { width: 96, height: 74, apart: 14, row: 112 };
const thumb = { width: 84, height: 42 };
/** Of more flows only those of the chosen sheet are drawn. */
const flowsDrawn = 120;

export function OverviewView(props: { page: Page; theme: Theme }): JSX.Element {
  const look = <T,>(read: () => T): T => props.page.look(read);
  const atlas = () => props.page.explorer.atlas;
  const bitmaps = new Bitmaps();
  let scroller: HTMLDivElement | undefined;
  const [room, setRoom] = createSignal({ width: 440, height: 300 });
  const [top, setTop] = createSignal(0);
  const names = createMemo(() => look(() => atlas().sheetNames), [], { equals: sameTexts });
  const told = createMemo(() => look(() => atlas().told));
  const [chosen, setChosen] = createSignal(look(() => atlas().sheet));
  const most = () => Math.max(1, Math.floor(room().width / (node.width + node.apart)));
  const laid = createMemo(() => overviewOf(names(), told()?.flows ?? [], most()));
  const inRow = createMemo(() => {
    const counts: number[] = [];
    for (const { row } of laid().nodes) counts[row] = (counts[row] ?? 0) + 1;
    return counts;
  });
  const centre = ({ row, place }: Node) => {
    const count = inRow()[row] ?? 1;
    const step = node.width + node.apart;
    const x = room().width / 2 + (place - (count - 1) / 2) * step;
    return { x, y: row * node.row + node.apart / 2 };
  };
  const places = createMemo(() => new Map(laid().nodes.map((one) => [one.name, centre(one)])));
  const inSight = createMemo(() => {
    const first = Math.floor(top() / node.row) - 1;
    const last = Math.ceil((top() + room().height) / node.row) + 1;
    // By name, so that a node stays the same one wherever it comes to stand.
    return laid()
      .nodes.filter(({ row }) => row >= first && row <= last)
      .map(({ name }) => name);
  });
  const lines = createMemo(() => {
    const flows = told()?.flows ?? [];
    const own = flows.filter(({ from, to }) => from === chosen() || to === chosen());
    const others = flows.length > flowsDrawn ? [] : flows.filter((flow) => !own.includes(flow));
    return [
      ...others.map((flow) => ({ flow, own: false })),
      ...own.map((flow) => ({ flow, own: true })),
    ];
  });
  const path = (from: string, to: string): string => {
    const start = places().get(from);
    const end = places().get(to);
    if (!start || !end) return '';
    return flowPath({ x: start.x, y: start.y + node.height }, { x: end.x, y: end.y });
  };
  onMount(() => {
    const measure = (): void => {
      if (scroller) setRoom({ width: scroller.clientWidth, height: scroller.clientHeight });
    };
    const observer = new ResizeObserver(measure);
    if (scroller) observer.observe(scroller);
    measure();
    const place = places().get(chosen());
    if (scroller && place) scroller.scrollTop = Math.max(0, place.y - room().height / 2);
    focusNode(chosen());
    onCleanup(() => {
      observer.disconnect();
    });
  });
  const focusNode = (name: string): void => {
    const found = [...(scroller?.querySelectorAll<HTMLElement>('.node') ?? [])].find(
      (one) => one.dataset.name === name,
    );
    found?.focus({ preventScroll: true });
  };
  const open = (name: string): void => {
    atlas().open(name);
    props.page.explorer.showMap('picture');
  };
  /** The node of the row above or below that is nearest. */
  const nextRow = (now: Node, by: number): Node | undefined => {
    const { x } = centre(now);
    let nearest: Node | undefined;
    let least = Infinity;
    for (const one of laid().nodes) {
      const away = Math.abs(centre(one).x - x);
      if (one.row === now.row + by && away < least) [nearest, least] = [one, away];
    }
    return nearest;
  };
  const press = (event: KeyboardEvent): void => {
    const now = laid().nodes.find(({ name }) => name === chosen());
    const by: Record<string, readonly [number, number] | undefined> = {
      ArrowUp: [-1, 0],
      ArrowDown: [1, 0],
      ArrowLeft: [0, -1],
      ArrowRight: [0, 1],
    };
    const step = by[event.key];
    if (!step || !now || event.altKey || event.ctrlKey || event.metaKey) return;
    event.preventDefault();
    const next = step[0] === 0 ? beside(laid().nodes, now, step[1]) : nextRow(now, step[0]);
    if (!next) return;
    setChosen(next.name);
    const place = places().get(next.name);
    if (scroller && place) {
      const above = place.y - 8;
      const below = place.y + node.height + 8 - room().height;
      if (above < scroller.scrollTop) scroller.scrollTop = above;
      else if (below > scroller.scrollTop) scroller.scrollTop = below;
      setTop(scroller.scrollTop);
    }
    focusNode(next.name);
  };
  const flowLine = () => {
    const flows = told()?.flows;
    if (!flows) return '';
    const text = flowsText(chosen(), flows);
    return `${chosen()} ${text === '' ? 'takes from no other sheet and gives to none' : text}.`;
  };
  return (
    <>
      <p class="note mapFlow" data-testid="map-flow" aria-live="polite">
        {oneLine(flowLine())}
      </p>
      <div
        class="overview"
        ref={scroller}
        tabindex="-1"
        onScroll={(event) => setTop(event.currentTarget.scrollTop)}
        onKeyDown={press}
      >
        <div class="overviewBody" style={{ height: `${String(laid().rows * node.row)}px` }}>
          <svg class="flows" aria-hidden="true">
            <For each={lines()}>
              {({ flow, own }) => (
                <path
                  class="flow"
                  classList={{ own, back: isBack(places(), flow.from, flow.to) }}
                  d={path(flow.from, flow.to)}
                  stroke-width={lineWidth(flow.cells)}
                />
              )}
            </For>
          </svg>
          <ul class="nodes" aria-label="Sheets">
            <For each={inSight()}>
              {(name) => (
                <li>
                  <SheetNode
                    page={props.page}
                    theme={props.theme}
                    bitmaps={bitmaps}
                    name={name}
                    at={places().get(name) ?? { x: 0, y: 0 }}
                    chosen={chosen() === name}
                    onChoose={() => setChosen(name)}
                    onOpen={() => {
                      open(name);
                    }}
                  />
                </li>
              )}
            </For>
          </ul>
        </div>
      </div>
    </>
  );
}

function beside(nodes: readonly Node[], { row, place }: Node, by: number): Node | undefined {
  return nodes.find((one) => one.row === row && one.place === place + by);
}

function isBack(places: ReadonlyMap<string, { y: number }>, from: string, to: string): boolean {
  return (places.get(from)?.y ?? 0) >= (places.get(to)?.y ?? 0);
}

function sameTexts(one: readonly string[], other: readonly string[]): boolean {
  return one.length === other.length && one.every((text, i) => text === other[i]);
}

type SheetNodeProps = {
  page: Page;
  theme: Theme;
  bitmaps: Bitmaps;
  name: string;
  /** The middle of its upper edge. */
  at: { x: number; y: number };
  chosen: boolean;
  onChoose(): void;
  onOpen(): void;
};

function SheetNode(props: SheetNodeProps): JSX.Element {
  const look = <T,>(read: () => T): T => props.page.look(read);
  const atlas = () => props.page.explorer.atlas;
  let canvas: HTMLCanvasElement | undefined;
  const facts = () => look(() => atlas().told?.sheets.find(({ name }) => name === props.name));
  const isRead = () => look(() => atlas().hasRead(props.name));
  const isHere = () => look(() => atlas().here?.sheet === props.name);
  const formulas = () => {
    const one = facts();
    if (!isRead()) return 'not read';
    if (!one) return '';
    if (one.cells === 0) return 'empty';
    return one.formulas === 0 ? 'no formulas' : count(one.formulas, 'formula');
  };
  const title = () => {
    const one = facts();
    const flows = look(() => atlas().told?.flows ?? []);
    return [props.name, one ? factsText(one) : formulas(), flowsText(props.name, flows)]
      .filter(Boolean)
      .join(' · ');
  };
  createEffect(() => {
    const palette = palettes[props.theme];
    look(() => {
      const frame = atlas().frameOf(props.name);
      const samples = frame && atlas().tile(props.name, smallTile(frame, thumb));
      const context = canvas?.getContext('2d');
      if (!canvas || !context) return;
      context.fillStyle = palette.blank;
      context.fillRect(0, 0, canvas.width, canvas.height);
      const bitmap = samples && props.bitmaps.of(samples, palette);
      if (!samples || !bitmap) return;
      context.imageSmoothingEnabled = false;
      // Small sheets no larger than they can be told apart.
      const width = Math.min(canvas.width, samples.width * 8);
      const height = Math.min(canvas.height, samples.height * 4);
      context.drawImage(bitmap, 0, 0, width, height);
    });
  });
  return (
    <button
      type="button"
      class="node"
      classList={{ here: isHere(), chosen: props.chosen }}
      data-testid="node"
      data-name={props.name}
      title={oneLine(title())}
      aria-current={isHere() ? 'true' : undefined}
      tabindex={props.chosen ? 0 : -1}
      style={{
        transform: `translate(${(props.at.x - node.width / 2).toFixed(1)}px, ${props.at.y.toFixed(1)}px)`,
      }}
      onFocus={() => {
        props.onChoose();
      }}
      onPointerEnter={() => {
        props.onChoose();
      }}
      onClick={() => {
        props.onOpen();
      }}
    >
      <canvas
        class="thumb"
        width={thumb.width}
        height={thumb.height}
        aria-hidden="true"
        ref={canvas}
      />
      <bdi class="nodeName" textContent={oneLine(props.name)} />
      <span class="nodeFacts">{formulas()}</span>
      <Show when={(facts()?.errors ?? 0) > 0}>
        <span class="nodeErrors">{count(facts()?.errors ?? 0, 'error')}</span>
      </Show>
    </button>
  );
}
