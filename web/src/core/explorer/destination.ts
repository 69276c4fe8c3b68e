// Which cells of the workbook a part of a formula stands for. Pure.

import { areaAddress, qualified } from '../address/area';
import type { Home } from '../evaluation/expression';
import { targetOf } from '../evaluation/routes';
import { lookUp } from '../evaluation/Scope';
import type { Destination } from '../follow/SheetFollower';
import { count } from '../format/words';
import { walk } from '../formula/syntax';
import type { Item } from '../outline/Item';
import type { PlaceRow } from '../workbook/PlaceList';

/** The cells that the item names, or that its parts name; nothing where there are none. */
export function destinationOf(item: Item, home: Home): Destination | undefined {
  const addresses = new Set<string>();
  const names = new Set<string>();
  let label = '';
  walk(item.node, (node) => {
    const target = targetOf(node, item.scope, home);
    if (target && node.kind !== 'group') {
      label = `${target.sheet}!${areaAddress(target.area)}`;
      addresses.add(qualified(target.sheet, areaAddress(target.area)));
    } else if (node.kind === 'name' && !lookUp(item.scope, node.name)) {
      label = node.prefix + node.name;
      addresses.add(label);
      names.add(label);
    }
  });
  if (addresses.size === 0) return undefined;
  if (addresses.size > 1) label = count(addresses.size, 'area');
  return { label, addresses: [...addresses], names };
}

/** The cells that a row of a list stands for; those without a sheet are on `sheet`. */
export function placesOfRow(row: PlaceRow, sheet: string | undefined): Destination | undefined {
  const places = row.places ?? (row.place ? [row.place] : []);
  const [first] = places;
  const own = first?.sheet ?? sheet;
  if (!first || own === undefined) return undefined;
  const label = places.length > 1 ? count(places.length, 'area') : `${own}!${first.address}`;
  const addresses = places.map((place) => qualified(place.sheet ?? own, place.address));
  return { label, addresses };
}
