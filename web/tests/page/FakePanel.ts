// The built page in a real browser, with the native side played by the test: it answers each verb
// with what the test laid ready, holds what it was told to hold, and sends events.

import { mkdtemp, rm } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';

import { chromium, type BrowserContext, type Page } from 'playwright-core';

import { anyBrowser } from './anyBrowser';

const browserPath = anyBrowser() ?? '';
const bundle = pathToFileURL(fileURLToPath(new URL('../../dist/index.html', import.meta.url))).href;

/** Tests are to pass on a slow machine as well: QUORIN_SLOWDOWN=10 plays one in the browser. */
const slowdown = Number(process.env.QUORIN_SLOWDOWN ?? '1');

export type Answer = { ok: boolean; payload: unknown };
export type Posted = { id: number; verb: string; args: unknown[] };
export type Look = { width: number; height: number; colours: 'light' | 'dark' };

/** What runs in the page before the page's own script. */
function installFakeNativeSide(application: string | undefined): void {
  const side = {
    posted: [] as Posted[],
    answers: {} as Record<string, Answer | undefined>,
    violations: [] as string[],
    soon: new Set<number>(),
    frame: () =>
      new Promise<void>((done) => {
        later(() => {
          requestAnimationFrame(() => {
            done();
          });
        }, 0);
      }),
  };
  // What the page does a moment later, such as bringing into sight where it rests, belongs to what
  // it does now; only what takes longer is waited for by name.
  const moment = 100;
  const later = window.setTimeout.bind(window);
  const never = window.clearTimeout.bind(window);
  Object.assign(window, {
    setTimeout(action: (...given: unknown[]) => void, delay = 0, ...given: unknown[]): number {
      const id = later(() => {
        side.soon.delete(id);
        action(...given);
      }, delay);
      if (delay <= moment) side.soon.add(id);
      return id;
    },
    clearTimeout(id: number): void {
      side.soon.delete(id);
      never(id);
    },
  });
  Object.assign(window, { side, __qxApp: application });
  document.addEventListener('securitypolicyviolation', (event) => {
    side.violations.push(event.violatedDirective);
  });
  Object.assign(window, {
    webkit: {
      messageHandlers: {
        qx: {
          postMessage(body: Posted) {
            side.posted.push(body);
            // An answer for this very question counts more than one for its verb.
            const [first] = body.args;
            const question = Array.isArray(first) ? first.join() : first;
            const answer =
              side.answers[`${body.verb} ${String(question)}`] ?? side.answers[body.verb];
            const page = window as unknown as {
              __qxResolve: (id: number, envelope: Answer) => void;
            };
            if (answer)
              setTimeout(() => {
                page.__qxResolve(body.id, answer);
              }, 0);
          },
        },
      },
    },
  });
}

type Side = {
  posted: Posted[];
  answers: Record<string, Answer | undefined>;
  violations: string[];
  /** The timers of the page that end in a moment. */
  soon: Set<number>;
  /** Another frame of the page. */
  frame: () => Promise<void>;
};
type PageWindow = {
  side: Side;
  __qxResolve: (id: unknown, envelope: unknown) => void;
  __qxEvent: (name: unknown, payload: unknown) => void;
};

/** One browser with an empty profile of its own, which `close` takes away. */
export class Browser {
  private constructor(
    private readonly context: BrowserContext,
    private readonly profile: string,
  ) {}

  static async start(): Promise<Browser> {
    const profile = await mkdtemp(join(tmpdir(), 'quorin-page-'));
    const context = await chromium.launchPersistentContext(profile, {
      executablePath: browserPath,
      headless: true,
      args: [
        '--no-sandbox',
        '--disable-gpu',
        // One process for all pages, which come one after the other: starting one takes longer than a page.
        '--renderer-process-limit=1',
        '--disable-site-isolation-trials',
        '--disable-features=IsolateOrigins,site-per-process',
        '--no-first-run',
        '--disable-background-networking',
        '--disable-component-update',
        '--disable-sync',
      ],
    });
    return new Browser(context, profile);
  }

  async close(): Promise<void> {
    await this.context.close();
    await rm(this.profile, { recursive: true, force: true, maxRetries: 5 });
  }

  /** A page without anything, for work that only a browser can do. */
  blank(): Promise<Page> {
    return this.context.newPage();
  }

