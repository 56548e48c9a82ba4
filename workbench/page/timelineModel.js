// SPDX-License-Identifier: MIT
// What the entries of a session mean over time: what the picture and the table show.
import { isOfAction, momentOf, simulatedKey, simulatedValues } from './timelineMoments.js';

/// Until the device describes itself: how long a released key waits for others, how long FactoryReset is held, and
/// when the kernel first repeats a held key.
export const unknownTimes = { singleKeyMs: 0, factoryResetMs: 0, repeatDelayMs: 0 };
/// Milliseconds between two runs of the device, whose clocks both begin at 0.
const gapBetweenRuns = 500;
/// An announcement may be noted this much earlier or later than its time is up by the clock of the entries.
const earliness = 20;
const lateness = 1000;
/// A long press that nothing is heard of for this time after its end is over.
const patience = 100;

const keyOrder = 'On Off Feed Help Menu Back Right Up Down Ok Chs One Ten Function FactoryReset'.split(' ');
/// Where keys come from that the command SimulateKey stands for.
const commandDevice = 'command';

/// The time of the long press of each key in milliseconds, from its first repetition; the card counts from the press.
export function longTimesOf(card, { repeatDelayMs }) {
    const groups = [...(card?.states ?? []).map(state => state.entries), card?.never ?? []];
    const rows = groups.flat().filter(row => row.kind === 'long' && row.holdMs >= repeatDelayMs);
    return Object.fromEntries(rows.map(row => [row.keys[0], row.holdMs - repeatDelayMs]));
}

/// What the entries of a session mean, on one line of time in milliseconds: each run of the device follows the one
/// before. `times` are those of the device's description; `longTimes` has the time of each key's long press, unless a
/// `device` entry brings its own `longTimes`.
/// `end` is the moment up to which is known, on the clock of the last run; without it the last entry's.
/// What still lasts there is marked `open`, and so is the model if there is any.
export function timelineModel(entries, times = unknownTimes, longTimes = {}, end = undefined) {
    const builder = new ModelBuilder(times, longTimes);
    for (const entry of entries) {
        builder.add(entry);
    }
    return builder.finish(end);
}

/// Nothing has happened up to `end`, and nothing was in progress: only the last state and run have become longer.
export function prolong(model, end) {
    for (const last of [model.states, model.runs].map(spans => spans[spans.length - 1])) {
        if (last) {
            last.to = end;
        }
    }
    model.to = end;
}

