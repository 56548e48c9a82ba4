// SPDX-License-Identifier: MIT
// Where a key list is not JSON.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { pageModule } from './pageModule.mjs';

const { jsonFault } = await pageModule('jsonFault.js');

for (const [name, text, line, column, fault] of [
    ['no text at all', '', 1, 1, 'a value is missing at the end'],
    ['a word', 'half a sentence', 1, 1, 'a value is missing before "h"'],
    ['a list that does not end', '{ "LongKeys": [', 1, 16, 'a value is missing at the end'],
    ['a missing comma', '{\n  "a": 1\n  "b": 2\n}', 3, 3, 'a comma or } is missing before a quote'],
    ['a comma too many', '{\n  "a": [1, 2,]\n}', 2, 14, 'a value is missing before "]"'],
    ['a missing colon', '{"a" 1}', 1, 6, 'a colon is missing before "1"'],
    ['a name without quotes', '{a: 1}', 1, 2, 'a name in double quotes is missing before "a"'],
    ['a text that does not end', '["Up', 1, 2, 'a value is missing before a quote'],
    ['a number that is invalid', '[01]', 1, 2, 'a value is missing before "0"'],
    ['more after the end', '{}\n}', 2, 1, 'the text should end before "}"'],
]) {
    test(`the fault is found: ${name}`, () => {
        const found = jsonFault(text);
        assert.deepEqual([found.line, found.column, found.text], [line, column, fault]);
    });
}

test('a JSON text has no fault', () => {
    for (const text of ['{}', ' [1, -2.5e3, true, null, "a\\u00e9\\n"] ', '{"a": {"b": []}}', '"Up"']) {
        assert.equal(jsonFault(text), null);
    }
});

test('a text that is nested too deeply to be read has a fault all the same', () => {
    const { line, text } = jsonFault('['.repeat(1000000));
    assert.equal(line, 1);
    assert.notEqual(text, '');
});
