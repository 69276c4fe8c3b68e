// The map as a list: sheets and names, and once the workbook was read what it holds. Pure.

import { count } from '../format/words';
import type { WorkbookMap } from '../protocol/verbs';
import { group, remark, type PlaceRow } from '../workbook/PlaceList';
import { placeOf } from '../workbook/places';
import type { Flow, SheetFacts, SheetsTold } from './told';

/** "1,204 formulas · 2 errors", for the sheet's own row. */
function sheetDetail({ cells, formulas, errors, links }: SheetFacts): string {
  if (cells === 0) return 'empty';
  return [
    formulas === 0 ? 'no formulas' : count(formulas, 'formula'),
    errors > 0 ? count(errors, 'error') : '',
    links > 0 ? count(links, 'link') : '',
  ]
    .filter(Boolean)
    .join(' · ');
}

/** What the sheet's row opens to. */
function sheetFactsRows(facts: SheetFacts, flows: readonly Flow[]): PlaceRow[] {
  const { name, cells, inputs, formulas, distinctFormulas, errors, links } = facts;
  const some = (text: string, number: number, noun: string) =>
    number > 0 ? [remark(text, count(number, noun))] : [];
  const others = (text: string, tied: readonly (readonly [string, number])[]) =>
    tied.map(([other, formula]) => remark(`${text} ${other}`, count(formula, 'formula')));
  return [
    remark('Filled', count(cells, 'cell')),
    ...some('Inputs', inputs, 'cell'),
    ...some('Formulas', formulas, 'cell'),
    ...some('Formulas that are not alike', distinctFormulas, 'formula'),
    ...some('Errors', errors, 'cell'),
    ...some('Links to other workbooks', links, 'formula'),
    ...others(
      'Takes from',
      flows.flatMap(({ from, to, cells: own }) => (to === name ? [[from, own] as const] : [])),
    ),
    ...others(
      'Gives to',
      flows.flatMap(({ from, to, cells: own }) => (from === name ? [[to, own] as const] : [])),
    ),
  ];
}

/** The other workbooks that this one takes from; nothing where there are none. */
function linkGroup({ links }: SheetsTold): PlaceRow[] {
  if (links.length === 0) return [];
  const rows = links.map(({ workbook, formulas, sheets }) =>
    remark(
      workbook,
      formulas === 0 ? 'by name only' : `${count(formulas, 'formula')} on ${sheets.join(', ')}`,
    ),
  );
  return [group('Other workbooks', count(links.length, 'workbook'), rows)];
}

function nameRow(name: string, refersTo: unknown): PlaceRow {
  const text = typeof refersTo === 'string' ? refersTo : '';
  const place = placeOf(text);
  const isBroken = text.includes('#REF!');
  const isExternal = /\[[^\]]+\]/.test(text) || text.includes('file://');
  const tag = isBroken ? 'Broken' : isExternal ? 'External link' : '';
  const leads = place?.sheet !== undefined && tag === '';
  return { text: name, detail: text, tag, place: leads ? place : undefined };
}

/** A workbook's sheets with their used ranges, and its names. `told`: what was read of them. */
export function mapRows(map: WorkbookMap, told?: SheetsTold): PlaceRow[] {
  const sheets = map.sheets.map(({ name, usedRange }): PlaceRow => {
    const found = usedRange === null ? undefined : placeOf(usedRange);
    const facts = told?.sheets.find((one) => one.name === name && one.area !== '');
    const place = found && { ...found, sheet: name };
    if (!facts) {
      const detail = found ? `${found.address} · ${found.size}` : 'not read';
      return { text: name, detail, tag: '', place };
    }
    const inner = () => [
      remark('Used range', found ? `${found.address} · ${found.size}` : facts.area),
      ...sheetFactsRows(facts, told?.flows ?? []),
    ];
    const detail = `${found?.address ?? facts.area} · ${sheetDetail(facts)}`;
    return { text: name, detail, tag: '', place, inner };
  });
  const names = map.names.map(({ name, refersTo }) => nameRow(name, refersTo));
  const cut = map.sheetsTruncated ? 'used ranges of the first 50 only' : '';
  return [
    group('Sheets', [count(sheets.length, 'sheet'), cut].filter(Boolean).join(', '), sheets),
    group('Names', count(names.length, 'name'), names),
    ...(told ? linkGroup(told) : []),
  ];
}
