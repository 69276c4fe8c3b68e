// Reads a workbook whole, as the page does, and tells what the audit finds in it.

import { audit } from '../audit/audit';
import type { ModelClient } from '../model/ModelClient';
import type { Question } from '../model/messages';
import { ModelHost } from '../model/ModelHost';
import { drain } from '../time/drain';
import { readWhole, type ReadPorts } from '../scan/readWhole';
import { inventoryOf } from './inventory';
import { reported, type Report } from './Report';

/** The model on this thread. Nobody waits for a turn meanwhile, so each question is answered whole. */
class OwnModel implements ModelClient {
  readonly host = new ModelHost();

  ask: ModelClient['ask'] = (book, ask, args) =>
    new Promise((resolve) => {
      resolve(drain(this.host.answer({ id: 0, book, ask, args } as Question)) as never);
    });
}

/** Of the workbook in front; `top` findings at most. Does not reject. */
export async function auditOf(file: string, top: number, ports: ReadPorts): Promise<Report> {
  try {
    const front = await ports.client.ask('pollCell');
    if (!front.ok) return { file, error: front.failure.message };
    const { book } = front.value;
    const model = new OwnModel();
    const scan = await readWhole(book, model, ports);
    const workbook = model.host.model(book);
    const findings = drain(audit(workbook));
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
      inventory: drain(inventoryOf(workbook)),
    };
  } catch (error) {
    return { file, error: error instanceof Error ? error.message : String(error) };
  }
}
