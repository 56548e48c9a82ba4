// SPDX-License-Identifier: MIT
// What assistive technology finds in each view: its accessibility tree, kept in trees/. RENEW_TREES=1 renews the files.
import assert from 'node:assert/strict';
import { mkdir, readFile, writeFile } from 'node:fs/promises';
import { after, before, test } from 'node:test';

import { eventually } from './eventually.mjs';
import { PanelSession } from './panelSession.mjs';

const session = new PanelSession();
const folder = new URL('./trees/', import.meta.url);

/// The views, and what they show when they are complete.
const views = [
    ['Panel', '#now li'],
    ['Timeline', '.timeline-toolbar, .timeline'],
    ['Key card', '#card-tables .do button'],
    ['Key lists', '#never, #list-log p'],
    ['Recording', '#recording-status:not(:empty)'],
    ['Commands', '#command-sender option'],
    ['Help', '#help li'],
];

before(async () => {
    await session.begin();
    session.panel = await session.open();
    await session.simulator.take('tap Menu');
    await session.panel.isTold('SingleKey Menu to UserMenu');
    await eventually(async () => assert.notDeepEqual(await session.panel.texts('#announcements p'), []));
});
after(async () => {
    assert.deepEqual(await session.closePages(), []);
    await session.end();
});

/// Opens the disclosures, and removes what differs from run to run (runs in the page).
function prepare() {
    document.querySelectorAll('details').forEach(details => details.setAttribute('open', ''));
    document
        .querySelectorAll('#announcements, #timeline-chart :is(svg, tbody)')
        .forEach(place => place.replaceChildren());
    document.querySelector('#status').textContent = '';
}

async function treeOf(page) {
    await page.evaluate(prepare);
    const tree = await page.locator('body').ariaSnapshot();
    const timeless = tree.replaceAll(/\b\d+(\.\d+)? (ms|s)\b/g, '… $2').replaceAll(/(slider .*: )"\d+"/g, '$1…');
    return `${timeless}\n`;
}

for (const [view, complete] of views) {
    test(`the tree of the view ${view}`, async () => {
        const { page } = session.panel;
        await session.panel.goTo(view);
        await page.locator(complete).first().waitFor({ state: 'attached' });
        const tree = await treeOf(page);
        const file = new URL(`${view.toLowerCase().replace(' ', '-')}.yml`, folder);
        if (process.env.RENEW_TREES) {
            await mkdir(folder, { recursive: true });
            await writeFile(file, tree);
        }
        assert.equal(
            tree,
            await readFile(file, 'utf8'),
            'If that is what should be found, renew it with RENEW_TREES=1.',
        );
    });
}
