// The models of the workbooks that were read, behind questions that are plain data: the same in a
// worker and on the page's own thread.

import { Findings } from '../audit/answer';
import { MapAnswers } from '../map/answer';
import {
  dependentsAnswer,
  driversAnswer,
  errorsAnswer,
  runTimeAnswer,
  stateAnswer,
  usersAnswer,
  waysAnswer,
} from './answers';
import type { BookEntry, Question } from './messages';
import { inventoryOf } from '../report/inventory';
import { picturesOf } from '../report/pictures';
import { marksOf, printsAnswer, seenAnswer } from './prints';
import { sketchesOf } from './sketch';
import { WorkbookModel } from './WorkbookModel';

/** Models of more workbooks are not kept; the one used longest ago goes. */
const booksLimit = 3;

export class ModelHost {
  private readonly books = new Map<string, WorkbookModel>();
  private readonly findings = new Findings();
  private readonly map = new MapAnswers(this.findings);

  /** Throws for a workbook that was never begun. */
  model(book: string): WorkbookModel {
    const model = this.books.get(book);
    if (!model) throw new Error(`“${book}” was not read.`);
    return model;
  }

  /** Answers; yields where others may take a turn. Throws for a workbook that was never begun. */
  *answer(question: Question): Generator<undefined, unknown> {
    const { book } = question;
    if (question.ask === 'begin') {
      this.begin(question.args);
      return null;
    }
    if (question.ask === 'forget') {
      this.books.delete(book);
      return null;
    }
    const model = this.model(book);
    switch (question.ask) {
      case 'beginSheet':
        model.beginSheet(question.args.sheet);
        return null;
      case 'piece': {
        const { sheet, area, formulas, values } = question.args;
        model.piece(sheet, area, formulas, values);
        return null;
      }
      case 'endSheet':
        model.endSheet(question.args.sheet);
        return null;
      case 'tables':
        model.setTables(question.args.places);
        return null;
      case 'state':
        return yield* stateAnswer(model);
      case 'dependents':
        return yield* dependentsAnswer(model, question.args);
      case 'users':
        return yield* usersAnswer(model, question.args);
      case 'runTime':
        return yield* runTimeAnswer(model);
      case 'drivers':
        return yield* driversAnswer(model, question.args);
      case 'ways':
        return yield* waysAnswer(model, question.args.from, question.args.to);
      case 'errors':
        return yield* errorsAnswer(model);
      case 'findings':
        return yield* this.findings.answer(model, question.args.from);
      case 'inventory':
        return yield* inventoryOf(model);
      case 'pictures': {
        const findings = yield* this.findings.of(model);
        const told = findings.slice(0, question.args.rank);
        return yield* picturesOf(model, told, this.map.huesOf(model));
      }
      case 'rowCover':
        return yield* model.rowCover(question.args.sheet);
      case 'sketch':
        return yield* sketchesOf(model);
      case 'marks':
        return yield* marksOf(model);
      case 'prints':
        return printsAnswer(model, question.args.cells);
      case 'seen':
        return yield* seenAnswer(model, question.args.prints);
      case 'mapSheets':
      case 'mapFrame':
      case 'mapTile':
      case 'mapCell':
      case 'mapTies':
      case 'mapBreaks':
        return yield* this.map.answer(model, question);
      case 'labels':
        return question.args.cells.map((cells) => {
          const place = model.place(cells);
          return place ? model.label(place) : '';
        });
      case 'compare': {
        const { sheet, row, col, formula, value } = question.args;
        return model.compare(sheet, row, col, formula, value);
      }
    }
  }

  private begin(entry: BookEntry): void {
    const known = this.books.get(entry.book);
    this.books.delete(entry.book);
    const same = known && JSON.stringify(known.entry) === JSON.stringify(entry);
    this.books.set(entry.book, same ? known : new WorkbookModel(entry));
    if (this.books.size > booksLimit) {
      const [oldest] = this.books.keys();
      if (oldest !== undefined) this.books.delete(oldest);
    }
  }
}
