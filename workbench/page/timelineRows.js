// SPDX-License-Identifier: MIT
// The timeline as rows of a table.
import { countOf, joined, stateName } from './timelineTexts.js';

const kindNames = {
    announcement: 'Announced',
    refusal: 'Refused',
    speech: 'Spoken',
    command: 'Command',
    heading: 'Heading',
};

const holdNames = { long: 'Long press', reset: 'Factory reset' };
const outcomeNames = { running: 'runs', stopped: 'stopped', fired: 'recognised', refused: 'refused' };

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

/// How much of what kind is in the model.
export function summary(model) {
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

/// `at` on the clock of the device's run that it belongs to.
function clockTime(model, at) {
    const run = [...model.runs].reverse().find(one => one.from <= at);
    return at - (run?.offset ?? 0);
}
