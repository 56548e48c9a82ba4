// SPDX-License-Identifier: MIT
// What part of the timeline is in sight.
import { seconds } from './timelineTexts.js';

const firstSpan = 15000;
const shortestSpan = 200;
/// Room for the words next to what happens now.
const aheadOfNow = 0.12;
/// The same where motion is not wanted, which makes the steps of the picture long.
const aheadOfStep = 0.5;

/// The time in sight, from `from` to `to`, of a model.
export class Sight {
    from = 0;
    to = firstSpan;
    #fits = false; // whether all is in sight, however long it becomes

    get span() {
        return this.to - this.from;
    }

    /// What is in sight, in words.
    text(model) {
        const before = Math.max(model.to - this.to, 0);
        const end = before > 0 ? `${seconds(before, 1)} before the end` : 'the end';
        return `${seconds(this.span, 1)} up to ${end}`;
    }

    /// Makes the time in sight `factor` times as long. The moment at `part` of it keeps its place.
    zoom(factor, part, model) {
        this.#fits = false;
        const longest = Math.max(model.to - model.from, firstSpan) * 1.1;
        const span = Math.min(Math.max(this.span * factor, shortestSpan), longest);
        const fixed = this.from + this.span * part;
        this.#set(fixed - span * part, span);
    }

    /// Shows all that is known. With `follows`, also what comes later.
    fit(follows, model) {
        this.#fits = follows;
        this.#showAll(model);
    }

    showUpTo(to, model) {
        this.#fits = false;
        const end = Math.min(Math.max(to, model.from + this.span), this.lastEnd(model));
        this.#set(end - this.span, this.span);
    }

    /// Shows this moment, in the middle unless it is in sight already.
    showMoment(at, model) {
        if (at < this.from || at > this.to) {
            this.showUpTo(at + this.span / 2, model);
        }
    }

    /// The latest end that the sight can have.
    lastEnd(model) {
        return Math.max(model.to + this.span * aheadOfNow, model.from + this.span);
    }

    /// Keeps the latest moment in sight; in steps if `isCalm`. Returns whether the sight has moved.
    follow(model, isCalm) {
        if (this.#fits) {
            return this.#followAll(model, isCalm);
        }
        if (isCalm && model.to <= this.to && model.to >= this.from) {
            return false;
        }
        this.#set(model.to + this.span * ((isCalm ? aheadOfStep : aheadOfNow) - 1), this.span);
        return true;
    }

    #followAll(model, isCalm) {
        if (isCalm && model.to <= this.to && model.from === this.from) {
            return false;
        }
        this.#showAll(model);
        if (isCalm) {
            this.to += this.span * aheadOfStep;
        }
        return true;
    }

    #showAll(model) {
        const span = Math.max(model.to - model.from, shortestSpan);
        this.#set(model.from, span * 1.02);
    }

    #set(from, span) {
        this.from = from;
        this.to = from + span;
    }
}
