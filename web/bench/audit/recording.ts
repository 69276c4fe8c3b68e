// What a scan told the model of a workbook, kept as a file, so that trials need no spreadsheet.

import { existsSync, mkdirSync, readFileSync, renameSync, statSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { basename, join } from 'node:path';
import type { BookEntry, Questions, TablePlace } from '../../src/core/model/messages';
import { CarriedModel, SlicedCarrier, type ModelClient } from '../../src/core/model/ModelClient';
import { WorkbookModel } from '../../src/core/model/WorkbookModel';
import { readWhole } from '../../src/core/scan/readWhole';
import { clock, openedBook, openTool } from '../tool';

export type Piece = Questions['piece']['args'];

export type Recording = {
  file: string;
  entry: BookEntry;
  pieces: Piece[];
  tables: TablePlace[];
};

/** Outside the tree; QUORIN_RECORDINGS names another folder. */
function folder(): string {
  const path = process.env['QUORIN_RECORDINGS'] ?? join(tmpdir(), 'quorin-recordings');
  mkdirSync(path, { recursive: true });
  return path;
}

async function record(program: string, workbook: string): Promise<Recording> {
  const tool = openTool(program, workbook);
  const book = await openedBook(tool.client);
  const model = new CarriedModel(new SlicedCarrier(clock, Date.now), () => undefined);
  const recording: Recording = {
    file: basename(workbook),
    entry: { book, sheets: [], names: [] },
    pieces: [],
    tables: [],
  };
  const listening: ModelClient = {
    ask(of, ask, args) {
      if (ask === 'begin') recording.entry = args as BookEntry;
      else if (ask === 'piece') recording.pieces.push(args as Piece);
      else if (ask === 'tables')
        recording.tables.push(...(args as Questions['tables']['args']).places);
      return model.ask(of, ask, args);
    },
  };
  await readWhole(book, listening, { client: tool.client, clock, progress: () => undefined });
  tool.close();
  return recording;
}

/** Reads the workbook where there is no recording of it as it is now. */
export async function recordingOf(program: string, workbook: string): Promise<Recording> {
  const { size, mtimeMs } = statSync(workbook);
  const name = `${basename(workbook)}-${String(size)}-${String(Math.floor(mtimeMs))}.json`;
  const path = join(folder(), name);
  if (!existsSync(path)) {
    const recording = await record(program, workbook);
    writeFileSync(`${path}.part`, JSON.stringify(recording));
    renameSync(`${path}.part`, path);
  }
  return JSON.parse(readFileSync(path, 'utf8')) as Recording;
}

/** The model as it is when the scan is over. */
export function modelOf({ entry, pieces, tables }: Recording): WorkbookModel {
  const model = new WorkbookModel(entry);
  for (const sheet of entry.sheets) {
    model.beginSheet(sheet);
    for (const { sheet: own, area, formulas, values } of pieces) {
      if (own === sheet) model.piece(sheet, area, formulas, values);
    }
    model.endSheet(sheet);
  }
  model.setTables(tables);
  return model;
}
