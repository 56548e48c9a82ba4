// SPDX-License-Identifier: MIT
// The view "Key lists": other lists for the device, and what its daemon says of them.
import assert from 'node:assert/strict';
import { readFile } from 'node:fs/promises';
import { test } from 'node:test';

import { eventually } from './eventually.mjs';
import { panelFixture } from './panelFixture.mjs';

const fixture = panelFixture();

const combination = (action, ...keys) =>
    JSON.stringify({
        ModifierKeys: [{ keys, eAction: action, receiverService: 'UserMenu', validOnState: 'Idle' }],
    });
const combinations = panel => panel.page.getByLabel('Combinations: modifierKeyList.json');

async function openLists() {
    await fixture.simulator.restart({ keyLists: null });
    const panel = await fixture.open();
    await panel.goTo('Key lists');
    return panel;
}

async function checkAndRestart(panel) {
    const observer = await fixture.simulator.observe();
    await panel.button('Check and restart').click();
    await observer.sees({ type: 'device', status: 'ready' });
    observer.close();
    await panel.showsText('#device-status', 'ready');
}

/// Files are set like this where a person would choose them.
const asFile = (name, text) => ({ name, mimeType: 'application/json', buffer: Buffer.from(text) });

test('the fields hold the lists that the daemon has', async () => {
    const panel = await openLists();
    const lists = await fixture.simulator.json('/api/key-lists');
    for (const [file, text] of Object.entries(lists)) {
        assert.equal(await panel.page.locator(`[data-file="${file}"]`).inputValue(), text);
    }
    assert.equal(Object.keys(lists).length, 3);
});

test('an edited list counts after the restart, in the card as well', async () => {
    const panel = await openLists();
    await combinations(panel).fill(combination('Swap', 'Up', 'Down'));
    await checkAndRestart(panel);
    await panel.showsText('#list-log', 'The daemon has read all three lists.');
    await panel.showsText('#status', /^The daemon has read all three lists\. The daemon is ready/);
    await fixture.simulator.take('tap Up Down');
    await panel.isTold('Swap Up Down to UserMenu');
    await panel.goTo('Key card');
    await panel.page.getByRole('table').getByText('Swap').first().waitFor();
    assert.equal(await panel.page.getByText('PaperStatus').count(), 0);
});

test('a list is loaded from a file', async () => {
    const panel = await openLists();
    const file = asFile('modifierKeyList.json', combination('FromFile', 'Ok', 'Chs'));
    await panel.page.getByLabel('Load modifierKeyList.json').setInputFiles(file);
    await panel.showsText('#status', /^modifierKeyList\.json is in the field/);
    await checkAndRestart(panel);
    await fixture.simulator.take('tap Ok Chs');
    await panel.isTold('FromFile Ok Chs to UserMenu');
});

test('the name of a file decides which list it is', async () => {
    const panel = await openLists();
    const file = asFile('modifierKeyList.json', combination('ByName', 'Ok', 'Chs'));
    await panel.page.getByLabel('Load longKeyList.json').setInputFiles(file);
    await panel.showsText('#status', /^modifierKeyList\.json is in the field of modifierKeyList\.json/);
    assert.match(await combinations(panel).inputValue(), /ByName/);
});

test('a list that is not JSON is marked, and the daemon says what it made of it', async () => {
    const panel = await openLists();
    await combinations(panel).fill('{ "ModifierKeys": [');
    await panel.showsText('#list-modifier-note', 'Not JSON: line 1, column 20: a value is missing at the end.');
    assert.equal(await combinations(panel).getAttribute('aria-invalid'), 'true');
    await checkAndRestart(panel);
    await panel.page
        .locator('#list-log')
        .getByText(/ModifierKey::load ERROR: reading ".*modifierKeyList\.json" failed\./)
        .waitFor();
    await panel.page
        .locator('#list-log')
        .getByText('ModifierKey::load ERROR: value list ModifierKeys not found!.')
        .waitFor();
});

