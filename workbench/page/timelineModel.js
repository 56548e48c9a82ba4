// SPDX-License-Identifier: MIT
// What the entries of a session mean over time: what the picture and the table show.
import { Holds } from './timelineHolds.js';
import { Lanes, closeBar, commandDevice } from './timelineLanes.js';
import { isOfAction, momentOf, simulatedKey, simulatedValues } from './timelineMoments.js';
import { runName } from './timelineTexts.js';
import { unknownTimes } from './timelineTimes.js';

/// Milliseconds between two runs of the device, whose clocks both begin at 0.
const gapBetweenRuns = 500;

const answersNot = 'The daemon does not answer';
const answersAgain = 'The daemon answers again';

/// What the entries of a session mean, on one line of time in milliseconds: each run of the device follows the one
/// before. Takes the entries one at a time; call `extendTo` before you read what is in it.
export class TimelineModel {
    from = 0;
    to = 0;
    windowMs;
    windows = [];
    states = [];
    moments = [];
    breaks = [];
    runs = [];
    /// All of these but the runs, by their beginning: `name`, `kind`, `from`, the `item` itself, its `lane` and `run`.
    events = [];
    open = false; // whether anything but the state still lasts
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
    #holds = new Holds();
    #commands = [];
    #lanes = new Lanes();

    /// `times` are those of the device's description; `longTimes` has the time of each key's long press, unless a
    /// `device` entry brings its own `longTimes`.
    constructor(times = unknownTimes, longTimes = {}) {
        this.#times = times;
        this.windowMs = times.singleKeyMs;
        this.#longTimes = longTimes;
    }

    /// Of each key of each device, in the order of the panel.
    get lanes() {
        return this.#lanes.sorted;
    }

