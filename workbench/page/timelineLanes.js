// SPDX-License-Identifier: MIT
// The lanes of the timeline: what happened to each key of each device.

const keyOrder = 'On Off Feed Help Menu Back Right Up Down Ok Chs One Ten Function FactoryReset'.split(' ');
/// Where keys come from that the command SimulateKey stands for.
export const commandDevice = 'command';

/// Each lane has `bars`, one for each press, the `bar` of a key that is down, and `holds`, the times that ran meanwhile.
export class Lanes {
    sorted = []; // in the order of the panel
    #byName = new Map();

    of(key, device) {
        const name = `${key} ${device}`;
        if (!this.#byName.has(name)) {
            const label = laneLabel(key, device);
            this.#byName.set(name, { key, device, label, bars: [], holds: [], bar: undefined });
            this.#sort();
        }
        return this.#byName.get(name);
    }

    /// Forgets all other bars and holds, and the lanes that are empty then.
    keep(isKept) {
        for (const [name, lane] of this.#byName) {
            lane.bars = lane.bars.filter(isKept);
            lane.holds = lane.holds.filter(isKept);
            if (lane.bars.length + lane.holds.length === 0) {
                this.#byName.delete(name);
            }
        }
        this.#sort();
    }

    #sort() {
        this.sorted = [...this.#byName.values()].sort(inPanelOrder);
    }
}

/// The key of the lane is up from `at` on.
export function closeBar(lane, at, marks = {}) {
    if (lane.bar) {
        Object.assign(lane.bar, { to: at, open: false }, marks);
        lane.bar = undefined;
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
