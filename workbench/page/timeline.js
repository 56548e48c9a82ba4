// SPDX-License-Identifier: MIT
// What happened at the device, over time: as a picture, and as a table with the same content.

// ---------------------------------------------------------------- the model: what the picture and the table say

export const maximumEntries = 10000;

/// Until the device describes itself: how long a released key waits for others, how long FactoryReset is held, and
/// when the kernel first repeats a held key.
const unknownTimes = { singleKeyMs: 0, factoryResetMs: 0, repeatDelayMs: 0 };
/// Milliseconds between two runs of the device, whose clocks both begin at 0.
const gapBetweenRuns = 500;
/// An announcement may be noted this much earlier or later than its time is up by the clock of the entries.
const earliness = 20;
const lateness = 1000;
/// A long press that nothing is heard of for this time after its end is over.
const patience = 100;

const keyOrder = 'On Off Feed Help Menu Back Right Up Down Ok Chs One Ten Function FactoryReset'.split(' ');
const simulatedValues = { Released: 0, Pressed: 1, Repeated: 2 };
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
function prolong(model, end) {
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

/// A key that is pressed in Startup is refused by itself, before it could be part of an action.
function isOfAction({ expected, current }) {
    return expected !== undefined || current === undefined;
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

/// What a SimulateKey command stands for; undefined for any other command.
function simulatedKey(text) {
    const [, action, key] = /^SimulateKey(?: as \S+)? (\S+) (\S+)$/.exec(text) ?? [];
    return Object.hasOwn(simulatedValues, action ?? '') ? { action, key } : undefined;
}

function momentOf(entry) {
    switch (entry.type) {
        case 'announcement':
            return { kind: 'announcement', text: announcementText(entry) };
        case 'refusal':
            return { kind: 'refusal', text: refusalText(entry) };
        case 'speech':
            return { kind: 'speech', text: entry.text };
        case 'cancel':
            return { kind: 'speech', text: '(speech cut off)' };
        case 'command':
            return { kind: 'command', text: entry.text };
        case 'console':
            return { kind: 'command', text: `console ${entry.text}` };
        case 'record':
            return { kind: 'command', text: `record ${entry.recordType} ${entry.code} ${entry.value}` };
        case 'heading':
            return { kind: 'heading', text: entry.text };
        default:
            return undefined;
    }
}

function announcementText(entry) {
    const keys = entry.keys.length > 0 ? ` (${entry.keys.join(', ')})` : '';
    return `${entry.action}${keys} to ${entry.receiver}`;
}

function refusalText(entry) {
    const what = entry.action ? `${entry.action} refused` : 'Refused';
    return entry.expected === undefined
        ? `${what}: ${entry.reason}`
        : `${what}: for ${entry.expected || 'no state'}, not for ${entry.current}`;
}

// ---------------------------------------------------------------- the table

const kindNames = {
    announcement: 'Announced',
    refusal: 'Refused',
    speech: 'Spoken',
    command: 'Command',
    heading: 'Heading',
};
const holdNames = { long: 'Long press', reset: 'Factory reset' };
const outcomeNames = { running: 'runs', stopped: 'stopped', fired: 'recognised', refused: 'refused' };
const statusNames = { starting: 'Device is starting', ended: 'Daemon has ended' };

/// The model as rows in the order of their beginning: name, time on the clock of its run, kind, what, how long.
export function timelineRows(model) {
    const rows = [
        ...model.states.map(span => ['state', span, span.from, 'State', stateName(span.state), span.to - span.from]),
        ...model.lanes.flatMap(laneRows),
        ...model.windows.map(one => ['window', one, one.from, 'Window', windowText(one), one.to - one.from]),
        ...model.moments.map(one => [one.kind, one, one.at, kindNames[one.kind], one.text, undefined]),
        ...model.breaks.map(one => ['break', one, one.at, 'Break', one.text, undefined]),
    ];
    return rows
        .sort((one, other) => one[2] - other[2])
        .map(([prefix, item, from, kind, what, duration]) => ({
            name: `${prefix}-${item.id}`,
            time: clockTime(model, from),
            kind,
            what,
            duration,
        }));
}

function laneRows(lane) {
    return [
        ...lane.bars.map(bar => ['key', bar, bar.from, 'Key', keyText(lane, bar), bar.to - bar.from]),
        ...lane.holds.map(hold => [
            'hold',
            hold,
            hold.from,
            holdNames[hold.kind],
            `${lane.label}: ${outcomeNames[hold.outcome]}, due after ${hold.due - hold.from} ms`,
            hold.to - hold.from,
        ]),
    ];
}

function keyText(lane, bar) {
    const repeats = bar.repeats.length > 0 && countOf(bar.repeats.length, 'repetition');
    return joined(lane.label, repeats, bar.open && 'still held', deafness(bar));
}

/// What of a key the daemon did not hear, because it was in Startup or not there.
function deafness({ heard, pressHeard, releaseHeard = true }) {
    if (!heard) {
        return 'not heard';
    }
    return (!pressHeard && 'its press was not heard') || (!releaseHeard && 'its release was not heard');
}

function windowText(window) {
    const restarts = window.restarts.length > 0 && `restarted ${countOf(window.restarts.length, 'time')}`;
    return joined('Waits for more keys', restarts, window.open && 'still open');
}

function joined(...texts) {
    return texts.filter(Boolean).join(', ');
}

function countOf(count, what) {
    return `${count} ${what}${count === 1 ? '' : 's'}`;
}

function stateName(state) {
    return statusNames[state] ?? state;
}

/// `at` on the clock of the device's run that it belongs to.
function clockTime(model, at) {
    const run = [...model.runs].reverse().find(one => one.from <= at);
    return at - (run?.offset ?? 0);
}

function seconds(milliseconds, digits = 3) {
    return `${(milliseconds / 1000).toFixed(digits)} s`;
}

// ---------------------------------------------------------------- the picture

const svgNamespace = 'http://www.w3.org/2000/svg';
const gutter = 132;
const minimumWidth = 640;
const laneHeight = 34;
const labelHeight = 16;
const labelRows = 4;
const charWidth = 6.6;
const ticksAtLeast = 90;
/// Kind, label, and whether the lane is there without anything in it.
const momentLanes = [
    ['announcement', 'Announced', true],
    ['refusal', 'Refused', true],
    ['speech', 'Spoken', true],
    ['command', 'Commands', false],
    ['heading', 'Headings', false],
];
const markers = {
    announcement: 'M0,-6 L6,0 L0,6 L-6,0 Z',
    refusal: 'M-5,-5 L5,5 M-5,5 L5,-5',
    speech: 'M-5,-4 H5 V3 H0 L-3,6 V3 H-5 Z',
    command: 'M-4,-5 L5,0 L-4,5 Z',
    heading: 'M-5,-5 H5 M-5,0 H5 M-5,5 H1',
};

/// Belongs to the picture in the page and goes with it when it is saved.
const style = `
.timeline-svg { --ground: #ffffff; --band: #f1f4f8; --text: #1c2430; --faint: #7a8494; --grid: #d5dbe3; --key: #1f5196;
  --repeat: #ffffff; --hold: #8f4700; --window: #62408c; --announcement: #0d6338; --refusal: #a8172f; --speech: #1c2430;
  --command: #45536b; font: 12px system-ui, sans-serif; background: var(--ground); display: block; }
.timeline-svg text { fill: var(--text); }
.timeline-svg .muted { fill: var(--text); opacity: 0.85; }
.timeline-svg .band { fill: var(--band); }
.timeline-svg .grid { stroke: var(--grid); fill: none; }
.timeline-svg .edge { stroke: var(--faint); stroke-dasharray: 2 3; fill: none; }
.timeline-svg .break { stroke: var(--refusal); stroke-width: 2; stroke-dasharray: 6 4; fill: none; }
.timeline-svg .key { fill: var(--key); }
.timeline-svg .unheard { fill: none; stroke: var(--key); stroke-dasharray: 3 2; }
.timeline-svg .repeat { stroke: var(--repeat); fill: none; }
.timeline-svg .hold { fill: url(#timeline-stripes); stroke: var(--hold); }
.timeline-svg .stripe { stroke: var(--hold); stroke-width: 2; }
.timeline-svg .hold-end { stroke: var(--hold); stroke-width: 2; fill: var(--ground); }
.timeline-svg .fired { fill: var(--hold); }
.timeline-svg .window { fill: url(#timeline-dots); stroke: var(--window); }
.timeline-svg .dot { fill: var(--window); }
.timeline-svg .restart { stroke: var(--window); stroke-width: 2; fill: none; }
.timeline-svg .announcement { fill: var(--announcement); stroke: none; }
.timeline-svg .refusal { stroke: var(--refusal); stroke-width: 2.5; fill: none; }
.timeline-svg .speech { fill: var(--ground); stroke: var(--speech); stroke-width: 1.5; }
.timeline-svg .command { fill: var(--command); stroke: none; }
.timeline-svg .heading { stroke: var(--command); stroke-width: 1.5; fill: none; }
@media (prefers-color-scheme: dark) {
  .timeline-svg { --ground: #12171e; --band: #1c242e; --text: #e6ebf2; --faint: #94a0b2; --grid: #323d4b; --key: #79b0ff;
    --repeat: #12171e; --hold: #ffb266; --window: #c7a6f7; --announcement: #5fd39a; --refusal: #ff8f9c; --speech: #e6ebf2;
    --command: #b3c0d4; }
}
@media (forced-colors: active) {
  .timeline-svg { --ground: Canvas; --band: Canvas; --text: CanvasText; --faint: CanvasText; --grid: GrayText;
    --key: Highlight; --repeat: Canvas; --hold: CanvasText; --window: CanvasText; --announcement: CanvasText;
    --refusal: CanvasText; --speech: CanvasText; --command: CanvasText; }
}
`;

function svgElement(name, attributes = {}, text = undefined) {
    const element = document.createElementNS(svgNamespace, name);
    for (const [attribute, value] of Object.entries(attributes)) {
        element.setAttribute(attribute, value);
    }
    if (text !== undefined) {
        element.textContent = text;
    }
    return element;
}

/// Draws the part of a model between two moments into a group. One path stands for all bars of a lane and kind.
class Drawing {
    #model;
    #from;
    #to;
    #width;
    #scale;
    #grid = svgElement('g');
    #things = svgElement('g');
    #y = 44;

    constructor(model, view, width) {
        this.#model = model;
        this.#from = view.from;
        this.#to = view.to;
        this.#width = width;
        this.#scale = (width - gutter - 8) / (view.to - view.from);
    }

    /// The groups, and the height that they take.
    draw() {
        for (const lane of this.#model.lanes) {
            this.#drawLane(lane);
        }
        this.#drawWindows();
        for (const [kind, label, always] of momentLanes) {
            if (always || this.#model.moments.some(one => one.kind === kind)) {
                this.#drawMoments(kind, label);
            }
        }
        this.#drawStates();
        this.#drawTimes();
        this.#drawBreaks();
        this.#drawLegend();
        return { groups: [this.#grid, this.#things], height: this.#y + 8 };
    }

    #x(at) {
        const inside = Math.min(Math.max(at, this.#from), this.#to);
        return Math.round((gutter + (inside - this.#from) * this.#scale) * 10) / 10;
    }

    #sees(from, to) {
        return to >= this.#from && from <= this.#to;
    }

    #seen(spans) {
        return spans.filter(span => this.#sees(span.from, span.to));
    }

    #put(name, attributes, text) {
        this.#things.append(svgElement(name, attributes, text));
    }

    #gridLine(d) {
        this.#grid.append(svgElement('path', { d, class: 'grid' }));
    }

    #label(text, y, className = '') {
        this.#put('text', { x: 8, y, class: className }, text);
    }

    /// Bars of at least a visible width; those that would fall on the same pixels are drawn once.
    #bars(spans, y, height, className) {
        let path = '';
        let last = -1;
        for (const span of spans) {
            const x = this.#x(span.from);
            const width = Math.max(this.#x(span.to) - x, 2);
            if (x + width > last) {
                path += `M${x},${y}h${width}v${height}h${-width}z`;
                last = Math.ceil(x + width);
            }
        }
        if (path) {
            this.#put('path', { d: path, class: className });
        }
    }

    #ticks(moments, y, height, className) {
        let path = '';
        let last = -2;
        for (const at of moments) {
            const x = this.#x(at);
            if (this.#sees(at, at) && x >= last + 2) {
                path += `M${x},${y}v${height}`;
                last = x;
            }
        }
        if (path) {
            this.#put('path', { d: path, class: className });
        }
    }

    /// The state is written above and shades what happens in it, unless it is Idle.
    #drawStates() {
        this.#label('State', 36);
        this.#seen(this.#model.states).forEach(span => {
            const x = this.#x(span.from);
            const width = this.#x(span.to) - x;
            const name = stateName(span.state);
            const height = span.state === 'Idle' ? 20 : this.#y - 22;
            this.#grid.prepend(svgElement('rect', { x, y: 22, width, height, class: 'band' }));
            if (this.#sees(span.from, span.from)) {
                this.#put('path', { d: `M${x},22V${this.#y}`, class: 'edge' });
            }
            if (name.length * charWidth + 8 < width) {
                this.#put('text', { x: x + 5, y: 36 }, name);
            }
        });
    }

    #drawLane(lane) {
        const y = this.#y;
        this.#gridLine(`M0,${y}.5H${this.#width}`);
        this.#label(lane.label, y + 20);
        const bars = this.#seen(lane.bars);
        this.#bars(
            bars.filter(bar => bar.heard),
            y + 5,
            14,
            'key',
        );
        this.#bars(
            bars.filter(bar => !bar.heard),
            y + 5,
            14,
            'unheard',
        );
        this.#ticks(
            bars.flatMap(bar => bar.repeats),
            y + 8,
            8,
            'repeat',
        );
        const holds = this.#seen(lane.holds);
        this.#bars(holds, y + 22, 7, 'hold');
        holds.filter(hold => hold.outcome !== 'running').forEach(hold => this.#drawHoldEnd(hold, y + 25.5));
        this.#y += laneHeight;
    }

    #drawHoldEnd(hold, y) {
        if (this.#sees(hold.to, hold.to)) {
            const x = this.#x(hold.to);
            this.#put('path', { d: holdEndShape(hold.outcome, x, y), class: `hold-end ${hold.outcome}` });
        }
    }

    #drawWindows() {
        const y = this.#y;
        this.#gridLine(`M0,${y}.5H${this.#width}`);
        if (this.#model.windowMs > 0) {
            this.#label(`Window ${this.#model.windowMs / 1000} s`, y + 17);
        }
        const windows = this.#seen(this.#model.windows);
        this.#bars(windows, y + 6, 14, 'window');
        this.#ticks(
            windows.flatMap(window => window.restarts),
            y + 3,
            20,
            'restart',
        );
        this.#y += 26;
    }

    /// Words are next to their markers; markers without room for words are in a separate row.
    #drawMoments(kind, label) {
        const y = this.#y;
        const moments = this.#model.moments.filter(one => one.kind === kind && this.#sees(one.at, one.at));
        const rows = new LabelRows(labelRows, gutter, this.#width);
        this.#gridLine(`M0,${y}.5H${this.#width}`);
        this.#label(label, y + 17);
        let crowdedX = -Infinity;
        for (const moment of moments) {
            const x = this.#x(moment.at);
            const place = rows.placeOf(x, moment.text);
            if (place) {
                this.#drawMarker(kind, x, y, place.row);
                this.#drawWords(moment.text, x, y, place);
            } else if (x >= crowdedX + 4) {
                this.#drawMarker(kind, x, y, labelRows);
                crowdedX = x;
            }
        }
        this.#y += Math.max(rows.used + (crowdedX > 0 ? 1 : 0), 1) * labelHeight + 10;
    }

    #drawMarker(kind, x, y, row) {
        const transform = `translate(${x},${y + 13 + row * labelHeight})`;
        this.#put('path', { d: markers[kind], class: kind, transform });
    }

    #drawWords(text, x, y, { row, before }) {
        const [wordX, anchor] = before ? [x - 9, 'end'] : [x + 9, 'start'];
        this.#put('text', { x: wordX, y: y + 17 + row * labelHeight, 'text-anchor': anchor }, text);
    }

    #drawTimes() {
        const step = tickStep(ticksAtLeast / this.#scale);
        const rows = new LabelRows(1, gutter, this.#width);
        this.#label('Time', 15);
        for (const run of this.#seen(this.#model.runs)) {
            const first = Math.max(run.from, this.#from) - run.offset;
            const last = Math.min(run === this.#model.runs[this.#model.runs.length - 1] ? this.#to : run.to, this.#to);
            for (let at = Math.ceil(first / step) * step; at + run.offset <= last; at += step) {
                const x = this.#x(at + run.offset);
                this.#gridLine(`M${x},18V${this.#y}`);
                const text = seconds(at, step < 1000 ? 1 : 0);
                if (rows.placeOf(x, text)?.before === false) {
                    this.#put('text', { x: x + 3, y: 15, class: 'muted' }, text);
                }
            }
        }
    }

    #drawBreaks() {
        for (const one of this.#model.breaks.filter(one => this.#sees(one.at, one.at))) {
            this.#put('path', { d: `M${this.#x(one.at)},0V${this.#y}`, class: 'break' });
        }
    }

    #drawLegend() {
        const y = this.#y + 18;
        const items = [
            ['key', 'pressed'],
            ['unheard', 'pressed, not heard'],
            ['hold', 'long press runs'],
            ['hold-end fired', 'recognised'],
            ['hold-end refused', 'refused'],
            ['hold-end stopped', 'stopped'],
            ['window', 'waits for more keys'],
            ['break', 'device restarted, ended or not answering'],
        ];
        this.#gridLine(`M0,${this.#y}.5H${this.#width}`);
        let x = 8;
        let row = 0;
        for (const [className, text] of items) {
            const width = 26 + text.length * charWidth + 14;
            if (x + width > this.#width) {
                x = 8;
                row += 1;
            }
            this.#put('path', { d: legendShape(className, x, y + row * 20), class: className });
            this.#put('text', { x: x + 26, y: y + row * 20 }, text);
            x += width;
        }
        this.#y = y + row * 20 + 6;
    }
}

