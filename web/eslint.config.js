import js from '@eslint/js';
import solid from 'eslint-plugin-solid/configs/typescript';
import ts from 'typescript-eslint';

export default ts.config(
  { ignores: ['dist/', 'out/', 'node_modules/'] },
  js.configs.recommended,
  {
    files: ['**/*.ts', '**/*.tsx'],
    extends: [ts.configs.strict, ts.configs.stylistic],
    rules: {
      '@typescript-eslint/consistent-type-definitions': ['error', 'type'],
      eqeqeq: 'error',
    },
  },
  {
    files: ['src/view/**/*.tsx'],
    ...solid,
    rules: {
      ...solid.rules,
      'solid/reactivity': ['warn', { customReactiveFunctions: ['look'] }],
    },
  },
  {
    // The core knows neither the document nor the framework, so that it runs anywhere.
    files: ['src/core/**/*.ts'],
    rules: {
      'no-restricted-imports': ['error', { patterns: ['solid-js*', '**/view/*', 'node:*'] }],
    },
  },
);
