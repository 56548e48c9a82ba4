// SPDX-License-Identifier: MIT
// The device behind the panel: its state, model and daemon, and several people at it.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { eventually } from './eventually.mjs';
import { panelFixture } from './panelFixture.mjs';

const fixture = panelFixture();

async function choose(panel, group, name) {
    await panel.disclose('setup');
    await panel.page.getByRole('group', { name: group }).getByRole('button', { name, exact: true }).click();
}

test('the state is changed and shown, and decides who gets a key', async () => {
    const panel = await fixture.open();
    await choose(panel, 'Operating state', 'Print');
    await panel.showsText('#device-state', 'Print');
    await panel.showsText('#status', 'State Print.');
    assert.equal(await panel.button('Print').first().getAttribute('aria-pressed'), 'true');
    await panel.key('Up').click();
    await panel.isTold('SingleKey Up to PrintManager');
});

test('a state that is changed elsewhere is shown, too', async () => {
    const panel = await fixture.open();
    await fixture.simulator.take('state Error');
    await panel.showsText('#device-state', 'Error');
});

test('an action that is not valid now is refused with the reason', async () => {
    const panel = await fixture.open();
    await fixture.simulator.take('press Feed', 'tap Ok', 'release Feed');
    await panel.isTold('Refused: LoadPaper. Expected state is PrintOff, but current state is Idle.');
});

test('a key in Startup is refused aloud', async () => {
    const panel = await fixture.open();
    await fixture.simulator.enter('Startup');
    await fixture.simulator.take('tap Up');
    await panel.page.locator('#spoken-live p').first().waitFor();
    await panel.page.locator('#announced-live p.refusal').first().waitFor();
});

test('what can be pressed now follows the state', async () => {
    const panel = await fixture.open();
    const now = panel.page.getByRole('region', { name: 'What can I press now?' });
    await panel.disclose('now-details');
    await now.getByText('VolumeUp').waitFor();
    await choose(panel, 'Operating state', 'PrintOff');
    await panel.showsText('#now-state', /PrintOff/);
    await now.getByText('LoadPaper').waitFor();
    assert.equal(await now.getByText('VolumeUp').count(), 0);
    await choose(panel, 'Operating state', 'Startup');
    await panel.showsText('#now-state', /^In the state Startup no key leads to an action\./);
});

test('another model restarts the device and is known afterwards', async () => {
    const panel = await fixture.open();
    const observer = await fixture.simulator.observe();
    await choose(panel, 'Model (restarts the device)', 'Orvane');
    await observer.sees({ type: 'device', status: 'ready', model: 'Orvane' });
    await panel.showsText('#device-model', 'Orvane');
    await panel.showsText('#status', /^The daemon is ready, on model Orvane\./);
    await panel.key('Function').click();
    await observer.sees({ type: 'speech', observation: 'speak EmbosserCore 30' });
    observer.close();
    await fixture.simulator.restart({ model: 'Pellit' });
});

test('a daemon that crashes is reported, and the device can be restarted', async () => {
    const panel = await fixture.open();
    await fixture.simulator.crashDaemon();
    await panel.showsText('#device-status', 'ended');
    await panel.showsText('#alert', /^The daemon was ended by the signal SIGSEGV/);
    await panel.showsText('#ended-reason', /./);
    await panel.showsText('#now-state', 'Nothing: the daemon has ended.');
    await panel.key('Up').click();
    await panel.showsText('#alert', /./);
    await panel.button('Restart the device').click();
    await panel.showsText('#device-status', 'ready');
    assert.equal(await panel.page.locator('#ended').isVisible(), false);
    await panel.key('Menu').click();
    await panel.isTold('SingleKey Menu to UserMenu');
});

