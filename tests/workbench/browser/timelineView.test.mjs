// SPDX-License-Identifier: MIT
// The view "Timeline": the picture and the table of what happens.
import assert from 'node:assert/strict';
import { readFile } from 'node:fs/promises';
import { test } from 'node:test';

import { eventually } from './eventually.mjs';
import { panelFixture } from './panelFixture.mjs';

const fixture = panelFixture();

/// The view on a device that was started just now, so that nothing older is in it.
async function openTimeline(options) {
    await fixture.simulator.restart();
    const panel = await fixture.open(options);
    await panel.goTo('Timeline');
    return panel;
}

const picture = panel => panel.page.getByRole('img', { name: 'Timeline of keys and actions' });
const words = async panel => (await picture(panel).locator('text').allTextContents()).join('\n');
/// Looks at everything: what happened some time ago has left the sight of a picture that follows the time.
const seen = (panel, look) =>
    eventually(async () => {
        await panel.button('Fit').click();
        await look();
    });
const isDrawn = (panel, shape) =>
    seen(panel, async () => assert.notEqual(await picture(panel).locator(shape).count(), 0));
const showsWords = (panel, pattern) => seen(panel, async () => assert.match(await words(panel), pattern));

/// How long a time is in sight, and how long before the end it ends, in seconds.
async function sight(panel) {
    const text = await panel.page.getByRole('slider', { name: 'Time shown' }).getAttribute('aria-valuetext');
    const [, span, before = 0] = /^([\d.]+) s up to (?:the end|([\d.]+) s before the end)$/.exec(text);
    return { span: Number(span), before: Number(before) };
}

async function openTable(panel) {
    await panel.page.getByText('Timeline as a table').click();
    return panel.page.getByRole('table', { name: /^What happened/ });
}

/// Holds Help until its long press is announced; again until `look` finds it, for on a busy machine the announcement may
/// come too late to be taken for that of the key.
function holdHelpUntil(look) {
    return eventually(async () => {
        const observer = await fixture.simulator.observe();
        await fixture.simulator.take('press Help');
        await observer.sees({ type: 'announcement', action: 'KeyDescription' });
        await fixture.simulator.take('release Help');
        observer.close();
        await look();
    });
}

test('a long press is drawn: key, repetitions, its time, the action, the window, speech and state', async () => {
    const panel = await openTimeline();
    await holdHelpUntil(async () => {
        await panel.button('Fit').click();
        assert.notEqual(await picture(panel).locator('path.hold-end.fired').count(), 0);
    });
    await fixture.simulator.take('wait 1700', 'tap Up');
    await panel.isTold('SingleKey Up to UserMenu');
    for (const shape of [
        'path.key',
        'path.repeat',
        'path.hold',
        'path.hold-end.fired',
        'path.window',
        'path.announcement',
        'path.speech',
    ]) {
        await isDrawn(panel, shape);
    }
    await showsWords(panel, /^Help$[^]*^KeyDescription \(Help\) to UserMenu$/m);
    await showsWords(panel, /^Idle$/m);
});

test('a refused action and a command are drawn', async () => {
    const panel = await openTimeline();
    await fixture.simulator.take('press Feed', 'tap Ok', 'release Feed', 'command GetLastKey');
    await isDrawn(panel, 'path.refusal');
    await isDrawn(panel, 'path.command');
    await showsWords(panel, /^LoadPaper refused: for PrintOff, not for Idle$/m);
});

test('a restart is drawn as a break, and the runs have names', async () => {
    const panel = await openTimeline();
    await fixture.simulator.restart();
    await isDrawn(panel, 'path.break:not(:last-of-type)');
    await showsWords(panel, /^run \d+, Pellit$/m);
    const table = await openTable(panel);
    await table
        .getByRole('cell', { name: /^The device was started again: run \d+, Pellit$/ })
        .first()
        .waitFor();
});

