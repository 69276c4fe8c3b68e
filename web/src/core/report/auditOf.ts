// Reads a workbook whole, as the page does, and tells what the audit finds in it.

import { audit } from '../audit/audit';
import type { ModelClient } from '../model/ModelClient';
import type { Question } from '../model/messages';
import { ModelHost } from '../model/ModelHost';
import type { ProtocolClient } from '../protocol/ProtocolClient';
import { BookScan, type ScanState } from '../scan/BookScan';
import type { Clock } from '../time/Clock';
import { reported, type Report } from './Report';

export type AuditPorts = {
  client: ProtocolClient;
  clock: Clock;
  progress(state: ScanState): void;
};

function finished<Value>(work: Generator<undefined, Value>): Value {
  for (;;) {
    const step = work.next();
    if (step.done === true) return step.value;
  }
}

/** The model on this thread. Nobody waits for a turn meanwhile, so each question is answered whole. */
class OwnModel implements ModelClient {
  readonly host = new ModelHost();

  ask: ModelClient['ask'] = (book, ask, args) =>
    new Promise((resolve) => {
      resolve(finished(this.host.answer({ id: 0, book, ask, args } as Question)) as never);
    });
}

function scanned(book: string, model: ModelClient, ports: AuditPorts): Promise<BookScan> {
  const { client, clock } = ports;
  return new Promise((resolve, reject) => {
    const scan: BookScan = new BookScan(book, {
      questions: {
        workbookMap: () => client.ask('workbookMap'),
        readFormulas: (address) => client.ask('readFormulas', address, 'r1c1', false),
        evaluate: (expression) => client.ask('evaluate', expression),
        pollCell: () => client.ask('pollCell'),
      },
      model,
      clock,
      time: () => '',
      inFront: () => true,
      changed: () => {
        const { status, reason } = scan.state;
        // Whoever starts an audit wants the workbook read, however large it is.
        if (status === 'asking') {
          clock.after(0, () => {
            scan.go();
          });
        } else if (status === 'done') resolve(scan);
        else if (status === 'failed') reject(new Error(reason));
        else ports.progress(scan.state);
      },
    });
    scan.begin();
  });
}

/** Of the workbook in front; `top` findings at most. Does not reject. */
export async function auditOf(file: string, top: number, ports: AuditPorts): Promise<Report> {
  try {
    const front = await ports.client.ask('pollCell');
    if (!front.ok) return { file, error: front.failure.message };
    const { book } = front.value;
    const model = new OwnModel();
    const scan = await scanned(book, model, ports);
    const workbook = model.host.model(book);
    const findings = finished(audit(workbook));
    const { formulas, distinct } = await model.ask(book, 'state', {});
    const sure = (confidence: string) =>
      findings.filter((finding) => finding.confidence === confidence).length;
    return {
      file,
      summary: {
        sheets: scan.state.sheetsRead,
        cells: scan.state.cells,
        formulas,
        distinctFormulas: distinct,
        findings: findings.length,
        high: sure('high'),
        medium: sure('medium'),
        low: sure('low'),
        notRead: scan.state.notRead,
      },
      findings: findings.slice(0, top).map(reported),
    };
  } catch (error) {
    return { file, error: error instanceof Error ? error.message : String(error) };
  }
}