  async open(
    answers: Record<string, Answer>,
    application: string | undefined = 'LibreOffice Calc',
    look: Look = { width: 460, height: 560, colours: 'light' },
  ): Promise<FakePanel> {
    const page = await this.context.newPage();
    page.setDefaultTimeout(8_000);
    const panel = new FakePanel(page);
    if (slowdown > 1) {
      const session = await this.context.newCDPSession(page);
      await session.send('Emulation.setCPUThrottlingRate', { rate: slowdown });
    }
    await page.setViewportSize({ width: look.width, height: look.height });
    await page.emulateMedia({ colorScheme: look.colours });
    await page.addInitScript(installFakeNativeSide, application);
    await page.addInitScript((laid) => {
      (window as unknown as PageWindow).side.answers = laid as Side['answers'];
    }, answers);
    await page.goto(bundle);
    return panel;
  }
}

export class FakePanel {
  readonly requests: string[] = [];
  readonly errors: string[] = [];

  constructor(readonly page: Page) {
    page.on('request', (request) => this.requests.push(request.url()));
    page.on('pageerror', (error) => this.errors.push(error.message));
  }

  text(testid: string): Promise<string> {
    return this.page.getByTestId(testid).innerText();
  }

  /** Waits until the element shows exactly `text`. */
  async shows(testid: string, text: string): Promise<void> {
    await this.page.waitForFunction(
      ([id, expected]) =>
        document.querySelector<HTMLElement>(`[data-testid="${id}"]`)?.innerText === expected,
      [testid, text] as const,
    );
  }

  /** Waits until the foot tells something of that kind. */
  async tells(text: RegExp): Promise<void> {
    await this.page.getByTestId('state').filter({ hasText: text }).waitFor({ state: 'attached' });
  }

  async reaches(state: string): Promise<void> {
    await this.page
      .locator(`[data-testid=state][data-state=${state}]`)
      .waitFor({ state: 'attached' });
  }

  /** Waits until the formula was compared with its cell. */
  async verified(state: string): Promise<void> {
    await this.page
      .locator(`[data-testid=verification][data-state=${state}]`)
      .waitFor({ state: 'attached' });
  }

  /**
   * Waits until the page has nothing more to do at once: for some frames no new question, none
   * with an answer on its way, and nothing that it wants to do in a moment.
   */
  async settled(): Promise<void> {
    await this.page.evaluate(async () => {
      const { side } = window as unknown as PageWindow;
      for (let quiet = 0, seen = -1; quiet < 5; quiet++) {
        if (seen !== side.posted.length || side.soon.size > 0) quiet = 0;
        seen = side.posted.length;
        await side.frame();
      }
    });
  }

  /** The panel in another size, once the page has taken it. */
  async resize(width: number, height: number): Promise<void> {
    await this.page.setViewportSize({ width, height });
    await this.page.waitForFunction((wanted) => window.innerWidth === wanted, width);
    await this.settled();
  }

  async lay(verb: string, answer: Answer | undefined): Promise<void> {
    await this.page.evaluate(
      ([name, laid]) => {
        (window as unknown as PageWindow).side.answers[name as string] = laid as Answer | undefined;
      },
      [verb, answer] as const,
    );
  }

  posted(): Promise<Posted[]> {
    return this.page.evaluate(() => (window as unknown as PageWindow).side.posted);
  }

  /** Waits until `verb` has been asked `times` times, and gives the newest such request. */
  async asked(verb: string, times = 1): Promise<Posted> {
    await this.page.waitForFunction(
      ([name, count]) =>
        (window as unknown as PageWindow).side.posted.filter((post) => post.verb === name).length >=
        (count as number),
      [verb, times] as const,
    );
    const posts = (await this.posted()).filter((post) => post.verb === verb);
    const newest = posts.at(-1);
    if (!newest) throw new Error(`${verb} was not asked`);
    return newest;
  }

  async resolve(id: unknown, envelope: unknown): Promise<void> {
    await this.page.evaluate(
      ([number, reply]) => {
        (window as unknown as PageWindow).__qxResolve(number, reply);
      },
      [id, envelope] as const,
    );
  }

  async send(name: string, payload: unknown): Promise<void> {
    await this.page.evaluate(
      ([event, body]) => {
        (window as unknown as PageWindow).__qxEvent(event, body);
      },
      [name, payload] as const,
    );
  }

  violations(): Promise<string[]> {
    return this.page.evaluate(() => (window as unknown as PageWindow).side.violations);
  }

  async close(): Promise<void> {
    await this.page.close();
  }
}
