// SPDX-License-Identifier: MIT
// Learning and practising in the view "Panel": keys go to the model of the keys, and tasks are judged.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { eventually } from './eventually.mjs';
import { panelFixture } from './panelFixture.mjs';
import { countRequests, hasAnswers } from './requests.mjs';

const fixture = panelFixture();

/// A page in learning mode, whose clock stands still but for `pass`, so that the times of keys are exact.
async function openLearning() {
    const panel = await fixture.open({ script: countRequests });
    const { page } = panel;
    await page.locator('#card-tables table').first().waitFor({ state: 'attached' });
    await page.clock.install();
    await page.clock.pauseAt(Date.now() + 1000);
    panel.switch = name => page.getByRole('switch', { name, exact: true });
    panel.pass = async time => {
        await hasAnswers(page);
        await page.clock.fastForward(time);
    };
    panel.hold = async (key, time) => {
        await panel.key(key).hover();
        await page.mouse.down();
        await panel.pass(time);
        await page.mouse.up();
    };
    panel.chooseState = state => page.getByLabel('State for learning').selectOption(state);
    /// Waits until the last gesture is over and described like this.
    panel.isDescribed = text =>
        eventually(async () => {
            await panel.pass(500);
            const [shown = ''] = await page.locator('#described p').allInnerTexts();
            if (text instanceof RegExp) {
                assert.match(shown, text);
            } else {
                assert.equal(shown, text);
            }
        });
    panel.task = () => page.locator('#task').innerText();
    panel.skipTo = async action => {
        for (let task; !(task = await panel.task()).startsWith(`Do ${action}:`);) {
            assert.notEqual(task, '', `There is no task ${action}`);
            await panel.button('Next task').click();
        }
    };
    await panel.switch('Learn').check();
    return panel;
}

/// The keys that the device has got since `work` began; the last one shows that no other comes.
async function keysDuring(work) {
    const observer = await fixture.simulator.observe();
    await work();
    await fixture.simulator.take('tap Ten');
    await observer.sees({ type: 'key', key: 'Ten', value: 0 });
    observer.close();
    return observer.entries.filter(({ type }) => type === 'key').map(({ key }) => key);
}

test('a gesture is described, and the device does not get it', async () => {
    const panel = await openLearning();
    const boxes = () => Promise.all(['On', 'Feed', 'Chs', 'Ten'].map(name => panel.key(name).boundingBox()));
    const learning = await boxes();
    const keys = await keysDuring(async () => {
        await panel.key('Help').click();
        await panel.key('Feed').click();
        await panel.isDescribed('Help, then Feed: PaperStatus, to PrintManager, only in Idle.');
    });
    assert.deepEqual(keys, ['Ten', 'Ten']);
    await panel.showsText('#status', 'Help, then Feed: PaperStatus, to PrintManager, only in Idle.');
    await panel.switch('Learn').uncheck();
    await panel.showsText('#status', 'The device gets the keys again.');
    assert.deepEqual(await boxes(), learning); // the keys stay where they are
    await panel.key('Up').click();
    await panel.isTold('Up');
});

test('"Do it" on the key card is described, too', async () => {
    const panel = await openLearning();
    const keys = await keysDuring(async () => {
        await panel.goTo('Key card');
        await panel.button('Do it: Help Feed, PaperStatus').click();
        await panel.showsText('#status', 'Help, then Feed: PaperStatus, to PrintManager, only in Idle.');
    });
    assert.deepEqual(keys, ['Ten', 'Ten']);
});

test('the real times of the keys count, in the state that is chosen', async () => {
    const panel = await openLearning();
    await panel.chooseState('Print');
    await panel.hold('Back', 2300);
    await panel.isDescribed(
        'Hold Back for 2.3 s: CancelJob, to PrintManager, only in Print and PrintOff; ' +
            'the single key Back, to PrintManager.',
    );
    await panel.hold('Back', 1200);
    await panel.isDescribed('Hold Back for 1.2 s: the single key Back, to PrintManager.');
    await panel.button('Why?').click();
    await panel.showsText('#reasons', /stops the time of CancelJob, 1\.05 s too early/);
});

test('latched keys and clicks of a screen reader are described', async () => {
    const panel = await openLearning();
    await panel.switch('Latch keys').check();
    await panel.key('Function').click();
    assert.equal(await panel.key('Function').getAttribute('aria-pressed'), 'true');
    await panel.pass(100);
    await panel.key('Up').click();
    await panel.key('Up').click();
    await panel.key('Function').click();
    await panel.isDescribed('Hold Function, then tap Up, then release Function: VolumeUp, to UserMenu, only in Idle.');
    await panel.switch('Latch keys').uncheck();
    await panel.key('Menu').evaluate(key => key.click());
    await panel.isDescribed('Menu: the single key Menu, to UserMenu.');
});

