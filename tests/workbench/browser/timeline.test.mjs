// SPDX-License-Identifier: MIT
// What the timeline makes of the entries of a session.
import assert from 'node:assert/strict';
import { describe, test } from 'node:test';

import { pageModule } from './pageModule.mjs';

const { TimelineModel } = await pageModule('timelineModel.js');
const { questionOf } = await pageModule('timelineQuestion.js');
const { timelineRows } = await pageModule('timelineRows.js');
const { TimelineHistory } = await pageModule('timelineHistory.js');
const { longTimesOf } = await pageModule('timelineTimes.js');

const deviceTimes = { singleKeyMs: 1500, factoryResetMs: 5000, repeatDelayMs: 250 };
const longTimes = { Help: 2000, Menu: 2000, Feed: 0 };
let lastId = 0;

const entry = (type, at, members) => ({ id: ++lastId, type, at, ...members });
const key = (at, name, value, device = 0) => entry('key', at, { device, key: name, value });
const press = (at, name, device) => key(at, name, 1, device);
const release = (at, name, device) => key(at, name, 0, device);
const repeat = (at, name, device) => key(at, name, 2, device);
const tap = (at, name, device) => [press(at, name, device), release(at + 50, name, device)];
const state = (at, name) => entry('state', at, { state: name });
const announced = (at, action, ...keys) =>
    entry('announcement', at, { action, receiver: 'UserMenu', sender: '', keys });
const refused = (at, members = {}) =>
    entry('refusal', at, { reason: 'WARN', expected: 'Print', current: 'Idle', ...members });
const device = (at, status, members = {}) =>
    entry('device', at, { status, model: 'Pellit', state: 'Idle', ...members });
const ready = (at = 0, name = 'Idle') => [
    device(at, 'starting', { state: name }),
    device(at, 'ready', { state: name }),
];
const simulate = (at, action, name, resultId = 'Success') => [
    entry('command', at, { text: `SimulateKey as WwwApi ${action} ${name}` }),
    entry('answer', at + 1, { text: 'answer', response: { resultId } }),
];

function modelOf(entries, end, times = deviceTimes) {
    const model = new TimelineModel(times, longTimes);
    entries.flat().forEach(each => model.add(each));
    model.extendTo(end);
    return model;
}

/** The chosen members of each item, so that a comparison says what a test is about. */
function pick(items, ...members) {
    return items.map(item => Object.fromEntries(members.map(member => [member, item[member]])));
}

const times = items => items.map(({ from, to }) => [from, to]);
const laneOf = (model, label) => model.lanes.find(lane => lane.label === label);
const holdsOf = (model, label) => laneOf(model, label).holds;

describe('bars of the keys', () => {
    test('a press lasts until the release of the same key', () => {
        const model = modelOf([
            ready(),
            press(100, 'Up'),
            press(150, 'Help'),
            release(200, 'Up'),
            release(400, 'Help'),
        ]);
        assert.deepEqual(times(laneOf(model, 'Up').bars), [[100, 200]]);
        assert.deepEqual(times(laneOf(model, 'Help').bars), [[150, 400]]);
    });
    test('each input device has its own lane', () => {
        const model = modelOf([
            ready(),
            press(100, 'Up'),
            press(150, 'Up', 1),
            release(200, 'Up', 1),
            release(300, 'Up'),
        ]);
        assert.deepEqual(
            model.lanes.map(lane => lane.label),
            ['Up', 'Up (device 1)'],
        );
        assert.deepEqual(times(laneOf(model, 'Up').bars), [[100, 300]]);
        assert.deepEqual(times(laneOf(model, 'Up (device 1)').bars), [[150, 200]]);
    });
    test('lanes have the order of the panel', () => {
        const model = modelOf([ready(), tap(100, 'Ten'), tap(200, 'FactoryReset'), tap(300, 'On'), tap(400, 'Menu')]);
        assert.deepEqual(
            model.lanes.map(lane => lane.label),
            ['On', 'Menu', 'Ten', 'FactoryReset'],
        );
    });
    test('repetitions belong to their bar', () => {
        const model = modelOf([
            ready(),
            press(0, 'Up'),
            repeat(250, 'Up'),
            repeat(283, 'Up'),
            release(300, 'Up'),
            tap(400, 'Up'),
        ]);
        assert.deepEqual(
            laneOf(model, 'Up').bars.map(bar => bar.repeats),
            [[250, 283], []],
        );
    });
    test('a key that is held at the end is open there', () => {
        const model = modelOf([ready(), press(100, 'Up')], 700);
        assert.deepEqual(pick(laneOf(model, 'Up').bars, 'from', 'to', 'open'), [{ from: 100, to: 700, open: true }]);
    });
    test('a key whose press is not known any more is held from the beginning', () => {
        const model = modelOf([state(1000, 'Idle'), repeat(1200, 'Up'), release(1300, 'Up')]);
        assert.deepEqual(pick(laneOf(model, 'Up').bars, 'from', 'to', 'repeats'), [
            { from: 1000, to: 1300, repeats: [1200] },
        ]);
    });
    test('a key pressed twice without a release between is two bars', () => {
        const model = modelOf([ready(), press(100, 'Up'), press(200, 'Up'), release(300, 'Up')]);
        assert.deepEqual(times(laneOf(model, 'Up').bars), [
            [100, 200],
            [200, 300],
        ]);
    });
    test('a key in Startup is marked as not heard', () => {
        const model = modelOf([ready(0, 'Startup'), tap(100, 'Up'), state(200, 'Idle'), tap(300, 'Up')]);
        assert.deepEqual(
            laneOf(model, 'Up').bars.map(bar => bar.heard),
            [false, true],
        );
    });
    test('a key pressed in Startup and released in Idle is heard in part, and the other way round', () => {
        const rowsOf = (...entries) => timelineRows(modelOf(entries, 900)).filter(row => row.kind === 'Key');
        const idle = rowsOf(ready(0, 'Startup'), press(100, 'Up'), state(200, 'Idle'), release(300, 'Up'));
        assert.deepEqual(pick(idle, 'what'), [{ what: 'Up, its press was not heard' }]);
        const startup = rowsOf(ready(), press(100, 'Up'), state(200, 'Startup'), release(300, 'Up'));
        assert.deepEqual(pick(startup, 'what'), [{ what: 'Up, its release was not heard' }]);
    });
});

