// SPDX-License-Identifier: MIT
// What assistive technology finds in each view: the accessibility tree, kept in trees/. RENEW_TREES=1 writes the files.
import assert from 'node:assert/strict';
import { readFile, writeFile } from 'node:fs/promises';
import { test } from 'node:test';

import { panelFixture } from './panelFixture.mjs';

const fixture = panelFixture();
const folder = new URL('./trees/', import.meta.url);

/// Opens all disclosures that the page has itself.
const disclose = () => document.querySelectorAll('details').forEach(details => details.setAttribute('open', ''));

/// The tree without what each run has otherwise: times, and announcements, which come and go.
async function treeOf(panel) {
    await panel.page.evaluate(() => document.querySelector('#announcements').replaceChildren());
    const tree = await panel.page.locator('body').ariaSnapshot();
    return `${tree.replaceAll(/\b\d+(\.\d+)? (ms|s)\b/g, '… $2')}\n`;
}

for (const [file, view, ready] of [
    ['panel', '#panel', '#now li'],
    ['card', '#card', '#card-tables .do button'],
    ['lists', '#lists', '#list-log p'],
    ['record', '#record', '#recording-status:not(:empty)'],
    ['commands', '#commands', '#command-sender option'],
    ['help', '#help', '#help li'],
]) {
    test(`the tree of the view ${file}`, async () => {
        await fixture.simulator.restart();
        const panel = await fixture.open({ view });
        await panel.page.locator(ready).first().waitFor({ state: 'attached' });
        await fixture.simulator.take('tap Menu');
        await panel.isTold('SingleKey Menu to UserMenu');
        await panel.page.evaluate(disclose);
        const tree = await treeOf(panel);
        const address = new URL(`${file}.yml`, folder);
        if (process.env.RENEW_TREES) {
            await writeFile(address, tree);
        }
        assert.equal(tree, await readFile(address, 'utf8'), 'Read what differs, then renew the tree: RENEW_TREES=1.');
    });
}