/// The messages about lists with a fault once the daemon is ready, and all earlier messages.
async function toldOf(panel, text) {
    await combinations(panel).fill(text);
    await checkAndRestart(panel);
    await panel.showsText('#alert', /The daemon runs without what it could not read, on model Pellit\./);
    const announced = (await panel.page.locator('#announcements').textContent()).replaceAll('\u00a0', ' ');
    return { alert: (await panel.page.locator('#alert').innerText()).trim(), announced };
}

for (const [name, text, first] of [
    ['no JSON', '{\n  "ModifierKeys": [}', /^modifierKeyList\.json: Not JSON: line 2, column 20: /],
    ['another list', '{"Wrong": []}', /^modifierKeyList\.json has no readable list/],
]) {
    test(`the faults of a file with ${name} are reported first, and no success`, async () => {
        const panel = await openLists();
        const { alert, announced } = await toldOf(panel, text);
        assert.match(alert, first);
        assert.match(alert, /ModifierKey::load ERROR: value list ModifierKeys not found!\./);
        assert.doesNotMatch(announced, /is ready|all three/);
        assert.match((await panel.texts('#list-log p'))[0], first);
        const later = await fixture.open({ view: '#lists' });
        await later.page.locator('#list-log .fault').first().waitFor();
        assert.match((await later.texts('#list-log p'))[0], first);
        await fixture.simulator.restart({ keyLists: null });
        await panel.showsText('#list-log', 'The daemon has read all three lists.');
    });
}

test('mistakes that the daemon does not log are reported and shown', async () => {
    const panel = await openLists();
    const misspelt = combination('Swap', 'Up', 'Down').replace('UserMenu', 'UserMenue');
    const mistake = 'modifierKeyList.json, line 1: error: "UserMenue" is not a service, and none reacts to the action';
    await combinations(panel).fill(misspelt);
    await checkAndRestart(panel);
    await panel.showsText('#alert', /: did you mean "UserMenu"\? The daemon is ready, on model Pellit\.$/);
    assert.ok((await panel.page.locator('#alert').innerText()).trim().startsWith(mistake));
    assert.ok((await panel.texts('#mistakes .fault'))[0].startsWith(mistake));
    await combinations(panel).fill(combination('Swap', 'Up', 'Down'));
    await checkAndRestart(panel);
    await panel.showsText('#status', /^The daemon has read all three lists\./);
    assert.equal(await panel.page.locator('#mistakes .fault').count(), 0);
    await fixture.simulator.restart({ keyLists: null });
});

test('what is typed outlives a reload and another model, and is given up once it is in use', async () => {
    const panel = await openLists();
    const typed = combination('Draft', 'Up', 'Down');
    await combinations(panel).fill(typed);
    await panel.page.reload();
    await panel.showsText('#device-status', 'ready');
    await eventually(async () => assert.equal(await combinations(panel).inputValue(), typed));
    await fixture.simulator.restart({ model: 'Orvane' });
    await panel.showsText('#device-model', 'Orvane');
    await panel.page.reload();
    await eventually(async () => assert.equal(await combinations(panel).inputValue(), typed));
    await panel.showsText('#device-status', 'ready');
    await checkAndRestart(panel);
    await fixture.simulator.restart({ keyLists: null, model: 'Pellit' });
    await panel.showsText('#device-model', 'Pellit');
    await panel.page.reload();
    await eventually(async () => assert.match(await combinations(panel).inputValue(), /PaperStatus/));
});

test('a list is saved to a file as it is in its field', async () => {
    const panel = await openLists();
    await combinations(panel).fill(combination('Saved', 'Up', 'Down'));
    const download = panel.page.waitForEvent('download');
    await panel.button('Save modifierKeyList.json').click();
    assert.equal((await download).suggestedFilename(), 'modifierKeyList.json');
    const saved = await readFile(await (await download).path(), 'utf8');
    assert.equal(saved, combination('Saved', 'Up', 'Down'));
});