describe('the window for more keys', () => {
    test('begins with a release and ends 1500 ms later', () => {
        assert.deepEqual(times(modelOf([ready(), tap(50, 'Up')], 5000).windows), [[100, 1600]]);
    });
    test('is as long as the device says', () => {
        const model = modelOf([ready(), tap(50, 'Up')], 5000, { ...deviceTimes, singleKeyMs: 700 });
        assert.deepEqual(times(model.windows), [[100, 800]]);
        assert.equal(model.windowMs, 700);
    });
    test('restarts with each release until then, of any key on any device', () => {
        const model = modelOf([ready(), tap(50, 'Up'), tap(1000, 'Down', 1), tap(2499, 'Ok')], 9000);
        assert.deepEqual(pick(model.windows, 'from', 'to', 'restarts'), [
            { from: 100, to: 4049, restarts: [1050, 2549] },
        ]);
    });
    for (const [after, count] of [
        [1499, 1],
        [1500, 2],
        [1501, 2],
    ]) {
        test(`a release ${after} ms after the last one makes ${count} in all`, () => {
            const entries = [
                ready(),
                press(0, 'Up'),
                release(100, 'Up'),
                press(200, 'Down'),
                release(100 + after, 'Down'),
            ];
            assert.equal(modelOf(entries, 9000).windows.length, count);
        });
    }
    test('a press does not move its end', () => {
        assert.deepEqual(times(modelOf([ready(), tap(50, 'Up'), press(1000, 'Down')], 9000).windows), [[100, 1600]]);
    });
    test('does not open in states in which each key is announced at once', () => {
        for (const name of ['Print', 'PrintOff', 'Update', 'Error']) {
            assert.deepEqual(modelOf([ready(0, name), tap(50, 'Up')], 9000).windows, [], name);
        }
    });
    test('ends with a release in such a state', () => {
        const model = modelOf([ready(), tap(50, 'Up'), state(200, 'Print'), tap(300, 'Up')], 9000);
        assert.deepEqual(times(model.windows), [[100, 350]]);
    });
    test('opens in a keyboard test, until Ten ends it', () => {
        const running = at => entry('test', at, { running: true });
        const model = modelOf([ready(0, 'Error'), running(10), tap(50, 'Up'), tap(200, 'Ten')], 9000);
        assert.deepEqual(times(model.windows), [[100, 250]]);
    });
    test('does not open after Menu in Idle, and ends with it, unless it follows Help', () => {
        const windowsOf = (...entries) => times(modelOf([ready(), ...entries], 9000).windows);
        assert.deepEqual(windowsOf(tap(50, 'Menu')), []);
        assert.deepEqual(windowsOf(tap(50, 'Up'), tap(200, 'Menu')), [[100, 250]]);
        assert.deepEqual(windowsOf(tap(50, 'Help'), tap(200, 'Menu')), [[100, 1750]]);
        assert.deepEqual(windowsOf(tap(50, 'Help'), tap(1600, 'Menu')), [[100, 1600]]);
    });
    test('or not, the time since the last release stops a long press', () => {
        const entries = [
            ready(0, 'Print'),
            tap(0, 'Up'),
            press(200, 'Help'),
            repeat(450, 'Help'),
            repeat(1700, 'Help'),
        ];
        assert.deepEqual(pick(holdsOf(modelOf(entries, 2000), 'Help'), 'from', 'to', 'outcome'), [
            { from: 450, to: 1550, outcome: 'stopped' },
            { from: 1700, to: 2000, outcome: 'running' },
        ]);
    });
    test('no release in Startup counts, and one that is open runs out', () => {
        const model = modelOf([ready(), tap(50, 'Up'), state(200, 'Startup'), tap(300, 'Up'), tap(3000, 'Up')], 9000);
        assert.deepEqual(pick(model.windows, 'from', 'to', 'restarts'), [{ from: 100, to: 1600, restarts: [] }]);
    });
    test('that is not over yet is open', () => {
        const model = modelOf([ready(), tap(50, 'Up')], 600);
        assert.deepEqual(pick(model.windows, 'from', 'to', 'open'), [{ from: 100, to: 600, open: true }]);
    });
    test('begins with a simulated release, once its command was answered with success', () => {
        const entries = [
            ready(),
            simulate(10, 'Pressed', 'Up'),
            simulate(20, 'Released', 'Up'),
            simulate(900, 'Released', 'Up', 'Failure'),
        ];
        const model = modelOf(entries, 9000);
        assert.deepEqual(times(model.windows), [[21, 1521]]);
        assert.deepEqual(times(laneOf(model, 'Up (command)').bars), [[11, 21]]);
    });
    test('no answer to another command is taken for that of a simulated key', () => {
        const entries = [
            ready(),
            entry('command', 10, { text: 'GetLastKey' }),
            entry('command', 11, { text: 'SimulateKey Released Up' }),
            entry('answer', 12, { text: 'answer', response: { resultId: 'Success' } }),
        ];
        assert.deepEqual(modelOf(entries, 9000).windows, []);
    });
});

