// SPDX-License-Identifier: MIT
// The view "Recording": what was done at the device as a key script, and its replay.
import assert from 'node:assert/strict';
import { readFile } from 'node:fs/promises';
import { test } from 'node:test';

import { violations } from './axe.mjs';
import { eventually } from './eventually.mjs';
import { panelFixture } from './panelFixture.mjs';

const fixture = panelFixture();
const maxAttempts = 10;

async function openRecording() {
    const panel = await fixture.open();
    await panel.goTo('Recording');
    return panel;
}

const asFile = text => ({ name: 'script.keys', mimeType: 'text/plain', buffer: Buffer.from(text) });

/// Replays the script; a recording that was not downloaded may go.
async function replay(panel, text) {
    await panel.page.getByLabel('Key script').setInputFiles(asFile(text));
    await panel.button('Replay the script').click();
    await confirm(panel, 'Replay the script');
}

/// Confirms the question with the button `name` if it is asked, as it is after all that is done at the device.
async function confirm(panel, name) {
    if (await panel.question.isVisible()) {
        await panel.reply(name);
    }
}

async function downloaded(panel, name) {
    const download = panel.page.waitForEvent('download');
    await panel.button(name).click();
    return readFile(await (await download).path(), 'utf8');
}

/// Records two keys from the beginning and replays them; comes back with what came otherwise.
async function recordAndReplay(panel) {
    const observer = await fixture.simulator.observe();
    await panel.button('Start a new recording').click();
    await confirm(panel, 'Start a new recording');
    await observer.sees({ type: 'device', status: 'ready' });
    await panel.showsText('#device-status', 'ready');
    await panel.goTo('Panel');
    for (const key of ['Up', 'Menu']) {
        await panel.key(key).click();
        await observer.sees({ type: 'announcement', keys: [key] });
    }
    await panel.goTo('Recording');
    const download = panel.page.waitForEvent('download');
    await panel.button('Download the recording').click();
    assert.equal((await download).suggestedFilename(), 'recording.keys');
    const script = await readFile(await (await download).path(), 'utf8');
    assert.match(
        script,
        /^press Up$[^]*^expect .* speak EmbosserCore 24$[^]*^expect .* announce SingleKey UserMenu .*Up$/m,
    );
    await replay(panel, script);
    const { differences } = await observer.sees({ type: 'replay', status: 'finished' });
    observer.close();
    return differences;
}

test('what is done is recorded, downloaded and replayed as it came', async () => {
    const panel = await openRecording();
    // The recording of a machine that stood still meanwhile comes otherwise, but not each one does.
    let differences = await recordAndReplay(panel);
    for (let attempt = 1; attempt < maxAttempts && differences.length > 0; ++attempt) {
        differences = await recordAndReplay(panel);
    }
    assert.deepEqual(differences, []);
    await panel.showsText('#replay-result', /^Everything came as written: [1-9]\d* expectations\.$/);
});

for (const [what, button, end] of [
    ['A replay', 'Replay the script', { type: 'replay', status: 'finished' }],
    ['A new recording', 'Start a new recording', { type: 'device', status: 'ready' }],
]) {
    test(`${what} asks before it ends a recording that was not downloaded, and then only`, async () => {
        const panel = await openRecording();
        await fixture.simulator.take('tap Chs');
        await panel.isTold('SingleKey Chs to UserMenu');
        await panel.page.getByLabel('Key script').setInputFiles(asFile('state Idle\nwait 10\n'));
        const observer = await fixture.simulator.observe();
        await panel.button(button).click();
        await panel.question.getByText(/ It has not been downloaded;/).waitFor();
        await panel.reply('Cancel');
        await fixture.simulator.take('tap Down');
        await observer.sees({ type: 'key', key: 'Down', value: 0 });
        assert.equal(
            observer.entries.some(({ type }) => type === 'device'),
            false,
        );
        assert.match(await downloaded(panel, 'Download the recording'), /^press Chs$[^]*^press Down$/m);
        await panel.button(button).click();
        await observer.sees(end);
        assert.equal(await panel.question.isVisible(), false);
        observer.close();
        await panel.showsText('#device-status', 'ready');
        assert.match(await downloaded(panel, 'Download the previous recording'), /^press Chs$[^]*^press Down$/m);
    });
}

