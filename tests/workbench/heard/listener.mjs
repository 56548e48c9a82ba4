// SPDX-License-Identifier: MIT
import assert from 'node:assert/strict';
import { readFile } from 'node:fs/promises';

import { eventually } from '../browser/eventually.mjs';
import { installed } from '../browser/panelSession.mjs';
import { Relay } from '../browser/relay.mjs';
import { countRequests, hasAnswers } from '../browser/requests.mjs';
import { Simulator } from '../browser/simulator.mjs';
import { Desktop } from './desktop.mjs';
import { ScreenReader } from './screenReader.mjs';

const emptyPage = 'data:text/html,<title>Empty</title><h1>Empty</h1>';
const browserOptions = [
    '--no-sandbox',
    '--force-renderer-accessibility',
    '--disable-gpu',
    '--disable-dev-shm-usage',
    '--disable-component-update',
    '--no-first-run',
    '--window-size=1280,1000',
    '--remote-debugging-port=0',
    `--app=${emptyPage}`,
];
/// How far the clock of the page is put forward at a time, and how often: in all further than any of its timers.
const clockStep = 1000; // milliseconds
const clockSteps = 6;

/// A user of the page with a screen reader and a keyboard. The clock of the page stands still, but for the steps of
/// `hears`, and the page gets the device's events with `until` only: what is heard does not depend on how long the
/// device, the browser and the screen reader take.
export class Listener {
    async begin() {
        this.desktop = await Desktop.start();
        this.reader = await ScreenReader.start(this.desktop);
        await this.#openBrowser();
    }

    async end() {
        this.observer?.close();
        await this.browser?.close();
        await this.relay?.close();
        await this.reader?.end();
        await this.desktop?.end();
        await this.simulator?.stop();
    }

    /// Begins with another device, at an address where the browser has never been.
    async prepare() {
        this.observer?.close();
        await this.page.goto(emptyPage);
        await this.relay?.close();
        await this.simulator?.stop();
        this.simulator = await Simulator.start();
        this.relay = await Relay.to(this.simulator.url);
        this.observer = await this.simulator.observe();
        this.latest = 0;
    }

    async open(view = '') {
        await this.page.goto(emptyPage);
        await this.reader.heard(this.page);
        this.reader.pause(); // it would read what has come so far
        await this.page.goto(new URL(view, this.relay.url).href);
        await this.page.locator('#device-status').getByText('ready').waitFor();
        await this.page.locator('#card-tables > *').first().waitFor({ state: 'attached' });
        this.reader.resume();
    }