describe('the time of a long press', () => {
    const held = (name, ...repeats) => [ready(), press(0, name), ...repeats.map(at => repeat(at, name))];

    test('runs from the first repetition on', () => {
        const model = modelOf(held('Help', 250, 283, 316), 1000);
        assert.deepEqual(pick(holdsOf(model, 'Help'), 'from', 'to', 'due', 'outcome'), [
            { from: 250, to: 1000, due: 2250, outcome: 'running' },
        ]);
    });
    test('does not run for a key without a row', () => {
        assert.deepEqual(holdsOf(modelOf(held('Up', 250, 283), 1000), 'Up'), []);
    });
    test('does not run for keys that only objects know', () => {
        assert.deepEqual(holdsOf(modelOf(held('constructor', 250), 1000), 'constructor'), []);
    });
    test('is fired by its announcement', () => {
        const model = modelOf([...held('Help', 250), announced(2252, 'KeyDescription', 'Help')], 4000);
        assert.deepEqual(pick(holdsOf(model, 'Help'), 'from', 'to', 'outcome'), [
            { from: 250, to: 2252, outcome: 'fired' },
        ]);
    });
    test('is refused by the log line of its action', () => {
        assert.deepEqual(pick(holdsOf(modelOf([...held('Help', 250), refused(2251)], 4000), 'Help'), 'to', 'outcome'), [
            { to: 2251, outcome: 'refused' },
        ]);
    });
    test('is fired when one of several states was the right one', () => {
        const model = modelOf([...held('Menu', 250), refused(2251), announced(2252, 'MainMenu', 'Menu')], 4000);
        assert.equal(holdsOf(model, 'Menu')[0].outcome, 'fired');
    });
    test('runs again with the next repetition after it fired', () => {
        const model = modelOf(
            [...held('Help', 250, 2231), announced(2252, 'KeyDescription', 'Help'), repeat(2264, 'Help')],
            3000,
        );
        assert.deepEqual(pick(holdsOf(model, 'Help'), 'from', 'outcome'), [
            { from: 250, outcome: 'fired' },
            { from: 2264, outcome: 'running' },
        ]);
    });
    test('of 0 s fires at each repetition', () => {
        const model = modelOf([
            ...held('Feed', 250),
            announced(251, 'EjectPaper', 'Feed'),
            repeat(283, 'Feed'),
            announced(284, 'EjectPaper', 'Feed'),
        ]);
        assert.deepEqual(pick(holdsOf(model, 'Feed'), 'from', 'outcome'), [
            { from: 250, outcome: 'fired' },
            { from: 283, outcome: 'fired' },
        ]);
    });
    for (const [what, stop] of [
        ['its own release', release(900, 'Help')],
        ['the press of another key', press(900, 'Up')],
        ['a release on the other device', release(900, 'Ok', 1)],
    ]) {
        test(`is stopped by ${what}`, () => {
            const model = modelOf([...held('Help', 250), stop], 4000);
            assert.deepEqual(pick(holdsOf(model, 'Help'), 'to', 'outcome'), [{ to: 900, outcome: 'stopped' }]);
        });
    }
    test('is stopped by the end of a window and begins again', () => {
        const model = modelOf(
            [ready(), tap(0, 'Up'), press(100, 'Help'), repeat(350, 'Help'), repeat(1560, 'Help')],
            2000,
        );
        assert.deepEqual(pick(holdsOf(model, 'Help'), 'from', 'to', 'outcome'), [
            { from: 350, to: 1550, outcome: 'stopped' },
            { from: 1560, to: 2000, outcome: 'running' },
        ]);
    });
    test('is not stopped by presses and releases in Startup', () => {
        const model = modelOf(
            [...held('Help', 250), state(500, 'Startup'), release(600, 'Help'), tap(700, 'Up')],
            1000,
        );
        assert.deepEqual(pick(holdsOf(model, 'Help'), 'to', 'outcome'), [{ to: 1000, outcome: 'running' }]);
    });
    test('does not begin in Startup', () => {
        const model = modelOf([ready(0, 'Startup'), press(0, 'Help'), repeat(250, 'Help')], 1000);
        assert.deepEqual(holdsOf(model, 'Help'), []);
    });
    test('counts as fired when word of it comes after the release', () => {
        const model = modelOf(
            [...held('Help', 250), release(2251, 'Help'), announced(2253, 'KeyDescription', 'Help')],
            4000,
        );
        assert.deepEqual(pick(holdsOf(model, 'Help'), 'to', 'outcome'), [{ to: 2250, outcome: 'fired' }]);
    });
    test('that was stopped early is not fired by a later announcement', () => {
        const model = modelOf(
            [...held('Help', 250), release(900, 'Help'), announced(2253, 'KeyDescription', 'Help')],
            4000,
        );
        assert.equal(holdsOf(model, 'Help')[0].outcome, 'stopped');
    });
    test('is not fired by a single key or a combination', () => {
        const model = modelOf(
            [
                ...held('Help', 250),
                announced(2251, 'SingleKey', 'Help'),
                announced(2252, 'PaperStatus', 'Help', 'Feed'),
            ],
            4000,
        );
        assert.equal(holdsOf(model, 'Help')[0].outcome, 'running');
    });
    test('is not fired by an action of its key before it is due', () => {
        const model = modelOf([...held('Help', 250), announced(1000, 'Other', 'Help')], 1500);
        assert.equal(holdsOf(model, 'Help')[0].outcome, 'running');
    });
    test('ends when it is due, although word of it is still missing', () => {
        const model = modelOf(held('Help', 250), 2300);
        assert.deepEqual(pick(holdsOf(model, 'Help'), 'to', 'outcome'), [{ to: 2250, outcome: 'running' }]);
    });
    test('runs again in the end when nothing more is reported of it', () => {
        const model = modelOf(held('Help', 250, 2340, 2360), 2400);
        assert.deepEqual(pick(holdsOf(model, 'Help'), 'from', 'to', 'outcome'), [
            { from: 250, to: 2250, outcome: 'stopped' },
            { from: 2360, to: 2400, outcome: 'running' },
        ]);
    });
    test('is not refused by the refusal of a key in Startup', () => {
        const startup = refused(2251, { expected: undefined, current: 'Startup' });
        const model = modelOf([...held('Help', 250), state(2245, 'Startup'), startup], 3000);
        assert.equal(holdsOf(model, 'Help')[0].outcome, 'running');
    });
    test('is that which the device was started with', () => {
        const entries = [
            device(0, 'starting', { longTimes: { Up: 700 } }),
            device(0, 'ready'),
            press(0, 'Up'),
            repeat(250, 'Up'),
        ];
        assert.equal(holdsOf(modelOf(entries, 500), 'Up')[0].due, 950);
    });
});