function holdEndShape(outcome, x, y) {
    return outcome === 'stopped' ? `M${x},${y - 5}v10` : `M${x - 5},${y}l5,-5l5,5l-5,5z`;
}

function legendShape(className, x, y) {
    if (className.startsWith('hold-end')) {
        return holdEndShape(className.split(' ')[1], x + 10, y - 4);
    }
    return className === 'break' ? `M${x},${y - 4}h20` : `M${x},${y - 10}h20v12h-20z`;
}

/// The first of 1, 2, 5, 10, ... times a power of ten milliseconds that is not shorter than `least`.
function tickStep(least) {
    const power = 10 ** Math.max(Math.floor(Math.log10(least)), 1);
    return [1, 2, 5, 10].map(factor => factor * power).find(step => step >= least);
}

/// Finds rows in which labels have room next to their markers, so that they never cover each other.
class LabelRows {
    used = 0;
    #ends;
    #right;

    constructor(count, left, right) {
        this.#ends = new Array(count).fill(left - 7); // a marker may stand on the left edge
        this.#right = right;
    }

    /// The row of the marker at `x`, and whether its label stands before it; undefined without room for it.
    placeOf(x, text) {
        const length = 14 + text.length * charWidth;
        const before = x + length > this.#right;
        const begin = before ? x - length : x - 7;
        const row = this.#ends.findIndex(end => end <= begin);
        if (row < 0) {
            return undefined;
        }
        this.#ends[row] = before ? x + 7 : x + length;
        this.used = Math.max(this.used, row + 1);
        return { row, before };
    }
}

