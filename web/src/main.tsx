// The page's beginning: the channel to the native side first, so that nothing sent to it is lost,
// then the errors' way to the log, then who asks what, then what is shown.

import { batch, createSignal } from 'solid-js';
import { render } from 'solid-js/web';

import { ErrorLog } from './core/diagnostics/ErrorLog';
import type { EvaluationQuestions } from './core/evaluation/Asker';
import { ReachGuard, type GuardedQuestions } from './core/evaluation/ReachGuard';
import { Explorer } from './core/explorer/Explorer';
import { SheetFollower } from './core/follow/SheetFollower';
import { CarriedModel, SlicedCarrier } from './core/model/ModelClient';
import type { ModelClient } from './core/model/ModelClient';
import { Conveyor, Errands } from './core/protocol/Conveyor';
import { activityText, tellAfter } from './core/protocol/activity';
import type { Left } from './core/protocol/events';
import type { Outcome } from './core/protocol/Outcome';
import { ProtocolClient } from './core/protocol/ProtocolClient';
import { traits } from './core/protocol/traits';
import type { Colour, Verb, Verbs } from './core/protocol/verbs';
import { reportFile } from './core/report/ofReview';
import { writtenAs } from './core/take/written';
import { PacedErrands } from './core/scan/PacedErrands';
import { Scans } from './core/scan/Scans';
import { SettingsPanel } from './core/settings/SettingsPanel';
import { SelectionTracker } from './core/selection/SelectionTracker';
import { unnamedApplication, type Platform } from './core/selection/sentences';
import type { SelectionState } from './core/selection/state';
import type { Clock } from './core/time/Clock';
import { argumentSeparator } from './core/workbook/conventions';
import { App } from './view/App';
import { QuittingCard } from './view/QuittingCard';
import { afterDrawing } from './view/afterDrawing';
import { copyText } from './view/copyText';
import { takeAlong } from './view/takeAlong';
import type { Activity, Page } from './view/page';
import { startWorker } from './worker/start';
import './view/style.css';
import './view/narrow.css';

const clock: Clock = {
  after(milliseconds, action) {
    const timer = setTimeout(action, milliseconds);
    return () => {
      clearTimeout(timer);
    };
  },
};

const client = new ProtocolClient({
  post(request) {
    const channel = window.webkit?.messageHandlers?.qx;
    if (!channel) throw new Error('There is no panel around this page.');
    channel.postMessage(request);
  },
  clock,
  report(where, error) {
    errors.report(where, error);
  },
  firstId: crypto.getRandomValues(new Uint32Array(1))[0] ?? 1,
});
const errors = new ErrorLog((text) => void client.ask('log', 'ERROR', text));

window.__qxResolve = (id, envelope) => {
  client.resolve(id, envelope);
};
window.__qxEvent = (name, payload) => {
  client.receive(name, payload);
};
window.addEventListener('error', (event) => {
  errors.report(
    `error at ${String(event.lineno)}:${String(event.colno)}`,
    event.error ?? event.message,
  );
});
window.addEventListener('unhandledrejection', (event) => {
  errors.report('rejection', event.reason);
});

// Changes are shown together, once whatever made them has run to its end.
const [version, setVersion] = createSignal(0);
let changePending = false;
function changed(): void {
  if (changePending) return;
  changePending = true;
  queueMicrotask(() => {
    changePending = false;
    setVersion((number) => number + 1);
    conveyor.wake();
  });
}

// One question to the spreadsheet at a time: the sheet that follows, then the selected cell, then
// what the user opened, then values.
const selectionErrands = new Errands();
const errands = new Errands();
function through(queue: Errands) {
  return <V extends Verb>(
    verb: V,
    ...args: Verbs[V]['args']
  ): Promise<Outcome<Verbs[V]['result']>> => queue.ask(() => client.ask(verb, ...args));
}
const askForSelection = through(selectionErrands);
const ask = through(errands);

const platform: Platform = navigator.platform.startsWith('Mac') ? 'mac' : 'linux';

// The whole workbook is read when nobody else asks anything.
const paced = new PacedErrands({
  clock,
  now: () => performance.now(),
  wake: () => {
    conveyor.wake();
  },
});
function newModel(): ModelClient {
  const lookAgain = () => {
    explorer.show(explorer.view);
  };
  const carrier = startWorker(lookAgain) ?? new SlicedCarrier(clock, () => performance.now());
  return new CarriedModel(carrier, () => {
    current = undefined;
    scans.forget();
  });
}
// Begun when it is first needed: most looks at a cell need none.
let current: ModelClient | undefined;
const model: ModelClient = {
  ask: (book, ask, args) => (current ??= newModel()).ask(book, ask, args),
};
const scans: Scans = new Scans(model, {
  questions: {
    workbookMap: () => paced.ask(() => client.ask('workbookMap')),
    readFormulas: (address) => paced.ask(() => client.ask('readFormulas', address, 'r1c1', false)),
    evaluate: (expression) => paced.ask(() => evaluations.evaluate(expression)),
    pollCell: () => paced.ask(() => client.ask('pollCell')),
  },
  clock,
  time: () => new Date().toLocaleTimeString('en-GB', { hour: '2-digit', minute: '2-digit' }),
  changed() {
    explorer.lists.scanned();
    explorer.review.scanned();
    changed();
  },
});