describe('the hold of the factory reset', () => {
    test('runs from the press and is fired by its announcement', () => {
        const model = modelOf(
            [ready(), press(100, 'FactoryReset'), announced(5101, 'FactoryReset', 'FactoryReset')],
            6000,
        );
        assert.deepEqual(pick(holdsOf(model, 'FactoryReset'), 'from', 'to', 'due', 'outcome'), [
            { from: 100, to: 5101, due: 5100, outcome: 'fired' },
        ]);
    });
    test('is as long as the device says', () => {
        const slow = { ...deviceTimes, factoryResetMs: 3000 };
        const model = modelOf([ready(), press(100, 'FactoryReset')], 6000, slow);
        assert.deepEqual(pick(holdsOf(model, 'FactoryReset'), 'due'), [{ due: 3100 }]);
    });
    test('is stopped by its own release, on either device', () => {
        const model = modelOf([ready(), press(100, 'FactoryReset'), release(4000, 'FactoryReset', 1)], 6000);
        assert.deepEqual(pick(holdsOf(model, 'FactoryReset'), 'to', 'outcome'), [{ to: 4000, outcome: 'stopped' }]);
    });
    test('is not stopped by other keys, ends of windows or releases in Startup', () => {
        const entries = [
            ready(),
            press(100, 'FactoryReset'),
            tap(500, 'Up'),
            state(3000, 'Startup'),
            release(3500, 'FactoryReset'),
        ];
        assert.equal(holdsOf(modelOf(entries, 4000), 'FactoryReset')[0].outcome, 'running');
    });
    test('does not begin in Startup', () => {
        const model = modelOf([ready(0, 'Startup'), press(100, 'FactoryReset')], 6000);
        assert.deepEqual(holdsOf(model, 'FactoryReset'), []);
    });
    test('begins again with another press', () => {
        const model = modelOf([ready(), press(100, 'FactoryReset'), press(900, 'FactoryReset', 1)], 2000);
        assert.deepEqual(
            holdsOf(model, 'FactoryReset').map(hold => hold.outcome),
            ['stopped'],
        );
        assert.deepEqual(
            holdsOf(model, 'FactoryReset (device 1)').map(hold => hold.outcome),
            ['running'],
        );
    });
});

