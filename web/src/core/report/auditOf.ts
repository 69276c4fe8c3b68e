// Reads a workbook whole, as the page does, and tells what the audit finds in it.

import { formulaOf, rowsOf } from '../audit/answer';
import { audit } from '../audit/audit';
import type { ModelClient } from '../model/ModelClient';
import type { Question } from '../model/messages';
import { ModelHost } from '../model/ModelHost';
import { drain, drainBetween } from '../time/drain';
import { readWhole, type ReadPorts } from '../scan/readWhole';
import { Hues } from '../map/Hues';
import { hiddenTracksOf } from './hidden';
import { inventoryOf } from './inventory';
import { picturesOf } from './pictures';
import { pathPrint, whereIs, type ReviewedBook } from '../review/reviewed';
import { decodeReview, saidOf, type Said, type SavedReview } from '../review/said';
import { reported, saidCounts, topOf, type Report } from './Report';

/** The model on this thread. Nobody waits for a turn meanwhile, so each question is answered whole. */
class OwnModel implements ModelClient {
  readonly host = new ModelHost();

  ask: ModelClient['ask'] = (book, ask, args) =>
    new Promise((resolve) => {
      resolve(drain(this.host.answer({ id: 0, book, ask, args } as Question)) as never);
    });
}

/**
 * Of the workbook in front; `top` findings at most, and those that were said to be fine. `reviewOf`
 * gives what was kept of a review of it; nothing where nobody asks for that. Does not reject.
 */
export async function auditOf(
  file: string,
  top: number,
  reviewOf: ((of: ReviewedBook) => unknown) | undefined,
  ports: ReadPorts,
  withPictures = false,
): Promise<Report> {
  try {
    const front = await ports.client.ask('pollCell');
    if (!front.ok) return { file, error: front.failure.message };
    const { book } = front.value;
    const model = new OwnModel();
    const scan = await readWhole(book, model, ports);
    const workbook = model.host.model(book);
    let saved: SavedReview | undefined;
    let seen: number | undefined;
    if (reviewOf) {
      const path = pathPrint(await scan.ask(whereIs));
      const marks = await model.ask(book, 'marks', {});
      saved = decodeReview(reviewOf({ book, path, marks }));
      if (!saved) return { file, error: 'Its review is of another version.' };
      ({ seen } = await model.ask(book, 'seen', { prints: saved.seen }));
    }
    const inventory = drain(inventoryOf(workbook));
    // The spreadsheet tells what is hidden while the audit works.
    const [hidden, findings] = await Promise.all([
      hiddenTracksOf(scan, inventory.sheets),
      drainBetween(audit(workbook), ports.clock),
    ]);
    const { formulas, distinct } = await model.ask(book, 'state', {});
    const said = new Map<number, Said>();
    if (saved && saved.snapshots.length > 0) {
      const rows = drain(rowsOf(workbook, findings));
      const sketches = await model.ask(book, 'sketch', {});
      for (const [{ rank }, one] of saidOf(saved, rows, sketches)) said.set(rank, one);
    }
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
        ...(seen === undefined ? {} : { seen }),
        ...(saved ? { said: saidCounts([...said.values()]) } : {}),
        notRead: scan.state.notRead,
      },
      findings: topOf(
        findings.map((finding) =>
          reported(finding, formulaOf(workbook, finding), said.get(finding.rank)),
        ),
        top,
      ),
      inventory: { ...inventory, hidden },
      ...(withPictures
        ? { pictures: drain(picturesOf(workbook, findings.slice(0, top), new Hues())) }
        : {}),
    };
  } catch (error) {
    return { file, error: error instanceof Error ? error.message : String(error) };
  }
}
