// The picture of one sheet: a canvas that is drawn anew, at most once a frame, when anything it shows
// has changed. Takes the keyboard, the wheel, two fingers and the pointer. What tests of the panel read
// stands under "picture", "pointed".

import {
  createEffect,
  createMemo,
  createSignal,
  onCleanup,
  onMount,
  Show,
  type JSX,
} from 'solid-js';

import { parseArea } from '../../core/address/area';
import { oneLine } from '../../core/format/visible';
import { boxOf, cellAt } from '../../core/map/Camera';
import { palettes, type Theme } from '../../core/map/palette';
import { zoomStep, type CellAt } from '../../core/map/Picture';
import { pictureCommandOf } from '../../core/map/pictureKeys';
import { cellText, type CellText } from '../../core/map/words';
import type { Page } from '../page';
import { Bitmaps, head, Painter } from './painter';

/** A pointer that moves less than this between down and up has clicked. */
const clickWithin = 4;
/** A turn of the wheel by so many points makes the picture e times as large. */
const wheelUnit = 400;

export function PictureView(props: { page: Page; theme: Theme; onAll(): void }): JSX.Element {
  const look = <T,>(read: () => T): T => props.page.look(read);
  const atlas = () => props.page.explorer.atlas;
  const picture = () => atlas().picture;
  let frameElement: HTMLDivElement | undefined;
  let canvas: HTMLCanvasElement | undefined;
  let painter: Painter | undefined;
  let asked = 0;
  const bitmaps = new Bitmaps();
  const [moves, setMoves] = createSignal(0);
  const [hasKeys, setHasKeys] = createSignal(false);
  /** Where the pointer is, in points of the pane; nothing while it is elsewhere. */
  const [pointer, setPointer] = createSignal<{ x: number; y: number }>();
  /** True if keys moved the cursor last. */
  const [byKeys, setByKeys] = createSignal(false);

  const draw = (): void => {
    asked = 0;
    const { frame, camera, scale, size } = picture();
    if (!painter || !canvas || size.width <= 0) return;
    if (!frame || frame.rows.count === 0) {
      canvas.getContext('2d')?.clearRect(0, 0, canvas.width, canvas.height);
      return;
    }
    const notRead = (atlas().scan?.state.notRead ?? [])
      .filter(({ sheet }) => sheet === atlas().sheet)
      .flatMap(({ address }) => parseArea(address) ?? []);
    painter.draw({
      atlas: atlas(),
      frame,
      camera,
      scale,
      pane: size,
      palette: palettes[props.theme],
      pixels: window.devicePixelRatio,
      cursor: hasKeys() && byKeys(),
      font: `11px ${getComputedStyle(canvas).fontFamily}`,
      notRead,
    });
  };
  const redraw = (): void => {
    if (asked === 0) asked = requestAnimationFrame(draw);
  };
  /** The camera or the cursor is another one. */
  const changed = (): void => {
    setMoves((number) => number + 1);
  };
  createEffect(() => {
    look(() => undefined);
    moves();
    hasKeys();
    byKeys();
    void props.theme;
    redraw();
  });

  const measure = (): void => {
    if (!frameElement || !canvas) return;
    const { clientWidth: width, clientHeight: height } = frameElement;
    const pixels = window.devicePixelRatio;
    canvas.width = Math.max(1, Math.round(width * pixels));
    canvas.height = Math.max(1, Math.round(height * pixels));
    picture().resize({
      width: Math.max(0, width - head.width),
      height: Math.max(0, height - head.height),
    });
    // At once: a canvas of another size is blank.
    draw();
    changed();
  };
  onMount(() => {
    const context = canvas?.getContext('2d');
    if (context) painter = new Painter(context, bitmaps);
    const observer = new ResizeObserver(measure);
    if (frameElement) observer.observe(frameElement);
    measure();
    frameElement?.focus({ preventScroll: true });
    onCleanup(() => {
      observer.disconnect();
      cancelAnimationFrame(asked);
    });
  });

  /** The point of an event, in points of the pane. */
  const pointOf = (event: MouseEvent): { x: number; y: number } => {
    const box = frameElement?.getBoundingClientRect();
    return {
      x: event.clientX - (box?.left ?? 0) - head.width,
      y: event.clientY - (box?.top ?? 0) - head.height,
    };
  };
  const cellUnder = (at: { x: number; y: number }): CellAt | undefined => {
    const { frame, camera, scale, size } = picture();
    if (!frame || at.x < 0 || at.y < 0 || at.x > size.width || at.y > size.height) return undefined;
    return cellAt(frame, camera, scale, at);
  };

  const fingers = new Map<number, { x: number; y: number }>();
  let pressed: { x: number; y: number; moved: boolean } | undefined;
  const down = (event: PointerEvent): void => {
    if (event.button > 0) return;
    const at = pointOf(event);
    fingers.set(event.pointerId, at);
    pressed = { ...at, moved: fingers.size > 1 };
    frameElement?.setPointerCapture(event.pointerId);
  };
  const move = (event: PointerEvent): void => {
    const at = pointOf(event);
    setPointer(at);
    setByKeys(false);
    const before = fingers.get(event.pointerId);
    if (!before || !pressed) return;
    const isFar = Math.hypot(at.x - pressed.x, at.y - pressed.y) >= clickWithin;
    if (!pressed.moved && !isFar) return;
    pressed.moved = true;
    const [other] = [...fingers].filter(([id]) => id !== event.pointerId).map(([, one]) => one);
    fingers.set(event.pointerId, at);
    if (other) {
      const apart = (one: { x: number; y: number }) =>
        Math.max(1, Math.hypot(one.x - other.x, one.y - other.y));
      const middle = { x: (at.x + other.x) / 2, y: (at.y + other.y) / 2 };
      picture().zoom(apart(at) / apart(before), middle);
      picture().pan({ x: (at.x - before.x) / 2, y: (at.y - before.y) / 2 });
    } else picture().pan({ x: at.x - before.x, y: at.y - before.y });
    changed();
  };
  const up = (event: PointerEvent): void => {
    fingers.delete(event.pointerId);
    const isClick = pressed?.moved === false && event.type === 'pointerup';
    if (fingers.size === 0) pressed = undefined;
    const cell = isClick ? cellUnder(pointOf(event)) : undefined;
    if (!cell) return;
    picture().point(cell);
    changed();
    void props.page.explorer.select();
  };
  const turn = (event: WheelEvent): void => {
    event.preventDefault();
    const unit = event.deltaMode === WheelEvent.DOM_DELTA_LINE ? 16 : 1;
    const by = { x: -event.deltaX * unit, y: -event.deltaY * unit };
    // Two fingers on a touchpad come as a wheel with the control key.
    const isPinch = event.ctrlKey && Math.abs(by.y) < 50;
    if (event.shiftKey) picture().pan({ x: by.x === 0 ? by.y : by.x, y: 0 });
    else if (Math.abs(by.x) > Math.abs(by.y)) picture().pan(by);
    else picture().zoom(Math.exp(by.y / (isPinch ? 100 : wheelUnit)), pointOf(event));
    changed();
  };
  onMount(() => {
    // Not by an attribute: only so may the page keep the wheel for itself.
    frameElement?.addEventListener('wheel', turn, { passive: false });
  });

  const press = (event: KeyboardEvent): void => {
    const command = pictureCommandOf({
      key: event.key,
      alt: event.altKey,
      control: event.ctrlKey,
      meta: event.metaKey,
      shift: event.shiftKey,
    });
    if (!command) return;
    event.preventDefault();
    setByKeys(true);
    const step = 40;
    switch (command.do) {
      case 'move':
        picture().move(command.how);
        break;
      case 'pan':
        picture().pan({ x: -command.x * step, y: -command.y * step });
        break;
      case 'zoom':
        picture().zoom(command.in ? zoomStep : 1 / zoomStep);
        break;
      case 'all':
        picture().showAll();
        break;
      case 'finding':
        atlas().toBreak(command.direction);
        break;
      case 'go':
        void props.page.explorer.select();
        break;
      case 'mark':
        props.page.explorer.reveal();
        break;
      case 'sheet':
        atlas().turnSheet(command.direction);
        break;
    }
    changed();
  };

  const pointed = createMemo((): { text: CellText; x: number; y: number } | undefined => {
    moves();
    const at = byKeys() ? undefined : pointer();
    return look(() => {
      const { frame, camera, scale, cursor, size } = picture();
      if (!frame || size.width === 0) return undefined;
      const isKeys = byKeys() && hasKeys();
      const cell = isKeys ? cursor : at && cellUnder(at);
      if (!cell) return undefined;
      const { sheet } = atlas();
      const told = atlas().cell(sheet, cell.row, cell.col);
      const text = cellText(cell, told, atlas().breaksOf(sheet));
      if (!isKeys && at) return { text, x: at.x + head.width, y: at.y + head.height };
      const area = { top: cell.row, left: cell.col, bottom: cell.row, right: cell.col };
      const box = boxOf(frame, camera, scale, area);
      return { text, x: box.left + box.width + head.width, y: box.top + box.height + head.height };
    });
  });
  const tipPlace = () => {
    const { x = 0, y = 0 } = pointed() ?? {};
    const { width, height } = picture().size;
    const isRight = x > (width + head.width) / 2;
    const isLow = y > (height + head.height) / 2;
    return {
      left: isRight ? 'auto' : `${String(Math.max(0, x + 10))}px`,
      right: isRight ? `${String(Math.max(0, width + head.width - x + 10))}px` : 'auto',
      top: isLow ? 'auto' : `${String(Math.max(0, y + 12))}px`,
      bottom: isLow ? `${String(Math.max(0, height + head.height - y + 12))}px` : 'auto',
    };
  };
  const spoken = () => {
    const one = pointed();
    if (!one || !byKeys()) return '';
    const { address, label, content, more } = one.text;
    return oneLine([address, label, content, ...more].filter(Boolean).join(', '));
  };

  return (
    <div
      class="pictureFrame"
      role="application"
      tabindex="0"
      data-keys="all"
      data-testid="picture"
      aria-label={`Picture of the sheet ${look(() => oneLine(atlas().sheet))}`}
      aria-describedby="picture-help"
      ref={frameElement}
      onKeyDown={press}
      onFocus={() => setHasKeys(true)}
      onBlur={() => setHasKeys(false)}
      onPointerDown={down}
      onPointerMove={move}
      onPointerUp={up}
      onPointerCancel={up}
      onPointerLeave={() => setPointer(undefined)}
      onDblClick={() => {
        props.onAll();
      }}
    >
      <canvas class="pictureCanvas" aria-hidden="true" ref={canvas} />
      <p class="offscreen" id="picture-help">
        Arrows move from cell to cell, plus and minus zoom, 0 shows all, Enter selects the cell in
        the spreadsheet, N and P go to findings. The same as a list is under List.
      </p>
      <p class="offscreen" aria-live="polite">
        {spoken()}
      </p>
      <Show when={pointed()}>
        {(one) => (
          <div class="tip" data-testid="pointed" aria-hidden="true" style={tipPlace()}>
            <p class="tipHead">
              <bdi class="tipAddress" textContent={one().text.address} />{' '}
              <bdi class="quiet" textContent={oneLine(one().text.label)} />
            </p>
            <Show when={one().text.content}>
              <p class="tipContent" dir="ltr" textContent={oneLine(one().text.content)} />
            </Show>
            <Show when={one().text.more.length > 0}>
              <p class="quiet" textContent={oneLine(one().text.more.join(' · '))} />
            </Show>
          </div>
        )}
      </Show>
    </div>
  );
}