describe('moments, states and runs', () => {
    test('actions, refusals, speech and commands stand at their moment', () => {
        const entries = [
            ready(),
            announced(1, 'SingleKey', 'Up'),
            refused(2, { action: 'EjectPaper' }),
            entry('speech', 3, { text: 'Menu' }),
            entry('cancel', 4, {}),
            entry('console', 5, { text: 'help' }),
        ];
        assert.deepEqual(
            modelOf(entries).moments.map(({ at, kind, text }) => `${at} ${kind} ${text}`),
            [
                '1 announcement SingleKey (Up) to UserMenu',
                '2 refusal EjectPaper refused: for Print, not for Idle',
                '3 speech Menu',
                '4 speech (speech cut off)',
                '5 command console help',
            ],
        );
    });
    test('the log is left out', () => {
        assert.deepEqual(modelOf([ready(), entry('log', 1, { text: 'a line' })]).moments, []);
    });
    test('states follow each other without a gap', () => {
        const model = modelOf(
            [device(0, 'starting'), device(10, 'ready'), state(500, 'Print'), state(900, 'Idle')],
            1000,
        );
        assert.deepEqual(
            model.states.map(({ state: name, from, to }) => [name, from, to]),
            [
                ['starting', 0, 10],
                ['Idle', 10, 500],
                ['Print', 500, 900],
                ['Idle', 900, 1000],
            ],
        );
    });
    test('a state that is announced again continues', () => {
        const model = modelOf([ready(), state(500, 'Idle')], 1000);
        assert.deepEqual(
            model.states.map(({ state: name, from, to }) => [name, from, to]),
            [
                ['starting', 0, 0],
                ['Idle', 0, 1000],
            ],
        );
    });
    test('a device that is started again follows behind a break, and its clock begins again', () => {
        const model = modelOf([ready(), tap(950, 'Up'), ready(), tap(100, 'Down')], 3000);
        assert.deepEqual(pick(model.breaks, 'at'), [{ at: 1500 }]);
        assert.deepEqual(times(laneOf(model, 'Down').bars), [[1600, 1650]]);
        assert.deepEqual(pick(model.runs, 'from', 'to', 'offset'), [
            { from: 0, to: 1000, offset: 0 },
            { from: 1500, to: 4500, offset: 1500 },
        ]);
        assert.equal(timelineRows(model).find(row => row.what === 'Down').time, 100);
    });
    test('a restart cuts what was in progress', () => {
        const model = modelOf(
            [ready(), tap(0, 'Up'), press(100, 'Help'), repeat(350, 'Help'), ready(), tap(100, 'Up')],
            5000,
        );
        assert.deepEqual(pick(laneOf(model, 'Help').bars, 'from', 'to', 'cut'), [{ from: 100, to: 350, cut: true }]);
        assert.deepEqual(pick(holdsOf(model, 'Help'), 'to', 'outcome'), [{ to: 350, outcome: 'stopped' }]);
        assert.deepEqual(times(model.windows), [
            [50, 350],
            [1000, 2500],
        ]);
    });
    test('the end of the daemon is a break with its reason', () => {
        const model = modelOf([ready(), press(100, 'Up'), device(300, 'ended', { reason: 'It crashed.' })], 1000);
        assert.deepEqual(pick(model.breaks, 'at', 'text'), [{ at: 300, text: 'The daemon ended. It crashed.' }]);
        assert.deepEqual(pick(laneOf(model, 'Up').bars, 'to', 'cut'), [{ to: 300, cut: true }]);
    });
    test('a daemon that does not answer, and answers again, is a break', () => {
        const answering = (at, is) => entry('daemon', at, { answering: is });
        const model = modelOf([ready(), answering(100, false), answering(200, true)], 1000);
        assert.deepEqual(pick(model.breaks, 'at', 'text'), [
            { at: 100, text: 'The daemon does not answer' },
            { at: 200, text: 'The daemon answers again' },
        ]);
    });
    test('no entries at all are an empty model', () => {
        assert.deepEqual(pick([modelOf([])], 'from', 'to', 'lanes', 'runs'), [{ from: 0, to: 0, lanes: [], runs: [] }]);
    });
});