const follower: SheetFollower = new SheetFollower(
  {
    markCells: (addresses, colour) => client.ask('markCells', addresses, colour),
    reveal: async (addresses) => {
      const outcome = await client.ask('reveal', addresses);
      if (outcome.ok && outcome.value.activated) tracker.displace();
      explorer.moved();
      return outcome;
    },
    clearMarks: () => client.ask('clearMarks'),
    locate: (name) => explorer.locate(name),
  },
  clock,
  () => {
    conveyor.wake();
  },
  changed,
  platform === 'mac', // where the spreadsheet is Excel
);
const wish = (asked = false): [] | ['asked'] => (asked ? ['asked'] : []);
const direct: GuardedQuestions = {
  evaluate: (expression, asked) => client.ask('evaluate', expression, ...wish(asked)),
  pollCell: () => client.ask('pollCell'),
  readRange: (address) => client.ask('readRange', address),
  readTexts: (addresses) => client.ask('readTexts', addresses),
  deepEval: (plan, asked) => client.ask('deepEval', plan, ...wish(asked)),
  workbookMap: () => client.ask('workbookMap'),
};
const application =
  typeof window.__qxApp === 'string' && window.__qxApp !== '' ? window.__qxApp : unnamedApplication;
// Calc's side knows itself what it may call; what Excel is asked it calls.
const evaluations: EvaluationQuestions =
  application === 'LibreOffice Calc' ? direct : new ReachGuard(direct, () => explorer.cache.epoch);
const explorer: Explorer = new Explorer({
  questions: {
    evaluate: (expression, asked) => evaluations.evaluate(expression, asked),
    pollCell: () => evaluations.pollCell(),
    readRange: (address, asked) => evaluations.readRange(address, asked),
    readTexts: (addresses) => evaluations.readTexts(addresses),
    deepEval: (plan, asked) => evaluations.deepEval(plan, asked),
    readFormulas: (address, style, formulasOnly = false) =>
      ask('readFormulas', address, style, formulasOnly),
    dependents: (address) => ask('dependents', address),
    workbookMap: () => ask('workbookMap'),
    select: (addresses) => ask('select', addresses),
  },
  follower,
  clock,
  scans,
  reviews: {
    load: (of) => client.ask('loadReview', of),
    save: (of, review) => client.ask('saveReview', of, review),
    now: () => new Date().toISOString(),
    clock,
  },
  changed,
  wake() {
    conveyor.wake();
  },
  leave(how) {
    void client.ask(how === 'hide' ? 'hidePanel' : 'focusExcel');
  },
});

const [selection, setSelection] = createSignal<SelectionState>({
  status: 'starting',
  fresh: false,
  slow: false,
  paused: false,
});
let separator: string | undefined;
function showSelection(state: SelectionState): void {
  const { content } = state;
  const own = content && argumentSeparator(content.formula, content.formulaLocal);
  if (own !== undefined && own !== separator) {
    separator = own;
    void client.ask('setConventions', { arg: own });
  }
  batch(() => {
    setSelection(state);
    explorer.selection(state);
  });
  conveyor.wake();
}
const tracker: SelectionTracker = new SelectionTracker(
  {
    probe: () => askForSelection('probe'),
    readCell: () => askForSelection('readCell'),
    readRange: (address) => askForSelection('readRange', address),
  },
  clock,
  showSelection,
);

let asleep = false;
const [waiting, setWaiting] = createSignal(false);
const conveyor = new Conveyor(
  [
    // While the cell is being read the spreadsheet stays at it: a row that is walked to meanwhile waits.
    { next: () => follower.next(selection().fresh || selection().status !== 'ready') },
    selectionErrands,
    errands,
    {
      next: () =>
        asleep || selection().status !== 'ready' ? undefined : explorer.evaluator.next(),
    },
    {
      next: () => (asleep ? undefined : paced.next()),
      get atOnce() {
        return paced.atOnce;
      },
    },
  ],
  {
    clock,
    slow: (slow) => {
      setWaiting(slow);
      tellActivity(slow);
    },
    report(where, error) {
      errors.report(where, error);
    },
  },
);
// What takes longer than a second is told: what is being done, how far it is, how to stop it.
const [activity, setActivity] = createSignal<Activity | undefined>();
let nextTelling = (): void => undefined;
function tellActivity(slow: boolean): void {
  nextTelling();
  if (!slow) {
    setActivity(undefined);
    return;
  }
  nextTelling = clock.after(tellAfter, () => {
    const open = client.oldest;
    const text = open ? activityText(open, explorer.evaluator.share, application) : '';
    const stop = () => {
      explorer.evaluator.stop();
    };
    setActivity(
      open && text !== '' ? { text, ...(traits[open.verb].canStop ? { stop } : {}) } : undefined,
    );
    tellActivity(true);
  });
}
selectionErrands.attach(conveyor);
errands.attach(conveyor);

