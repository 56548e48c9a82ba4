// SPDX-License-Identifier: MIT
import { byId } from './dom.js';

/// Shows the latest entries of some types. New entries go into a part of the log that is separate from the past.
export class EntryLog {
    /// `makers` has a function for each type of entry, which makes the element for an entry, or null to leave it out.
    constructor(place, limit, makers) {
        [this.earlier, this.live] = byId(place).querySelectorAll('[data-part]');
        this.limit = limit;
        this.make = entry => makers[entry.type]?.(entry);
    }

    reset(history) {
        this.live.replaceChildren();
        this.earlier.replaceChildren(...history.map(this.make).filter(Boolean).slice(-this.limit));
    }

    add(entry) {
        const made = this.make(entry);
        if (made) {
            this.live.append(made);
            while (this.earlier.childElementCount + this.live.childElementCount > this.limit) {
                (this.earlier.firstChild ?? this.live.firstChild).remove();
            }
        }
    }
}
