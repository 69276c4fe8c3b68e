// A private spreadsheet behind quorinctl, for benchmarks.

import { spawn } from 'node:child_process';
import { createInterface } from 'node:readline';
import { ProtocolClient } from '../src/core/protocol/ProtocolClient';
import type { Clock } from '../src/core/time/Clock';

export const clock: Clock = {
  after(milliseconds, action) {
    const timer = setTimeout(action, milliseconds);
    return () => {
      clearTimeout(timer);
    };
  },
};

export type Tool = {
  client: ProtocolClient;
  /** Questions that were asked so far. */
  asked(): number;
  close(): void;
};

/** Ends the process where the tool ends with an error. */
export function openTool(program: string, workbook: string): Tool {
  const tool = spawn(program, ['--workbook', workbook], { stdio: ['pipe', 'pipe', 'inherit'] });
  tool.on('exit', (status) => {
    if (status !== 0) process.exit(1);
  });
  let questions = 0;
  const client = new ProtocolClient({
    post(request) {
      questions += 1;
      tool.stdin.write(`${JSON.stringify(request)}\n`);
    },
    clock,
    report: (where, error) => {
      console.error(where, error);
    },
    firstId: 1,
  });
  createInterface({ input: tool.stdout }).on('line', (line) => {
    const reply = JSON.parse(line) as { id: unknown };
    client.resolve(reply.id, reply);
  });
  return {
    client,
    asked: () => questions,
    close: () => {
      tool.stdin.end();
    },
  };
}

/** The name of the open workbook. Private offices take a while to open a large one. */
export async function openedBook(client: ProtocolClient): Promise<string> {
  const front = await client.ask('pollCell');
  if (!front.ok) throw new Error(front.failure.message);
  return front.value.book;
}
