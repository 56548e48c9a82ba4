// SPDX-License-Identifier: MIT
// The timeline as rows of a table.
import { countOf, joined, seconds, stateName } from './timelineTexts.js';

const kindNames = {
    announcement: 'Announced',
    refusal: 'Refused',
    speech: 'Spoken',
    command: 'Command',
    heading: 'Heading',
};

const holdNames = { long: 'Long press', reset: 'Factory reset' };
const outcomeNames = { running: 'runs', stopped: 'stopped', fired: 'recognised', refused: 'refused' };

const describe = {
    state: ({ state, from, to }) => ['State', stateName(state), to - from],
    key: (bar, lane) => ['Key', keyText(lane, bar), bar.to - bar.from],
    hold: (hold, lane) => [holdNames[hold.kind], holdText(lane, hold), hold.to - hold.from],
    window: window => ['Window', windowText(window), window.to - window.from],
    break: ({ text }) => ['Break', text],
};

/// An event of the model in words: `kind`, `what`, how long it lasts as `duration` in milliseconds if it does, and when
/// it began, as `time` on the clock of its `run` and in words as `when`.
export function rowOf({ name, kind, from, item, lane, run }) {
    const [kindName, what, duration] = describe[kind]?.(item, lane) ?? [kindNames[kind], item.text];
    const time = from - run.offset;
    const when = joined(seconds(time), run.number > 1 && `run ${run.number}`);
    return { name, time, when, kind: kindName, what, duration };
}

/// The whole model as such rows, in the order of their beginning.
export function timelineRows(model) {
    return model.events.map(rowOf);
}

/// An event in a sentence.
export function eventText(event) {
    const { kind, what, duration, when } = rowOf(event);
    return `${joined(`${kind}: ${what}`, duration !== undefined && `${Math.round(duration)} ms`, `at ${when}`)}.`;
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

function holdText({ label }, { outcome, due, from }) {
    return `${label}: ${outcomeNames[outcome]}, due after ${due - from} ms`;
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