// ---------------------------------------------------------------- the part of the page

const firstSpan = 15000;
const shortestSpan = 200;
/// Between two drawings of the picture, and of the table, as time passes.
const pictureInterval = 100;
const tableInterval = 1000;
/// How far the picture moves by one key press or button, in parts of its width.
const moveBy = 0.25;
/// Room for the words next to what happens now.
const aheadOfNow = 0.12;
/// How many steps of the slider go through the time that is shown.
const stepsOfSlider = 10;

/// Shows the entries of a session in `container`: buttons, the picture, and the table with the same content.
export class Timeline {
    #entries = [];
    #shown;
    #lost; // the moment at which the connection was lost
    #fits = false; // whether all is in sight, however long it becomes
    #isNew = true; // whether it was not drawn yet
    #times = unknownTimes;
    #longTimes = {};
    #model = timelineModel([]);
    #stale = true;
    #clock = { at: 0, stamp: performance.now() };
    #view = { from: 0, to: firstSpan };
    #lastDrawing = 0;
    #lastTable = 0;
    #rows = new Map();
    #parts;
    #announce;
    #calm = matchMedia('(prefers-reduced-motion: reduce)');

    /// `announce` is given what is shown when a key or a button has changed it.
    constructor(container, announce = () => {}) {
        this.#announce = announce;
        this.#parts = buildParts(container);
        this.#connect();
        new ResizeObserver(() => this.#draw()).observe(this.#parts.frame);
        const tick = now => {
            this.#onFrame(now);
            requestAnimationFrame(tick);
        };
        requestAnimationFrame(tick);
    }

    /// Takes in what has just happened.
    add(entry) {
        this.#entries.push(entry);
        if (this.#entries.length > maximumEntries) {
            this.#entries.splice(0, this.#entries.length - maximumEntries);
        }
        this.#setClock(entry.at);
        this.#stale = true;
    }

    /// Begins with other entries; `now` is the time on the device's clock, without it that of the last entry.
    reset(entries, now = entries[entries.length - 1]?.at ?? 0) {
        this.#entries = entries.slice(-maximumEntries);
        this.#lost = undefined;
        this.#setNote('');
        this.#setClock(now);
        this.#stale = true;
    }

    /// Takes the times from the device's description.
    setTimes(times) {
        this.#times = times;
    }

    /// Nothing is known from now on, until `reset`; `note` says so.
    stop(note) {
        this.#lost = this.#liveNow();
        this.#setNote(note);
    }

    #setNote(text) {
        this.#parts.note.textContent = text;
        this.#parts.note.hidden = text === '';
    }

