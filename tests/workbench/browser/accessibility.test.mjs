// SPDX-License-Identifier: MIT
// What the page is to those who do not see it, use the keyboard alone, or need it large or in other colours.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { violations } from './axe.mjs';
import { eventually } from './eventually.mjs';
import { panelFixture } from './panelFixture.mjs';

const fixture = panelFixture();
const views = ['Panel', 'Timeline', 'Key card', 'Key lists', 'Recording', 'Commands', 'Help'];

/// A page with something to show in each of its views.
async function openFull(options) {
    const panel = await fixture.open(options);
    await fixture.simulator.take(
        'tap Menu',
        'press Feed',
        'tap Ok',
        'release Feed',
        'command GetShortcutKeyList',
        'console HELP',
    );
    await panel.isTold('Refused:');
    await panel.page.locator('#answers .answer').first().waitFor({ state: 'attached' });
    await panel.page.locator('#card-tables table').first().waitFor({ state: 'attached' });
    return panel;
}

async function goTo(panel, view) {
    await panel.goTo(view);
    if (view === 'Timeline') {
        await panel.page.getByText('Timeline as a table').click();
        await panel.page.getByRole('row').nth(1).waitFor();
        await panel.button('Pause').click();
        while (!(await panel.page.locator('.timeline-event').innerText()).startsWith('Key:')) {
            await panel.button('Previous event').click();
        }
        await panel.button('Why?').click();
        await panel.page.locator('.timeline-answer pre').waitFor();
    }
}

test('no view has a fault that axe knows, in any colours', async () => {
    const panel = await openFull({ reducedMotion: 'reduce' }); // colours change at once
    for (const view of views) {
        await goTo(panel, view);
        assert.deepEqual(await violations(panel.page), [], view);
        for (const colours of [{ colorScheme: 'dark' }, { forcedColors: 'active' }]) {
            await panel.page.emulateMedia(colours);
            assert.deepEqual(await violations(panel.page, 'color-contrast'), [], `${view} ${JSON.stringify(colours)}`);
        }
        await panel.page.emulateMedia({ colorScheme: 'light', forcedColors: 'none' });
    }
});

test('no view has a fault that axe knows, on a narrow page', async () => {
    const panel = await openFull({ viewport: { width: 320, height: 640 } });
    for (const view of views) {
        await goTo(panel, view);
        assert.deepEqual(await violations(panel.page), [], view);
    }
});

test('a page whose daemon has ended has no fault that axe knows', async () => {
    const panel = await fixture.open();
    await fixture.simulator.crashDaemon();
    await panel.showsText('#device-status', 'ended');
    assert.deepEqual(await violations(panel.page), []);
});

test('a page whose daemon hangs has no fault that axe knows', async () => {
    const panel = await fixture.open();
    await fixture.simulator.hangDaemon();
    await panel.showsText('#device-status', 'not answering');
    await fixture.simulator.take('command GetLastKey');
    await panel.goTo('Commands');
    await panel.page.locator('#answers .fault').waitFor();
    assert.deepEqual(await violations(panel.page), []);
    await fixture.simulator.resumeDaemon();
});

for (const view of ['Panel', 'Timeline']) {
    test(`the view ${view} without a connection has no fault that axe knows`, async () => {
        const relay = await fixture.relay();
        const panel = await fixture.open({ url: relay.url });
        await panel.goTo(view);
        await relay.cut();
        await panel.showsText('#device-status', 'not connected');
        assert.deepEqual(await violations(panel.page), []);
    });
}

for (const width of [1280, 320]) {
    test(`faults of lists, and a question, have no fault that axe knows, at ${width} pixels`, async () => {
        const panel = await fixture.open({ view: '#lists', viewport: { width, height: 900 }, reducedMotion: 'reduce' });
        const list = panel.page.getByLabel('Combinations: modifierKeyList.json');
        const rows = ['Up', 'Up', 'Upp'].map(key => `{ "keys": ["Ok", "${key}"], "validOnState": "Idle" }`);
        await list.fill(`{ "ModifierKeys": [${rows}] }`);
        await panel.button('Check').click();
        await panel.page.locator('#list-modifier-findings .fault').first().waitFor();
        await panel.button('What changes').click();
        await panel.page.locator('#changes li').first().waitFor();
        for (const colours of [{ colorScheme: 'dark' }, { forcedColors: 'active' }]) {
            await panel.page.emulateMedia(colours);
            assert.deepEqual(await violations(panel.page, 'color-contrast'), []);
        }
        await panel.page.emulateMedia({ colorScheme: 'light', forcedColors: 'none' });
        assert.deepEqual(await violations(panel.page), []);
        assert.deepEqual(await panel.page.evaluate(outOfSight), []);
        await list.fill('{');
        await panel.button('Try').click();
        await panel.page.locator('#list-log .fault').waitFor();
        assert.deepEqual(await violations(panel.page), []);
        await panel.page.emulateMedia({ colorScheme: 'dark' });
        assert.deepEqual(await violations(panel.page, 'color-contrast'), []);
        await list.fill('[');
        await panel.button('Back to the installed lists').click();
        await panel.question.waitFor();
        assert.deepEqual(await violations(panel.page, 'color-contrast'), []);
        await panel.page.emulateMedia({ colorScheme: 'light' });
        assert.deepEqual(await violations(panel.page), []);
        assert.deepEqual(await panel.page.evaluate(outOfSight), []);
        assert.match(await focused(panel), /^dialog "Take the installed lists\? What you have typed in .*"$/);
        await panel.reply('Take the installed lists');
        await panel.showsText('#list-log', 'The daemon has read all three lists.');
    });
}