    /// A key of the keyboard, in the words of xdotool: "Tab", "shift+Tab". `verb` is "key", "keydown" or "keyup".
    keyboard(verb, key) {
        return this.#untilTaken(verb === 'keydown' ? 'keydown' : 'keyup', 1, () =>
            this.desktop.run('xdotool', verb, key),
        );
    }

    type(text) {
        return this.#untilTaken('keyup', text.length, () => this.desktop.run('xdotool', 'type', '--delay', '20', text));
    }

    /// Does `work` and waits until the page has got so many keys of it.
    async #untilTaken(event, number, work) {
        const taken = () => this.page.evaluate(name => window.takenKeys[name], event);
        const former = await taken();
        await work();
        await eventually(async () => assert((await taken()) >= former + number, 'The page did not get the keys.'));
    }

    /// Ends all gestures, and waits until earlier keys count no more: a lone key is announced then.
    async outlastWindow() {
        await this.simulator.take('tap Up Menu Up');
        await this.until('announcement SingleKey Menu');
        await this.until('announcement SingleKey Up');
    }

    /// Holds a key of the device until the device has reported this.
    async holdUntil(key, words) {
        await this.simulator.take(`press ${key}`);
        await eventually(() => this.#find(words));
        await this.simulator.take(`release ${key}`);
    }

    /// What happens from now on belongs together: the order in which `until` is called for it does not matter.
    /// `isOnPage` says whether something is done on the page.
    beginStep(isOnPage) {
        this.former = this.latest;
        this.awaited = new Set();
        this.isTakenIn = !isOnPage;
    }

    /// Waits until the device has reported this, such as "announcement SingleKey Up", since the step before. The page
    /// learns of it, and of all before it, but not of what comes after it.
    async until(words) {
        await this.#takeIn();
        const entry = await eventually(() => this.#find(words));
        this.awaited.add(entry);
        this.latest = Math.max(this.latest, entry.id);
        await this.page.waitForFunction(id => window.latestEntry >= id, entry.id, { polling: 20 });
        await this.page.evaluate(id => window.letIn(id), this.latest);
    }

    /// What was done on the page comes before what the device does: the screen reader takes it in first.
    async #takeIn() {
        if (!this.isTakenIn) {
            this.isTakenIn = true;
            await hasAnswers(this.page);
            await this.reader.takesIn(this.page);
        }
    }

    #find(words) {
        const entries = this.observer.entries.filter(({ id, value }) => id > this.former && value !== 2);
        const found = entries.find(entry => describe(entry).startsWith(words) && !this.awaited.has(entry));
        if (!found) {
            throw new Error(`${words} did not come, but:\n${entries.map(describe).join('\n')}`);
        }
        return found;
    }

    /// What is heard of all that has happened. The time of the page passes in steps, each as short as the time between
    /// two announcements, until there is nothing more.
    async hears() {
        await hasAnswers(this.page);
        const all = await this.reader.heard(this.page);
        for (let quiet = 0; quiet < clockSteps; ++quiet) {
            await this.page.clock.fastForward(clockStep);
            await hasAnswers(this.page);
            if (await this.reader.hasNews(this.page)) {
                all.push(...(await this.reader.heard(this.page)));
                quiet = -1;
            }
        }
        return all.concat(await this.reader.heard(this.page));
    }

    async #openBrowser() {
        const profile = this.desktop.path('chromium');
        this.desktop.start('chromium', ...browserOptions, `--user-data-dir=${profile}`);
        const port = await eventually(
            async () => (await readFile(`${profile}/DevToolsActivePort`, 'utf8')).split('\n')[0],
        );
        this.browser = await installed('playwright-core').chromium.connectOverCDP(`http://127.0.0.1:${port}`);
        [this.page] = this.browser.contexts()[0].pages();
        this.page.setDefaultTimeout(0);
        this.page.on('pageerror', fault => {
            console.error(fault);
            this.page.close(); // what is waited for might never come
        });
        await this.page.addInitScript(holdEntries);
        await this.page.addInitScript(countRequests);
        await this.page.addInitScript(countKeys);
        await this.page.addInitScript(countAnnouncements);
        await this.page.clock.install();
        await this.page.clock.pauseAt(Date.now() + clockStep);
    }
}

/// Keeps the entries that come from the page until `letIn` is called with the number of a later one (runs in the page).
function holdEntries() {
    const waiting = [];
    const { addEventListener } = EventSource.prototype;
    EventSource.prototype.addEventListener = function add(type, react) {
        addEventListener.call(this, type, event => {
            if (type !== 'entry') {
                react(event);
                return;
            }
            const { id } = JSON.parse(event.data);
            window.latestEntry = id;
            waiting.push({ id, takeIn: () => react(event) });
        });
    };
    window.letIn = last => {
        while (waiting[0]?.id <= last) {
            waiting.shift().takeIn();
        }
    };
}

/// Keeps the number of changes of live regions, together with a name of the page that is open (runs in it).
function countAnnouncements() {
    let count = 0;
    const note = () => {
        window.announcementCount = `${performance.timeOrigin} ${count}`;
    };
    note();
    const observer = new MutationObserver(changes => {
        count += changes.filter(({ target }) => target.closest?.('[aria-live], [role=log]')).length;
        note();
    });
    observer.observe(document, { childList: true, subtree: true });
}

/// Keeps the numbers of keys that the page has got, modifiers apart (runs in the page).
function countKeys() {
    window.takenKeys = { keydown: 0, keyup: 0 };
    for (const name of ['keydown', 'keyup']) {
        window.addEventListener(
            name,
            ({ key, repeat }) => {
                window.takenKeys[name] += ['Shift', 'Control'].includes(key) || repeat ? 0 : 1;
            },
            true,
        );
    }
}

function describe({ type, action, keys, receiver, key, value, status, state, text }) {
    const words = [type, action, keys?.join(' '), receiver && `to ${receiver}`, key, value, status, state, text];
    return words.filter(word => word !== undefined).join(' ');
}
