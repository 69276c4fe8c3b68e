// Reports as one page that needs nothing else: no script, no request, no picture from elsewhere. Made
// to be handed on and printed: findings differ by words and borders, not by colour alone.

import { confidenceName, kindName, stateName } from '../review/kinds';
import { count, grouped } from '../format/words';
import { patterns, picturesHtml } from './pictureHtml';
import { mostCounted, type Inventory } from './inventory';
import { nameOf, placeOf, type Report, type ReportedFinding, type Summary } from './Report';

type Audited = Extract<Report, { findings: unknown }>;

const marks: Record<string, string> = {
  '&': '&amp;',
  '<': '&lt;',
  '>': '&gt;',
  '"': '&quot;',
  "'": '&#39;',
};

/** Text as it stands in the page. What turns the direction of writing around is shown as a mark. */
function text(value: string | number): string {
  return String(value)
    .replace(/[&<>"']/g, (found) => marks[found] as string)
    .replace(/(?![\t\n])[\p{Cc}\p{Bidi_Control}]/gu, '\ufffd');
}

const style = `
:root { color-scheme: light dark; --line: #8884; --soft: #8881; }
body { font: 15px/1.45 system-ui, sans-serif; max-width: 60rem; margin: 2rem auto; padding: 0 1rem; }
h1 { font-size: 1.6rem; } h2 { margin-top: 2.5rem; overflow-wrap: anywhere; } h3 { margin-top: 1.8rem; }
code { font: 13px/1.4 ui-monospace, monospace; overflow-wrap: anywhere; white-space: pre-wrap; }
table { border-collapse: collapse; width: 100%; }
th, td { text-align: left; vertical-align: top; padding: .3rem .6rem; border-bottom: 1px solid var(--line); overflow-wrap: anywhere; }
th:first-child { min-width: 10rem; }
td.number, th.number { text-align: right; font-variant-numeric: tabular-nums; overflow-wrap: normal; }
ol.findings { list-style: none; padding: 0; }
.finding { border: 1px solid var(--line); border-left: .3rem solid var(--line); border-radius: .3rem; padding: .5rem .8rem; margin: .7rem 0; break-inside: avoid; overflow-wrap: anywhere; }
.finding.high { border-left: .3rem solid currentColor; }
.finding.medium { border-left: .3rem double currentColor; }
.finding.fine { border-style: dashed; }
.state { border: 1px solid currentColor; border-radius: 1rem; padding: 0 .5rem; margin-left: .4rem; font-size: 13px; }
.why { white-space: pre-wrap; font-style: italic; }
.finding p { margin: .3rem 0; }
.finding .about { display: flex; flex-wrap: wrap; gap: .2rem .8rem; opacity: .85; font-size: 13px; }
.trouble { border: 1px solid currentColor; padding: .5rem .8rem; border-radius: .3rem; }
figure { margin: 1rem 0 1.6rem; break-inside: avoid; }
figure svg { background: #fff; max-width: 100%; height: auto; max-height: 225mm; display: block; }
figure text { font: bold 10px system-ui, sans-serif; fill: #000; stroke: #fff; stroke-width: 3px; paint-order: stroke; }
figcaption, .legend { font-size: 13px; }
.legend span { white-space: nowrap; margin-right: .8rem; } .legend svg { background: #fff; vertical-align: -2px; }
.patterns { position: absolute; }
footer { margin-top: 3rem; opacity: .75; font-size: 13px; }
@media print { body { max-width: none; margin: 0; font-size: 10pt; } h2.new { break-before: page; } a { color: inherit; text-decoration: none; } }
`;

type Column = { name: string; isNumber?: boolean; isCode?: boolean };

function table(
  columns: readonly Column[],
  rows: readonly (readonly (string | number)[])[],
): string {
  const cell = (tag: string, column: Column | undefined, value: string | number) => {
    const shown = typeof value === 'number' ? grouped(String(value)) : value;
    const inner =
      column?.isCode === true && tag === 'td' ? `<code>${text(shown)}</code>` : text(shown);
    return `<${tag}${column?.isNumber === true ? ' class="number"' : ''}>${inner}</${tag}>`;
  };
  const head = columns.map((column) => cell('th', column, column.name)).join('');
  const body = rows
    .map((row) => `<tr>${row.map((value, i) => cell('td', columns[i], value)).join('')}</tr>`)
    .join('\n');
  return `<table>\n<thead><tr>${head}</tr></thead>\n<tbody>\n${body}\n</tbody>\n</table>`;
}

/** More areas of a finding are counted only. */
const mostAreas = 12;

function shortPlace(finding: ReportedFinding): string {
  const left = finding.cells.length - mostAreas;
  if (left <= 1) return placeOf(finding);
  const first = { ...finding, cells: finding.cells.slice(0, mostAreas) };
  return `${placeOf(first)} and ${count(left, 'more area')}`;
}

/** More of a formula is left out. */
const longestFormula = 400;

/** The formula in the first cell, where the sentence does not have it already. */
function formulaHtml({ cells, message, formula = '' }: ReportedFinding): string {
  if (formula === '' || message.includes(formula)) return '';
  const shown = formula.length > longestFormula ? `${formula.slice(0, longestFormula)}…` : formula;
  const [first = ''] = cells[0]?.split(':') ?? [];
  return `<p>${text(first)}: <code>${text(shown)}</code></p>\n`;
}

function findingHtml(finding: ReportedFinding): string {
  const { rank, kind, confidence, message, expected, reach, state, note = '' } = finding;
  const about = [kindName(kind), confidenceName(confidence)];
  if (reach > 0) about.push(`${count(reach, 'cell')} rest${reach === 1 ? 's' : ''} on it`);
  const wanted = expected === '' ? '' : `<p>Expected: <code>${text(expected)}</code></p>\n`;
  const judged = state ? ` <span class="state">${stateName(state)}</span>` : '';
  const why = note === '' ? '' : `<p class="why">${text(note)}</p>\n`;
  return `<li class="finding ${state === 'fine' ? 'fine' : confidence}">
<p><strong>${String(rank)}. ${text(shortPlace(finding))}</strong>${judged}</p>
<p>${text(message)}</p>
${formulaHtml(finding)}${wanted}${why}<p class="about">${about.map((one) => `<span>${text(one)}</span>`).join('')}</p>
</li>`;
}

function findingsHtml({ summary, findings }: Audited): string {
  if (summary.findings === 0) return '<p>Nothing odd was found.</p>';
  const left = summary.findings - findings.length;
  return `<ol class="findings">\n${findings.map(findingHtml).join('\n')}\n</ol>${
    left > 0 ? `\n<p>${count(left, 'finding')} of lower rank left out.</p>` : ''
  }`;
}

function andMore(left: number, noun: string, isAtLeast = false): string {
  return left > 0 ? `<p>${isAtLeast ? 'At least ' : ''}${count(left, noun)} more.</p>` : '';
}

function inventoryHtml({ sheets, hidden = [], names, links, unlabelled }: Inventory): string {
  const parts = [
    '<h3>Sheets</h3>',
    table(
      [
        { name: 'Sheet' },
        { name: 'Cells read', isCode: true },
        { name: 'Filled', isNumber: true },
        { name: 'Formulas', isNumber: true },
        { name: 'Distinct', isNumber: true },
        { name: 'Errors', isNumber: true },
      ],
      sheets.map((one) => [
        one.name,
        one.area,
        one.cells,
        one.formulas,
        one.distinctFormulas,
        one.errors,
      ]),
    ),
  ];
  if (hidden.length > 0)
    parts.push(
      '<h3>Hidden rows and columns</h3>',
      '<p>Those that hold something or stand between such. Whether whole sheets are hidden is not known.</p>',
      table(
        [{ name: 'Sheet' }, { name: 'Rows', isCode: true }, { name: 'Columns', isCode: true }],
        hidden.map(({ sheet, rows, cols, partly }) => [
          partly ? `${sheet} (not all of it was looked at)` : sheet,
          rows,
          cols,
        ]),
      ),
    );
  if (names.all > 0)
    parts.push(
      '<h3>Names</h3>',
      table(
        [{ name: 'Name' }, { name: 'Refers to', isCode: true }],
        names.listed.map(({ name, refersTo }) => [name, refersTo]),
      ),
      andMore(names.all - names.listed.length, 'name'),
    );
  if (links.length > 0)
    parts.push(
      '<h3>Links to other workbooks</h3>',
      table(
        [{ name: 'Workbook' }, { name: 'Formulas', isNumber: true }, { name: 'On sheets' }],
        links.map((link) => [
          link.workbook,
          link.formulas,
          link.sheets.join(', ') || 'in names only',
        ]),
      ),
    );
  if (unlabelled.all > 0)
    parts.push(
      '<h3>Inputs without a label</h3>',
      '<p>Numbers that were typed in and that formulas use, with no text to the left or above.</p>',
      table(
        [{ name: 'Sheet' }, { name: 'Cell', isCode: true }, { name: 'Value', isCode: true }],
        unlabelled.listed.map(({ sheet, address, value }) => [sheet, address, String(value)]),
      ),
      andMore(unlabelled.all - unlabelled.listed.length, 'cell', unlabelled.all === mostCounted),
    );
  return parts.filter((part) => part !== '').join('\n');
}

function saidHtml({ said }: Summary): string {
  if (!said) return '';
  const { fault, fine, later } = said;
  return ` Judged: ${count(fault, 'fault')}, ${grouped(String(fine))} fine, ${grouped(String(later))} for later.`;
}

function seenHtml({ seen, distinctFormulas }: Summary): string {
  if (seen === undefined || distinctFormulas === 0) return '';
  return ` The reviewer has seen ${grouped(String(seen))} of the distinct formulas.`;
}

function summaryHtml(summary: Summary): string {
  const { findings, high, medium, low, cells, formulas, distinctFormulas, sheets } = summary;
  const unread = summary.notRead
    .map(({ sheet, address, reason }) => `<li>${text(`${sheet}!${address}`)}: ${text(reason)}</li>`)
    .join('\n');
  return `<p>${count(findings, 'finding')}: ${grouped(String(high))} of high confidence, ${grouped(String(medium))} medium, ${grouped(String(low))} low.${saidHtml(summary)}</p>
<p>${count(sheets, 'sheet')} with ${count(cells, 'cell')}, among them ${count(formulas, 'formula')}, of which ${grouped(String(distinctFormulas))} ${distinctFormulas === 1 ? 'is' : 'are'} distinct.${seenHtml(summary)}</p>${
    unread === '' ? '' : `\n<div class="trouble"><p>Not read:</p><ul>\n${unread}\n</ul></div>`
  }`;
}

/** What each workbook is called: its file's name, with folders only where two have one name. */
function titlesOf(reports: readonly Report[]): string[] {
  const names = reports.map(nameOf);
  return reports.map(({ file }, i) => {
    const name = names[i] as string;
    return names.indexOf(name) === names.lastIndexOf(name) ? name : file;
  });
}

function reportHtml(report: Report, title: string, at: number): string {
  const head = `<h2 id="file${String(at)}"${at > 0 ? ' class="new"' : ''}>${text(title)}</h2>`;
  if ('error' in report)
    return `<section>\n${head}\n<p class="trouble">Could not be audited: ${text(report.error)}</p>\n</section>`;
  return `<section>
${head}
${summaryHtml(report.summary)}
<h3>Findings</h3>
${findingsHtml(report)}
${report.pictures ? `${picturesHtml(report.pictures, text)}\n` : ''}${inventoryHtml(report.inventory)}
</section>`;
}

/** A line for each file of several, leading to it. */
function contents(reports: readonly Report[], titles: readonly string[]): string {
  if (reports.length < 2) return '';
  const lines = reports.map((report, at) => {
    const told =
      'error' in report
        ? 'could not be audited'
        : `${count(report.summary.findings, 'finding')}, ${grouped(String(report.summary.high))} high`;
    return `<li><a href="#file${String(at)}">${text(titles[at] ?? '')}</a>: ${told}</li>`;
  });
  return `<ul>\n${lines.join('\n')}\n</ul>\n`;
}

export function htmlOf(reports: readonly Report[], version: string): string {
  const titles = titlesOf(reports);
  const one = reports.length === 1 ? titles[0] : undefined;
  const sections = reports.map((report, at) => reportHtml(report, titles[at] ?? '', at));
  return `<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width">
<title>Audit of ${text(one ?? count(reports.length, 'workbook'))}</title>
<style>${style}</style>
</head>
<body>
<h1>Audit of ${reports.length === 1 ? 'a workbook' : count(reports.length, 'workbook')}</h1>
${reports.some((one) => 'pictures' in one) ? `${patterns()}\n` : ''}${contents(reports, titles)}${sections.join('\n')}
<footer><p>Made by Quorin${version === '' ? '' : ` ${text(version)}`}. A finding is a place to look at, not a verdict.</p></footer>
</body>
</html>
`;
}
