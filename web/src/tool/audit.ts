// The audit without a page: `quorinctl audit` runs this in JavaScriptCore, hands it the replies of a
// private spreadsheet and writes what it tells.

import { auditOf } from '../core/report/auditOf';
import type { Report } from '../core/report/Report';
import { isLineByLine, written, type Format } from '../core/report/written';
import { ProtocolClient } from '../core/protocol/ProtocolClient';
import type { ReviewedBook } from '../core/review/reviewed';
import type { Clock } from '../core/time/Clock';

/** What the program offers; each returns at once. */
declare const native: {
  ask(request: string): void;
  /** `due(id)` is to be called then. */
  after(milliseconds: number, id: number): void;
  progress(text: string): void;
  failed(text: string): void;
  done(report: string): void;
  /** What was kept of a review of the workbook, both as JSON. */
  review(of: string): string;
};

const actions = new Map<number, () => void>();
let lastAction = 0;

const clock: Clock = {
  after(milliseconds, action) {
    lastAction += 1;
    const id = lastAction;
    actions.set(id, action);
    native.after(milliseconds, id);
    return () => {
      actions.delete(id);
    };
  },
};

const client = new ProtocolClient({
  post(request) {
    native.ask(JSON.stringify(request));
  },
  clock,
  report: (where, error) => {
    native.failed(`${where}: ${String(error)}`);
  },
  firstId: 1,
});

/** The program calls these; texts are JSON. */
const quorinAudit = {
  /**
   * `withReview`: whether what was kept of a review of the workbook is asked for; `withPictures`:
   * whether the report is to have them.
   */
  begin(file: string, top: number, withReview: boolean, withPictures: boolean): void {
    const progress = ({ sheet, read, cells }: { sheet: string; read: number; cells: number }) => {
      const share = cells > 0 ? Math.floor((read / cells) * 100) : 0;
      native.progress(sheet === '' ? '' : `${String(share)} %  ${sheet}`);
    };
    const reviewOf = (of: ReviewedBook): unknown => JSON.parse(native.review(JSON.stringify(of)));
    auditOf(
      file,
      top,
      withReview ? reviewOf : undefined,
      { client, clock, progress },
      withPictures,
    ).then(
      (report) => {
        native.done(JSON.stringify(report));
      },
      (error: unknown) => {
        native.failed(String(error));
      },
    );
  },
  due(id: number): void {
    const action = actions.get(id);
    actions.delete(id);
    action?.();
  },
  reply(text: string): void {
    const reply = JSON.parse(text) as { id: unknown };
    client.resolve(reply.id, reply);
  },
  write(reports: string, format: Format, version: string): string {
    return written(JSON.parse(reports) as Report[], format, version);
  },
  isLineByLine,
};

Object.assign(globalThis, { quorinAudit });
