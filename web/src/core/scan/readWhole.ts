// Reads a workbook whole where nobody waits for anything else: on the command line, in benchmarks.

import type { ModelClient } from '../model/ModelClient';
import type { ProtocolClient } from '../protocol/ProtocolClient';
import type { Clock } from '../time/Clock';
import { BookScan, type ScanState } from './BookScan';

export type ReadPorts = {
  client: ProtocolClient;
  clock: Clock;
  progress(state: ScanState): void;
};

/** Rejects with the reason where the scan fails. */
export function readWhole(book: string, model: ModelClient, ports: ReadPorts): Promise<BookScan> {
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
        // Whoever asks for this wants the workbook read, however large it is.
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
