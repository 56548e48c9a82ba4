// SPDX-License-Identifier: MIT
// Loads what a start of the device changes, and reports when the device is ready.
import { card, loadCard, showDoButtons } from './card.js';
import { device, deviceStatus } from './device.js';
import { listLog, listsRead, loadLists, loadMistakes, showListFaults, showMistakes, showNever } from './lists.js';
import { attempt, end, kindOf, news, showFault, showStatus } from './messages.js';
import { showPanel } from './panel.js';
import { timeline } from './timelineView.js';
import { isView } from './views.js';

const logDelay = 500; // milliseconds; the daemon's log and its readiness come by different ways

let starts = 0; // counts the starts of the device and the connections to it

async function loadAndShowCard() {
    await loadCard();
    showDoButtons(deviceStatus() === 'ready' ? device.state : undefined);
    timeline.setCard(card);
    showNever();
    showPanel();
}

/// Loads the card and the key lists, and waits for `pause`. Returns false if the device has started again meanwhile.
async function loadDeviceFiles(pause) {
    const start = starts;
    await Promise.all([attempt(loadAndShowCard()), attempt(loadLists()), attempt(loadMistakes()), pause]);
    return start === starts;
}

/// Call when the device starts. Clears what the former daemon said about its lists.
export function expectReadiness() {
    ++starts;
    listLog.reset([]);
}

/// Call when the page has connected. Does not report again that the device is ready.
export async function loadAfterConnecting() {
    ++starts;
    if (await loadDeviceFiles()) {
        showListFaults();
        showMistakes();
    }
}

export async function reportReadiness() {
    const pause = new Promise(resolve => setTimeout(resolve, logDelay));
    if (!(await loadDeviceFiles(pause)) || device.status !== 'ready') {
        return;
    }
    const faults = showListFaults();
    const errors = showMistakes();
    const sentences = [...news];
    news.clear();
    if (faults.length > 0) {
        const effect = `The daemon runs without what it could not read, on model ${device.model}.`;
        showFault([...faults, effect, ...errors, ...sentences].join(' '));
    } else if (errors.length > 0) {
        showFault([...errors, `The daemon is ready, on model ${device.model}.`, ...sentences].join(' '));
    } else {
        const read = isView('lists') ? [listsRead] : [];
        const text = [...read, `The daemon is ready, on model ${device.model}.`, ...sentences].join(' ');
        showStatus(text, kindOf('restart'));
    }
    end('restart');
}