test('the table says the same, and follows', async () => {
    const panel = await openTimeline();
    const table = await openTable(panel);
    assert.deepEqual(await table.locator('thead th[scope=col]').allInnerTexts(), ['Time', 'Kind', 'What', 'Lasts']);
    assert(!(await panel.button('Later rows').isVisible())); // a page is enough
    const text = async () => (await table.innerText()).replaceAll(/[\t ]+/g, ' ').replaceAll(/ $/gm, '');
    const recognised = /^[\d.]+ s, run \d+ Long press Help: recognised, due after 2000 ms \d+ ms$/m;
    await holdHelpUntil(async () => assert.match(await text(), recognised));
    for (const line of [
        /^[\d.]+ s, run \d+ Key Help, \d+ repetitions \d+ ms$/m,
        /^[\d.]+ s, run \d+ Announced KeyDescription \(Help\) to UserMenu$/m,
        /^[\d.]+ s, run \d+ Window Waits for more keys 1500 ms$/m,
    ]) {
        await eventually(async () => assert.match(await text(), line));
    }
    assert.equal(await table.locator('tbody tr:not(:has(th[scope=row]))').count(), 0);
});

test('zooming in shows a shorter time, zooming out a longer one, and Fit everything', async () => {
    const panel = await openTimeline();
    await fixture.simulator.take('tap Up');
    await panel.isTold('SingleKey Up to UserMenu');
    assert.deepEqual(await sight(panel), { span: 15, before: 0 });
    await panel.button('Zoom in').click();
    assert.deepEqual(await sight(panel), { span: 7.5, before: 0 });
    await panel.button('Zoom out').click();
    assert.deepEqual(await sight(panel), { span: 15, before: 0 });
    for (let times = 0; times < 5; ++times) {
        await panel.button('Zoom in').click();
    }
    await panel.button('Fit').click();
    assert((await sight(panel)).span > 1);
    await showsWords(panel, /^Idle$/m);
    await isDrawn(panel, 'path.key');
});

test('Fit keeps everything in sight while time passes, until something else is chosen', async () => {
    const panel = await openTimeline();
    await panel.button('Fit').click();
    const { span } = await sight(panel);
    await eventually(async () => assert((await sight(panel)).span > span + 2));
    assert.match(await picture(panel).locator('path.edge').first().getAttribute('d'), /^M132,/); // the left edge
    await panel.button('Zoom in').click();
    const zoomed = await sight(panel);
    await panel.button('Pause').click();
    assert.equal((await sight(panel)).span, zoomed.span);
});

test('a page that comes later shows the time that it is', async () => {
    const panel = await openTimeline();
    const lasts = async table =>
        Number.parseInt(
            await table.getByRole('row').filter({ hasText: 'Idle' }).last().getByRole('cell').last().innerText(),
            10,
        );
    const table = await openTable(panel);
    await eventually(async () => assert((await lasts(table)) > 3000));
    // Its own clock stands still, so that it shows what it received.
    const later = await fixture.open({
        view: '#timeline',
        script: () => {
            performance.now = () => 1000;
        },
    });
    const other = await openTable(later);
    await eventually(async () => assert((await lasts(other)) > 3000));
});

test('a narrow page begins with what happens now', async () => {
    const panel = await openTimeline({ viewport: { width: 320, height: 640 } });
    await isDrawn(panel, 'path.grid');
    const { left, most } = await panel.page.locator('.timeline-frame').evaluate(frame => ({
        left: frame.scrollLeft,
        most: frame.scrollWidth - frame.clientWidth,
    }));
    assert(most > 0 && left >= most - 1, `${left} of ${most}`);
});

test('a paused timeline stands still until it is resumed', async () => {
    const panel = await openTimeline();
    await panel.button('Pause').click();
    const before = await picture(panel).innerHTML();
    await fixture.simulator.take('tap Menu');
    await panel.isTold('SingleKey Menu to UserMenu');
    assert.equal(await picture(panel).innerHTML(), before);
    await panel.button('Resume').click();
    await showsWords(panel, /SingleKey \(Menu\) to UserMenu/);
});

