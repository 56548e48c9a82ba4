// SPDX-License-Identifier: MIT
// What a screen reader is given: sentences in their order, each once, never more than one announcement a second.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { eventually } from './eventually.mjs';
import { panelFixture } from './panelFixture.mjs';

const fixture = panelFixture();

const nbsp = '\u00a0';

/// An announcer on a page whose clock stands still.
class StillAnnouncer {
    static async open() {
        const still = new StillAnnouncer();
        const { page } = await fixture.open();
        await page.clock.install();
        await page.clock.pauseAt(Date.now() + 1000);
        await page.evaluate(async () => {
            const { Announcer } = await import('./announcer.js');
            window.log = document.createElement('div');
            window.announcer = new Announcer(window.log);
        });
        still.page = page;
        return still;
    }

    announce(...texts) {
        return this.page.evaluate(all => all.forEach(text => window.announcer.announce(text, 'event')), texts);
    }

    announceLogged(...texts) {
        return this.page.evaluate(all => all.forEach(text => window.announcer.announce(text, 'reply', true)), texts);
    }

    /// Calls a member without arguments.
    call(name) {
        return this.page.evaluate(member => window.announcer[member](), name);
    }

    pass(milliseconds) {
        return this.page.clock.runFor(milliseconds);
    }

    async isGiven(...texts) {
        const given = await this.page.evaluate(() => [...window.log.children].map(({ textContent }) => textContent));
        assert.deepEqual(given, texts);
    }
}

test('sentences that come together are announced together, in their order and with stops', async () => {
    const still = await StillAnnouncer.open();
    await still.announce('Up', 'Up, single key, to UserMenu', 'State Idle.');
    await still.pass(99);
    await still.isGiven();
    await still.pass(1);
    await still.isGiven('Up. Up, single key, to UserMenu. State Idle.');
});

test('what the log says follows what comes within 100 ms after it, and keeps its order', async () => {
    const still = await StillAnnouncer.open();
    await still.announce('Before');
    await still.pass(100);
    await still.announceLogged('Refused: one', 'Refused: two');
    await still.pass(99);
    await still.announce('Up', 'Down');
    await still.pass(1);
    await still.announce('Later');
    await still.pass(1000);
    await still.isGiven('Before.', `Up. Down. Refused: one. Refused: two. Later.${nbsp}`);
});

test('an announcement is one text node', async () => {
    const still = await StillAnnouncer.open();
    await still.announce('Up', 'Down');
    await still.pass(100);
    const nodes = await still.page.evaluate(() => [...window.log.firstChild.childNodes].map(node => node.nodeType));
    assert.deepEqual(nodes, [3]);
});

test('equal sentences next to each other are counted', async () => {
    const still = await StillAnnouncer.open();
    await still.announce('Up', 'Up', 'Up', 'Down.', 'Down.', 'Up');
    await still.pass(100);
    await still.isGiven('Up, 3 times. Down, 2 times. Up.');
});

test('there is one announcement a second', async () => {
    const still = await StillAnnouncer.open();
    await still.announce('One');
    await still.pass(100);
    await still.announce('Two');
    await still.pass(999);
    await still.announce('Three');
    await still.isGiven('One.');
    await still.pass(1);
    await still.isGiven('One.', `Two. Three.${nbsp}`);
});

test('an announcement that equals the one before differs in its end', async () => {
    const still = await StillAnnouncer.open();
    for (let times = 0; times < 3; ++times) {
        await still.announce('Up');
        await still.pass(1000);
    }
    await still.isGiven('Up.', `Up.${nbsp}`, 'Up.');
});

test('nothing is announced while a key is held, and all of it 200 ms after its release', async () => {
    const still = await StillAnnouncer.open();
    await still.announce('Before');
    await still.call('hold');
    await still.announce('Up', 'Up');
    await still.pass(5000);
    await still.isGiven();
    await still.call('release');
    await still.pass(199);
    await still.isGiven();
    await still.pass(1);
    await still.isGiven('Before. Up, 2 times.');
});

test('a key that is pressed again soon holds the announcement back again', async () => {
    const still = await StillAnnouncer.open();
    await still.call('hold');
    await still.announce('Up');
    await still.call('release');
    await still.pass(199);
    await still.call('hold');
    await still.pass(5000);
    await still.isGiven();
    await still.call('release');
    await still.pass(200);
    await still.isGiven('Up.');
});

