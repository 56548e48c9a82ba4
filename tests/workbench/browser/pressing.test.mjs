// SPDX-License-Identifier: MIT
// Pressing the keys of the panel: by mouse, finger, keyboard and assistive technology.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { eventually } from './eventually.mjs';
import { deviceGot } from './observer.mjs';
import { panelFixture } from './panelFixture.mjs';

const fixture = panelFixture();

test('a click of the mouse is a press and a release, spoken and announced', async () => {
    const { panel, observer } = await fixture.openObserved();
    await panel.key('Up').click();
    await panel.isTold(/^Up$/);
    await panel.isTold('SingleKey Up to UserMenu');
    await deviceGot(observer, 'Up 1', 'Up 0');
});

test('every key of the panel arrives as itself', async () => {
    const { panel, observer } = await fixture.openObserved();
    const names = await panel.page.locator('[data-key]').evaluateAll(keys => keys.map(key => key.dataset.key));
    assert.deepEqual([...names].sort(), [...(await fixture.simulator.json('/api/device')).keys].sort());
    for (const name of names) {
        await panel.key(name).click();
    }
    await deviceGot(observer, ...names.flatMap(name => [`${name} 1`, `${name} 0`]));
});

test('a held key is shown as down and repeated by the device, without requests of the page', async () => {
    const { panel, observer } = await fixture.openObserved();
    const posted = [];
    panel.page.on('request', request => request.method() === 'POST' && posted.push(request.postData()));
    await panel.key('Up').hover();
    await panel.page.mouse.down();
    await observer.sees({ type: 'key', key: 'Up', value: 2 });
    assert.match(await panel.key('Up').getAttribute('class'), /\bdown\b/);
    await panel.page.mouse.up();
    await deviceGot(observer, 'Up 1', 'Up 0');
    await eventually(async () => assert.doesNotMatch(await panel.key('Up').getAttribute('class'), /\bdown\b/));
    assert.deepEqual(posted, ['device 0\npress Up', 'device 0\nrelease Up']);
});

test('a long press is recognised while the key is held', async () => {
    const { panel, observer } = await fixture.openObserved();
    await panel.key('Help').hover();
    await panel.page.mouse.down();
    await panel.isTold('KeyDescription Help to UserMenu');
    await panel.page.mouse.up();
    await deviceGot(observer, 'Help 1', 'Help 0');
});

test('the mouse may leave the key that it holds', async () => {
    const { panel, observer } = await fixture.openObserved();
    await panel.key('Up').hover();
    await panel.page.mouse.down();
    await panel.page.mouse.move(5, 5);
    await observer.sees({ type: 'key', key: 'Up', value: 2 });
    await panel.page.mouse.up();
    await deviceGot(observer, 'Up 1', 'Up 0');
});

test('another button of the mouse presses nothing', async () => {
    const { panel, observer } = await fixture.openObserved();
    await panel.key('Up').click({ button: 'right' });
    await panel.key('Down').click();
    await deviceGot(observer, 'Down 1', 'Down 0');
});

test('two fingers press a chord', async () => {
    await fixture.simulator.outlastWindow();
    const { panel, observer } = await fixture.openObserved({ hasTouch: true });
    await panel.touch('Function', 'Up');
    await panel.isTold('VolumeUp Function Up to UserMenu');
    await panel.liftFingers();
    await eventually(() => assert.equal(observer.keyRecords().filter(record => record.endsWith(' 0')).length, 2));
    const presses = observer.keyRecords().filter(record => record.endsWith(' 1'));
    assert.deepEqual(presses, ['Function 1', 'Up 1']);
    observer.close();
});

test('a tap with a finger is one press', async () => {
    const { panel, observer } = await fixture.openObserved({ hasTouch: true });
    await panel.key('Menu').tap();
    await panel.isTold('SingleKey Menu to UserMenu');
    await deviceGot(observer, 'Menu 1', 'Menu 0');
});

for (const name of ['Space', 'Enter']) {
    test(`${name} holds the key that has the focus`, async () => {
        const { panel, observer } = await fixture.openObserved();
        await panel.key('Help').focus();
        await panel.page.keyboard.down(name);
        await panel.page.keyboard.down(name); // a repetition of the keyboard
        await panel.isTold('KeyDescription Help to UserMenu');
        await panel.page.keyboard.up(name);
        await deviceGot(observer, 'Help 1', 'Help 0');
    });
}