    add(entry) {
        this.#holds.takeBack();
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
                this.#break(entry.id, at, entry.answering ? answersAgain : answersNot);
                break;
            default:
                this.#moment(entry, at);
        }
    }

    /// Shows what is known up to `end` on the clock of the last run, or up to the last entry. What still lasts there
    /// is marked `open`. Entries that come later may be of an earlier moment.
    extendTo(end = undefined) {
        this.to = end === undefined ? this.#now : Math.max(this.#now, end + this.#offset);
        const isOver = this.#timerEnd <= this.to;
        if (this.#window) {
            Object.assign(this.#window, { to: isOver ? this.#timerEnd : this.to, open: !isOver });
        }
        this.#holds.assume(this.to, this.#timerEnd);
        const bars = this.lanes.map(lane => lane.bar).filter(Boolean);
        bars.forEach(bar => Object.assign(bar, { to: this.to, open: true }));
        for (const last of [this.states.at(-1), this.runs.at(-1)].filter(Boolean)) {
            last.to = this.to;
        }
        this.open = bars.length > 0 || Boolean(this.#window?.open) || this.#holds.areRunning;
    }

    /// Forgets what ended before this entry, the oldest that is to be kept.
    forgetBefore({ id, at }) {
        this.extendTo();
        const start = at + this.runs.findLast(run => run.id <= id).offset;
        const isKept = item => item.id >= id || (item.to ?? item.at) >= start;
        for (const name of ['windows', 'states', 'moments', 'breaks', 'runs']) {
            this[name] = this[name].filter(isKept);
        }
        this.events = this.events.filter(({ item }) => isKept(item));
        this.#lanes.keep(isKept);
        this.#lanes.sorted.forEach(({ bars }) => bars.forEach(bar => dropBefore(bar.repeats, start)));
        this.windows.forEach(window => dropBefore(window.restarts, start));
        this.from = start;
    }

    #list(kind, item, lane) {
        const from = item.from ?? item.at;
        const event = { name: `${kind}-${item.id}`, kind, from, item, lane, run: this.runs.at(-1) };
        const before = this.events.findLastIndex(other => other.from <= from);
        this.events.splice(before + 1, 0, event);
    }

    #beginRunWith(entry) {
        const starts = entry.type === 'device' && entry.status === 'starting';
        const isFirst = this.runs.length === 0;
        if (!isFirst && !starts) {
            return;
        }
        if (isFirst) {
            this.from = this.#now = entry.at;
        } else {
            this.#stopEverything(this.#now);
            this.runs.at(-1).to = this.#now;
            this.#offset = this.#now + gapBetweenRuns - entry.at;
        }
        const from = entry.at + this.#offset;
        const number = (this.runs.at(-1)?.number ?? 0) + 1;
        const { id, model } = entry;
        this.runs.push({ id, number, model, from, to: undefined, offset: this.#offset });
        if (!isFirst) {
            this.#break(id, from, `The device was started again: ${runName(this.runs.at(-1))}`);
        }
        this.#listens = !starts;
        if (starts) {
            this.#longTimes = entry.longTimes ?? this.#longTimes;
        }
    }

    #break(id, at, text) {
        this.breaks.push({ id, at, text });
        this.#list('break', this.breaks.at(-1));
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
            this.#break(entry.id, at, `The daemon ended. ${entry.reason ?? ''}`.trim());
        }
    }

    #changeState(state, id, at) {
        this.#state = state;
        this.#listens = state !== 'Startup';
        this.#span(state, id, at);
    }

    #span(state, id, at) {
        const last = this.states.at(-1);
        if (last?.state === state) {
            return;
        }
        if (last) {
            last.to = at;
        }
        this.states.push({ id, state, from: at, to: undefined });
        this.#list('state', this.states.at(-1));
    }

    #key(entry, device, value, at) {
        const act = [this.#released, this.#pressed, this.#repeated][value];
        act?.call(this, this.#lanes.of(entry.key, device), entry, at);
    }

    #pressed(lane, entry, at) {
        closeBar(lane, at);
        this.#beginBar(lane, entry, at);
        if (!this.#listens) {
            return;
        }
        this.#holds.stopLong(at);
        if (lane.key === 'FactoryReset') {
            this.#holds.beginReset(this.#holdOf(lane, 'reset', entry.id, at, this.#times.factoryResetMs));
        }
    }

    #released(lane, entry, at) {
        this.#beginEarlierBar(lane, entry);
        lane.bar.heard ||= this.#listens;
        Object.assign(lane.bar, { releaseId: entry.id, releaseHeard: this.#listens });
        closeBar(lane, at);
        if (!this.#listens) {
            return;
        }
        if (lane.key === 'FactoryReset') {
            this.#holds.stopReset(at);
        }
        this.#holds.stopLong(at);
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
        this.#beginEarlierBar(lane, entry);
        lane.bar.repeats.push(at);
        lane.bar.heard ||= this.#listens;
        if (!this.#listens || !Object.hasOwn(this.#longTimes, lane.key)) {
            return;
        }
        if (!this.#holds.isLongRunning(at)) {
            this.#holds.beginLong(this.#holdOf(lane, 'long', entry.id, at, this.#longTimes[lane.key]));
        }
    }

    #beginBar(lane, { id }, from, marks = {}) {
        const [heard, inTest] = [this.#listens, this.#testing];
        lane.bar = { id, from, to: undefined, repeats: [], heard, pressHeard: heard, inTest, ...marks };
        lane.bars.push(lane.bar);
        this.#list('key', lane.bar, lane);
    }

    /// Unless the key is down: its press came before the first entry that is left, or by no record of a device.
    #beginEarlierBar(lane, entry) {
        if (!lane.bar) {
            const isAtOnce = lane.device === commandDevice || lane.bars.length > 0;
            const start = Math.max(this.runs.at(-1).from, this.from);
            this.#beginBar(lane, entry, isAtOnce ? entry.at + this.#offset : start, { begun: true });
        }
    }

    #startWindow(id, at) {
        if (this.#window) {
            this.#window.restarts.push(at);
        } else {
            this.#window = { id, from: at, restarts: [] };
            this.windows.push(this.#window);
            this.#list('window', this.#window);
        }
        this.#window.to = this.#timerEnd;
    }

    #endWindowBy(at) {
        if (this.#timerEnd <= at) {
            this.#holds.stopLong(this.#timerEnd);
            this.#forgetKeys(this.#timerEnd);
            this.#timerEnd = undefined;
        }
    }

    /// The daemon waits for no more keys.
    #forgetKeys(at) {
        if (this.#window) {
            Object.assign(this.#window, { to: at, open: false });
            this.#window = undefined;
        }
        this.#lastReleased = '';
    }

    #holdOf(lane, kind, id, from, time) {
        const hold = { id, kind, key: lane.key, from, to: undefined, due: from + time, outcome: 'running' };
        lane.holds.push(hold);
        this.#list('hold', hold, lane);
        return hold;
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
        this.moments.push({ id: entry.id, at, ...moment });
        this.#list(moment.kind, this.moments.at(-1));
        if (entry.type === 'command') {
            this.#commands.push(simulatedKey(entry.text));
        } else if (entry.type === 'announcement') {
            this.#holds.announced(entry, at);
        } else if (entry.type === 'refusal' && isOfAction(entry)) {
            this.#holds.refused(at);
        }
    }

    #stopEverything(at) {
        this.lanes.forEach(lane => closeBar(lane, at, { cut: true }));
        this.#holds.stopAll(at);
        this.#lastReleased = '';
        if (this.#window) {
            Object.assign(this.#window, { to: Math.min(at, this.#timerEnd), open: false, cut: true });
            this.#window = undefined;
        }
        this.#timerEnd = undefined;
        this.#commands = [];
    }
}

function dropBefore(moments, start) {
    const kept = moments.findIndex(at => at >= start);
    moments.splice(0, kept < 0 ? moments.length : kept);
}
