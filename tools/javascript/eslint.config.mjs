// SPDX-License-Identifier: MIT
import js from '@eslint/js';
import globals from 'globals';

const rules = {
    ...js.configs.recommended.rules,
    eqeqeq: 'error',
    'max-lines-per-function': ['error', 40],
    'no-duplicate-imports': 'error',
    'no-empty': ['error', { allowEmptyCatch: true }],
    'no-var': 'error',
    'prefer-const': 'error',
};
// The tests contain functions that run in the page.
const testGlobals = { ...globals.node, ...globals.browser };

export default [
    { linterOptions: { reportUnusedDisableDirectives: 'error' }, rules },
    {
        files: ['workbench/page/*.js'],
        languageOptions: { globals: globals.browser },
        rules: { 'max-lines': ['error', 350] },
    },
    { files: ['**/*.mjs'], languageOptions: { globals: testGlobals } },
    { files: ['tests/workbench/browser/timeline.test.mjs'], rules: { 'max-lines-per-function': 'off' } },
];
