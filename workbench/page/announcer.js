// SPDX-License-Identifier: MIT
// What a screen reader is given to read: sentences in their order, each once.

/// Between the first sentence and its announcement: what belongs together is announced together.
export const collectTime = 100; // milliseconds
/// Between two announcements. A reader takes them one by one, and twenty of them in a second would occupy it for minutes.
export const announcementInterval = 1000;
/// Between the release of a key and an announcement: the reader drops what waits when a key is pressed or repeats.
export const releaseTime = 200;

/// The log is not for reading back: the page shows what happened elsewhere.
const maxAnnouncements = 5;

/// The kinds of sentences that each setting lets through. Replies and faults answer what the user does on the page.
export const levels = {
    all: ['action', 'event', 'reply', 'fault'],
    actions: ['action', 'reply', 'fault'],
    off: ['reply', 'fault'],
};

const endsSentence = text => /[.!?…:]$/.test(text);

/// Sentences in their order, equal ones next to each other counted: "Up, 3 times. Down."
export function joinSentences(texts) {
    const runs = [];
    for (const text of texts) {
        const last = runs.at(-1);
        if (last?.text === text) {
            ++last.times;
        } else {
            runs.push({ text, times: 1 });
        }
    }
    return runs.map(({ text, times }) => {
        const counted = times > 1 ? `${text.replace(/[.!]$/, '')}, ${times} times` : text;
        return endsSentence(counted) ? counted : `${counted}.`;
    }).join(' ');
}

/// Adds what is announced to `log`, a live region: at most one element a second, with a single text node, because a
/// reader reads each element and each text node separately and in any order.
export class Announcer {
    #log;
    #texts = [];
    #timer;
    #isHeld = false;
    #isMarked = false;
    #last = -Infinity; // when the last announcement was made
    #level = 'all';

    constructor(log) {
        this.#log = log;
    }

    /// One of the names of `levels`. What waits and is not wanted any more is dropped.
    set level(level) {
        this.#level = Object.hasOwn(levels, level) ? level : 'all';
        this.#texts = this.#texts.filter(({ kind }) => this.#isWanted(kind));
    }

    get level() {
        return this.#level;
    }

    /// `text` is a sentence that begins with what matters; `kind` is a name in the lists of `levels`. A sentence that
    /// `isLogged` by the daemon follows those that come within `collectTime` after it: the log and the bus are not in step.
    announce(text, kind, isLogged = false) {
        if (text && this.#isWanted(kind)) {
            this.#texts.splice(this.#placeFor(isLogged), 0, { text, kind, isLogged, moment: performance.now() });
            this.#schedule(collectTime);
        }
    }

    /// Empties the log: what a dialog hides and shows again would be read again.
    clear() {
        this.#log.replaceChildren();
    }

    /// Adds nothing until `release`.
    hold() {
        this.#isHeld = true;
        clearTimeout(this.#timer);
        this.#timer = undefined;
    }

    release() {
        if (this.#isHeld) {
            this.#isHeld = false;
            this.#schedule(releaseTime);
        }
    }

    #placeFor(isLogged) {
        const start = performance.now() - collectTime;
        const isBefore = other => isLogged || !other.isLogged || other.moment <= start;
        return this.#texts.findLastIndex(isBefore) + 1;
    }

    #isWanted(kind) {
        return levels[this.#level].includes(kind);
    }

    #schedule(delay) {
        if (this.#isHeld || this.#timer !== undefined || this.#texts.length === 0) {
            return;
        }
        const pause = Math.max(delay, this.#last + announcementInterval - performance.now());
        this.#timer = setTimeout(() => this.#add(), pause);
    }

    #add() {
        this.#timer = undefined;
        if (this.#texts.length === 0) {
            return;
        }
        const text = joinSentences(this.#texts.splice(0).map(each => each.text));
        this.#last = performance.now();
        this.#isMarked = !this.#isMarked; // a reader drops a text that equals the one before
        const element = document.createElement('p');
        element.textContent = this.#isMarked ? text : `${text}\u00a0`;
        this.#log.append(element);
        while (this.#log.childElementCount > maxAnnouncements) {
            this.#log.firstChild.remove();
        }
    }
}
