// SPDX-License-Identifier: MIT
// Every page shows the true state of the device, whichever client changed it, and says what it does not know.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { eventually } from './eventually.mjs';
import { panelFixture } from './panelFixture.mjs';

const fixture = panelFixture();
const views = ['Panel', 'Timeline', 'Key card', 'Key lists', 'Recording', 'Commands'];

const latch = panel => panel.page.getByRole('switch', { name: 'Latch keys' });
const isPressed = (panel, name, pressed) =>
    eventually(async () => {
        const key = panel.key(name);
        const pressedToReaders = await key.getAttribute('aria-pressed');
        const heldToReaders = (await key.textContent()).includes(', held elsewhere');
        assert.equal(pressedToReaders === null ? heldToReaders : pressedToReaders === 'true', pressed);
        await isYellow(panel, name, pressed);
    });
/// People know which keys they hold themselves: a screen reader does not announce them.
const isYellow = (panel, name, pressed) =>
    eventually(async () => {
        assert.equal(/\bdown\b/.test(await panel.key(name).getAttribute('class')), pressed);
    });
const isAnswered = panel => panel.showsText('#device-status', 'ready');

test('a latched key that a script releases is released on the page', async () => {
    const panel = await fixture.open();
    await latch(panel).click();
    await panel.key('Function').click();
    await isPressed(panel, 'Function', true);
    await panel.showsText('#held-now', 'Function');
    await fixture.simulator.take('release Function');
    await isPressed(panel, 'Function', false);
    await panel.showsText('#held-now', 'no key');
});

test('a key that is held elsewhere is shown as held, and can be released in the latch mode', async () => {
    const panel = await fixture.open();
    const other = await fixture.open();
    await latch(other).click();
    await other.key('Help').click();
    await isPressed(panel, 'Help', true);
    await latch(panel).click();
    await panel.key('Help').click();
    for (const page of [panel, other]) {
        await isPressed(page, 'Help', false);
    }
    await other.key('Help').click();
    await isPressed(panel, 'Help', true);
    await other.key('Help').click();
    await isPressed(panel, 'Help', false);
});

test('a finger that rests on a key shows what the device does, not what the finger does', async () => {
    const panel = await fixture.open();
    await panel.key('Up').hover();
    await panel.page.mouse.down();
    await isYellow(panel, 'Up', true);
    await fixture.simulator.take('release Up');
    await isYellow(panel, 'Up', false);
    await panel.page.mouse.up();
    await panel.key('Menu').click();
    await panel.isTold('SingleKey Menu to UserMenu');
    await isYellow(panel, 'Up', false);
});

test('keys of both input devices are in the header of each view, also for a page that comes later', async () => {
    const panel = await fixture.open();
    await fixture.simulator.take('press Function', 'device 1', 'press Up');
    const later = await fixture.open();
    for (const page of [panel, later]) {
        for (const view of views) {
            await page.goTo(view);
            await page.showsText('#held-now', 'Up (device 1), Function');
        }
        await isPressed(page, 'Up', true);
    }
    await fixture.simulator.take('release Function', 'device 1', 'release Up');
    await panel.showsText('#held-now', 'no key');
});

test('a key whose press is too long ago for the history is still held', async () => {
    await fixture.simulator.take('press Function');
    const observer = await fixture.simulator.observe();
    const repetitions = new Array(900).fill('record 1 103 2');
    for (let times = 0; times < 12; ++times) {
        await fixture.simulator.take(...repetitions);
    }
    await fixture.simulator.take('record 1 103 0', 'tap Chs');
    await observer.sees({ type: 'key', key: 'Chs', value: 0 });
    observer.close();
    const panel = await fixture.open();
    await panel.showsText('#held-now', 'Function');
    await isPressed(panel, 'Function', true);
    await fixture.simulator.take('release Function');
    await panel.showsText('#held-now', 'no key');
});

