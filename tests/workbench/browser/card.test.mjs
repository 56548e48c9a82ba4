// SPDX-License-Identifier: MIT
// The view "Key card": on the screen, on paper and in braille; and the documents that keyboard-handler-keys makes.
import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { readFile } from 'node:fs/promises';
import { test } from 'node:test';
import { fileURLToPath } from 'node:url';

import { violations } from './axe.mjs';
import { panelFixture } from './panelFixture.mjs';

const fixture = panelFixture();

async function openCard(options) {
    const panel = await fixture.open(options);
    await panel.goTo('Key card');
    await panel.page.getByRole('table').first().waitFor();
    return panel;
}

test('each state has its entries in a table with headers', async () => {
    const panel = await openCard();
    const card = await fixture.simulator.json('/api/card');
    for (const { state, entries } of card.states) {
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

test('the whole card is on paper, whatever view is shown', async () => {
    const panel = await openCard();
    const pages = async () =>
        (await panel.page.pdf({ format: 'A4' })).toString('latin1').match(/\/Type \/Page\b/g).length;
    const card = await pages();
    await panel.goTo('Panel');
    assert.equal(await pages(), card);
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
