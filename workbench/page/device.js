// SPDX-License-Identifier: MIT
// What is known of the device: its description from the simulator, kept up to date by the entries of the session.
import { isConnected } from './connection.js';

const changes = {
    device: ({ status, model, state, reason }) => ({ status, model, state, reason, answering: true, testing: false }),
    state: ({ state }) => ({ state }),
    daemon: ({ answering }) => ({ answering }),
    test: ({ running }) => ({ testing: running }),
};

export let device = { status: 'starting', model: '', state: '', states: [], models: [] };

export function setDevice(description) {
    device = description;
}

/// Returns whether the entry changes what is known of the device.
export function updateDevice(entry) {
    Object.assign(device, changes[entry.type]?.(entry));
    return entry.type in changes;
}

/// Returns "lost" without a connection, "hung" when the daemon does not answer, else "starting", "ready" or "ended".
export function deviceStatus() {
    const isHung = device.status === 'ready' && device.answering === false;
    return isConnected() ? (isHung ? 'hung' : device.status) : 'lost';
}