describe('the key card', () => {
    test('shows the times of long presses, also of those that are never recognised', () => {
        const row = (kind, holdMs, ...keys) => ({ kind, holdMs, keys });
        const card = {
            states: [
                {
                    state: 'Idle',
                    entries: [
                        row('long', 2250, 'Help'),
                        row('hold', 5000, 'FactoryReset'),
                        row('single', undefined, 'Up'),
                    ],
                },
                { state: 'Error', entries: [row('long', 1250, 'Ok')] },
            ],
            never: [row('long', 3250, 'Off')],
        };
        assert.deepEqual(longTimesOf(card, deviceTimes), { Help: 2000, Ok: 1000, Off: 3000 });
        const slow = { ...deviceTimes, repeatDelayMs: 500 };
        assert.deepEqual(longTimesOf(card, slow), { Help: 1750, Ok: 750, Off: 2750 });
    });
});

describe('the rows of the table', () => {
    test('say the same as the picture, in the order of time', () => {
        const model = modelOf(
            [
                ready(),
                press(100, 'Help'),
                repeat(350, 'Help'),
                announced(2351, 'KeyDescription', 'Help'),
                release(2400, 'Help'),
                entry('speech', 2410, { text: 'Help' }),
            ],
            9000,
        );
        assert.deepEqual(
            timelineRows(model).map(({ time, kind, what, duration }) => [time, kind, what, duration]),
            [
                [0, 'State', 'Device is starting', 0],
                [0, 'State', 'Idle', 9000],
                [100, 'Key', 'Help, 1 repetition', 2300],
                [350, 'Long press', 'Help: recognised, due after 2000 ms', 2001],
                [2351, 'Announced', 'KeyDescription (Help) to UserMenu', undefined],
                [2400, 'Window', 'Waits for more keys', 1500],
                [2410, 'Spoken', 'Help', undefined],
            ],
        );
    });
    test('show what is still in progress and what was not heard', () => {
        const held = modelOf([ready(), tap(0, 'Up'), state(100, 'Startup'), press(200, 'Ok')], 300);
        assert.deepEqual(
            timelineRows(held)
                .filter(row => ['Key', 'Window'].includes(row.kind))
                .map(row => row.what),
            ['Up', 'Waits for more keys, still open', 'Ok, still held, not heard'],
        );
    });
    test('have separate names', () => {
        const model = modelOf([ready(), tap(100, 'FactoryReset'), announced(200, 'SingleKey', 'Up')], 9000);
        const names = timelineRows(model).map(row => row.name);
        assert.equal(new Set(names).size, names.length);
    });
});

/** Returns a function whose results are below its argument. */
function randomNumbers(seed) {
    let last = seed;
    return limit => {
        last = (last * 1103515245 + 12345) % 2 ** 31;
        return Math.floor(last / 65536) % limit;
    };
}

function randomEntries(random) {
    const oneOf = (...items) => items[random(items.length)];
    const name = () => oneOf('Up', 'Help', 'Menu', 'Feed', 'FactoryReset', 'Ok');
    const makers = [
        at => key(at, name(), random(3), random(2)),
        at => key(at, name(), random(3)),
        at => key(at, name(), 2),
        at => state(at, oneOf('Idle', 'Print', 'Startup')),
        at => announced(at, oneOf('KeyDescription', 'FactoryReset', 'SingleKey'), name()),
        at => refused(at),
        at => entry('test', at, { running: random(2) === 1 }),
        at => simulate(at, oneOf('Pressed', 'Released'), name()),
    ];
    const entries = ready();
    for (let at = 0; entries.length < 60; at += oneOf(1, 30, 250, 700, 1499, 1500, 1501, 2200)) {
        entries.push(...[oneOf(...makers)(at)].flat());
    }
    return entries;
}

