// SPDX-License-Identifier: MIT
// The view "Key card": on the screen, on paper and in braille; and the documents that keyboard-handler-keys makes.
import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { readFile } from 'node:fs/promises';
import { test } from 'node:test';
import { fileURLToPath } from 'node:url';

import { violations } from './axe.mjs';
import { eventually } from './eventually.mjs';
import { panelFixture } from './panelFixture.mjs';

const fixture = panelFixture();

async function openCard(options) {
    const panel = await fixture.open(options);
    await panel.goTo('Key card');
    await panel.page.getByRole('table').first().waitFor();
    return panel;
}

test('each state has its entries in a table with headers, with single keys of the same effect in one row', async () => {
    const panel = await openCard();
    const card = await fixture.simulator.json('/api/card');
    for (const { state, entries: all, singleKeys } of card.states) {
        const gestures = all.filter(({ kind }) => kind !== 'single');
        const entries = [...gestures, ...singleKeys];
        assert(all.length === 0 || singleKeys.length < all.length - gestures.length, state);
        assert.deepEqual(
            singleKeys.flatMap(({ keys }) => keys).sort(),
            all
                .filter(({ kind }) => kind === 'single')
                .flatMap(({ keys }) => keys)
                .sort(),
        );
        const section = panel.page
            .locator('section.state')
            .filter({ has: panel.page.getByRole('heading', { name: `State ${state}`, exact: true }) });
        assert.equal(
            await section
                .getByRole('row')
                .filter({ has: panel.page.getByRole('cell') })
                .count(),
            entries.length,
            state,
        );
        for (const { how, action } of entries) {
            await section.getByRole('row').filter({ hasText: how }).filter({ hasText: action }).first().waitFor();
        }
    }
    assert(card.states.length > 0);
});

test('the braille card is the file that the simulator makes', async () => {
    const panel = await openCard();
    const download = panel.page.waitForEvent('download');
    await panel.button('Download for the embosser (BRF)').click();
    assert.equal((await download).suggestedFilename(), 'key-card.brf');
    const braille = await readFile(await (await download).path(), 'latin1');
    const served = await fetch(new URL('/api/card.brf', fixture.simulator.url));
    assert.equal(braille, Buffer.from(await served.arrayBuffer()).toString('latin1'));
    assert.match(braille, /^[\x20-\x5f\r\n\f]+$/);
});

test('the print button prints', async () => {
    const panel = await openCard({ script: 'window.print = () => { window.printed = true; };' });
    await panel.button('Print').click();
    await panel.page.waitForFunction('window.printed');
});

test('on paper there is the card alone, with its head on each page', async () => {
    const panel = await openCard();
    await panel.page.emulateMedia({ media: 'print' });
    for (const place of ['header', 'nav', 'aside', 'footer', '#print-card', '#panel']) {
        assert.equal(await panel.page.locator(place).isVisible(), false, place);
    }
    const heads = panel.page.locator('.running-head');
    assert.match(await heads.first().innerText(), /^Key card of the Pellit: state \w+$/);
    const group = await heads.first().evaluate(head => getComputedStyle(head.closest('thead')).display);
    assert.equal(group, 'table-header-group');
    await panel.page.emulateMedia({ media: 'screen' });
    assert.equal(await heads.first().isVisible(), false);
});

async function pagesOf(panel) {
    return (await panel.page.pdf({ format: 'A4' })).toString('latin1').match(/\/Type \/Page\b/g).length;
}

test('the whole card is on two to four sheets of paper, whatever view is shown, or on one for each state', async () => {
    const panel = await openCard();
    const card = await pagesOf(panel);
    assert(card >= 2 && card <= 4, `${card} pages`);
    await panel.goTo('Panel');
    assert.equal(await pagesOf(panel), card);
    await panel.goTo('Key card');
    await panel.page.getByLabel('One sheet for each state').check();
    assert.equal(await pagesOf(panel), await panel.page.locator('section.state').count());
});

/// The words of the card that are on two lines (runs in the page).
function brokenWords() {
    const broken = [];
    const walker = document.createTreeWalker(document.querySelector('#card-tables'), NodeFilter.SHOW_TEXT);
    const range = document.createRange();
    while (walker.nextNode()) {
        const { currentNode: node } = walker;
        for (const { 0: word, index } of node.data.matchAll(/\S+/g)) {
            range.setStart(node, index);
            range.setEnd(node, index + word.length);
            const tops = new Set([...range.getClientRects()].filter(({ width }) => width > 0).map(({ top }) => top));
            if (tops.size > 1) {
                broken.push(word);
            }
        }
    }
    return broken;
}

test('no word of the card is broken on paper', async () => {
    const panel = await openCard();
    await panel.page.emulateMedia({ media: 'print' });
    await panel.page.setViewportSize({ width: 680, height: 1000 }); // the width of A4 between its margins
    assert.deepEqual(await panel.page.evaluate(brokenWords), []);
    assert.equal(await panel.page.evaluate(() => document.documentElement.scrollWidth), 680);
});

test('no word of the card is broken next to the feedback', async () => {
    const panel = await openCard();
    for (const width of [1000, 1024, 1280]) {
        await panel.page.setViewportSize({ width, height: 1000 });
        assert.deepEqual(await panel.page.evaluate(brokenWords), [], `${width} px`);
    }
});

test('a row of the present state is played in one press, and no other row can be', async () => {
    const panel = await openCard();
    const card = await fixture.simulator.json('/api/card');
    const idle = card.states.find(({ state }) => state === 'Idle');
    const buttons = panel.page.getByRole('button', { name: /^Do it: / });
    await eventually(async () => assert.equal(await buttons.count(), idle.entries.length));
    await panel.button('Do it: Help Feed, PaperStatus').click();
    await panel.isTold('PaperStatus Help Feed to PrintManager');
    await panel.button('Do it: Function Up, VolumeUp').click();
    await panel.isTold('VolumeUp Function Up to UserMenu');
    await panel.button('Do it: Menu').click();
    await panel.isTold('SingleKey Menu to UserMenu');
    const hold = idle.entries.find(({ kind, holdMs }) => kind === 'long' && holdMs < 4000);
    await panel.button(`Do it: ${hold.keys[0]}, ${hold.action}`).click();
    await panel.isTold(`${hold.action} ${hold.keys[0]}`);
    await fixture.simulator.take('state Startup');
    await eventually(async () => assert.equal(await buttons.count(), 0));
});

const lists = fileURLToPath(new URL('../../../data', import.meta.url));

for (const [verb, ...paths] of [
    ['card', lists],
    ['diff', `${lists}/modifierKeyList.json`, `${lists}/shortcutKeyList.json`],
]) {
    test(`the document of ${verb} has no fault that axe knows, and fits a narrow page`, async () => {
        const { stdout } = spawnSync(process.env.KEYBOARD_HANDLER_KEYS, [verb, '--format', 'html', ...paths]);
        const context = await fixture.browser.newContext({ viewport: { width: 320, height: 640 } });
        const page = await context.newPage();
        await page.setContent(stdout.toString());
        assert((await page.getByRole('row').count()) > 2);
        assert.deepEqual(await violations(page), []);
        assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), 320);
        await context.close();
    });
}