test('a paused timeline stands still when the connection is lost and mended', async () => {
    const relay = await fixture.relay();
    const panel = await openTimeline({ url: relay.url });
    await panel.button('Pause').click();
    const before = await picture(panel).innerHTML();
    await relay.cut();
    await panel.showsText('#device-status', 'not connected');
    await relay.mend();
    await panel.showsText('#status', 'Connected again.');
    assert.equal(await picture(panel).innerHTML(), before);
    await panel.button('Resume').waitFor();
});

test('the keyboard moves through the past', async () => {
    const panel = await openTimeline();
    await fixture.simulator.take('tap Menu', 'wait 6000');
    const frame = panel.page.getByRole('application', { name: 'Drawing' });
    await frame.focus();
    for (let times = 0; times < 4; ++times) {
        await panel.page.keyboard.press('+');
    }
    await panel.page.keyboard.press('End');
    await panel.button('Resume').waitFor();
    const end = await sight(panel);
    assert(end.before < end.span);
    await panel.page.keyboard.press('ArrowLeft');
    const earlier = await sight(panel);
    assert(earlier.before > end.before);
    await panel.page.keyboard.press('Home');
    const first = await sight(panel);
    assert(first.before > earlier.before);
    await panel.page.keyboard.press('PageDown');
    assert((await sight(panel)).before < first.before);
});

test('the slider moves through the past as well', async () => {
    const panel = await openTimeline();
    for (let times = 0; times < 4; ++times) {
        await panel.button('Zoom in').click();
    }
    const slider = panel.page.getByRole('slider', { name: 'Time shown' });
    await slider.focus();
    await panel.page.keyboard.press('Home');
    await panel.button('Resume').waitFor();
    await eventually(async () => assert((await sight(panel)).before > 0));
});

test('a step of the slider is a tenth of the time that is shown, and the steps come to the end', async () => {
    const panel = await openTimeline();
    await fixture.simulator.take('tap Up', 'wait 3000');
    for (let times = 0; times < 3; ++times) {
        await panel.button('Zoom in').click();
    }
    const { span } = await sight(panel);
    const slider = panel.page.getByRole('slider', { name: 'Time shown' });
    await eventually(async () => assert((await slider.evaluate(one => one.max - one.min)) > 4000));
    await panel.button('Pause').click();
    const end = await sight(panel);
    await slider.focus();
    await panel.page.keyboard.press('ArrowLeft');
    await panel.page.keyboard.press('ArrowLeft');
    const moved = await sight(panel);
    const step = (moved.before - end.before) / 2;
    assert(step >= span / 20 && step <= span / 5, `${step} s of ${span} s`);
    await panel.page.keyboard.press('End');
    assert((await sight(panel)).before <= end.before);
});

test('the saved picture stands alone', async () => {
    const panel = await openTimeline();
    await fixture.simulator.take('tap Menu');
    await panel.isTold('SingleKey Menu to UserMenu');
    await panel.button('Pause').click();
    await panel.button('Fit').click();
    const download = panel.page.waitForEvent('download');
    await panel.button('Save as SVG').click();
    assert.equal((await download).suggestedFilename(), 'timeline.svg');
    const svg = await readFile(await (await download).path(), 'utf8');
    const alone = await panel.context.newPage();
    await alone.goto(`data:image/svg+xml;base64,${Buffer.from(svg).toString('base64')}`);
    const fill = await alone
        .locator('path.announcement')
        .first()
        .evaluate(shape => getComputedStyle(shape).fill);
    assert.equal(fill, 'rgb(13, 99, 56)');
    assert.match(await alone.locator('svg').textContent(), /SingleKey \(Menu\) to UserMenu/);
});

test('the picture has a name and a summary for who does not see it', async () => {
    const panel = await openTimeline();
    await fixture.simulator.take('tap Menu');
    await eventually(async () => {
        const summary = await panel.page.locator('#timeline-description').textContent();
        assert.match(summary, /^\d+ pressed keys, \d+ announced actions?, \d+ refusals?, \d+ spoken sentences?\./);
    });
    await picture(panel).waitFor();
});

