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

async function tryLists(panel) {
    const observer = await fixture.simulator.observe();
    await panel.button('Try').click();
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
    await tryLists(panel);
    await panel.showsText('#list-log', 'The daemon has read all three lists.');
    await panel.showsText('#status', /^The daemon has read all three lists\. The daemon is ready/);
    await fixture.simulator.take('tap Up Down');
    await panel.isTold('Swap Up Down to UserMenu');
    await panel.goTo('Key card');
    await panel.page.getByRole('table').getByText('Swap').first().waitFor();
    assert.equal(await panel.page.locator('#card-tables').getByText('PaperStatus').count(), 0);
});

test('a list is loaded from a file', async () => {
    const panel = await openLists();
    const file = asFile('modifierKeyList.json', combination('FromFile', 'Ok', 'Chs'));
    await panel.page.getByLabel('Load modifierKeyList.json').setInputFiles(file);
    await panel.showsText('#status', /^modifierKeyList\.json is in the field/);
    await tryLists(panel);
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
    const fault = 'Line 1, column 20: error: the file is not JSON: a value is missing at the end.';
    await panel.showsText('#list-modifier-note', fault);
    assert.equal(await combinations(panel).getAttribute('aria-invalid'), 'true');
    assert.equal(await combinations(panel).getAttribute('aria-describedby'), null); // it is announced
    await panel.button('Check').focus();
    assert.equal(await combinations(panel).getAttribute('aria-describedby'), 'list-modifier-note');
    const mark = await panel.page.evaluate(
        () => getComputedStyle(document.getElementById('list-modifier-note'), '::before').content,
    );
    assert.match(mark, /\u26a0/);
    await combinations(panel).fill('{ "ModifierKeys": [] }');
    await panel.showsText('#list-modifier-note', '');
    assert.equal(await combinations(panel).getAttribute('aria-invalid'), 'false');
    await combinations(panel).fill('{ "ModifierKeys": [');
    await tryLists(panel);
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
    await tryLists(panel);
    await panel.showsText('#alert', /The daemon runs without what it could not read, on model Pellit\./);
    const announced = (await panel.page.locator('#announcements').textContent()).replaceAll('\u00a0', ' ');
    return { alert: (await panel.page.locator('#alert').innerText()).trim(), announced };
}

for (const [name, text, first] of [
    ['no JSON', '{\n  "ModifierKeys": [}', /^modifierKeyList\.json: Line 2, column 20: error: the file is not JSON: /],
    [
        'another list',
        '{"Wrong": []}',
        /^modifierKeyList\.json: Line 1, column 1: error: the file has no list "ModifierKeys"/,
    ],
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
    const mistake = 'Line 1, column 75: error: "UserMenue" is not a service, and none reacts to the action';
    await combinations(panel).fill(misspelt);
    await tryLists(panel);
    await panel.showsText('#alert', /: did you mean "UserMenu"\? The daemon is ready, on model Pellit\.$/);
    const alert = (await panel.page.locator('#alert').innerText()).trim();
    assert.equal(alert.slice(0, alert.indexOf(': did you')), `modifierKeyList.json: ${mistake}`);
    assert.equal((await panel.texts('#list-modifier-findings .fault'))[0], `${mistake}: did you mean "UserMenu"?`);
    await combinations(panel).fill(combination('Swap', 'Up', 'Down'));
    await tryLists(panel);
    await panel.showsText('#status', /^The daemon has read all three lists\./);
    assert.equal(await panel.page.locator('#list-modifier-findings .fault').count(), 0);
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
    await tryLists(panel);
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
    await tryLists(panel);
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
    await tryLists(panel);
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
    await panel.button('Try').click();
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
    await tryLists(panel);
    await fixture.simulator.take('tap Up Down');
    await panel.isTold('<img src=x onerror=alert(1)> Up Down to UserMenu');
    assert.equal(await panel.page.locator('img').count(), 0);
});

const rows = (...all) => `{\n  "ModifierKeys": [\n${all.map(row => `    ${row}`).join(',\n')}\n  ]\n}\n`;
const row = (action, ...keys) =>
    JSON.stringify({ keys, eAction: action, receiverService: 'UserMenu', validOnState: 'Idle' });
const selected = panel =>
    combinations(panel).evaluate(field => ({
        text: field.value.slice(field.selectionStart, field.selectionEnd),
        isFocused: field === document.activeElement,
    }));

test('"Check" counts what is wrong without a restart, and each finding leads to its place', async () => {
    const panel = await openLists();
    const before = await fixture.simulator.json('/api/device');
    await combinations(panel).fill(rows(row('Swap', 'Up', 'Dwon'), row('A', 'Ok', 'Up'), row('B', 'Ok', 'Up')));
    await panel.button('Check').click();
    await panel.showsText('#status', 'modifierKeyList.json has 1 error, 1 warning and 1 note.');
    const findings = panel.page.getByRole('list', { name: 'Findings in modifierKeyList.json' });
    await findings.getByRole('button', { name: /^Line 3, column 19: error: "Dwon" is not a key/ }).click();
    assert.deepEqual(await selected(panel), { text: '"Dwon"', isFocused: true });
    await findings.getByRole('button', { name: 'Line 4, column 13: row 2.' }).click();
    assert.deepEqual(await selected(panel), { text: '["Ok","Up"]', isFocused: true });
    const after = await fixture.simulator.json('/api/device');
    assert.deepEqual(after, before);
    assert.match((await fixture.simulator.json('/api/key-lists'))['modifierKeyList.json'], /PaperStatus/);
});

test('columns count characters, also those of two units, and a place far below is scrolled to', async () => {
    const panel = await openLists();
    const long = JSON.stringify({ comment: '\u{1f50a}'.repeat(300), keys: ['Up', 'Dwon'] });
    await combinations(panel).fill(rows(...Array.from({ length: 80 }, (_, i) => row(`A${i}`, 'Ok', 'Up')), long));
    await panel.page.getByRole('button', { name: /"Dwon" is not a key/ }).click();
    assert.deepEqual(await selected(panel), { text: '"Dwon"', isFocused: true });
    const { top, left } = await combinations(panel).evaluate(field => ({
        top: field.scrollTop,
        left: field.scrollLeft,
    }));
    assert.ok(top > 1000 && left > 1000, `scrolled to ${top}, ${left}`);
});

test('the numbers of the lines follow the text', async () => {
    const panel = await openLists();
    const numbers = () =>
        panel.page
            .locator('.editor:has(#list-modifier) .line-numbers')
            .evaluate(each => each.dataset.numbers.split('\n'));
    await combinations(panel).fill('{\n}');
    assert.deepEqual(await numbers(), ['1', '2']);
    await combinations(panel).fill('\n'.repeat(1999));
    await combinations(panel).evaluate(field => {
        field.scrollTop = 1000 * parseFloat(getComputedStyle(field).lineHeight);
    });
    await eventually(async () => assert.equal((await numbers())[0], '1001'));
    assert.ok((await numbers()).length < 30);
    await combinations(panel).evaluate(field => {
        field.scrollTop = field.scrollHeight;
    });
    await eventually(async () => assert.equal((await numbers()).at(-1), '2000'));
});

test('"What changes" compares the lists with those in use, in the words of diff', async () => {
    const panel = await openLists();
    await panel.button('What changes').click();
    await panel.showsText('#status', /^No difference: proved, /);
    const text = await combinations(panel).inputValue();
    await combinations(panel).fill(text.replace('"PaperStatus"', '"InkStatus"'));
    await panel.button('What changes').click();
    await panel.showsText('#status', '1 difference, below "What changes".');
    const [keys, was, now] = (await panel.texts('#changes li')).join('').split('\n').filter(Boolean);
    assert.match(keys, /^Idle: /);
    assert.match(
        was,
        /^was .*PaperStatus to PrintManager.*, because .* completes PaperStatus {1,2}\[modifierKeyList\.json:3\]$/,
    );
    assert.match(now, /^now .*InkStatus to PrintManager/);
});

test('the focus stays on a finding while others come and go', async () => {
    const panel = await openLists();
    await combinations(panel).fill(rows(row('A', 'Up', 'Dwon'), row('B', 'Ok', 'Up')));
    const finding = panel.page.getByRole('button', { name: /"Dwon" is not a key/ });
    await finding.waitFor();
    await combinations(panel).fill(rows(row('A', 'Up', 'Dwon'), row('B', 'Ok', 'Upp')));
    await finding.focus();
    await panel.page.getByRole('button', { name: /"Upp" is not a key/ }).waitFor();
    assert.ok(await finding.evaluate(each => each === document.activeElement));
});

test('a text that is given up while it is checked leaves no findings', async () => {
    const panel = await openLists();
    const answers = [];
    await panel.page.route('**/api/findings', async route => {
        if (route.request().method() === 'POST') {
            answers.push(route);
            return;
        }
        await route.continue();
    });
    await combinations(panel).fill('{');
    await panel.button('Check').click();
    await eventually(() => assert.equal(answers.length, 1));
    await combinations(panel).fill('{ "ModifierKeys": [] }');
    await panel.button('Check').click();
    await eventually(() => assert.equal(answers.length, 2));
    await answers[1].continue();
    await panel.showsText('#status', /./);
    const late = panel.page.waitForResponse(response => response.request() === answers[0].request());
    await answers[0].continue();
    await (await late).finished();
    await panel.page.evaluate(async () => (await fetch('/api/device')).json()); // the page has the late answer before
    assert.equal(await panel.page.locator('#list-modifier-note').innerText(), '');
});