test('another model leaves the recording to be downloaded, and says so', async () => {
    const panel = await fixture.open();
    await panel.key('Chs').click();
    await panel.isTold('SingleKey Chs to UserMenu');
    await panel.disclose('setup');
    await panel.button('Orvane').click();
    await panel.showsText('#status', /The previous recording can be downloaded in the view Recording\.$/);
    await panel.goTo('Recording');
    assert.match(await downloaded(panel, 'Download the previous recording'), /^press Chs$/m);
    const later = await fixture.open({ view: '#record' });
    await later.button('Download the previous recording').waitFor();
    await fixture.simulator.restart({ model: 'Pellit' });
});

test('a replay shows what came otherwise', async () => {
    const panel = await openRecording();
    await replay(panel, 'state Idle\ntap Menu\nexpect +0 announce SingleKey PrintManager - Menu\n');
    await panel.showsText('#replay-result', /differences?, with 1 expectation/);
    assert.match(await panel.page.locator('#replay-result').innerText(), /PrintManager/);
});

test('an invalid script is refused with the line and the reason', async () => {
    const panel = await openRecording();
    await replay(panel, 'state Idle\npress Nothing\n');
    await panel.showsText('#replay-result', /Line 2: .*Nothing/);
});

test('a replay is stopped, and keeps others away until then', async () => {
    const panel = await openRecording();
    const observer = await fixture.simulator.observe();
    await replay(panel, 'state Idle\npress Up\nwait 600000\nrelease Up\n');
    await observer.sees({ type: 'key', key: 'Up', value: 1 });
    await panel.showsText('#replay-result', 'The script is being replayed.');
    await panel.goTo('Panel');
    await panel.key('Menu').click();
    await panel.showsText('#alert', /replay/);
    await panel.goTo('Recording');
    await panel.button('Stop the replay').click();
    await panel.showsText('#replay-result', 'The replay was stopped.');
    await observer.sees({ type: 'key', key: 'Up', value: 0 });
    observer.close();
});

test('a recording that no script can tell is not downloaded but explained', async () => {
    const panel = await openRecording();
    const list = {
        LongKeys: [{ keys: ['Up'], eAction: 'Odd', receiverService: 'UserMenu', timeout: 1.5, validOnState: 'Idle' }],
    };
    await fixture.simulator.restart({ keyLists: { 'longKeyList.json': JSON.stringify(list) } });
    await panel.showsText('#status', /^The daemon is ready/); // which ends older messages
    await panel.button('Download the recording').click();
    await panel.showsText('#alert', /./);
    await fixture.simulator.restart({ keyLists: null });
});

test('a replay without a script asks for one', async () => {
    const panel = await openRecording();
    await panel.button('Replay the script').click();
    await panel.showsText('#alert', 'Choose a key script first.');
    assert(await panel.page.getByLabel('Key script').evaluate(field => field === document.activeElement));
});

test('a replay that is not running cannot be stopped', async () => {
    const panel = await openRecording();
    await panel.button('Stop the replay').click();
    await panel.showsText('#status', 'No replay is running.');
});

test('the demonstration plays under a banner that can stop it', async () => {
    const panel = await fixture.open({ view: '#record' });
    await panel.button('Play the demonstration').click();
    await panel.reply('Play the demonstration');
    await panel.page.locator('#playing').waitFor();
    await panel.goTo('Panel');
    assert.deepEqual(await violations(panel.page), []);
    await panel.button('Stop').click();
    await panel.page.locator('#playing').waitFor({ state: 'hidden' });
    await eventually(async () => assert.equal(await panel.page.locator(':focus').innerText(), 'Panel'));
    await panel.goTo('Recording');
    await panel.showsText('#replay-result', 'The replay was stopped.');
});