test('time passes by itself, in steps where motion is not wanted', async () => {
    const moving = await openTimeline();
    const before = await picture(moving).innerHTML();
    await eventually(async () => assert.notEqual(await picture(moving).innerHTML(), before));
    const calm = await openTimeline({ reducedMotion: 'reduce' });
    const grid = () =>
        picture(calm)
            .locator('path.grid')
            .evaluateAll(lines => lines.map(line => line.getAttribute('d')));
    await isDrawn(calm, 'path.grid');
    // A step may fall into this second, but not into each one.
    await eventually(async () => {
        const stands = await grid();
        await calm.page.waitForTimeout(1000);
        assert.deepEqual(await grid(), stands);
    });
});

/// Counts how often scripts of the timeline ask for a frame or a timer.
function countTimelineRequests() {
    window.timelineRequests = 0;
    for (const name of ['requestAnimationFrame', 'setTimeout', 'setInterval']) {
        const original = window[name].bind(window);
        window[name] = (...values) => {
            window.timelineRequests += /timeline\w*\.js/.test(new Error().stack) ? 1 : 0;
            return original(...values);
        };
    }
}

test('the timeline asks for no frame or timer while another view is shown', async () => {
    const panel = await fixture.open({ script: countTimelineRequests });
    const requests = () => panel.page.evaluate('window.timelineRequests');
    await fixture.simulator.take('tap Menu');
    await panel.isTold('SingleKey Menu to UserMenu');
    assert.equal(await requests(), 0);
    await panel.goTo('Timeline');
    await eventually(async () => assert.notEqual(await requests(), 0));
    await panel.goTo('Panel');
    await eventually(async () => {
        const before = await requests();
        const observer = await fixture.simulator.observe();
        await fixture.simulator.take('tap Menu', 'wait 1500', 'tap Menu');
        await observer.sees({ type: 'announcement' }, await observer.sees({ type: 'announcement' }));
        observer.close();
        assert.equal(await requests(), before);
    });
});

test('the table has pages, whose buttons say which rows they show', async () => {
    const panel = await openTimeline();
    const table = await openTable(panel);
    const pages = panel.page.getByRole('group', { name: 'Rows of the table' });
    await fixture.simulator.take(...new Array(150).fill(['record 1 103 1', 'record 1 103 0']).flat());
    await pages.waitFor();
    const position = async () => {
        const [, ...numbers] = /^Rows (\d+) to (\d+) of (\d+)$/.exec(await pages.locator('span').innerText());
        return numbers.map(Number);
    };
    const rows = () => table.locator('tbody tr').count();
    await eventually(async () => assert(await isWholePage()));
    async function isWholePage() {
        const [first, last, all] = await position();
        return last === all && all - first >= 100 && (await rows()) === last - first + 1;
    }
    await panel.button('First rows').click();
    assert.deepEqual((await position()).slice(0, 2), [1, 100]);
    assert.equal(await rows(), 100);
    await panel.showsText('#announcements', /Rows 1 to 100 of \d+\./);
    await panel.button('Later rows').click();
    assert.equal((await position())[0], 101);
    await panel.button('Earlier rows').click();
    assert.equal((await position())[0], 1);
    await panel.button('Last rows').click();
    assert(await isWholePage());
});

const details = panel => panel.page.locator('.timeline-event');

/// A paused timeline with two keys, in which everything is in sight.
async function openEvents() {
    const panel = await openTimeline();
    await fixture.simulator.take('tap Menu', 'tap Menu');
    await panel.isTold('SingleKey Menu to UserMenu');
    await fixture.simulator.settle();
    await panel.button('Pause').click();
    await panel.button('Fit').click();
    return panel;
}