test('a sentence that floods is announced when it begins, and counted when it has ended', async () => {
    const still = await StillAnnouncer.open();
    await still.announce('Ring');
    await still.pass(100);
    for (let times = 0; times < 5; ++times) {
        await still.announce(...new Array(30).fill('Ring'));
        await still.pass(1000);
        await still.isGiven('Ring.');
    }
    await still.pass(1000);
    await still.isGiven('Ring.', `Ring, 150 times.${nbsp}`);
});

test('another sentence ends a flood, and taps are not a flood', async () => {
    const still = await StillAnnouncer.open();
    await still.announce('Ring');
    await still.pass(100);
    await still.announce(...new Array(30).fill('Ring'));
    await still.pass(1000);
    await still.announce('Help');
    await still.pass(1000);
    await still.isGiven('Ring.', `Ring, 30 times. Help.${nbsp}`);
    for (let times = 0; times < 2; ++times) {
        await still.announce(...new Array(9).fill('Up'));
        await still.pass(1000);
    }
    await still.isGiven('Ring.', `Ring, 30 times. Help.${nbsp}`, 'Up, 9 times.', `Up, 9 times.${nbsp}`);
});

test('old announcements do not pile up', async () => {
    const still = await StillAnnouncer.open();
    for (let times = 0; times < 20; ++times) {
        await still.announce(`Sentence ${times}`);
        await still.pass(1000);
    }
    assert.equal(await still.page.evaluate(() => window.log.childElementCount), 5);
});

for (const [level, ...kinds] of [
    ['all', 'action', 'event', 'reply', 'fault'],
    ['actions', 'action', 'reply', 'fault'],
    ['off', 'reply', 'fault'],
]) {
    test(`the setting "${level}" lets through: ${kinds.join(', ')}`, async () => {
        const still = await StillAnnouncer.open();
        await still.page.evaluate(chosen => {
            window.announcer.level = chosen;
            ['action', 'event', 'reply', 'fault'].forEach(kind => window.announcer.announce(kind, kind));
        }, level);
        await still.pass(100);
        await still.isGiven(`${kinds.join('. ')}.`);
    });
}

const level = panel => panel.page.getByLabel('Announce to screen readers');
const announced = panel => panel.texts('#announcements p');

test('the setting thins what the page announces and is kept in the browser', async () => {
    const panel = await fixture.open();
    await panel.disclose('sound');
    await level(panel).selectOption('Actions only');
    await panel.page.reload();
    assert.equal(await level(panel).inputValue(), 'actions');
    await panel.showsText('#device-status', 'ready');
    await fixture.simulator.take('state Print', 'wait 100', 'tap Up');
    await eventually(async () => assert.deepEqual(await announced(panel), ['Up, single key, to PrintManager.']));
});

test('while a key of the page is held from the keyboard nothing is announced', async () => {
    const panel = await fixture.open();
    await panel.key('Help').focus();
    await panel.page.keyboard.down('Space');
    await panel.isTold('KeyDescription Help to UserMenu');
    assert.deepEqual(await announced(panel), []);
    await panel.page.keyboard.up('Space');
    await eventually(async () => assert.match((await announced(panel))[0], /KeyDescription, Help, to UserMenu\.$/));
});

test('what is begun on the page is answered at each setting, and nothing else', async () => {
    const panel = await fixture.open();
    const all = [];
    const says = pattern =>
        eventually(async () => {
            all.push(...(await announced(panel)));
            assert.match(all.join(' '), pattern);
        });
    await panel.disclose('sound');
    await level(panel).selectOption('Nothing that the device does');
    await panel.disclose('setup');
    await panel.button('Print').click();
    await says(/State Print\./);
    await fixture.simulator.take('state PrintOff');
    await panel.showsText('#device-state', 'PrintOff');
    await panel.goTo('Recording');
    await panel.page
        .getByLabel('Key script')
        .setInputFiles({ name: 'script.keys', mimeType: 'text/plain', buffer: Buffer.from('state Idle\nwait 10\n') });
    await panel.button('Replay the script').click();
    await panel.reply('Replay the script');
    await says(/The device restarts\./);
    await says(/The daemon is ready, on model Pellit\./);
    await says(/Everything came as written: 0 expectations\./);
    assert.doesNotMatch(all.join(' '), /PrintOff|State Idle/);
});
