// SPDX-License-Identifier: MIT
// What to ask about a key in the timeline.
import { commandDevice } from './timelineLanes.js';

/// Keys that are up for so many windows matter no more for the keys that follow.
const quietWindows = 2;

/// The question why a key did what it did: the `state` and the `script` of what happened to it and the keys around it,
/// and the time `at` in the script. Or a `fault`, a sentence that says why this cannot be asked.
export function questionOf(model, { item: bar, from, lane, run }) {
    if (run !== model.runs.at(-1)) {
        return { fault: 'Only keys since the last start of the device can be explained.' };
    }
    if (lane.device === commandDevice) {
        return { fault: 'Only keys of the input devices can be explained.' };
    }
    if (!bar.heard) {
        return { fault: 'The daemon did not hear this key.' };
    }
    if (bar.inTest) {
        return { fault: 'Keys of a keyboard test cannot be explained.' };
    }
    const keys = keySteps(model, run);
    const [start, end] = gestureAround(from, keys, quietWindows * model.windowMs);
    const steps = [...keys, ...commandSteps(model), ...stateSteps(model)]
        .filter(({ at }) => start <= at && at < end)
        .sort(inOrder);
    const { state } = model.states.findLast(span => span.from < start) ?? model.states[0];
    return { state, script: scriptOf(steps), at: Math.round(from) - Math.round(start) };
}

function keySteps({ lanes }, run) {
    return lanes
        .filter(({ device }) => device !== commandDevice)
        .flatMap(({ key, device, bars }) =>
            bars.filter(({ from }) => from >= run.from).flatMap(bar => stepsOfBar(bar, key, device)),
        )
        .sort(inOrder);
}

function stepsOfBar({ id, releaseId, from, to }, key, device) {
    const press = { id, at: from, device, text: `press ${key}`, change: 1 };
    const release = { id: releaseId, at: to, device, text: `release ${key}`, change: -1 };
    return releaseId === undefined ? [press] : [press, release];
}

/// Several things may happen in the same millisecond.
function inOrder(one, other) {
    return one.at - other.at || one.id - other.id;
}

/// From the first key of the gesture that contains `moment` to the first key of the next one.
function gestureAround(moment, steps, quietTime) {
    let held = 0;
    let last = -Infinity;
    let start = moment;
    for (const { at, change } of steps) {
        if (held === 0 && at - last > quietTime) {
            if (at > moment) {
                return [start, at];
            }
            start = at;
        }
        held += change;
        last = at;
    }
    return [Math.min(start, moment), Infinity];
}

function commandSteps({ moments }) {
    return moments
        .filter(({ kind, text }) => kind === 'command' && !text.startsWith('console '))
        .map(({ id, at, text }) => ({ id, at, text: text.startsWith('record ') ? text : `command ${text}` }));
}

function stateSteps({ states }) {
    return states.map(({ id, from, state }) => ({ id, at: from, text: `state ${state}` }));
}

function scriptOf(steps) {
    const lines = [];
    let [now, current] = [Math.round(steps[0]?.at ?? 0), 0];
    for (const { at, device = current, text } of steps) {
        const pause = Math.round(at) - now;
        lines.push(...(pause > 0 ? [`wait ${pause}`] : []), ...(device === current ? [] : [`device ${device}`]), text);
        [now, current] = [Math.round(at), device];
    }
    return lines.join('\n');
}