test('N and P, and two buttons, go from event to event, whose details are said and shown', async () => {
    const panel = await openEvents();
    const frame = panel.page.getByRole('application', { name: 'Drawing' });
    await frame.focus();
    const goTo = async key => {
        await panel.page.keyboard.press(key);
        return details(panel).innerText();
    };
    const first = await goTo('n');
    assert.match(first, /^\w+: .*, at [\d.]+ s(, run \d+)?\.$/);
    await panel.showsText('#announcements', /, at [\d.]+ s/);
    assert.equal(await goTo('p'), first);
    await panel.showsText('#announcements', /No earlier event\./);
    for (let times = 0; times < 200 && !/^Key: Menu/.test(await goTo('n')); ++times);
    const key = await details(panel).innerText();
    assert.match(key, /^Key: Menu, \d+ ms, at [\d.]+ s(, run \d+)?\.$/);
    assert.equal(await picture(panel).locator('rect.mark').count(), 1);
    await panel.button('Next event').click();
    assert.notEqual(await details(panel).innerText(), key);
    await panel.button('Previous event').click();
    assert.equal(await details(panel).innerText(), key);
});

test('an event out of sight comes into sight when it is chosen', async () => {
    const panel = await openEvents();
    for (let times = 0; times < 6; ++times) {
        await panel.button('Zoom in').click();
    }
    await panel.page.getByRole('application', { name: 'Drawing' }).focus();
    await panel.page.keyboard.press('End');
    const end = await sight(panel);
    for (let times = 0; times < 200 && (await sight(panel)).before === end.before; ++times) {
        await panel.page.keyboard.press('p');
    }
    assert((await sight(panel)).before > end.before);
    assert.equal(await picture(panel).locator('rect.mark').count(), 1);
});

test('an event that is chosen is in sight on a narrow page', async () => {
    const panel = await openTimeline({ viewport: { width: 320, height: 640 } });
    await panel.button('Pause').click();
    await panel.button('Fit').click();
    const frame = panel.page.locator('.timeline-frame');
    const isMarkSeen = async () => {
        const [mark, { x, width }] = [
            await picture(panel).locator('rect.mark').boundingBox(),
            await frame.boundingBox(),
        ];
        return mark.x >= x - 1 && mark.x <= x + width;
    };
    await panel.button('Next event').click();
    assert(await isMarkSeen());
    await frame.evaluate(each => each.scrollTo(each.scrollWidth, 0));
    assert(!(await isMarkSeen()));
    await panel.button('Previous event').click(); // there is none
    await panel.button('Next event').click();
    assert(await isMarkSeen());
});

test('pointing at an event shows its details, a click keeps them and pauses', async () => {
    const panel = await openTimeline();
    await fixture.simulator.take('tap Menu');
    await seen(panel, async () => assert.notEqual(await picture(panel).locator('path.key').count(), 0));
    await panel.button('Pause').click();
    await panel.button('Fit').click();
    const hint = await details(panel).innerText();
    const box = await picture(panel).locator('path.announcement').first().boundingBox();
    await panel.page.mouse.move(box.x + box.width / 2, box.y + box.height / 2);
    await panel.showsText('.timeline-event', /^Announced: SingleKey \(Menu\) to UserMenu, at /);
    await panel.page.mouse.move(0, 0);
    await panel.showsText('.timeline-event', hint);
    await panel.button('Resume').click();
    await seen(panel, async () => {
        await picture(panel).locator('path.announcement').first().click({ timeout: 1000 });
        assert.match(await details(panel).innerText(), /^Announced: /);
    });
    await panel.button('Resume').waitFor();
});

test('W, and a button, ask why the chosen key did what it did', async () => {
    const panel = await openEvents();
    const questions = [];
    const lines = [
        '   0.000  Menu down         does nothing  [card.json:1]',
        'Menu is not sent (0.05 s):',
        '  it was late.',
    ];
    await panel.page.route('**/api/why', route => {
        questions.push(route.request().postDataJSON());
        return questions.length === 1
            ? route.fulfill({ json: { lines } })
            : route.fulfill({ status: 503, json: { error: 'Too busy.' } });
    });
    const frame = panel.page.getByRole('application', { name: 'Drawing' });
    await frame.focus();
    await panel.page.keyboard.press('w');
    await panel.showsText('#announcements', /Go to a key first/);
    for (let times = 0; times < 200 && !/^Key: Menu/.test(await details(panel).innerText()); ++times) {
        await panel.page.keyboard.press('p');
    }
    await panel.page.keyboard.press('w');
    await panel.showsText('.timeline-answer pre', lines.join('\n').trim());
    await panel.showsText('#announcements', /Menu is not sent \(0\.05 s\): it was late\.$/);
    assert.match(questions[0].script, /^(press|device)[^]*press Menu/);
    assert.equal(questions[0].state, 'Idle');
    await panel.button('Why?').click();
    await panel.showsText('.timeline-answer pre', 'Too busy.');
    await panel.button('Previous event').click();
    assert(!(await panel.page.locator('.timeline-answer').isVisible()));
});

