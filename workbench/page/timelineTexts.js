// SPDX-License-Identifier: MIT
// Words of the timeline that its picture and its table share.

const statusNames = { starting: 'Device is starting', ended: 'Daemon has ended' };

export function stateName(state) {
    return statusNames[state] ?? state;
}

export function joined(...texts) {
    return texts.filter(Boolean).join(', ');
}

export function countOf(count, what) {
    return `${count} ${what}${count === 1 ? '' : 's'}`;
}

export function seconds(milliseconds, digits = 3) {
    return `${(milliseconds / 1000).toFixed(digits)} s`;
}

/// The name of a run of the device: its number, and the model if that is known.
export function runName({ number, model }) {
    return joined(`run ${number}`, model);
}
