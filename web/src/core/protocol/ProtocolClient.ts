// The page's end of the message channel: posts requests, settles them by their ids, hands events to
// whoever listens. One for the life of the page. Nothing it is given from outside makes it throw.

import type { Cancel, Clock } from '../time/Clock';
import type { Open } from './activity';
import { decodeEvent, type NativeEvent } from './events';
import { isObject, type Json } from './json';
import { failed, type Outcome } from './Outcome';
import { traits } from './traits';
import { decodeReply, type Verb, type Verbs } from './verbs';

export type Request = { id: number; verb: Verb; args: Json[] };

export type ProtocolPorts = {
  /** Hands one request to the native side; throws where there is none. */
  post(request: Request): void;
  clock: Clock;
  /** Hears of a listener that threw. */
  report(where: string, error: unknown): void;
  /**
   * The first request id. A reply that was under way during a reload reaches the new page, so two
   * loads of the page should not count from the same number.
   */
  firstId: number;
};

/** Events that arrive before anyone listens, held in order; more than this many are dropped. */
const heldEventsLimit = 100;

type Pending = Open & { settle(ok: boolean, payload: unknown): void };

export class ProtocolClient {
  private readonly pending = new Map<number, Pending>();
  private readonly listeners = new Set<(event: NativeEvent) => void>();
  private heldEvents: NativeEvent[] = [];
  private nextId: number;

  constructor(private readonly ports: ProtocolPorts) {
    this.nextId = ports.firstId;
  }

  /** Requests that wait for their reply. */
  get pendingCount(): number {
    return this.pending.size;
  }

  /** The question to the spreadsheet that waits longest for its reply. */
  get oldest(): Open | undefined {
    return [...this.pending.values()].find(({ verb }) => traits[verb].doing);
  }

  ask<V extends Verb>(verb: V, ...args: Verbs[V]['args']): Promise<Outcome<Verbs[V]['result']>> {
    const id = this.nextId++;
    return new Promise((resolve) => {
      const cancelDeadline: Cancel = this.ports.clock.after(traits[verb].deadline, () => {
        this.pending.delete(id);
        resolve(failed('unanswered', `"${verb}" was not answered.`));
      });
      const [first] = args as readonly unknown[];
      this.pending.set(id, {
        verb,
        subject: typeof first === 'string' ? first : '',
        settle(ok, payload) {
          cancelDeadline();
          resolve(decodeReply(verb, ok, payload));
        },
      });
      try {
        this.ports.post({ id, verb, args: args.filter((arg) => arg !== undefined) as Json[] });
      } catch (error) {
        this.pending.delete(id);
        cancelDeadline();
        resolve(failed('detached', String(error)));
      }
    });
  }

  /** A reply. One for an id that is not waiting belongs to an earlier page and is let go. */
  resolve(id: unknown, envelope: unknown): void {
    const waiting = typeof id === 'number' ? this.pending.get(id) : undefined;
    if (!waiting) return;
    this.pending.delete(id as number);
    const usable = isObject(envelope) && typeof envelope.ok === 'boolean';
    if (usable) waiting.settle(envelope.ok as boolean, envelope.payload);
    else waiting.settle(true, undefined);
  }

  /** An event. Unknown ones, and known ones of another shape, are let go. */
  receive(name: unknown, payload: unknown): void {
    const event = decodeEvent(name, payload);
    if (!event) return;
    if (this.listeners.size === 0) {
      if (this.heldEvents.length < heldEventsLimit) this.heldEvents.push(event);
      return;
    }
    for (const listener of [...this.listeners]) this.deliver(event, listener);
  }

  /** Hears every event from now on; the first listener also gets those that came before it. */
  listen(listener: (event: NativeEvent) => void): Cancel {
    this.listeners.add(listener);
    const held = this.heldEvents;
    this.heldEvents = [];
    for (const event of held) this.deliver(event, listener);
    return () => {
      this.listeners.delete(listener);
    };
  }

  private deliver(event: NativeEvent, listener: (event: NativeEvent) => void): void {
    try {
      listener(event);
    } catch (error) {
      this.ports.report(`event ${event.name}`, error);
    }
  }
}