test('dragging and the wheel move and zoom the drawing, and pause it', async () => {
    const panel = await openTimeline();
    await fixture.simulator.take('wait 2000');
    for (let times = 0; times < 3; ++times) {
        await panel.button('Zoom in').click();
    }
    const { x, y, width } = await picture(panel).boundingBox();
    await eventually(async () => {
        await panel.page.mouse.move(x + width / 2, y + 60);
        await panel.page.mouse.down();
        await panel.page.mouse.move(x + width / 2 + 300, y + 60);
        await panel.page.mouse.up();
        assert((await sight(panel)).before > 1);
    });
    await panel.button('Resume').waitFor();
    const dragged = await sight(panel);
    await panel.page.mouse.wheel(100, 0);
    await eventually(async () => assert((await sight(panel)).before < dragged.before));
    await panel.page.keyboard.down('Control');
    await panel.page.mouse.wheel(0, -240);
    await eventually(async () => assert((await sight(panel)).span < dragged.span));
    await panel.page.keyboard.up('Control');
    // A wheel without a key scrolls the page.
    await panel.page.evaluate(() => addEventListener('wheel', event => (window.isTaken = event.defaultPrevented)));
    await panel.page.mouse.wheel(0, 50);
    await eventually(async () => assert.equal(await panel.page.evaluate('window.isTaken'), false));
});

test('the timeline is printed on one landscape page, with the table if that is open', async () => {
    const panel = await openTimeline({
        script: 'window.print = () => { window.printed = true; };',
        colorScheme: 'dark',
    });
    await panel.button('Pause').click();
    await panel.button('Print').click();
    await panel.page.waitForFunction('window.printed');
    const pdf = async () => (await panel.page.pdf({ preferCSSPageSize: true })).toString('latin1');
    const closed = await pdf();
    assert.equal(closed.match(/\/Type \/Page\b/g).length, 1);
    const [, width, height] = /\/MediaBox \[0 0 ([\d.]+) ([\d.]+)\]/.exec(closed);
    assert(Number(width) > Number(height));
    await panel.page.emulateMedia({ media: 'print' });
    for (const place of ['header', 'aside', '.timeline-toolbar', '.timeline-table', '#card', '#panel']) {
        assert(!(await panel.page.locator(place).first().isVisible()), place);
    }
    assert(await picture(panel).isVisible());
    const ground = await picture(panel).evaluate(shape => getComputedStyle(shape).backgroundColor);
    assert.equal(ground, 'rgb(255, 255, 255)');
    await panel.page.emulateMedia({ media: 'screen' });
    const table = await openTable(panel);
    await table.getByRole('row').nth(1).waitFor();
    await panel.page.emulateMedia({ media: 'print' });
    assert(await table.isVisible());
});

// The last test, because the simulator keeps the entries.
test('thousands of entries are a picture of few parts', async () => {
    const panel = await openTimeline();
    const repetitions = new Array(900).fill('record 1 103 2');
    for (let times = 0; times < 12; ++times) {
        // The simulator refuses more while the daemon has not taken what it was given.
        await eventually(() =>
            fixture.simulator
                .take('record 1 103 1', ...repetitions, 'record 1 103 0')
                .catch(fault => assert.fail(fault.message)),
        );
    }
    await fixture.simulator.settle();
    await panel.button('Fit').click();
    await showsWords(panel, /SingleKey \(Menu\) to UserMenu/);
    const parts = await picture(panel).locator('*').count();
    assert(parts < 500, `${parts} parts`);
});