test('a keyboard test is in the header, and decides what can be pressed', async () => {
    const panel = await fixture.open();
    await panel.disclose('now-details');
    await fixture.simulator.take('state Error', 'wait 100', 'command StartTestMode');
    await panel.page.locator('#testing').waitFor();
    await panel.showsText(
        '#now-state',
        /^The keyboard test is running in the state Error: .* Ten ends the test and is announced as Ok to ErrorHandler\./,
    );
    assert.equal(await panel.page.locator('#now').getByText('Single keys').count(), 0);
    await panel.page.locator('#now').getByText('Holds').waitFor();
    const later = await fixture.open({ view: '#timeline' });
    await later.page.locator('#testing').waitFor();
    await fixture.simulator.take('state Idle');
    await panel.showsText('#now-state', /^In the state Idle, .* The keyboard test counts no keys in Idle\./);
    await panel.page.locator('#now').getByText('Single keys').waitFor();
    await fixture.simulator.take('state Error', 'wait 100', 'tap Ten');
    await panel.isTold('SingleKey Ok to ErrorHandler');
    await panel.showsText('#now-state', 'In the state Error, on model Pellit.');
    for (const page of [panel, later]) {
        await page.page.locator('#testing').waitFor({ state: 'hidden' });
    }
});

test('combinations that only a keyboard test lets through are mentioned', async () => {
    const row = { keys: ['Help', 'Feed'], eAction: 'Swap', receiverService: 'UserMenu', validOnState: 'Error' };
    await fixture.simulator.restart({
        keyLists: { 'modifierKeyList.json': JSON.stringify({ ModifierKeys: [row] }) },
        state: 'Error',
    });
    const panel = await fixture.open();
    await fixture.simulator.take('command StartTestMode');
    await panel.showsText('#now-state', /Combinations for Error are announced, too\.$/);
    await fixture.simulator.take('tap Help Feed');
    await panel.isTold('Swap Help Feed to UserMenu');
    await fixture.simulator.restart({ keyLists: null });
});

test('a daemon that hangs is shown as not answering, until it answers', async () => {
    const panel = await fixture.open();
    await fixture.simulator.hangDaemon();
    await panel.showsText('#device-status', 'not answering');
    await panel.showsText('#alert', 'The daemon does not answer. What is pressed waits until it does.');
    await panel.showsText('#now-state', /^Nothing: the daemon does not answer\./);
    assert.equal(await panel.page.locator('#now li').count(), 0);
    const later = await fixture.open({ status: 'not answering' });
    await later.showsText('#now-state', /^Nothing: the daemon does not answer\./);
    await panel.key('Menu').click();
    await fixture.simulator.resumeDaemon();
    await panel.isTold('SingleKey Menu to UserMenu');
    for (const page of [panel, later]) {
        await isAnswered(page);
        await page.showsText('#now-state', /^In the state Idle,/);
    }
});

test('a command that a hanging daemon does not answer is shown as unanswered, then its answer', async () => {
    const panel = await fixture.open({ view: '#commands' });
    await fixture.simulator.hangDaemon();
    await panel.button('Send GetLastKey').click();
    const answers = panel.page.locator('#answers');
    await answers.getByText('GetLastKey: the daemon has not answered yet.').waitFor();
    const later = await fixture.open({ view: '#commands', status: 'not answering' });
    await later.page.locator('#answers').getByText('GetLastKey: the daemon has not answered yet.').waitFor();
    await fixture.simulator.resumeDaemon();
    await answers.getByText('resultId=Success').last().waitFor();
    await isAnswered(panel);
});

test('a command that a restart overtakes stays unanswered', async () => {
    const panel = await fixture.open({ view: '#commands' });
    await fixture.simulator.hangDaemon();
    await panel.button('Send GetTestResult').click();
    await fixture.simulator.restart();
    const text = 'GetTestResult: the daemon did not answer.';
    await panel.page.locator('#answers').getByText(text).waitFor();
    const later = await fixture.open({ view: '#commands' });
    await later.page.locator('#answers').getByText(text).waitFor();
    await panel.button('Send GetLastKey').click();
    await panel.page.locator('#answers [data-part=live] .answer').last().waitFor();
    assert.equal(await panel.page.locator('#answers').getByText('not answered yet').count(), 0);
});

