import { beforeEach, describe, expect, test } from 'vitest';

import { parse } from '../../../src/core/formula/Parser';
import { outlineOf } from '../../../src/core/outline/Item';
import { TreeModel } from '../../../src/core/outline/TreeModel';

const text = '=IF(B4>0,SUM(C2,D2),E2)';
let tree: TreeModel;
const at = () => text.slice(tree.active.node.start, tree.active.node.end);
const rows = () => tree.rows.map(({ node }) => text.slice(node.start, node.end));

beforeEach(() => {
  tree = new TreeModel(outlineOf(parse(text).root));
});

describe('rows', () => {
  test('are all open while they are few', () => {
    expect(rows()).toEqual([text.slice(1), 'B4>0', 'B4', 'SUM(C2,D2)', 'C2', 'D2', 'E2']);
  });

  test('of a large formula are open at its first levels only', () => {
    const sums = Array.from({ length: 150 }, () => 'SUM(A1,B1)').join(',');
    const large = new TreeModel(outlineOf(parse(`=MAX(${sums})`).root));
    expect(large.outline.items).toHaveLength(451);
    expect(large.rows).toHaveLength(151);
  });

  test('close with what is under them, and take the active one along', () => {
    tree.move('last');
    tree.move('up');
    expect(at()).toBe('D2');
    tree.toggle(tree.rows[3] as never);
    expect(at()).toBe('SUM(C2,D2)');
    expect(rows()).not.toContain('C2');
  });
});

describe('keys', () => {
  test('go up and down, and stop at the ends', () => {
    tree.move('up');
    expect(tree.activeIndex).toBe(0);
    tree.move('down');
    expect(at()).toBe('B4>0');
    tree.move('pageDown', 100);
    expect(at()).toBe('E2');
    tree.move('first');
    expect(tree.activeIndex).toBe(0);
  });

  test('go in and out, opening and closing on the way', () => {
    tree.move('out');
    expect(rows()).toHaveLength(1);
    tree.move('in');
    expect(rows()).toHaveLength(7);
    tree.move('in');
    expect(at()).toBe('B4>0');
    tree.move('in');
    expect(at()).toBe('B4');
    tree.move('out');
    expect(at()).toBe('B4>0');
  });

  test('open all siblings at once', () => {
    for (const item of [...tree.rows]) if (item.level === 2) tree.toggle(item, false);
    tree.move('down');
    tree.openSiblings();
    expect(rows()).toHaveLength(7);
  });
});

describe('a row is found', () => {
  const textOf = ({ node }: { node: { start: number; end: number } }) =>
    text.slice(node.start, node.end);

  test('by what it begins with, the next one first', () => {
    expect(tree.find('s', textOf)).toBe(true);
    expect(at()).toBe('SUM(C2,D2)');
    tree.find('d', textOf);
    expect(at()).toBe('D2');
    tree.find('b', textOf);
    expect(at()).toBe('B4>0');
    tree.find('b', textOf);
    expect(at()).toBe('B4');
    expect(tree.find('zz', textOf)).toBe(false);
    expect(at()).toBe('B4');
  });

  test('by a place in the text', () => {
    const part = tree.itemAt(text.indexOf('D2'));
    expect(text.slice(part.node.start, part.node.end)).toBe('D2');
    expect(tree.itemAt(text.indexOf('>'))).toBe(tree.rows[1]);
    expect(tree.itemAt(0)).toBe(tree.outline.root);
  });

  test('also where it is covered', () => {
    const inner = tree.rows[4];
    tree.toggle(tree.outline.root, false);
    tree.activate(inner as never);
    expect(at()).toBe('C2');
    expect(tree.activeIndex).toBe(4);
  });
});
