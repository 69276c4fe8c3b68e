import type { Node } from '../../../src/core/formula/syntax';

/** What a tree says, without where it stands: nodes in parentheses, the kind first. */
export function shape(node: Node): string {
  const list = (nodes: readonly Node[]) => nodes.map((item) => ` ${shape(item)}`).join('');
  switch (node.kind) {
    case 'number':
      return node.text;
    case 'text':
      return JSON.stringify(node.value);
    case 'logical':
      return node.value ? 'TRUE' : 'FALSE';
    case 'missing':
      return '_';
    case 'error':
    case 'reference':
      return node.prefix + node.text;
    case 'name':
      return `${node.prefix}${node.name}`;
    case 'columns':
      return `${node.prefix}${node.table}${node.text}`;
    case 'parameter':
      return `<${node.name}${node.optional ? '?' : ''}>`;
    case 'call':
      return `(${node.prefix}${node.name}${list(node.args)})`;
    case 'apply':
      return `(apply ${shape(node.callee)}${list(node.args)})`;
    case 'unary':
      return `(${node.operator} ${shape(node.operand)})`;
    case 'postfix':
      return `(${shape(node.operand)} ${node.operator})`;
    case 'binary': {
      const operator = { ' ': 'cross', ',': 'union' }[node.operator as string] ?? node.operator;
      return `(${operator} ${shape(node.left)} ${shape(node.right)})`;
    }
    case 'group':
      return `[${shape(node.inner)}]`;
    case 'array':
      return `{${node.rows.map((row) => list(row).trim()).join(' | ')}}`;
    case 'invalid':
      return `?${JSON.stringify(node.text)}${list(node.parts)}?`;
  }
}