for (const width of [1280, 320]) {
    test(`learning, and a task, have no fault that axe knows, at ${width} pixels`, async () => {
        const panel = await fixture.open({ viewport: { width, height: 900 }, reducedMotion: 'reduce' });
        await panel.page.locator('#card-tables table').first().waitFor({ state: 'attached' });
        await panel.page.getByRole('switch', { name: 'Learn' }).check();
        assert.deepEqual(await violations(panel.page), []);
        await panel.button('Practise').click();
        await panel.key('Menu').click();
        await panel.page.getByText('Not yet. Menu: ').first().waitFor();
        await panel.button('Why?').click();
        await panel.page.locator('#reasons p').first().waitFor();
        assert.deepEqual(await violations(panel.page), []);
        assert.deepEqual(await panel.page.evaluate(outOfSight), []);
        for (const colours of [{ colorScheme: 'dark' }, { forcedColors: 'active' }]) {
            await panel.page.emulateMedia(colours);
            assert.deepEqual(await violations(panel.page, 'color-contrast'), [], JSON.stringify(colours));
        }
    });
}

/// The element with the focus as assistive technology has it, such as `button "Up"`.
async function focused(panel) {
    const focus = panel.page.locator(':focus');
    const [, role, name] = /^- '?(\w+)(?: "((?:[^"\\]|\\.)*)")?/.exec(await focus.ariaSnapshot());
    return role === 'text' ? focus.innerText() : `${role} "${name}"`;
}

