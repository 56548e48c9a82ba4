// SPDX-License-Identifier: MIT
// The times that run while a key is held: that of a long press, and that of the factory reset.

/// An announcement may be noted this much earlier or later than its time is up by the clock of the entries.
const earliness = 20;
const lateness = 1000;
/// A long press that nothing is heard of for this time after its end is over.
const patience = 100;

/// Decides how the holds of a model end. A hold has a `key`, its beginning `from`, its end `to`, the moment `due` at
/// which its time is up, and an `outcome`: "running", "stopped", "fired" or "refused".
export class Holds {
    #long;
    #formerLong;
    #reset;
    #assumed; // the long press that was stopped only if nothing more has happened

    get areRunning() {
        return [this.#long, this.#reset].some(isRunning);
    }

    /// Whether the long press still runs, as far as a repetition at this moment can say.
    isLongRunning(at) {
        return isRunning(this.#long) && at <= this.#long.due + patience;
    }

    beginLong(hold) {
        this.stopLong(hold.from);
        this.#long = hold;
    }

    beginReset(hold) {
        this.stopReset(hold.from);
        this.#reset = hold;
    }

    stopLong(at) {
        if (this.#long) {
            stop(this.#long, at);
            this.#formerLong = this.#long;
            this.#long = undefined;
        }
    }

    stopReset(at) {
        stop(this.#reset, at);
    }

    stopAll(at) {
        this.stopLong(at);
        this.stopReset(at);
        this.#formerLong = this.#reset = undefined;
    }

    announced({ action, keys }, at) {
        if (action === 'FactoryReset') {
            decide([this.#reset], at, 'fired');
        } else if (action !== 'SingleKey' && keys.length === 1) {
            const holds = [this.#formerLong, this.#long].filter(hold => hold?.key === keys[0]);
            decide(holds, at, 'fired');
        }
    }

    refused(at) {
        decide([this.#formerLong, this.#long], at, 'refused');
    }

    /// Nothing more has happened up to `to`; the long press stops at `end` if that is earlier.
    assume(to, end) {
        this.takeBack();
        for (const hold of [this.#long, this.#reset].filter(isRunning)) {
            hold.to = Math.min(to, hold.due);
        }
        if (end <= to && isRunning(this.#long)) {
            this.#assumed = this.#long;
            stop(this.#assumed, end);
        }
    }

    /// Something has happened: what was assumed is decided again.
    takeBack() {
        if (this.#assumed) {
            this.#assumed.outcome = 'running';
            this.#assumed = undefined;
        }
    }
}

function isRunning(hold) {
    return hold?.outcome === 'running';
}

function stop(hold, at) {
    if (isRunning(hold)) {
        hold.to = Math.min(at, hold.due);
        hold.outcome = 'stopped';
    }
}

/// Word of a time that was up may come a little after the key that would have stopped it.
function decide(holds, at, outcome) {
    const undecided = outcome === 'fired' ? ['running', 'stopped', 'refused'] : ['running', 'stopped'];
    const hold = holds.find(
        one =>
            one &&
            undecided.includes(one.outcome) &&
            one.due - earliness <= at &&
            at <= one.due + lateness &&
            (one.outcome !== 'stopped' || one.to >= one.due - earliness),
    );
    if (hold) {
        hold.to = hold.outcome === 'running' ? at : hold.due;
        hold.outcome = outcome;
    }
}