test('keys that are latched when learning ends are up, and not pressed at the device', async () => {
    const panel = await openLearning();
    await panel.switch('Latch keys').check();
    await panel.key('Function').click();
    const keys = await keysDuring(() => panel.switch('Learn').uncheck());
    assert.deepEqual(keys, ['Ten', 'Ten']);
    assert.equal(await panel.key('Function').getAttribute('aria-pressed'), 'false');
});

test('a key that is pressed elsewhere does not end a latched key of the gesture', async () => {
    const panel = await openLearning();
    await panel.switch('Latch keys').check();
    await panel.key('Function').click();
    await fixture.simulator.take('tap Function', 'tap Menu');
    await panel.isTold('SingleKey Menu to UserMenu');
    assert.equal(await panel.key('Function').getAttribute('aria-pressed'), 'true');
    await panel.key('Up').click();
    await panel.key('Up').click();
    await panel.key('Function').click();
    await panel.isDescribed(/: VolumeUp, to UserMenu, only in Idle\.$/);
});

test('tasks are judged, and the reason is named', async () => {
    const panel = await openLearning();
    await panel.button('Practise').click();
    assert.equal(await panel.task(), 'Do KeyDescription: Hold Help for 2.25 seconds.');
    await panel.hold('Help', 1250);
    await panel.isDescribed(
        'Not yet. Hold Help for 1.25 s: the single key Help, to UserMenu. ' +
            'KeyDescription is not completed: Help is released, 1 s too early. ' +
            'Do KeyDescription: Hold Help for 2.25 seconds.',
    );
    await panel.hold('Help', 2250);
    await panel.isDescribed(
        'Right. Hold Help for 2.25 s: KeyDescription, to UserMenu, only in Idle. ' +
            'Do MainMenu: Hold Menu for 2.25 seconds.',
    );
    await panel.skipTo('PaperStatus');
    await panel.key('Help').click();
    await panel.pass(1499);
    await panel.key('Feed').click();
    await panel.isDescribed(/^Right\. Help, then Feed: PaperStatus, /);
    await panel.button('Stop practising').click();
    assert.equal(await panel.task(), '');
    await panel.key('Up').click();
    await panel.isDescribed('Up: the single key Up, to UserMenu.');
});

test('at ones own pace no pause is too long', async () => {
    const panel = await openLearning();
    await panel.page.getByLabel('At my own pace').check();
    await panel.button('Practise').click();
    await panel.skipTo('PaperStatus');
    await panel.hold('Help', 5000);
    await panel.pass(60000);
    assert.equal(await panel.page.locator('#described p').count(), 0);
    await panel.hold('Feed', 5000);
    await panel.isDescribed(/^Right\. Help, then Feed: PaperStatus, .* Do RepeatMessage: /);
    await panel.key('Help').click();
    await panel.pass(60000);
    await panel.button('Repeat the task').click();
    // The repeated task begins with no key.
    await panel.key('Help').click();
    await panel.key('Up').click();
    await panel.isDescribed(/^Not yet\. Help, then Up: .* Do RepeatMessage: /);
});

test('with one hand no task needs two keys at once', async () => {
    const panel = await openLearning();
    const tasksOf = async state => {
        await panel.chooseState(state);
        await panel.button('Practise').click();
        const tasks = [];
        for (let task; (task = await panel.task()) !== '';) {
            tasks.push(task.replace(/^Do (.*): .*/, '$1'));
            await panel.button('Next task').click();
        }
        await panel.showsText('#status', `That was the last of ${tasks.length} tasks.`);
        return tasks;
    };
    const all = await tasksOf('PrintOff');
    assert.equal(await panel.page.evaluate(() => document.activeElement.id), 'practise');
    await panel.page.getByLabel('With one hand').check();
    const forOneHand = await tasksOf('PrintOff');
    assert(forOneHand.includes('EjectPaper'));
    assert.deepEqual(
        all.filter(task => !forOneHand.includes(task)),
        ['LoadPaper'],
    );
});

test('a restart of the device drops the keys so far', async () => {
    const panel = await openLearning();
    await panel.switch('Latch keys').check();
    await panel.key('Help').click();
    await fixture.simulator.restart();
    await eventually(async () => assert.equal(await panel.key('Help').getAttribute('aria-pressed'), 'false'));
    await panel.switch('Latch keys').uncheck();
    await panel.key('Menu').click();
    await panel.isDescribed('Menu: the single key Menu, to UserMenu.');
});