describe('a model that grows', () => {
    const scripts = {
        'a window that is restarted at its last moment': [ready(), tap(0, 'Up'), tap(1499, 'Down'), tap(9000, 'Up')],
        'a long press that is recognised': [
            ready(),
            press(0, 'Help'),
            repeat(250, 'Help'),
            announced(2251, 'KeyDescription', 'Help'),
            release(2300, 'Help'),
        ],
        'a long press that the last release does not stop': [
            ready(),
            tap(0, 'Up'),
            press(100, 'Help'),
            repeat(350, 'Help'),
            release(1500, 'Help'),
        ],
        'a factory reset, a restart and a lost press': [
            ready(),
            press(100, 'FactoryReset'),
            announced(5101, 'FactoryReset', 'FactoryReset'),
            ready(),
            release(10, 'FactoryReset'),
            refused(20),
            simulate(30, 'Pressed', 'Up'),
        ],
    };
    const contents = ({ from, to, lanes, windows, states, moments, breaks, runs, events, open }) =>
        structuredClone({ from, to, lanes, windows, states, moments, breaks, runs, events, open });

    for (const [what, entries] of Object.entries(scripts)) {
        test(`is the same however often it is looked at: ${what}`, () => {
            const model = new TimelineModel(deviceTimes, longTimes);
            for (const each of entries.flat()) {
                model.add(each);
                model.extendTo(each.at + 20);
                model.extendTo(each.at + 3000); // the clock of the page may be ahead
            }
            model.extendTo(12000);
            assert.deepEqual(contents(model), contents(modelOf(entries, 12000)));
        });
    }
    test('is the same however often it is looked at: random entries', () => {
        for (let seed = 1; seed <= 200; ++seed) {
            const random = randomNumbers(seed);
            const entries = randomEntries(random);
            const model = new TimelineModel(deviceTimes, longTimes);
            for (const each of entries) {
                model.add(each);
                model.extendTo(each.at + random(60));
                model.extendTo(each.at + random(6000));
            }
            model.extendTo(20000);
            assert.deepEqual(contents(model), contents(modelOf(entries, 20000)), `seed ${seed}`);
        }
    });
    test('shows the end of a window before another entry comes', () => {
        const model = modelOf([ready(), tap(50, 'Up')], 600);
        model.extendTo(1700);
        assert.deepEqual(pick(model.windows, 'to', 'open'), [{ to: 1600, open: false }]);
        assert(!model.open);
    });
    test('shows that the end of a window stops a long press before another entry comes', () => {
        const model = modelOf([ready(), tap(0, 'Up'), press(100, 'Help'), repeat(350, 'Help')], 2000);
        assert.deepEqual(pick(holdsOf(model, 'Help'), 'to', 'outcome'), [{ to: 1550, outcome: 'stopped' }]);
        model.extendTo(1500);
        assert.deepEqual(pick(holdsOf(model, 'Help'), 'to', 'outcome'), [{ to: 1500, outcome: 'running' }]);
    });
    test('forgets what ended before the oldest entry that is left', () => {
        const entries = [
            ...ready(),
            ...tap(100, 'Up'),
            press(200, 'Help'),
            repeat(450, 'Help'),
            announced(2451, 'KeyDescription', 'Help'),
            press(5000, 'Ok'),
            repeat(5100, 'Help'),
        ];
        const model = modelOf(entries);
        model.forgetBefore(entries.at(-2));
        model.extendTo(6000);
        assert.equal(model.from, 5000);
        assert.deepEqual(
            timelineRows(model).map(({ time, what, duration }) => [time, what, duration]),
            [
                [0, 'Idle', 6000],
                [200, 'Help, 1 repetition, still held', 5800],
                [5000, 'Ok, still held', 1000],
                [5100, 'Help: runs, due after 2000 ms', 900],
            ],
        );
        assert.deepEqual(
            model.lanes.map(({ label }) => label),
            ['Help', 'Ok'],
        );
        model.add(press(6100, 'Up'));
        assert.equal(laneOf(model, 'Up').bars.length, 1);
    });
});

