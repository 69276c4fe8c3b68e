import { describe, expect, it } from 'vitest';

import { areaAddress } from '../../../src/core/address/area';
import { hiddenTracksOf } from '../../../src/core/report/hidden';
import type { SheetInventory } from '../../../src/core/report/inventory';
import type { HiddenTracks } from '../../../src/core/scan/hiddenTracks';

const sheet = (name: string, area: string, cells = 4): SheetInventory => ({
  name,
  area,
  cells,
  formulas: 0,
  distinctFormulas: 0,
  errors: 0,
});

const none: HiddenTracks = { rows: [], cols: [], partly: false };

async function told(answers: Record<string, HiddenTracks | undefined>, sheets: SheetInventory[]) {
  const asked: string[] = [];
  const scan = {
    hidden: (name: string, area: Parameters<typeof areaAddress>[0]) => {
      asked.push(`${name} ${areaAddress(area)}`);
      return Promise.resolve(answers[name]);
    },
  };
  return { asked, hidden: await hiddenTracksOf(scan, sheets) };
}

describe('hidden rows and columns', () => {
  it('are told of the sheets that have some', async () => {
    const tracks: HiddenTracks = {
      rows: [
        { first: 5, last: 9 },
        { first: 12, last: 12 },
      ],
      cols: [{ first: 27, last: 28 }],
      partly: false,
    };
    const { asked, hidden } = await told({ Data: tracks, Plain: none, Silent: undefined }, [
      sheet('Plain', 'A1:B2'),
      sheet('Data', 'B2:AC40'),
      sheet('Empty', 'A1', 0),
      sheet('Silent', 'A1:B2'),
    ]);
    expect(asked).toEqual(['Plain A1:B2', 'Data B2:AC40', 'Silent A1:B2']);
    expect(hidden).toEqual([{ sheet: 'Data', rows: '5:9, 12', cols: 'AA:AB', partly: false }]);
  });

  it('are counted where there are many, and a sheet that was not asked whole is told', async () => {
    const rows = Array.from({ length: 23 }, (_, i) => ({ first: 2 * i + 1, last: 2 * i + 1 }));
    const { hidden } = await told({ Many: { ...none, rows }, Part: { ...none, partly: true } }, [
      sheet('Many', 'A1:A50'),
      sheet('Part', 'A1:ZZ9'),
    ]);
    expect(hidden[0]?.rows).toMatch(/^1, 3, .* 39 and 3 more$/);
    expect(hidden[1]).toEqual({ sheet: 'Part', rows: '', cols: '', partly: true });
  });
});