/// All stops of the Tab key from the one that has the focus to the end of the page, whatever answers it shows.
async function tabStops(panel) {
    const stops = [];
    while ((await panel.page.locator(':focus').count()) > 0) {
        stops.push(await focused(panel));
        assert(stops.length < 200, 'Tab does not leave the page');
        await panel.page.keyboard.press('Tab');
    }
    // The rows of the key card have their own test.
    const isFirst = (stop, i) => !/^button "Do it: /.test(stop) || !/^button "Do it: /.test(stops[i - 1]);
    return stops
        .filter(stop => !stop.startsWith('Whole answer to '))
        .filter(isFirst)
        .map(stop => stop.replace(/^button "Do it: .*/, 'Do it'));
}

const buttons = (...names) => names.map(name => `button "${name}"`);
const frameStops = ['link "Skip to the view"', ...views.map(view => `link "${view}"`)];
const keys = 'On Off Feed Menu Up Help Back Ok Right Function Down Chs One Ten'.split(' '); // and FactoryReset
const endStops = [
    'group "Announced lines"',
    'Speech and screen readers',
    'checkbox "Speak aloud"',
    'combobox "Announce to screen readers"',
];

test('Tab goes through the panel in the order in which it is read', async () => {
    const panel = await fixture.open();
    await panel.disclose('setup');
    await panel.disclose('letter-setup');
    await panel.disclose('sound');
    await panel.page.locator('#skip-link').focus();
    const device = await fixture.simulator.json('/api/device');
    const { states } = await fixture.simulator.json('/api/card');
    const idle = states.find(({ state }) => state === 'Idle');
    assert.deepEqual(await tabStops(panel), [
        ...frameStops,
        ...buttons(...keys, 'Factory reset'),
        'switch "Latch keys"',
        ...buttons('Release all'),
        'Input device, state and model',
        'radio "Device 0"',
        ...buttons(...device.states, ...device.models),
        'Press keys with letters',
        'switch "Letters press keys"',
        ...[...keys, 'FactoryReset'].map(key => `textbox "${key}"`),
        ...buttons('Back to the usual letters'),
        'switch "Learn"',
        'combobox "State for learning"',
        `${idle.entries.length} actions`,
        ...endStops,
    ]);
});

for (const [view, hash, stops] of [
    [
        'Timeline',
        '#timeline',
        [
            ...buttons('Pause', 'Zoom in', 'Zoom out', 'Fit', 'Earlier', 'Later'),
            ...buttons('Previous event', 'Next event', 'Why?', 'Save as SVG', 'Print'),
            'slider "Time shown"',
            'application "Drawing"',
            'Timeline as a table',
        ],
    ],
    [
        'Key card',
        '#card',
        [
            ...buttons('Print'),
            'checkbox "One sheet for each state"',
            ...buttons('Download for the embosser (BRF)'),
            'Do it',
        ],
    ],
    [
        'Key lists',
        '#lists',
        [
            'textbox "Long presses: longKeyList.json"',
            'button "Load longKeyList.json from a file"',
            ...buttons('Save longKeyList.json'),
            'textbox "Combinations: modifierKeyList.json"',
            'button "Load modifierKeyList.json from a file"',
            ...buttons('Save modifierKeyList.json'),
            'textbox "Shortcuts: shortcutKeyList.json"',
            'button "Load shortcutKeyList.json from a file"',
            ...buttons('Save shortcutKeyList.json'),
            ...buttons('Check', 'What changes', 'Try', 'Back to the installed lists'),
        ],
    ],
    [
        'Recording',
        '#record',
        [
            ...buttons('Start a new recording', 'Download the recording', 'Download the previous recording'),
            'button "Key script"',
            ...buttons('Replay the script', 'Stop the replay', 'Play the demonstration'),
        ],
    ],
    [
        'Commands',
        '#commands',
        [
            'combobox "Sent by the service"',
            ...buttons(
                'Send GetLastKey',
                'Send GetLongKeysTimeout',
                'Send GetModifierKeyList',
                'Send GetShortcutKeyList',
                'Send StartTestMode',
                'Send GetTestResult',
            ),
            'combobox "Key action"',
            'combobox "Key"',
            ...buttons('Send SimulateKey'),
            'textbox "Keys of the combination, in their order"',
            ...buttons('Send SimulateModifier'),
            'textbox "Keys of the shortcut, in their order"',
            ...buttons('Send SimulateShortcut'),
            'textbox "Statements to do"',
            ...buttons('Do the statements'),
            'textbox "Line for the daemon\'s console"',
            ...buttons('Send the line'),
            'group "Console"',
        ],
    ],
]) {
    test(`Tab goes through the view ${view} in the order in which it is read`, async () => {
        await fixture.simulator.restart(); // so that there is a previous recording
        const panel = await fixture.open({ view: hash });
        await panel.disclose('sound');
        await panel.page.locator('#skip-link').focus();
        assert.deepEqual(await tabStops(panel), [...frameStops, ...stops, ...endStops]);
    });
}

/// Presses Tab until the element with that role and name has the focus.
async function tabTo(panel, wanted) {
    for (let times = 0; times < 100; ++times) {
        await panel.page.keyboard.press('Tab');
        if ((await panel.page.locator(':focus').count()) > 0 && (await focused(panel)) === wanted) {
            return;
        }
    }
    assert.fail(`Tab does not come to ${wanted}`);
}

async function activate(panel, wanted) {
    await tabTo(panel, wanted);
    await panel.page.keyboard.press('Enter');
}

test('a session by keyboard alone', async () => {
    const panel = await fixture.open();
    await activate(panel, 'Input device, state and model');
    await activate(panel, 'button "Print"');
    await panel.showsText('#device-state', 'Print');
    await panel.page.keyboard.press('Shift+Tab');
    await activate(panel, 'link "Skip to the view"');
    assert.equal(await focused(panel), 'heading "Panel"');
    await activate(panel, 'button "Up"');
    await panel.isTold('SingleKey Up to PrintManager');
    await activate(panel, 'link "Commands"');
    await eventually(async () => assert.equal(await focused(panel), 'heading "Commands"'));
    await activate(panel, 'button "Send GetLastKey"');
    await panel.page.locator('#answers').getByText('key=103').waitFor();
    await activate(panel, 'link "Key card"');
    await eventually(async () => assert.equal(await focused(panel), 'heading "Key card"'));
    const download = panel.page.waitForEvent('download');
    await activate(panel, 'button "Download for the embosser (BRF)"');
    await download;
});

/// Everything that can be used or read: the controls as assistive technology has them, and the words on the page.
/// The picture of the timeline names what it has room for; its table has all. Announcements come and go.
async function content(panel) {
    const tree = await panel.page.locator('body').ariaSnapshot();
    const controls = tree.match(/(button|link|textbox|combobox|checkbox|switch|radio|slider|heading) ".*?"/g);
    const words = await panel.page.evaluate(() => {
        const changing = document.querySelectorAll('.timeline-svg, #announcements, .strip');
        changing.forEach(element => {
            element.style.visibility = 'hidden';
        });
        const text = document.body.innerText.trim();
        changing.forEach(element => {
            element.style.visibility = '';
        });
        return text.split(/\s+/);
    });
    return [...controls, ...words].sort();
}

test('at 400 % nothing is lost and nothing scrolls sideways, the timeline apart', async () => {
    const panel = await openFull();
    for (const view of views) {
        await panel.page.setViewportSize({ width: 1280, height: 1024 });
        await goTo(panel, view);
        const whole = await content(panel);
        await panel.page.setViewportSize({ width: 320, height: 256 });
        assert.deepEqual(await content(panel), whole, view);
        assert.deepEqual(await panel.page.evaluate(outOfSight), [], view);
    }
});

/// What sticks out of the page sideways, or is cut off by a box that does not scroll (runs in the page).
function outOfSight() {
    const width = document.documentElement.clientWidth;
    const isMeant = element => element.closest('.timeline-frame, .timeline-table-frame, .skip-link, [hidden]');
    const isCut = element =>
        getComputedStyle(element).overflowX === 'hidden' && element.scrollWidth > element.clientWidth + 1;
    const wrong = [...document.querySelectorAll('body *')].filter(element => {
        const box = element.getBoundingClientRect();
        return box.width > 1 && !isMeant(element) && (box.right > width + 1 || box.left < -1 || isCut(element));
    });
    const page = document.documentElement.scrollWidth > width ? ['the page'] : [];
    return [
        ...page,
        ...wrong.map(
            element => `${element.tagName} ${element.id} ${element.className} ${element.textContent.slice(0, 40)}`,
        ),
    ];
}

test('all that is pressed is large enough for a finger', async () => {
    const panel = await openFull({ viewport: { width: 320, height: 640 } });
    for (const view of views) {
        await panel.goTo(view);
        const small = await panel.page
            .locator('button, select, input:not([type=checkbox], [type=radio]), label.choice, nav a, summary')
            .evaluateAll(all =>
                all
                    .map(one => ({ name: one.textContent || one.id, box: one.getBoundingClientRect() }))
                    .filter(({ box }) => box.width > 0 && (box.width < 43.5 || box.height < 43.5))
                    .map(({ name, box }) => `${name} ${box.width} x ${box.height}`),
            );
        assert.deepEqual(small, [], view);
    }
});

test('nothing moves where motion is not wanted', async () => {
    const panel = await openFull({ reducedMotion: 'reduce' });
    await panel.key('Up').hover();
    await panel.page.mouse.down();
    await eventually(async () => assert.match(await panel.key('Up').getAttribute('class'), /\bdown\b/));
    const moving = await panel.page.evaluate(
        () => document.getAnimations().filter(one => one.effect.getComputedTiming().activeDuration > 1).length,
    );
    assert.equal(moving, 0);
    await panel.page.mouse.up();
});

test('a key press is in the live region once, in words', async () => {
    const panel = await fixture.open();
    const region = panel.page.locator(':is([aria-live], [role=log], [role=status], [role=alert]):not(dialog *)');
    assert.equal(await region.count(), 1);
    assert.deepEqual(await region.locator('p').allTextContents(), []);
    await panel.key('Up').click();
    await eventually(async () =>
        assert.deepEqual(
            (await region.locator('p').allTextContents()).map(text => text.trim()),
            ['Up.', 'Up, single key, to UserMenu.'],
        ),
    );
});

test('the page has one main heading, its landmarks and a language', async () => {
    const panel = await fixture.open();
    assert.equal(await panel.page.getByRole('heading', { level: 1 }).count(), 1);
    for (const role of ['banner', 'navigation', 'main', 'complementary', 'contentinfo']) {
        assert.equal(await panel.page.getByRole(role).count(), 1, role);
    }
    assert.equal(await panel.page.locator('html').getAttribute('lang'), 'en');
});

test('the title and the current link name the view', async () => {
    const panel = await fixture.open();
    for (const view of views) {
        await panel.goTo(view);
        assert.equal(await panel.page.title(), `${view} – Embosser front panel`);
        assert.deepEqual(await panel.page.locator('nav [aria-current=page]').allInnerTexts(), [view]);
    }
});

test('without JavaScript the page says what it needs', async () => {
    const context = await fixture.browser.newContext({ javaScriptEnabled: false });
    const page = await context.newPage();
    await page.goto(fixture.simulator.url);
    assert.match(await page.locator('noscript p').innerText(), /^This page needs JavaScript/);
    await context.close();
});
