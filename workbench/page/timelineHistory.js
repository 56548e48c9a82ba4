// SPDX-License-Identifier: MIT
// The entries that the timeline shows, and their model.
import { TimelineModel } from './timelineModel.js';
import { longTimesOf, unknownTimes } from './timelineTimes.js';

const maxEntries = 10000;
/// Old entries are dropped in groups, because the model takes time to forget them.
const droppedEntries = 500;
/// How many entries are added to the model between two looks at the clock.
const entriesInTurn = 200;
/// How long the model takes in entries before the page may do other work, in milliseconds.
const turnTime = 10;

/// Adds the entries to the model one at a time, when `update` is called.
export class TimelineHistory {
    model = new TimelineModel();
    #entries = [];
    #taken = 0; // entries that the model has
    #isOutdated = true; // whether the model must begin again
    #isTrimmed = false; // whether the model has older entries than these
    #isFrozen = false;
    #times = unknownTimes;
    #longTimes = {};
    #lost; // the moment at which the connection was lost
    #clock = { at: 0, stamp: performance.now() };

    /// Takes in what has just happened.
    add(entry) {
        this.#entries.push(entry);
        if (this.#entries.length > maxEntries + droppedEntries) {
            const dropped = this.#entries.splice(0, this.#entries.length - maxEntries).length;
            this.#taken -= dropped;
            this.#isOutdated ||= this.#taken <= 0;
            this.#isTrimmed = true;
        }
        this.#setClock(entry.at);
    }

    /// Begins with other entries at the moment `now` on the device's clock.
    reset(entries, now) {
        this.#entries = entries.slice(-maxEntries);
        this.#lost = undefined;
        this.#setClock(now);
        this.#isOutdated = true;
    }

    setTimes(times) {
        this.#times = times;
        this.#isOutdated = true;
    }

    /// The key card knows the times of the long presses; they count from the last start of the device on.
    setCard(card) {
        this.#longTimes = longTimesOf(card, this.#times);
        const last = this.#entries.findLastIndex(({ type, status }) => type === 'device' && status === 'starting');
        if (last >= 0) {
            this.#entries[last] = { ...this.#entries[last], longTimes: this.#longTimes };
        }
        this.#isOutdated = true;
    }

    /// Nothing is known from now on, until `reset`.
    stop() {
        this.#lost = this.#now();
    }

    /// Whether nothing can change until something is added.
    get stands() {
        return this.#isFrozen || (this.#lost !== undefined && this.isComplete);
    }

    get isFrozen() {
        return this.#isFrozen;
    }

    /// Whether the model has all entries.
    get isComplete() {
        return !this.#isOutdated && this.#taken === this.#entries.length;
    }

    /// The model stays as it is until `thaw`.
    freeze() {
        this.update(Infinity);
        this.#isFrozen = true;
    }

    thaw() {
        this.#isFrozen = false;
    }

    /// Brings the model up to date, for about `maxTime` milliseconds. Returns whether it has got entries.
    update(maxTime = turnTime) {
        if (this.#isFrozen) {
            return false;
        }
        const isChanged = !this.isComplete;
        this.#begin();
        const end = performance.now() + maxTime;
        do {
            const turn = this.#entries.slice(this.#taken, this.#taken + entriesInTurn);
            turn.forEach(entry => this.model.add(entry));
            this.#taken += turn.length;
        } while (!this.isComplete && performance.now() < end);
        this.model.extendTo(this.isComplete ? this.#now() : undefined);
        return isChanged;
    }

    #begin() {
        if (this.#isOutdated) {
            this.model = new TimelineModel(this.#times, this.#longTimes);
            this.#taken = 0;
        } else if (this.#isTrimmed) {
            this.model.forgetBefore(this.#entries[0]);
        }
        this.#isOutdated = this.#isTrimmed = false;
    }

    #setClock(at) {
        this.#clock = { at, stamp: performance.now() };
    }

    #now() {
        return this.#lost ?? this.#clock.at + performance.now() - this.#clock.stamp;
    }
}
