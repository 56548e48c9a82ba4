// SPDX-License-Identifier: MIT
// What a screen reader says, word for word and in order: each golden file says what is done and what is heard then.
import assert from 'node:assert/strict';
import { readdirSync } from 'node:fs';
import { readFile } from 'node:fs/promises';
import { after, before, test } from 'node:test';

import { Listener } from './listener.mjs';
import { takeAgain } from './script.mjs';

const folder = new URL('./', import.meta.url);
let listener;

before(async () => {
    listener = await Listener.begin();
});
after(() => listener?.end());

for (const name of readdirSync(folder).filter(each => each.endsWith('.txt') && each !== 'CMakeLists.txt')) {
    test(name, async () => {
        const golden = await readFile(new URL(name, folder), 'utf8');
        const taken = await takeAgain(listener, golden);
        assert.equal(taken, golden, `${name} should be, if this is what should be heard:\n\n${taken}`);
    });
}