test('what is not known without a connection is not shown', async () => {
    const relay = await fixture.relay();
    const panel = await fixture.open({ url: relay.url });
    await panel.showsText('#now-state', /^In the state Idle,/);
    await relay.cut();
    await panel.showsText('#now-state', 'Not known: there is no connection to the simulator.');
    assert.equal(await panel.page.locator('#now li').count(), 0);
    for (const place of ['#device-model', '#device-state', '#held-now']) {
        await panel.showsText(place, '–');
    }
    assert.equal(await panel.page.locator('#states [aria-pressed=true], #models [aria-pressed=true]').count(), 0);
    await relay.mend();
    await panel.showsText('#now-state', /^In the state Idle,/);
    await panel.showsText('#device-state', 'Idle');
});

/// Holds back the key card until `letCardIn` is called (runs in the page).
function holdCard() {
    const { fetch } = window;
    const letIn = new Promise(resolve => {
        window.letCardIn = resolve;
    });
    window.fetch = async (address, ...words) => {
        await (String(address).endsWith('/api/card') ? letIn : undefined);
        return fetch(address, ...words);
    };
}

test('the page does not say what can be pressed before it has the key card', async () => {
    const panel = await fixture.open({ script: holdCard });
    await panel.showsText('#device-state', 'Idle');
    assert.equal(await panel.page.locator('#now-state').textContent(), '');
    await panel.page.evaluate(() => window.letCardIn());
    await panel.showsText('#now-state', /^In the state Idle, on model/);
});

test('the timeline stands still without a connection, and says so', async () => {
    const relay = await fixture.relay();
    const panel = await fixture.open({ url: relay.url, view: '#timeline' });
    const picture = panel.page.getByRole('img', { name: 'Timeline of keys and actions' });
    await relay.cut();
    const note = panel.page.getByText('There is no connection to the simulator. The timeline ends where it was lost.');
    await note.waitFor();
    const frames = `new Promise(resolve => {
        const begun = performance.now();
        const tick = () => performance.now() > begun + 1500 ? resolve() : requestAnimationFrame(tick);
        tick();
    })`;
    await panel.page.evaluate(frames); // what was drawn last is drawn
    const before = await picture.innerHTML();
    await panel.page.evaluate(frames);
    assert.equal(await picture.innerHTML(), before);
    await relay.mend();
    await note.waitFor({ state: 'hidden' });
    await eventually(async () => assert.notEqual(await picture.innerHTML(), before));
});

test('what changed without a connection is reported when it is back', async () => {
    const relay = await fixture.relay();
    const panel = await fixture.open({ url: relay.url });
    await relay.cut();
    await panel.showsText('#device-status', 'not connected');
    await fixture.simulator.take('state Print');
    await relay.mend();
    await panel.showsText('#status', 'Connected again. State Print.');
    await relay.cut();
    await panel.showsText('#device-status', 'not connected');
    await fixture.simulator.crashDaemon();
    await relay.mend();
    await panel.showsText(
        '#status',
        /^Connected again\. The daemon was ended by the signal SIGSEGV .* top of the page\.$/,
    );
});

test('a crash is reported in words', async () => {
    const panel = await fixture.open();
    await fixture.simulator.crashDaemon();
    await panel.showsText('#ended-reason', 'The daemon was ended by the signal SIGSEGV (segmentation fault).');
});

const shortcut = (receiverService, validOnState) =>
    JSON.stringify({
        ShortcutKeys: [{ keys: ['Help', 'Up'], eAction: 'Void', receiverService, validOnState }],
    });

for (const [name, list, text] of [
    [
        'no service',
        shortcut('Undefined', 'Idle'),
        'Refused: Void. The receiver of the action is "Undefined", so no service receives it.',
    ],
    ['no state', shortcut('UserMenu', ''), 'Refused: Void. It is for no state, and the current state is Idle.'],
]) {
    test(`an action for ${name} is refused in words`, async () => {
        await fixture.simulator.restart({ keyLists: { 'shortcutKeyList.json': list } });
        const panel = await fixture.open();
        await fixture.simulator.take('press Help', 'wait 50', 'tap Up', 'release Help');
        await panel.isTold(text);
        await fixture.simulator.restart({ keyLists: null });
    });
}