test('the installed lists replace what is typed only after a question, and it can be restored', async () => {
    const panel = await openLists();
    const typed = combination('Draft', 'Up', 'Down');
    await combinations(panel).fill(typed);
    await panel.button('Back to the installed lists').click();
    await panel.question.getByText(/ What you have typed in modifierKeyList\.json is not in use yet\./).waitFor();
    await panel.page.keyboard.press('Enter');
    await panel.page.keyboard.press('Escape');
    await panel.question.waitFor({ state: 'hidden' });
    assert.equal(await combinations(panel).inputValue(), typed);
    const observer = await fixture.simulator.observe();
    await panel.button('Back to the installed lists').click();
    await panel.reply('Take the installed lists');
    await observer.sees({ type: 'device', status: 'ready' });
    observer.close();
    await eventually(async () => assert.match(await combinations(panel).inputValue(), /PaperStatus/));
    await panel.page.reload();
    await panel.button('Restore the previous texts').click();
    await eventually(async () => assert.equal(await combinations(panel).inputValue(), typed));
    assert.equal(await panel.question.isVisible(), false);
});

test('lists in use that a replay replaces can be restored', async () => {
    const panel = await openLists();
    const tried = combination('Tried', 'Up', 'Down');
    await combinations(panel).fill(tried);
    await checkAndRestart(panel);
    await fixture.simulator.post('/api/replay', 'state Idle\nwait 10\n', { 'Content-Type': 'text/plain' });
    await panel.showsText('#status', /The previous texts of the key lists can be restored in the view Key lists\./);
    assert.match(await combinations(panel).inputValue(), /PaperStatus/);
    await panel.button('Restore the previous texts').click();
    assert.equal(await combinations(panel).inputValue(), tried);
    await fixture.simulator.restart({ keyLists: null });
});

test('a text that a loaded file replaces can be restored', async () => {
    const panel = await openLists();
    const typed = combination('Draft', 'Up', 'Down');
    await combinations(panel).fill(typed);
    const file = asFile('modifierKeyList.json', combination('FromFile', 'Ok', 'Chs'));
    await panel.page.getByLabel('Load modifierKeyList.json').setInputFiles(file);
    await eventually(async () => assert.match(await combinations(panel).inputValue(), /FromFile/));
    await panel.button('Restore the previous texts').click();
    assert.equal(await combinations(panel).inputValue(), typed);
});

test('the installed lists come back', async () => {
    const panel = await openLists();
    const installed = await combinations(panel).inputValue();
    await combinations(panel).fill(combination('Swap', 'Up', 'Down'));
    await checkAndRestart(panel);
    const observer = await fixture.simulator.observe();
    await panel.button('Back to the installed lists').click();
    await observer.sees({ type: 'device', status: 'ready' });
    observer.close();
    await panel.page.waitForFunction(text => document.getElementById('list-modifier').value === text, installed);
    await fixture.simulator.take('tap Help Feed');
    await panel.isTold('PaperStatus Help Feed to PrintManager');
});

test('a text that is being typed stays when another client restarts the device', async () => {
    const panel = await openLists();
    await combinations(panel).fill('half a sente');
    await fixture.simulator.restart({ model: 'Orvane' });
    await panel.showsText('#device-model', 'Orvane');
    await panel.showsText('#device-status', 'ready');
    assert.equal(await combinations(panel).inputValue(), 'half a sente');
    await fixture.simulator.restart({ model: 'Pellit' });
});

test('typed lists that are too long for the simulator stay', async () => {
    const panel = await openLists();
    const typed = `half a sente${' '.repeat(1024 * 1024)}`;
    await combinations(panel).fill(typed);
    await panel.button('Check and restart').click();
    await panel.showsText('#alert', 'The body is greater than 1 MiB.');
    await fixture.simulator.restart({ model: 'Orvane' });
    await panel.showsText('#device-model', 'Orvane');
    await panel.showsText('#device-status', 'ready');
    assert.equal(await combinations(panel).inputValue(), typed);
    await fixture.simulator.restart({ model: 'Pellit' });
});

test('markup in a list is nothing but text', async () => {
    const panel = await openLists();
    await combinations(panel).fill(combination('<img src=x onerror=alert(1)>', 'Up', 'Down'));
    await checkAndRestart(panel);
    await fixture.simulator.take('tap Up Down');
    await panel.isTold('<img src=x onerror=alert(1)> Up Down to UserMenu');
    assert.equal(await panel.page.locator('img').count(), 0);
});