test('a second page sees the same keys, words and actions', async () => {
    const [one, other] = [await fixture.open(), await fixture.open()];
    await one.key('Up').hover();
    await one.page.mouse.down();
    await eventually(async () => assert.match(await other.key('Up').getAttribute('class'), /\bdown\b/));
    await one.page.mouse.up();
    for (const panel of [one, other]) {
        await panel.isTold(/^Up$/);
        await panel.isTold('SingleKey Up to UserMenu');
    }
    for (const place of ['#spoken p', '#announced p']) {
        assert.deepEqual(await other.texts(place), await one.texts(place));
    }
    assert.doesNotMatch(await other.key('Up').getAttribute('class'), /\bdown\b/);
});

test('a page that is opened later shows the past, but reads nothing of it out', async () => {
    const first = await fixture.open();
    await fixture.simulator.take('tap Down'); // another line than the past has
    await first.isTold('SingleKey Down to UserMenu');
    const second = await fixture.open();
    assert.deepEqual(await second.texts('#announced p'), await first.texts('#announced p'));
    assert.deepEqual(await second.texts('[data-part=live] p, [role=log] p'), []);
});

test('a page that was cut off says so once, comes back, and reads nothing twice', async () => {
    const relay = await fixture.relay();
    const panel = await fixture.open({ url: relay.url });
    await panel.page.evaluate(() => {
        window.alerts = [];
        new MutationObserver(() => window.alerts.push(document.getElementById('alert').innerText)).observe(
            document.getElementById('alert'),
            { childList: true },
        );
    });
    await panel.key('Menu').click();
    await panel.isTold('SingleKey Menu to UserMenu');
    await panel.key('Up').hover();
    await panel.page.mouse.down();
    await relay.cut();
    await panel.showsText('#device-status', 'not connected');
    await panel.page.mouse.up();
    await fixture.simulator.settle();
    await relay.mend();
    await panel.showsText('#status', 'Connected again.');
    assert.deepEqual(await panel.texts('[data-part=live] p'), []);
    assert.match((await panel.texts('#announced p')).at(-1), /^SingleKey Menu to UserMenu/);
    const told = (await panel.page.evaluate('window.alerts')).filter(text => text.includes('no connection'));
    assert.equal(told.length, 1);
    await panel.key('Menu').click();
    await panel.isTold('SingleKey Menu to UserMenu');
    assert.equal((await panel.texts('[data-part=live] p.announcement')).length, 1);
});

test('a page without a simulator says that a key was not sent', async () => {
    const relay = await fixture.relay();
    const panel = await fixture.open({ url: relay.url });
    await relay.cut();
    // A request that was under way may fail after the event stream, and its message is then the last.
    await panel.showsText('#alert', /^(There is no connection to the simulator|The simulator does not answer\.$)/);
    await panel.showsText('#device-status', 'not connected');
    await panel.page.evaluate(() => document.getElementById('alert').replaceChildren());
    await panel.key('Menu').click();
    await panel.showsText('#alert', 'The simulator does not answer.');
});

test('a sixth page of one browser waits until one of the five closes', async () => {
    const panels = [await fixture.open()];
    while (panels.length < 5) {
        panels.push(await panels[0].another());
    }
    const sixth = await panels[0].another({ status: 'not connected' });
    await sixth.showsText(
        '#alert',
        'This browser has the panel open in as many pages as it can serve. The page keeps trying.',
    );
    await panels[0].key('Menu').click();
    await panels[0].isTold('SingleKey Menu to UserMenu');
    assert.equal(await sixth.page.locator('#device-status').innerText(), 'not connected');
    await panels[4].page.close();
    await sixth.showsText('#device-status', 'ready');
    await sixth.showsText('#status', 'Connected again.');
    await sixth.key('Up').click();
    await panels[0].isTold('SingleKey Up to UserMenu');
});

test('a press whose answer is lost is released all the same', async () => {
    const panel = await fixture.open();
    const observer = await fixture.simulator.observe();
    await panel.page.route(
        '**/api/steps',
        async route => {
            await route.fetch();
            await route.abort();
        },
        { times: 1 },
    );
    await panel.key('Up').hover();
    await panel.page.mouse.down();
    await observer.sees({ type: 'key', key: 'Up', value: 1 });
    await observer.sees({ type: 'key', key: 'Up', value: 0 });
    await panel.page.mouse.up();
    observer.close();
});
