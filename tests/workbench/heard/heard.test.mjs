// SPDX-License-Identifier: MIT
// What a screen reader says, word for word and in order: each golden file says what is done and what is heard then.
import assert from 'node:assert/strict';
import { readdirSync } from 'node:fs';
import { readFile } from 'node:fs/promises';
import { after, before, describe, test } from 'node:test';

import { Listener } from './listener.mjs';
import { takeAgain } from './script.mjs';

const folder = new URL('./', import.meta.url);
const names = readdirSync(folder).filter(each => each.endsWith('.txt') && each !== 'CMakeLists.txt');
const concurrency = 3; // each waits for the other programs most of the time
const listeners = Array.from({ length: concurrency }, () => new Listener());

/// Orca ignores an event now and then when much happens at once. A fault of the page comes each time.
const maxAttempts = 2;

async function check(name, listener) {
    const golden = await readFile(new URL(name, folder), 'utf8');
    let taken = await takeAgain(listener, golden);
    for (let attempt = 1; attempt < maxAttempts && taken !== golden; ++attempt) {
        console.error(`${name} was heard otherwise in attempt ${attempt}:\n\n${taken}`);
        taken = await takeAgain(listener, golden);
    }
    assert.equal(taken, golden, `${name} should be, if this is what should be heard:\n\n${taken}`);
}

describe('what is heard', { concurrency }, () => {
    before(async () => {
        const begun = await Promise.allSettled(listeners.map(each => each.begin()));
        const fault = begun.find(({ reason }) => reason);
        assert.ifError(fault?.reason);
    });
    after(() => Promise.all(listeners.map(each => each.end())));

    for (const name of names) {
        test(name, async () => {
            const listener = listeners.pop();
            try {
                await check(name, listener);
            } finally {
                listeners.push(listener);
            }
        });
    }
});
