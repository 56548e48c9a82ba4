// SPDX-License-Identifier: MIT
import { EntryLog } from './entryLog.js';

/// A log that folds entries with the same text into one line, which counts them and has the time of the latest one.
export class FoldedLog extends EntryLog {
    /// `textOf` returns the text of an entry, or undefined to leave it out. `describe` makes the line of an entry from
    /// the entry, its text and how often it came.
    constructor(place, limit, textOf, describe) {
        super(place, limit, {});
        this.place = this.live.parentElement;
        this.make = run => describe(run.entry, run.text, run.times);
        this.textOf = textOf;
    }

    reset(history) {
        const runs = [];
        for (const entry of history) {
            this.#take(entry, runs.at(-1), run => runs.push(run));
        }
        this.last = undefined; // what comes from now on has its own line
        super.reset(runs.slice(-this.limit));
        this.#showEnd();
    }

    add(entry) {
        const isAtEnd = this.place.scrollTop + this.place.clientHeight > this.place.scrollHeight - 2;
        const isFolded = this.#take(entry, this.last, run => {
            this.last = run;
            super.add(run);
        });
        if (isFolded) {
            this.live.lastChild.replaceWith(this.make(this.last));
        }
        if (isAtEnd) {
            this.#showEnd();
        }
    }

    /// Adds the entry to the run `last`, or begins another. Returns whether it was added.
    #take(entry, last, begin) {
        const text = this.textOf(entry);
        const isSame = text !== undefined && text === last?.text;
        if (isSame) {
            Object.assign(last, { entry, times: last.times + 1 });
        } else if (text !== undefined) {
            begin({ entry, text, times: 1 });
        }
        return isSame;
    }

    #showEnd() {
        this.place.scrollTop = this.place.scrollHeight;
    }
}
