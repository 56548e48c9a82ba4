// SPDX-License-Identifier: MIT
// Gives a screen reader the sentences to read, in order and each once.

// Times in milliseconds.
/// From the first sentence to its announcement: sentences that belong together are announced together.
const collectTime = 100;
/// Between two announcements: a reader reads them one by one, and twenty of them in a second would take it minutes.
const announcementInterval = 1000;
/// From the release of a key to an announcement: the reader drops what waits when a key is pressed or repeats.
const releaseTime = 200;

/// So many equal sentences between two announcements come from a key that is held, not from a finger that taps.
const minFlood = 10;

/// The log is not for reading back: the other parts of the page show what happened.
const maxAnnouncements = 5;

/// The kinds of sentences that each setting lets through: an "action" (or its refusal), another "event" at the device,
/// the "reply" to what the user does on the page, and a "fault".
const levels = {
    all: ['action', 'event', 'reply', 'fault'],
    actions: ['action', 'reply', 'fault'],
    off: ['reply', 'fault'],
};

/// Sentences in their order, equal ones next to each other counted: "Up, 3 times. Down."
function joinSentences(texts) {
    const runs = [];
    for (const text of texts) {
        const last = runs.at(-1);
        if (last?.text === text) {
            ++last.times;
        } else {
            runs.push({ text, times: 1 });
        }
    }
    const counted = runs.map(({ text, times }) => (times > 1 ? `${text.replace(/[.!]$/, '')}, ${times} times` : text));
    return counted.map(text => (/[.!?…:]$/.test(text) ? text : `${text}.`)).join(' ');
}

/// Adds what is announced to `log`, a live region: at most one element a second, with a single text node, because a
/// reader reads each element and each text node separately and in any order.
export class Announcer {
    #log;
    #texts = [];
    #timer;
    #holders = new Set();
    #isMarked = false;
    #lastTexts = []; // of the last announcement
    #seen = 0; // how many texts of a flood were waiting when it was looked at last
    #last = -Infinity; // when the last announcement was made
    #level = 'all';

    constructor(log) {
        this.#log = log;
    }

    /// One of the names of `levels`. Drops queued sentences that the new level does not let through.
    set level(level) {
        this.#level = Object.hasOwn(levels, level) ? level : 'all';
        this.#texts = this.#texts.filter(({ kind }) => this.#isWanted(kind));
    }

    get level() {
        return this.#level;
    }

    /// `text` is a sentence that begins with what matters; `kind` is a name in the lists of `levels`. The daemon's log
    /// and the bus are not in step: a sentence that `isLogged` follows all that come within `collectTime` after it.
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

    /// Adds nothing until `release` is called for each `holder`.
    hold(holder) {
        this.#holders.add(holder);
        clearTimeout(this.#timer);
        this.#timer = undefined;
    }

    release(holder) {
        if (this.#holders.delete(holder)) {
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
        if (this.#holders.size > 0 || this.#timer !== undefined || this.#texts.length === 0) {
            return;
        }
        const pause = Math.max(delay, this.#last + announcementInterval - performance.now());
        this.#timer = setTimeout(() => this.#add(), pause);
    }

    /// Whether the sentence of the last announcement keeps coming. It is announced once more, counted, when it has
    /// stopped or another one comes.
    #isFlooded() {
        const growth = this.#texts.length - this.#seen;
        this.#seen = this.#texts.length;
        const isRepeated = ({ text }) => this.#lastTexts.every(last => last === text);
        return growth >= minFlood && this.#lastTexts.length > 0 && this.#texts.every(isRepeated);
    }

    #add() {
        this.#timer = undefined;
        if (this.#texts.length === 0) {
            return;
        }
        this.#last = performance.now();
        if (this.#isFlooded()) {
            this.#schedule(announcementInterval);
            return;
        }
        this.#seen = 0;
        this.#lastTexts = this.#texts.splice(0).map(each => each.text);
        const text = joinSentences(this.#lastTexts);
        this.#isMarked = !this.#isMarked; // a reader drops a text that equals the one before
        const element = document.createElement('p');
        element.textContent = this.#isMarked ? text : `${text}\u00a0`;
        this.#log.append(element);
        while (this.#log.childElementCount > maxAnnouncements) {
            this.#log.firstChild.remove();
        }
    }
}
