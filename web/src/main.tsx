// The page's beginning: the channel to the native side first, so that nothing sent to it is lost,
// then the errors' way to the log, then the selection, then what is shown.

import { render } from 'solid-js/web';

import { ErrorLog } from './core/diagnostics/ErrorLog';
import { ProtocolClient } from './core/protocol/ProtocolClient';
import { SelectionTracker } from './core/selection/SelectionTracker';
import { unnamedApplication } from './core/selection/sentences';
import type { Clock } from './core/time/Clock';
import { App } from './view/App';
import { createSelection } from './view/createSelection';
import './view/style.css';

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

const selection = createSelection();
const tracker = new SelectionTracker(
  {
    probe: () => client.ask('probe'),
    readCell: () => client.ask('readCell'),
    readRange: (address) => client.ask('readRange', address),
  },
  clock,
  selection.publish,
);
client.listen((event) => {
  tracker.handle(event);
});
window.addEventListener('focus', () => {
  tracker.refresh();
});

const application =
  typeof window.__qxApp === 'string' && window.__qxApp !== '' ? window.__qxApp : unnamedApplication;

const page = document.getElementById('page');
if (!page) throw new Error('the document has no place for the page');
render(
  () => (
    <App
      application={application}
      platform={navigator.platform.startsWith('Mac') ? 'mac' : 'linux'}
      selection={selection.state()}
      onRetry={() => {
        tracker.retry();
      }}
      onLeave={() => void client.ask('focusExcel')}
    />
  ),
  page,
);
tracker.start();