describe('the history', () => {
    const taps = count => Array.from({ length: count }, (_, index) => tap(index * 100, 'Up')).flat();

    test('keeps the latest 10,000 entries, and at most 500 more', () => {
        const history = new TimelineHistory();
        history.reset([], 0);
        let most = 0;
        for (const each of taps(6000)) {
            history.add(each);
            history.update();
            most = Math.max(most, laneOf(history.model, 'Up').bars.length);
        }
        assert(most >= 5000 && most <= 5251, `${most} presses`);
    });
    test('shows what a page shows that comes later', () => {
        const entries = [...ready(), ...taps(6000)];
        const [early, late] = [new TimelineHistory(), new TimelineHistory()];
        for (const each of entries) {
            early.add(each);
            early.update();
        }
        late.reset(entries.slice(-4000), entries.at(-1).at);
        [early, late].forEach(history => history.freeze());
        const last = ({ model }) => timelineRows(model).slice(-1000, -1); // the last one grows
        assert.deepEqual(pick(last(early), 'time', 'what', 'duration'), pick(last(late), 'time', 'what', 'duration'));
    });
    test('begins again with entries that came while nothing was looked at', () => {
        const history = new TimelineHistory();
        history.reset([...ready(), ...tap(0, 'Down')], 100);
        history.update(Infinity);
        taps(20000).forEach(each => history.add(each));
        history.update(Infinity);
        assert.equal(laneOf(history.model, 'Down'), undefined);
        assert(history.isComplete);
        assert(laneOf(history.model, 'Up').bars.length <= 5251);
    });
    test('takes in many entries in several turns', () => {
        const history = new TimelineHistory();
        history.reset(taps(5000), 0);
        assert(history.update(0));
        assert(!history.isComplete);
        while (!history.isComplete) {
            history.update(0);
        }
        assert.equal(laneOf(history.model, 'Up').bars.length, 5000);
    });
    test('stays as it is while it is frozen', () => {
        const history = new TimelineHistory();
        history.reset([...ready(), ...tap(100, 'Up')], 200);
        history.freeze();
        const rows = timelineRows(history.model);
        history.add(press(300, 'Down'));
        history.reset(ready(), 0);
        assert(!history.update());
        assert.deepEqual(timelineRows(history.model), rows);
        history.thaw();
        history.update();
        assert.deepEqual(history.model.lanes, []);
    });
});

describe('names of runs', () => {
    test('are in the rows once the device was started again', () => {
        const model = modelOf([ready(), tap(100, 'Up'), device(0, 'starting', { model: 'Orvane' }), tap(100, 'Down')]);
        const whenOf = text => timelineRows(model).find(({ what }) => what === text).when;
        assert.equal(whenOf('Up'), '0.100 s');
        assert.equal(whenOf('Down, not heard'), '0.100 s, run 2');
        assert.equal(whenOf('The device was started again: run 2, Orvane'), '0.000 s, run 2');
    });
});

describe('the question why', () => {
    const questionAbout = (text, model) =>
        questionOf(
            model,
            model.events.find((event, index) => timelineRows(model)[index].what.startsWith(text)),
        );

    test('is about the gesture to which the key belongs, from its first key on', () => {
        const model = modelOf(
            [
                ready(),
                tap(0, 'Up'),
                press(5000, 'Feed'),
                repeat(5250, 'Feed'),
                tap(5300, 'Ok'),
                release(5350, 'Feed'),
                tap(9000, 'Up'),
            ],
            12000,
        );
        const lines = ['press Feed', 'wait 300', 'press Ok', 'wait 50', 'release Ok', 'release Feed'];
        assert.deepEqual(questionAbout('Ok', model), { state: 'Idle', script: lines.join('\n'), at: 300 });
    });
    test('has the states, devices and commands between the keys, and no release of a key that is held', () => {
        const model = modelOf(
            [
                ready(0, 'Error'),
                press(100, 'Help', 1),
                state(150, 'Idle'),
                entry('command', 200, { text: 'GetLastKey as WwwApi' }),
                entry('console', 210, { text: 'help' }),
                entry('record', 220, { recordType: 1, code: 5, value: 1 }),
                press(300, 'Up'),
            ],
            900,
        );
        assert.deepEqual(questionAbout('Up', model), {
            state: 'Error',
            script: [
                'device 1',
                'press Help',
                'wait 50',
                'state Idle',
                'wait 50',
                'command GetLastKey as WwwApi',
                'wait 20',
                'record 1 5 1',
                'wait 80',
                'device 0',
                'press Up',
            ].join('\n'),
            at: 200,
        });
    });
    test('is not asked about keys of earlier runs, of commands, of a keyboard test, or not heard by the daemon', () => {
        const fault = (...entries) => questionAbout('Up', modelOf([ready(), ...entries], 9000)).fault;
        const test = entry('test', 10, { running: true });
        assert.match(fault(tap(100, 'Up'), ready()), /since the last start/);
        assert.match(fault(simulate(100, 'Pressed', 'Up')), /input devices/);
        assert.match(fault(test, tap(100, 'Up')), /keyboard test/);
        assert.match(fault(state(10, 'Startup'), tap(100, 'Up')), /did not hear/);
    });
});
