// SPDX-License-Identifier: MIT
import { open } from 'node:fs/promises';
import { setTimeout as delay } from 'node:timers/promises';

// A line at a time is read from the file; the keys that are pressed are known; the file says of each message of a live
// region that it waits.
const customizations = `
import orca.debug
import orca.liveregions
import orca.settings
orca.debug.debugFile.reconfigure(line_buffering=True)
orca.debug.debugLevel = orca.debug.LEVEL_INFO
orca.debug.printDetails = lambda *words, **options: None
orca.settings.enableKeyEcho = False

def enqueue(self, *words, former=orca.liveregions.PriorityQueue.enqueue):
    former(self, *words)
    orca.debug.println(orca.debug.LEVEL_INFO, 'LIVE REGIONS: messages in queue: %i' % len(self), True)

orca.liveregions.PriorityQueue.enqueue = enqueue
`;

/// Orca does not start when it sees another one.
const separately = ['bwrap', '--die-with-parent', '--unshare-pid', '--dev-bind', '/', '/', '--proc', '/proc', '--'];

const pollTime = 10; // milliseconds
/// Before another change is made.
const pollsForMark = 100;

const spokenLine = /^[\d:.]+ - SPEECH OUTPUT: '(.*?)'(\[?\{.*)?$/;
/// Said when the browser takes some time to load a page.
const busy = 'Loading.  Please wait.';
const markLine = /OBJECT EVENT: object:property-change:accessible-description \(0, 0, mark (\d+)\)$/;
const queueLine = /LIVE REGIONS: messages in queue: (\d+)$/;

/// Orca without a synthesiser: what it would say is in its debug file.
export class ScreenReader {
    #desktop;
    #process;
    #file;
    #rest = ''; // of a line that is not whole yet
    #spoken = [];
    #heard = 0; // of those
    #sentMark = 0; // the latest change of the page that was made for Orca
    #mark = 0; // the latest one that it has taken in
    #announcements; // of the page, at the last look
    #messages = 0; // of live regions, which it has not said yet

    static async start(desktop) {
        const reader = new ScreenReader();
        reader.#desktop = desktop;
        await desktop.write('.local/share/orca/orca-customizations.py', customizations);
        await desktop.write('orca', '');
        reader.#file = await open(desktop.path('orca'));
        reader.#process = desktop.start(...separately, 'orca', '--debug', `--debug-file=${desktop.path('orca')}`);
        await reader.#until(() => reader.#spoken.includes('Screen reader on.'));
        return reader;
    }

    end() {
        return this.#file.close();
    }

    /// Has it take in nothing until `resume`.
    pause() {
        process.kill(-this.#process.pid, 'SIGSTOP');
    }

    resume() {
        process.kill(-this.#process.pid, 'SIGCONT');
    }

    /// What it has said since the last call, once it has taken in all that the page has reported to it.
    async heard(page) {
        this.#announcements = await announcementsOf(page);
        await this.takesIn(page);
        await this.#until(() => this.#messages === 0);
        const news = this.#spoken.slice(this.#heard);
        this.#heard = this.#spoken.length;
        return news;
    }

    /// Whether a live region of the page has changed since `heard`.
    async hasNews(page) {
        return (await announcementsOf(page)) !== this.#announcements;
    }

    /// Waits until Orca has taken in a change of the page that it does not speak of. It takes changes in their order, but
    /// ignores some when many come: then another change is made.
    async takesIn(page) {
        const first = this.#sentMark + 1;
        while (this.#mark < first) {
            await page.evaluate(setMark, `mark ${++this.#sentMark}`);
            for (let times = 0; times < pollsForMark && this.#mark < first; ++times) {
                await delay(pollTime);
                await this.#read();
            }
        }
        await page.evaluate(setMark, '');
    }

    async #until(holds) {
        await this.#read();
        while (!holds()) {
            await delay(pollTime);
            await this.#read();
        }
    }

    async #read() {
        if (this.#process.exitCode !== null || this.#process.signalCode !== null) {
            throw new Error(`Orca has ended:\n${await this.#desktop.log()}`);
        }
        const lines = (this.#rest + (await this.#file.readFile('utf8'))).split('\n');
        this.#rest = lines.pop();
        lines.forEach(line => this.#take(line));
    }

    #take(line) {
        const text = spokenLine.exec(line)?.[1].trim();
        if (text && text !== busy && !text.startsWith('mark ')) {
            this.#spoken.push(text);
        }
        this.#mark = Number(markLine.exec(line)?.[1] ?? this.#mark);
        this.#messages = Number(queueLine.exec(line)?.[1] ?? this.#messages);
    }
}

const announcementsOf = page => page.evaluate(() => window.announcementCount);

/// The title of the page, or the first button of an open dialog, which hides the page, changes its description (runs in the page).
function setMark(text) {
    const place = document.querySelector('dialog[open] button') ?? document.querySelector('h1');
    place.setAttribute('aria-description', text);
}
