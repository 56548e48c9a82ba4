// SPDX-License-Identifier: MIT
// The view "Commands": what services and technicians ask of the daemon.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { violations } from './axe.mjs';
import { eventually } from './eventually.mjs';
import { panelFixture } from './panelFixture.mjs';

const fixture = panelFixture();

async function openCommands() {
    const panel = await fixture.open();
    await panel.goTo('Commands');
    return panel;
}

/// Sends a command with its form's button; comes back with the answer when it stands below.
async function answerTo(panel, command) {
    const answers = panel.page.locator('#answers [data-part=live] .answer');
    const count = await answers.count();
    await panel.button(`Send ${command}`).click();
    await answers.nth(count).waitFor();
    return answers.nth(count).innerText();
}

test('the answer to a command is in its form', async () => {
    const panel = await openCommands();
    const outcome = name => panel.page.getByRole('form', { name, exact: true }).locator('.outcome');
    await panel.button('Send GetLastKey').click();
    await outcome('GetLastKey').getByText('key=139').waitFor();
    await panel.button('Send GetShortcutKeyList').click();
    await outcome('GetShortcutKeyList').getByText('Whole answer to GetShortcutKeyList').waitFor();
    assert.equal(await outcome('GetTestResult').innerText(), '');
});

/// The nested part of the latest answer.
async function wholeAnswer(panel) {
    const details = panel.page.locator('#answers details').last();
    await details.locator('summary').click();
    return JSON.parse(await details.locator('pre').innerText());
}

test('there is a form for each of the nine commands', async () => {
    const panel = await openCommands();
    const forms = await panel.page
        .locator('form[data-command]')
        .evaluateAll(all => all.map(form => form.dataset.command));
    assert.equal(forms.length, 9);
    assert.deepEqual(forms.sort(), (await fixture.simulator.json('/api/device')).commands.sort());
});

test('GetLastKey shows the code of the last key', async () => {
    const panel = await openCommands();
    assert.match(await answerTo(panel, 'GetLastKey'), /\bkey=139\b.*\bresultId=Success\b/);
});

for (const [command, member, check] of [
    ['GetLongKeysTimeout', 'keyTimeouts', times => assert.deepEqual([times.Help, times.Menu], [6000, 2000])],
    ['GetModifierKeyList', 'modifierKeyList', list => assert.match(JSON.stringify(list), /PaperStatus/)],
    ['GetShortcutKeyList', 'shortcutKeyList', list => assert.match(JSON.stringify(list), /VolumeUp/)],
]) {
    test(`${command} shows what it brings`, async () => {
        const panel = await openCommands();
        assert.match(await answerTo(panel, command), /resultId=Success/);
        check((await wholeAnswer(panel))[member]);
    });
}

test('StartTestMode and GetTestResult are the keyboard test', async () => {
    await fixture.simulator.enter('Error');
    const panel = await openCommands();
    assert.match(await answerTo(panel, 'StartTestMode'), /resultId=Success/);
    await fixture.simulator.take('tap Up Down Ten');
    await panel.isTold('SingleKey Ok to ErrorHandler');
    assert.match(await answerTo(panel, 'GetTestResult'), /resultId=3\b/);
});

test('SimulateKey stands for a key and names its sender', async () => {
    const panel = await openCommands();
    await panel.page.getByLabel('Sent by the service').selectOption('WwwApi');
    await panel.page.getByLabel('Key action').selectOption('Released');
    await panel.page.locator('#simulated-key').selectOption('Menu');
    assert.match(await answerTo(panel, 'SimulateKey'), /resultId=Success/);
    await panel.isTold('SingleKey Menu to UserMenu from WwwApi');
});

test('SimulateModifier stands for a combination', async () => {
    const panel = await openCommands();
    await panel.page.getByLabel('Keys of the combination').fill('Help Ok');
    assert.match(await answerTo(panel, 'SimulateModifier'), /resultId=Success/);
    await panel.isTold('RepeatMessage Help Ok to UserMenu from ServiceTool');
});

test('SimulateShortcut stands for a shortcut', async () => {
    const panel = await openCommands();
    await panel.page.getByLabel('Keys of the shortcut').fill('Function Down');
    assert.match(await answerTo(panel, 'SimulateShortcut'), /resultId=Success/);
    await panel.isTold('VolumeDown Function Down to UserMenu from ServiceTool');
});

test('a failure is shown as it was answered', async () => {
    const panel = await openCommands();
    await panel.page.getByLabel('Key action').selectOption('None');
    assert.match(await answerTo(panel, 'SimulateKey'), /errorId=ServiceError.*resultId=Failure/);
});

test('a key that there is not is refused before anything is sent', async () => {
    const panel = await openCommands();
    await panel.page.getByLabel('Keys of the shortcut').fill('Function Nonsense');
    await panel.button('Send SimulateShortcut').click();
    await panel.showsText('#outcome-SimulateShortcut', /^Unknown key "Nonsense"/);
    const field = panel.page.getByLabel('Keys of the shortcut');
    assert.equal(await field.getAttribute('aria-invalid'), 'true');
    await eventually(async () =>
        assert.equal(await field.getAttribute('aria-describedby'), 'outcome-SimulateShortcut'),
    );
    assert.deepEqual(await violations(panel.page), []);
    await eventually(async () => assert.match((await panel.texts('#announcements p')).join(), /Nonsense/));
    await field.fill('Function Down');
    await panel.button('Send SimulateShortcut').click();
    await panel.showsText('#outcome-SimulateShortcut', /resultId=Success/);
    assert.equal(await field.getAttribute('aria-invalid'), 'false');
});

test('statements are done, refused at their line, and come back with the arrow keys', async () => {
    const panel = await openCommands();
    const input = panel.page.getByLabel('Statements to do');
    await input.fill('tap Up Menu; wait 10');
    await input.press('Enter');
    await panel.isTold('SingleKey Menu to UserMenu');
    await input.fill('wait 1; tap Nonsense');
    await input.press('Enter');
    await panel.showsText('#statement-outcome', /^Line 2: .*Nonsense/);
    assert.equal(await input.getAttribute('aria-invalid'), 'true');
    await input.fill('wa');
    const shown = async key => {
        await input.press(key);
        return input.inputValue();
    };
    assert.equal(await shown('ArrowUp'), 'wait 1; tap Nonsense');
    assert.equal(await shown('ArrowUp'), 'tap Up Menu; wait 10');
    assert.equal(await shown('ArrowUp'), 'tap Up Menu; wait 10');
    assert.equal(await shown('ArrowDown'), 'wait 1; tap Nonsense');
    assert.equal(await shown('ArrowDown'), 'wa');
    await input.fill('tap Menu');
    await input.press('Enter');
    await panel.showsText('#statement-outcome', '');
});

test('the console takes lines and shows what the daemon says', async () => {
    const panel = await openCommands();
    await panel.page.getByLabel("Line for the daemon's console").fill('HELP C');
    await panel.button('Send the line').click();
    const console = panel.page.locator('#console');
    await console.getByText('HELP C', { exact: true }).waitFor();
    await console.getByText('7    "SimulateKey"').waitFor();
});

test('the console acts, too', async () => {
    const panel = await openCommands();
    await panel.page.getByLabel("Line for the daemon's console").fill('C 7 0 139');
    await panel.page.keyboard.press('Enter');
    await panel.isTold('SingleKey Menu to UserMenu');
    await eventually(async () => assert.match((await panel.texts('#console')).join(), /Success/));
});