    /// The key card knows the times of the long presses; they count from the last start of the device on.
    setCard(card) {
        this.#longTimes = longTimesOf(card, this.#times);
        const starts = entry => entry.type === 'device' && entry.status === 'starting';
        const last = this.#entries.reduce((found, entry, index) => (starts(entry) ? index : found), -1);
        if (last >= 0) {
            this.#entries[last] = { ...this.#entries[last], longTimes: this.#longTimes };
        }
        this.#stale = true;
    }

    #setClock(at) {
        this.#clock = { at, stamp: performance.now() };
    }

    #now() {
        return this.#shown?.now ?? this.#liveNow();
    }

    #liveNow() {
        return this.#lost ?? this.#clock.at + performance.now() - this.#clock.stamp;
    }

    #connect() {
        const { buttons, frame, position, details } = this.#parts;
        buttons.pause.addEventListener('click', () => {
            this.#shown ? this.#resume() : this.#pause();
            this.#announce(this.#shown ? 'Paused.' : 'Live again.');
        });
        const onClick = (button, change) => button.addEventListener('click', () => this.#change(change));
        onClick(buttons.zoomIn, () => this.#zoom(0.5));
        onClick(buttons.zoomOut, () => this.#zoom(2));
        onClick(buttons.fit, () => this.#fit());
        onClick(buttons.earlier, () => this.#move(-moveBy));
        onClick(buttons.later, () => this.#move(moveBy));
        buttons.save.addEventListener('click', () => this.#save());
        position.addEventListener('input', () => this.#showUpTo(Number(position.value)));
        frame.addEventListener('keydown', event => this.#onKey(event));
        // Screen readers say little or nothing of an application that gets the focus.
        frame.addEventListener('focus', () =>
            this.#announce(`Drawing, ${this.#sight()}. Arrow keys move it, plus and minus zoom, 0 shows all.`),
        );
        details.addEventListener('toggle', () => this.#fillTable());
    }

    #onKey(event) {
        const actions = {
            ArrowLeft: () => this.#move(-moveBy),
            ArrowRight: () => this.#move(moveBy),
            PageUp: () => this.#move(-1),
            PageDown: () => this.#move(1),
            Home: () => this.#showUpTo(this.#model.from + this.#span()),
            End: () => this.#showUpTo(this.#model.to),
            '+': () => this.#zoom(0.5),
            '-': () => this.#zoom(2),
            0: () => this.#fit(),
        };
        if (Object.hasOwn(actions, event.key) && !event.ctrlKey && !event.altKey && !event.metaKey) {
            event.preventDefault();
            this.#change(actions[event.key]);
        }
    }

    #change(change) {
        change();
        this.#announce(this.#sight());
    }

    #sight() {
        const before = Math.max(this.#model.to - this.#view.to, 0);
        const end = before > 0 ? `${seconds(before, 1)} before the end` : 'the end';
        return `${seconds(this.#span(), 1)} up to ${end}`;
    }

    #span() {
        return this.#view.to - this.#view.from;
    }

    #zoom(factor) {
        this.#fits = false;
        const longest = Math.max(this.#model.to - this.#model.from, firstSpan) * 1.1;
        const span = Math.min(Math.max(this.#span() * factor, shortestSpan), longest);
        const middle = (this.#view.from + this.#view.to) / 2;
        this.#view = this.#shown
            ? { from: middle - span / 2, to: middle + span / 2 }
            : { from: this.#view.to - span, to: this.#view.to };
        this.#draw();
    }

    #fit() {
        this.#fits = !this.#shown;
        this.#showAll();
        this.#draw();
    }

    #showAll() {
        const edge = Math.max(this.#model.to - this.#model.from, shortestSpan) * 0.02;
        this.#view = {
            from: this.#model.from,
            to: Math.max(this.#model.to, this.#model.from + shortestSpan) + edge,
        };
    }

    #move(parts) {
        this.#showUpTo(this.#view.to + parts * this.#span());
    }

    /// Who looks at the past wants it to stay.
    #showUpTo(to) {
        this.#pause();
        this.#fits = false;
        const span = this.#span();
        const end = Math.min(Math.max(to, this.#model.from + span), this.#lastPosition());
        this.#view = { from: end - span, to: end };
        this.#draw();
    }

    #lastPosition() {
        return Math.max(this.#model.to + this.#span() * aheadOfNow, this.#model.from + this.#span());
    }

    #pause() {
        if (!this.#shown) {
            this.#refresh();
            this.#shown = { entries: this.#entries.slice(), now: this.#now() };
            this.#fillTable();
        }
        this.#parts.buttons.pause.textContent = 'Resume';
        this.#draw();
    }

    #resume() {
        this.#shown = undefined;
        this.#stale = true;
        this.#parts.buttons.pause.textContent = 'Pause';
        this.#refresh();
        this.#follow();
        this.#draw();
        this.#fillTable();
    }

    #onFrame(now) {
        if (this.#shown || now - this.#lastDrawing < pictureInterval || !this.#isVisible()) {
            return;
        }
        this.#lastDrawing = now;
        const changed = this.#stale;
        this.#refresh();
        const isStill = this.#lost !== undefined && !changed;
        if (!isStill && (this.#follow() || changed)) {
            this.#draw();
        }
        if (now - this.#lastTable > tableInterval) {
            this.#lastTable = now;
            this.#fillTable();
        }
    }

    #isVisible() {
        return this.#parts.frame.clientWidth > 0;
    }

    #refresh() {
        const run = this.#model.runs[this.#model.runs.length - 1];
        if (!this.#stale && !this.#model.open && run) {
            prolong(this.#model, Math.max(this.#model.to, this.#now() + run.offset));
            return;
        }
        const entries = this.#shown?.entries ?? this.#entries;
        this.#model = timelineModel(entries, this.#times, this.#longTimes, this.#now());
        this.#stale = false;
    }

    /// Keeps the latest moment in sight; in steps where motion is not wanted. Whether the view has moved.
    #follow() {
        if (this.#fits) {
            return this.#followAll();
        }
        const span = this.#span();
        if (this.#calm.matches && this.#model.to <= this.#view.to && this.#model.to >= this.#view.from) {
            return false;
        }
        const to = this.#model.to + span * (this.#calm.matches ? 0.5 : aheadOfNow);
        this.#view = { from: to - span, to };
        return true;
    }

    #followAll() {
        if (this.#calm.matches && this.#model.to <= this.#view.to && this.#model.from === this.#view.from) {
            return false;
        }
        this.#showAll();
        if (this.#calm.matches) {
            this.#view.to += this.#span() * 0.5;
        }
        return true;
    }

    #draw() {
        if (!this.#isVisible()) {
            return;
        }
        const { frame, svg, picture, description, position } = this.#parts;
        const width = Math.max(frame.clientWidth, minimumWidth);
        const { groups, height } = new Drawing(this.#model, this.#view, width).draw();
        picture.replaceChildren(...groups);
        svg.setAttribute('viewBox', `0 0 ${width} ${height}`);
        svg.setAttribute('width', width);
        svg.setAttribute('height', height);
        if (this.#isNew) {
            this.#isNew = false;
            frame.scrollLeft = frame.scrollWidth; // where it does not fit: what happens now
        }
        setText(description, summary(this.#model));
        if (document.activeElement !== position || this.#shown) {
            this.#showPosition(position);
        }
    }

    #showPosition(position) {
        const last = Math.round(this.#lastPosition());
        const step = tickStep(this.#span() / stepsOfSlider);
        position.max = last;
        position.min = last - Math.ceil((last - this.#model.from) / step) * step; // the last position is on a step
        position.step = step;
        position.value = Math.round(this.#view.to);
        position.setAttribute('aria-valuetext', this.#sight());
    }

    #fillTable() {
        const { details, body } = this.#parts;
        if (!details.open || !this.#isVisible()) {
            return;
        }
        const former = this.#rows;
        this.#rows = new Map();
        let next = body.firstChild;
        for (const row of timelineRows(this.#model)) {
            const line = former.get(row.name) ?? buildRow();
            former.delete(row.name);
            this.#rows.set(row.name, line);
            fillRow(line, row);
            if (line === next) {
                next = next.nextSibling;
            } else {
                body.insertBefore(line, next);
            }
        }
        for (const line of former.values()) {
            line.remove();
        }
    }

    #save() {
        const copy = this.#parts.svg.cloneNode(true);
        copy.setAttribute('xmlns', svgNamespace);
        copy.prepend(svgElement('style', {}, style));
        const text = new XMLSerializer().serializeToString(copy);
        const link = document.createElement('a');
        link.href = URL.createObjectURL(new Blob([text], { type: 'image/svg+xml' }));
        link.download = 'timeline.svg';
        link.click();
        setTimeout(() => URL.revokeObjectURL(link.href), 1000);
    }
}

function setText(element, text) {
    if (element.textContent !== text) {
        element.textContent = text;
    }
}

function summary(model) {
    const presses = model.lanes.reduce((sum, lane) => sum + lane.bars.length, 0);
    const momentsOf = kind => model.moments.filter(one => one.kind === kind).length;
    const counts = [
        countOf(presses, 'pressed key'),
        countOf(momentsOf('announcement'), 'announced action'),
        countOf(momentsOf('refusal'), 'refusal'),
        countOf(momentsOf('speech'), 'spoken sentence'),
    ];
    return `${joined(...counts)}. The table has each of them.`;
}

function buildParts(container) {
    const sheet = new CSSStyleSheet();
    sheet.replaceSync(style);
    document.adoptedStyleSheets = [...document.adoptedStyleSheets, sheet];
    const { svg, picture, description } = buildSvg();
    const buttons = buildButtons();
    const position = htmlElement('input', { type: 'range', id: 'timeline-position' });
    const positionBar = htmlElement('div', { class: 'timeline-position' });
    positionBar.append(htmlElement('label', { for: 'timeline-position' }, 'Time shown'), position);
    const bar = htmlElement('div', { class: 'timeline-toolbar', role: 'group', 'aria-label': 'Timeline controls' });
    bar.append(...Object.values(buttons), positionBar);
    const frame = htmlElement('div', {
        class: 'timeline-frame',
        tabindex: '0',
        role: 'application', // so that a screen reader leaves the arrow keys to it
        'aria-label': 'Drawing',
    });
    frame.append(svg);
    const note = htmlElement('p', { class: 'fault', hidden: '' });
    const { details, body } = buildTable();
    container.replaceChildren(bar, note, frame, details);
    return { svg, picture, description, buttons, position, note, frame, details, body };
}

function buildSvg() {
    const svg = svgElement('svg', {
        class: 'timeline-svg',
        role: 'img',
        'aria-labelledby': 'timeline-title',
        'aria-describedby': 'timeline-description',
    });
    const description = svgElement('desc', { id: 'timeline-description' });
    const stripes = svgElement('pattern', {
        id: 'timeline-stripes',
        width: 6,
        height: 6,
        patternUnits: 'userSpaceOnUse',
        patternTransform: 'rotate(45)',
    });
    stripes.append(svgElement('path', { d: 'M1,0V6', class: 'stripe' }));
    const dots = svgElement('pattern', {
        id: 'timeline-dots',
        width: 6,
        height: 6,
        patternUnits: 'userSpaceOnUse',
    });
    dots.append(svgElement('circle', { cx: 3, cy: 3, r: 1.2, class: 'dot' }));
    const definitions = svgElement('defs');
    definitions.append(stripes, dots);
    const picture = svgElement('g');
    svg.append(
        svgElement('title', { id: 'timeline-title' }, 'Timeline of keys and actions'),
        description,
        definitions,
        picture,
    );
    return { svg, picture, description };
}

function buildButtons() {
    const names = {
        pause: 'Pause',
        zoomIn: 'Zoom in',
        zoomOut: 'Zoom out',
        fit: 'Fit',
        earlier: 'Earlier',
        later: 'Later',
        save: 'Save as SVG',
    };
    return Object.fromEntries(
        Object.entries(names).map(([name, text]) => [name, htmlElement('button', { type: 'button' }, text)]),
    );
}

function buildTable() {
    const details = htmlElement('details', { class: 'timeline-table' });
    const frame = htmlElement('div', {
        class: 'timeline-table-frame',
        tabindex: '0',
        role: 'group',
        'aria-label': 'Timeline table',
    });
    const table = htmlElement('table');
    const head = htmlElement('tr');
    head.append(...['Time', 'Kind', 'What', 'Lasts'].map(text => htmlElement('th', { scope: 'col' }, text)));
    const header = htmlElement('thead');
    header.append(head);
    const body = htmlElement('tbody');
    table.append(
        htmlElement('caption', {}, 'What happened, by its beginning since the start of the device'),
        header,
        body,
    );
    frame.append(table);
    details.append(htmlElement('summary', {}, 'Timeline as a table'), frame);
    return { details, body };
}

function buildRow() {
    const row = htmlElement('tr');
    row.append(htmlElement('th', { scope: 'row' }), htmlElement('td'), htmlElement('td'), htmlElement('td'));
    return row;
}

function fillRow(row, { time, kind, what, duration }) {
    const texts = [seconds(time), kind, what, duration === undefined ? '' : `${Math.round(duration)} ms`];
    texts.forEach((text, index) => setText(row.children[index], text));
}

function htmlElement(name, attributes = {}, text = undefined) {
    const element = document.createElement(name);
    for (const [attribute, value] of Object.entries(attributes)) {
        element.setAttribute(attribute, value);
    }
    if (text !== undefined) {
        element.textContent = text;
    }
    return element;
}