test('a key held by the keyboard is released when the focus goes', async () => {
    const { panel, observer } = await fixture.openObserved();
    await panel.key('Up').focus();
    await panel.page.keyboard.down('Space');
    await observer.sees({ type: 'key', key: 'Up', value: 1 });
    await panel.key('Down').focus();
    await deviceGot(observer, 'Up 1', 'Up 0');
});

test('a click of assistive technology is a press and a release', async () => {
    const { panel, observer } = await fixture.openObserved();
    await panel.key('Menu').evaluate(key => key.click());
    await panel.isTold('SingleKey Menu to UserMenu');
    await deviceGot(observer, 'Menu 1', 'Menu 0');
});

test('latched keys stay down until they are pressed again', async () => {
    await fixture.simulator.outlastWindow();
    const { panel, observer } = await fixture.openObserved();
    await panel.page.getByRole('switch', { name: 'Latch keys' }).click();
    await panel.key('Function').click();
    await observer.sees({ type: 'key', key: 'Function', value: 1 });
    assert.equal(await panel.key('Function').getAttribute('aria-pressed'), 'true');
    assert.equal(await panel.key('Up').getAttribute('aria-pressed'), 'false');
    await panel.key('Up').focus();
    await panel.page.keyboard.press('Enter');
    await panel.isTold('VolumeUp Function Up to UserMenu');
    await panel.page.keyboard.press('Enter');
    await panel.key('Function').click();
    await deviceGot(observer, 'Function 1', 'Up 1', 'Up 0', 'Function 0');
    await eventually(async () => assert.equal(await panel.key('Function').getAttribute('aria-pressed'), 'false'));
});

test('all latched keys can be released at once, and by leaving the latch mode', async () => {
    const { panel, observer } = await fixture.openObserved();
    const latch = panel.page.getByRole('switch', { name: 'Latch keys' });
    await latch.click();
    await panel.key('Help').click();
    await panel.key('Up').click();
    await panel.button('Release all').click();
    await panel.key('Ok').click();
    await latch.click();
    await deviceGot(observer, 'Help 1', 'Up 1', 'Help 0', 'Up 0', 'Ok 1', 'Ok 0');
    assert.equal(await panel.key('Ok').getAttribute('aria-pressed'), null);
});

test('the keys come from the input device that is chosen', async () => {
    const { panel, observer } = await fixture.openObserved();
    await panel.disclose('setup');
    await panel.page.getByRole('radio', { name: 'Device 1' }).check();
    await panel.key('Menu').click();
    await observer.sees({ type: 'key', device: 1, key: 'Menu', value: 0 });
    await panel.isTold('SingleKey Menu to UserMenu');
    assert.deepEqual(
        observer.entries.filter(entry => entry.device === 0),
        [],
    );
    observer.close();
});

test('keys that the page holds are released when it is closed', async () => {
    const { panel, observer } = await fixture.openObserved();
    await panel.key('Up').hover();
    await panel.page.mouse.down();
    await observer.sees({ type: 'key', key: 'Up', value: 1 });
    await panel.page.close();
    await deviceGot(observer, 'Up 1', 'Up 0');
});

test('keys that the page holds are released when it shows another view', async () => {
    const { panel, observer } = await fixture.openObserved();
    await panel.key('Up').hover();
    await panel.page.mouse.down();
    await observer.sees({ type: 'key', key: 'Up', value: 1 });
    await panel.page.evaluate(() => {
        location.hash = '#timeline';
    });
    await deviceGot(observer, 'Up 1', 'Up 0');
});

test('many quick keys arrive in their order', async () => {
    const { panel, observer } = await fixture.openObserved();
    const names = ['Up', 'Down', 'Right', 'Ok', 'Up', 'Chs', 'One', 'Ten'];
    await panel.page.evaluate(keys => {
        for (const key of keys) {
            const button = document.querySelector(`[data-key="${key}"]`);
            button.dispatchEvent(new KeyboardEvent('keydown', { key: ' ' }));
            button.dispatchEvent(new KeyboardEvent('keyup', { key: ' ' }));
        }
    }, names);
    await deviceGot(observer, ...names.flatMap(name => [`${name} 1`, `${name} 0`]));
});

for (const width of [320, 1024, 1280]) {
    test(`names fit in the keys of a page of ${width} px`, async () => {
        const { page } = await fixture.open({ viewport: { width, height: 900 } });
        const overflowing = await page
            .locator('.key')
            .evaluateAll(keys => keys.filter(key => key.scrollWidth > key.clientWidth).map(key => key.dataset.key));
        assert.deepEqual(overflowing, []);
    });
}
