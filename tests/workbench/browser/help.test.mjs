// SPDX-License-Identifier: MIT
// What helps at the keys: the view "Help", Escape, letters for the keys, and the feedback next to them.
import assert from 'node:assert/strict';
import { readFile } from 'node:fs/promises';
import { test } from 'node:test';

import { violations } from './axe.mjs';
import { eventually } from './eventually.mjs';
import { deviceGot } from './observer.mjs';
import { panelFixture } from './panelFixture.mjs';

const fixture = panelFixture();

test('the help links to all documents of the package, which the simulator has', async () => {
    const panel = await fixture.open({ view: '#help' });
    await panel.page.getByRole('heading', { name: 'Words on this page' }).waitFor();
    const addresses = await panel.page.locator('#help a').evaluateAll(links => links.map(({ pathname }) => pathname));
    for (const address of addresses) {
        const answer = await fetch(new URL(address, fixture.simulator.url));
        assert.equal(answer.status, 200, address);
        assert.equal(answer.headers.get('content-type'), 'text/plain; charset=utf-8');
        assert.match(await answer.text(), /^# /, address);
    }
    const list = await readFile(new URL('../../../docs/CMakeLists.txt', import.meta.url), 'utf8');
    const installed = /set\(DOCUMENTS (.*)\)/.exec(list)[1].split(' ');
    assert.deepEqual([...addresses].sort(), installed.map(name => `/documents/${name}.md`).sort());
});

test('Escape releases the keys that the page holds, in each view', async () => {
    const { panel, observer } = await fixture.openObserved();
    await panel.page.getByRole('switch', { name: 'Latch keys' }).click();
    await panel.key('Up').click();
    await panel.key('Ok').click();
    await panel.goTo('Timeline');
    await panel.page.keyboard.press('Escape');
    await deviceGot(observer, 'Up 1', 'Ok 1', 'Up 0', 'Ok 0');
    await eventually(async () => assert.match((await panel.texts('#announcements p')).join(' '), /Released: Up, Ok\./));
});

async function switchLettersOn(panel) {
    await panel.disclose('letter-setup');
    await panel.page.getByRole('switch', { name: 'Letters press keys' }).click();
}

test('letters press no key until they are switched on, and the browser keeps that', async () => {
    const { panel, observer } = await fixture.openObserved();
    await panel.key('Menu').focus();
    await panel.page.keyboard.press('e');
    await switchLettersOn(panel);
    await panel.page.keyboard.down('e');
    await observer.sees({ type: 'key', key: 'Up', value: 2 });
    assert.equal(await panel.key('Up').getAttribute('aria-keyshortcuts'), 'e');
    await panel.page.keyboard.up('e');
    await observer.sees({ type: 'key', key: 'Up', value: 0 });
    await panel.page.reload();
    await panel.showsText('#device-status', 'ready');
    await panel.page.keyboard.press('c');
    await deviceGot(observer, 'Up 1', 'Up 0', 'Down 1', 'Down 0');
});

test('two letters are two keys that are held together', async () => {
    await fixture.simulator.outlastWindow();
    const { panel, observer } = await fixture.openObserved();
    await switchLettersOn(panel);
    await panel.page.keyboard.down('x');
    await observer.sees({ type: 'key', key: 'Function', value: 1 });
    await panel.page.keyboard.down('e');
    await panel.isTold('VolumeUp Function Up to UserMenu');
    await panel.page.keyboard.up('x');
    await panel.page.keyboard.up('e');
    await deviceGot(observer, 'Function 1', 'Up 1', 'Function 0', 'Up 0');
});

test('letters press nothing in fields, with Ctrl, in other views and in questions', async () => {
    const { panel, observer } = await fixture.openObserved();
    await switchLettersOn(panel);
    await panel.page.getByRole('textbox', { name: 'Up', exact: true }).press('e');
    await panel.key('Menu').focus();
    await panel.page.keyboard.press('Control+e');
    await panel.goTo('Recording');
    await panel.page.keyboard.press('e');
    await panel.goTo('Panel');
    await panel.page.keyboard.press('c');
    await deviceGot(observer, 'Down 1', 'Down 0');
});

test('a key held by a letter is released when the window loses the focus', async () => {
    const { panel, observer } = await fixture.openObserved();
    await switchLettersOn(panel);
    await panel.page.keyboard.down('e');
    await observer.sees({ type: 'key', key: 'Up', value: 1 });
    await panel.page.evaluate(() => window.dispatchEvent(new Event('blur')));
    await deviceGot(observer, 'Up 1', 'Up 0');
});

test('each key can get another letter, but no character that has another use, and no letter twice', async () => {
    const { panel, observer } = await fixture.openObserved();
    await switchLettersOn(panel);
    const field = panel.page.getByRole('textbox', { name: 'Up', exact: true });
    const enter = async text => {
        await field.fill(text);
        await field.press('Tab');
    };
    await enter('/');
    await panel.showsText('#letters-fault', 'Up: only a letter or a digit can press a key.');
    assert.equal(await field.getAttribute('aria-invalid'), 'true');
    assert.deepEqual(await violations(panel.page), []);
    await enter('c');
    await panel.showsText('#letters-fault', 'Up: c already presses Down.');
    await enter('7');
    await panel.showsText('#letters-fault', '');
    await panel.key('Menu').focus();
    await panel.page.keyboard.press('e');
    await panel.page.keyboard.press('7');
    await observer.sees({ type: 'key', key: 'Up', value: 0 });
    await panel.button('Back to the usual letters').click();
    await panel.key('Menu').focus();
    await panel.page.keyboard.press('7');
    await panel.page.keyboard.press('e');
    await deviceGot(observer, 'Up 1', 'Up 0', 'Up 1', 'Up 0');
});

test('what was spoken and announced last is in sight next to the keys of a narrow page', async () => {
    const panel = await fixture.open({ viewport: { width: 320, height: 256 } });
    await panel.key('Ten').click();
    await panel.showsText('#strip-spoken', 'Spoken: Ten');
    await panel.showsText('#strip-announced', 'SingleKey Ten to UserMenu');
    const strip = await panel.page.locator('#strip').boundingBox();
    assert(strip.y >= 0 && strip.y + strip.height <= 256, JSON.stringify(strip));
    const key = await panel.key('Ten').boundingBox();
    assert(key.y >= 0 && key.y + key.height <= strip.y, `${JSON.stringify(key)} is under ${JSON.stringify(strip)}`);
    await panel.page.setViewportSize({ width: 1280, height: 900 });
    assert.equal(await panel.page.locator('#strip').isVisible(), false);
});

test('an error can be dismissed', async () => {
    const panel = await fixture.open({ view: '#commands' });
    await panel.page.getByLabel("Line for the daemon's console").fill('x'.repeat(70_000));
    await panel.button('Send the line').click();
    await panel.page.locator('#alert:not(:empty)').waitFor();
    await panel.button('Dismiss the error').click();
    await panel.showsText('#alert', '');
    assert.equal(await panel.page.locator('#dismiss').isVisible(), false);
    assert.equal(await panel.page.locator(':focus').innerText(), 'Commands');
});

test('equal announcements are one line, with their number and the time of the last', async () => {
    const panel = await fixture.open();
    const observer = await fixture.simulator.observe();
    for (let times = 0; times < 3; ++times) {
        const last = observer.entries.at(-1);
        await fixture.simulator.take('tap Menu');
        await observer.sees({ type: 'announcement', keys: ['Menu'] }, last);
    }
    await panel.showsText('#announced-live', /^SingleKey Menu to UserMenu × 3\s+\d+\.\d s$/);
    await fixture.simulator.take('command SimulateKey as WwwApi Released Menu');
    await panel.showsText('#announced-live', /s\s+SingleKey Menu to UserMenu from WwwApi\s+\d+\.\d s$/);
    observer.close();
});

test('many announcements scroll, and the last one is in sight', async () => {
    const panel = await fixture.open({ viewport: { width: 1280, height: 500 } });
    const senders = ['WwwApi', 'ServiceTool'];
    for (let times = 0; times < 12; ++times) {
        await fixture.simulator.take(`command SimulateKey as ${senders[times % 2]} Released Menu`);
    }
    await eventually(async () => assert.equal(await panel.page.locator('#announced-live p').count(), 12));
    const place = panel.page.locator('.announcements');
    assert(await place.evaluate(each => each.scrollHeight > each.clientHeight));
    assert(await place.evaluate(each => each.scrollTop + each.clientHeight >= each.scrollHeight - 2));
    await place.evaluate(each => each.scrollTo(0, 0));
    await fixture.simulator.take('tap Menu');
    await panel.isTold(/to UserMenu\s/);
    assert.equal(await place.evaluate(each => each.scrollTop), 0);
});

/// The keys whose label is wider than they are (runs in the page).
function wideLabels() {
    const range = document.createRange();
    const isWide = key =>
        [...key.querySelectorAll('span:not(.for-readers)')].some(label => {
            range.selectNodeContents(label);
            return range.getBoundingClientRect().width > key.clientWidth;
        });
    return [...document.querySelectorAll('.key')].filter(isWide).map(({ dataset }) => dataset.key);
}

test('the labels stay on their keys, however wide the page is', async () => {
    const panel = await fixture.open();
    for (const width of [320, 360, 400, 417, 480, 481, 520, 609, 768, 992, 1024, 1100, 1216, 1280]) {
        await panel.page.setViewportSize({ width, height: 800 });
        assert.deepEqual(await panel.page.evaluate(wideLabels), [], `${width}`);
    }
});