class ModelBuilder {
    #times;
    #longTimes;
    #offset = 0;
    #now = 0;
    #state = '';
    #listens = false;
    #testing = false;
    #lastReleased = ''; // since the daemon forgot its keys last
    #timerEnd; // when the time since the last release is up
    #window; // that time, as long as the daemon waits for more keys in it
    #long;
    #formerLong;
    #reset;
    #commands = [];
    #lanes = new Map();
    #model = {
        from: 0,
        to: 0,
        lanes: [],
        windows: [],
        states: [],
        moments: [],
        breaks: [],
        runs: [],
        open: false,
    };

    constructor(times, longTimes) {
        this.#times = times;
        this.#model.windowMs = times.singleKeyMs;
        this.#longTimes = longTimes;
    }

    add(entry) {
        this.#beginRunWith(entry);
        const at = entry.at + this.#offset;
        this.#endWindowBy(at);
        this.#now = Math.max(this.#now, at);
        switch (entry.type) {
            case 'device':
                this.#device(entry, at);
                break;
            case 'state':
                this.#changeState(entry.state, entry.id, at);
                break;
            case 'key':
                this.#key(entry, entry.device, entry.value, at);
                break;
            case 'answer':
                this.#answer(entry, at);
                break;
            case 'test':
                this.#testing = entry.running;
                break;
            case 'daemon':
                this.#answering(entry, at);
                break;
            default:
                this.#moment(entry, at);
        }
    }

    finish(end) {
        const model = this.#model;
        model.to = end === undefined ? this.#now : Math.max(this.#now, end + this.#offset);
        this.#endWindowBy(model.to);
        if (this.#window) {
            Object.assign(this.#window, { to: model.to, open: true });
        }
        for (const hold of [this.#long, this.#reset]) {
            if (hold?.outcome === 'running') {
                hold.to = Math.min(model.to, hold.due);
            }
        }
        model.open = this.#isContinued();
        this.#closeBars(model.to, { open: true });
        this.#lastOf(model.states, model.to);
        this.#lastOf(model.runs, model.to);
        model.lanes = [...this.#lanes.values()].sort(inPanelOrder);
        return model;
    }

    #isContinued() {
        return (
            Boolean(this.#window) ||
            [this.#long, this.#reset].some(hold => hold?.outcome === 'running') ||
            [...this.#lanes.values()].some(lane => lane.bar)
        );
    }

    #beginRunWith(entry) {
        const starts = entry.type === 'device' && entry.status === 'starting';
        if (this.#model.runs.length === 0) {
            this.#model.from = this.#now = entry.at;
        } else if (starts) {
            this.#stopEverything(this.#now);
            this.#offset = this.#now + gapBetweenRuns - entry.at;
            this.#model.breaks.push({
                id: entry.id,
                at: entry.at + this.#offset,
                text: 'The device was started again',
            });
        } else {
            return;
        }
        this.#lastOf(this.#model.runs, this.#now);
        this.#model.runs.push({ from: entry.at + this.#offset, to: undefined, offset: this.#offset });
        this.#listens = !starts;
        if (starts) {
            this.#longTimes = entry.longTimes ?? this.#longTimes;
        }
    }

    #answering({ id, answering }, at) {
        const text = answering ? 'The daemon answers again' : 'The daemon does not answer';
        this.#model.breaks.push({ id, at, text });
    }

    #device(entry, at) {
        this.#testing = false;
        if (entry.status === 'ready') {
            this.#changeState(entry.state, entry.id, at);
            return;
        }
        this.#listens = false;
        this.#span(entry.status, entry.id, at);
        if (entry.status === 'ended') {
            this.#stopEverything(at);
            this.#model.breaks.push({
                id: entry.id,
                at,
                text: `The daemon ended. ${entry.reason ?? ''}`.trim(),
            });
        }
    }

    #changeState(state, id, at) {
        this.#state = state;
        this.#listens = state !== 'Startup';
        this.#span(state, id, at);
    }

    #span(state, id, at) {
        const last = this.#model.states[this.#model.states.length - 1];
        if (last?.state === state && last.to === undefined) {
            return;
        }
        this.#lastOf(this.#model.states, at);
        this.#model.states.push({ id, state, from: at, to: undefined });
    }

    #lastOf(spans, to) {
        const last = spans[spans.length - 1];
        if (last && last.to === undefined) {
            last.to = to;
        }
    }

    #key(entry, device, value, at) {
        const lane = this.#laneOf(entry.key, device);
        if (value === 1) {
            this.#pressed(lane, entry, at);
        } else if (value === 0) {
            this.#released(lane, entry, at);
        } else if (value === 2) {
            this.#repeated(lane, entry, at);
        }
    }

    #pressed(lane, entry, at) {
        this.#closeBar(lane, at, {});
        lane.bar = {
            id: entry.id,
            from: at,
            to: undefined,
            repeats: [],
            heard: this.#listens,
            pressHeard: this.#listens,
        };
        lane.bars.push(lane.bar);
        if (!this.#listens) {
            return;
        }
        if (lane.key === 'FactoryReset') {
            this.#stopReset(at);
            this.#reset = this.#holdOf(lane, 'reset', entry.id, at, this.#times.factoryResetMs);
        }
        this.#stopLong(at);
    }

    #released(lane, entry, at) {
        if (!lane.bar) {
            lane.bar = this.#barFromBefore(lane, entry);
        }
        lane.bar.heard ||= this.#listens;
        lane.bar.releaseHeard = this.#listens;
        this.#closeBar(lane, at, {});
        if (!this.#listens) {
            return;
        }
        if (lane.key === 'FactoryReset') {
            this.#stopReset(at);
        }
        this.#stopLong(at);
        this.#timerEnd = at + this.#times.singleKeyMs;
        if (this.#waitsAfter(lane.key)) {
            this.#lastReleased = lane.key;
            this.#startWindow(entry.id, at);
        } else {
            this.#forgetKeys(at);
        }
    }

    /// Whether the daemon remembers the key: it waits for more in Idle, but not after Menu unless that follows Help,
    /// and in a keyboard test. Anywhere else a key is announced at once, and forgotten with all before it.
    #waitsAfter(key) {
        return ['', 'Idle'].includes(this.#state)
            ? key !== 'Menu' || this.#lastReleased === 'Help'
            : this.#testing && key !== 'Ten';
    }

    #repeated(lane, entry, at) {
        lane.bar ??= this.#barFromBefore(lane, entry);
        lane.bar.repeats.push(at);
        lane.bar.heard ||= this.#listens;
        if (!this.#listens || !Object.hasOwn(this.#longTimes, lane.key)) {
            return;
        }
        if (this.#long?.outcome === 'running' && at <= this.#long.due + patience) {
            return;
        }
        this.#stopLong(at);
        this.#long = this.#holdOf(lane, 'long', entry.id, at, this.#longTimes[lane.key]);
    }

    /// The press came before the first entry that is left, or by no record of a device.
    #barFromBefore(lane, entry) {
        const run = this.#model.runs[this.#model.runs.length - 1];
        const bar = {
            id: entry.id,
            from: run.from,
            to: undefined,
            repeats: [],
            heard: this.#listens,
            pressHeard: this.#listens,
            begun: true,
        };
        if (lane.device === commandDevice || lane.bars.length > 0) {
            bar.from = entry.at + this.#offset;
        }
        lane.bars.push(bar);
        return bar;
    }

    #startWindow(id, at) {
        if (this.#window) {
            this.#window.restarts.push(at);
        } else {
            this.#window = { id, from: at, restarts: [] };
            this.#model.windows.push(this.#window);
        }
        this.#window.to = this.#timerEnd;
    }

    #endWindowBy(at) {
        if (this.#timerEnd <= at) {
            this.#stopLong(this.#timerEnd);
            this.#forgetKeys(this.#timerEnd);
            this.#timerEnd = undefined;
        }
    }

    /// The daemon waits for no more keys.
    #forgetKeys(at) {
        if (this.#window) {
            this.#window.to = at;
            this.#window = undefined;
        }
        this.#lastReleased = '';
    }

    #holdOf(lane, kind, id, from, time) {
        const hold = { id, kind, key: lane.key, from, to: undefined, due: from + time, outcome: 'running' };
        lane.holds.push(hold);
        return hold;
    }

    #stopLong(at) {
        if (this.#long) {
            stopHold(this.#long, at);
            this.#formerLong = this.#long;
            this.#long = undefined;
        }
    }

    #stopReset(at) {
        if (this.#reset) {
            stopHold(this.#reset, at);
        }
    }

    #answer(entry, at) {
        const command = this.#commands.shift();
        if (command && entry.response?.resultId === 'Success') {
            this.#key({ ...entry, key: command.key }, commandDevice, simulatedValues[command.action], at);
        }
    }

    #moment(entry, at) {
        const moment = momentOf(entry);
        if (!moment) {
            return;
        }
        this.#model.moments.push({ id: entry.id, at, ...moment });
        if (entry.type === 'command') {
            this.#commands.push(simulatedKey(entry.text));
        } else if (entry.type === 'announcement') {
            this.#announced(entry, at);
        } else if (entry.type === 'refusal' && isOfAction(entry)) {
            this.#decide([this.#formerLong, this.#long], at, 'refused');
        }
    }

    #announced(entry, at) {
        if (entry.action === 'FactoryReset') {
            this.#decide([this.#reset], at, 'fired');
        } else if (entry.action !== 'SingleKey' && entry.keys.length === 1) {
            const holds = [this.#formerLong, this.#long].filter(hold => hold?.key === entry.keys[0]);
            this.#decide(holds, at, 'fired');
        }
    }

    /// Word of a time that was up may come a little after the key that would have stopped it.
    #decide(holds, at, outcome) {
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

    #laneOf(key, device) {
        const name = `${key} ${device}`;
        if (!this.#lanes.has(name)) {
            this.#lanes.set(name, {
                key,
                device,
                label: laneLabel(key, device),
                bars: [],
                holds: [],
                bar: undefined,
            });
        }
        return this.#lanes.get(name);
    }

    #closeBar(lane, at, marks) {
        if (lane.bar) {
            Object.assign(lane.bar, { to: at }, marks);
            lane.bar = undefined;
        }
    }

    #closeBars(at, marks) {
        for (const lane of this.#lanes.values()) {
            this.#closeBar(lane, at, marks);
        }
    }

    #stopEverything(at) {
        this.#closeBars(at, { cut: true });
        this.#stopLong(at);
        this.#stopReset(at);
        this.#formerLong = this.#reset = undefined;
        this.#lastReleased = '';
        this.#timerEnd = undefined;
        if (this.#window) {
            Object.assign(this.#window, { to: Math.min(at, this.#window.to), cut: true });
            this.#window = undefined;
        }
        this.#commands = [];
    }
}

function stopHold(hold, at) {
    if (hold.outcome === 'running') {
        hold.to = Math.min(at, hold.due);
        hold.outcome = 'stopped';
    }
}

function laneLabel(key, device) {
    if (device === 0) {
        return key;
    }
    return device === commandDevice ? `${key} (command)` : `${key} (device ${device})`;
}

function inPanelOrder(one, other) {
    const rank = lane => keyOrder.indexOf(lane.key) + 1 || keyOrder.length + 1;
    return rank(one) - rank(other) || one.label.localeCompare(other.label);
}