// The native side waits for the word that this is drawn, and then for the spreadsheet.
const [quitting, setQuitting] = createSignal<Left>();
client.listen((event) => {
  if (quitting()) return;
  if (event.name === 'quitting') {
    setQuitting(event.left);
    afterDrawing(() => void client.ask('quittingDrawn'));
  }
  asleep =
    event.name === 'cleanHide' ||
    event.name === 'quitting' ||
    (asleep && event.name !== 'summon' && event.name !== 'surface');
  if (event.name === 'selectionChanged') paced.userAtWork();
  tracker.handle(event);
  explorer.handle(event);
  // Beside the spreadsheet the panel does not have the keyboard; brought up, it begins at the tree.
  if (event.name === 'surface' || (event.name === 'summon' && !event.resume)) focusView();
});
window.addEventListener('focus', () => {
  if (!quitting()) tracker.refresh();
});
function focusView(): void {
  document.querySelector<HTMLElement>('[data-keys=all]')?.focus({ preventScroll: true });
}

const [said, setSaid] = createSignal('');
const confirmationTime = 2_000;
let cancelSaid = (): void => undefined;
function say(text: string): void {
  setSaid(text);
  cancelSaid();
  cancelSaid = clock.after(confirmationTime, () => setSaid(''));
}

const wideFrom = 640;
const [wide, setWide] = createSignal(window.innerWidth >= wideFrom);
window.addEventListener('resize', () => setWide(window.innerWidth >= wideFrom));

const [colour, setColour] = createSignal<Colour>([255, 0, 255]);
function useColour(next: Colour): void {
  setColour(next);
  follower.useColour(next);
}
void client.ask('getHighlightColor').then((outcome) => {
  const [red, green, blue] = outcome.ok ? outcome.value : [];
  if (red !== undefined && green !== undefined && blue !== undefined) useColour([red, green, blue]);
});

const settings = new SettingsPanel({
  load: () => client.ask('getSettings'),
  set: (name, value) => client.ask('setSetting', name, value),
  pauseKeys: (paused) => void client.ask('pauseHotKeys', paused),
  loaded({ highlightRGB: [red, green, blue] }) {
    if (red !== undefined && green !== undefined && blue !== undefined) {
      useColour([red, green, blue]);
    }
  },
  clock,
  platform,
  changed,
});
client.listen((event) => {
  if (event.name === 'showSettings') settings.open();
  if (event.name === 'settingsChanged') settings.load();
  if (event.name === 'surface') settings.close();
});

// The card of a first start; a native side that does not keep whether it was dismissed has none.
const [welcome, setWelcome] = createSignal(false);
void client.ask('isWelcomed').then((outcome) => {
  setWelcome(outcome.ok && !outcome.value);
});

const page: Page = {
  explorer,
  follower,
  settings,
  platform,
  show(view) {
    settings.close();
    explorer.show(view);
  },
  look(read) {
    version();
    return read(explorer);
  },
  copy(text, what) {
    void copyText(text).then((copied) => {
      say(copied ? `${what} copied.` : `${what} could not be copied.`);
    });
  },
  take(form) {
    const time = new Date().toLocaleString('en-GB', { dateStyle: 'medium', timeStyle: 'short' });
    const taken = takeAlong(explorer, time);
    if (!taken) say('There is no tree and no list in view to be copied.');
    else page.copy(writtenAs(form, taken), form === 'text' ? 'Text' : 'Table');
  },
  saveReport(format) {
    const lost = (why: string) => {
      say(`The report is not saved: ${why}`);
    };
    const save = async (): Promise<void> => {
      const report = await explorer.review.report(format === 'html');
      if (!report) return;
      const { name, text } = reportFile(report, format);
      const outcome = await client.ask('saveReport', name, text);
      if (!outcome.ok) lost(outcome.failure.message);
      else if (outcome.value !== null) say(`Saved as “${outcome.value}”.`);
    };
    save().catch((error: unknown) => {
      lost(String(error));
    });
  },
  colour,
  setColour(next) {
    useColour(next);
    void client.ask('setHighlightColor', next).then((outcome) => {
      if (!outcome.ok) say('The colour could not be kept.');
    });
  },
  waiting,
  activity,
  checkForUpdates: () => void client.ask('checkForUpdates'),
  wide,
  setWide: (next) => void client.ask('setPanelWidth', next),
  quitting,
  welcome,
  dismissWelcome() {
    setWelcome(false);
    focusView();
    void client.ask('setWelcomed').then((outcome) => {
      if (!outcome.ok) say('The card will come again: the settings could not be written.');
    });
  },
  hide() {
    follower.clear();
    void client.ask('hidePanel');
  },
};

const place = document.getElementById('page');
if (!place) throw new Error('the document has no place for the page');
render(
  () => (
    <>
      <App
        page={page}
        application={application}
        platform={platform}
        selection={selection()}
        said={said()}
        onRetry={() => {
          tracker.retry();
        }}
      />
      <QuittingCard left={quitting()} application={application} />
    </>
  ),
  place,
);
tracker.start();
