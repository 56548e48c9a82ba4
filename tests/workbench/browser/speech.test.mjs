// SPDX-License-Identifier: MIT
// Speaking aloud in the browser.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { eventually } from './eventually.mjs';
import { panelFixture } from './panelFixture.mjs';

const fixture = panelFixture();

/// Replaces the speech of the browser, and records what it should say.
const standIn = () => {
    window.said = [];
    window.SpeechSynthesisUtterance = class {
        constructor(text) {
            this.text = text;
        }
    };
    Object.defineProperty(window, 'speechSynthesis', {
        value: {
            speak: utterance => {
                window.utterance = utterance;
                window.said.push(utterance.text);
            },
            cancel: () => window.said.push('(cancel)'),
        },
    });
};

async function open() {
    const panel = await fixture.open({ script: standIn });
    await panel.disclose('sound');
    return panel;
}

const aloud = panel => panel.page.getByRole('checkbox', { name: 'Speak aloud' });
/// What a screen reader is given first.
const isAnnounced = (panel, text) => panel.showsText('#announcements p >> nth=0', text);
const says = (panel, ...words) =>
    eventually(async () => assert.deepEqual(await panel.page.evaluate('window.said'), words));

test('nothing is spoken aloud until the user wants it', async () => {
    const panel = await open();
    await panel.key('Up').click();
    await panel.isTold(/^Up$/);
    await says(panel);
    await isAnnounced(panel, 'Up.');
});

test('a sentence is spoken aloud, and kept from the screen reader then', async () => {
    const panel = await open();
    await aloud(panel).check();
    await panel.key('Up').click();
    await says(panel, '(cancel)', 'Up');
    await isAnnounced(panel, 'Up, single key, to UserMenu.');
});

test('what the device cuts off is cut off', async () => {
    const panel = await open();
    await aloud(panel).check();
    await fixture.simulator.enter('Startup');
    await fixture.simulator.take('tap Up');
    await panel.isTold(/start/i);
    const said = await panel.page.evaluate('window.said');
    assert.equal(said.length, 3);
    assert.deepEqual(said.slice(0, 2), ['(cancel)', '(cancel)']);
});

test('it is silent at once when it is switched off', async () => {
    const panel = await open();
    await aloud(panel).check();
    await aloud(panel).uncheck();
    await says(panel, '(cancel)', '(cancel)');
    await panel.key('Up').click();
    await panel.isTold(/^Up$/);
    await says(panel, '(cancel)', '(cancel)');
});

test('a browser that cannot speak says so and gives the sentences back to the screen reader', async () => {
    const panel = await open();
    await aloud(panel).check();
    await panel.key('Up').click();
    await says(panel, '(cancel)', 'Up');
    await panel.page.evaluate(() => window.utterance.onerror({ error: 'synthesis-failed' }));
    await panel.showsText('#alert', 'This browser cannot speak (synthesis-failed).');
    assert.equal(await aloud(panel).isChecked(), false);
    await panel.key('Down').click();
    await panel.page.locator('#announcements').getByText('Down.').first().waitFor();
});

test('the past is not spoken when the page is opened', async () => {
    await fixture.simulator.take('tap Up');
    const panel = await open();
    await aloud(panel).check();
    await panel.key('Menu').click();
    await panel.isTold('SingleKey Menu');
    await says(panel, '(cancel)');
});
