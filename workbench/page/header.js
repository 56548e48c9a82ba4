// SPDX-License-Identifier: MIT
// The device in the header of each view.
import { isConnected, restart } from './connection.js';
import { device, deviceStatus } from './device.js';
import { byId, on, setText } from './dom.js';
import { focusView } from './views.js';

const statusTexts = { lost: 'not connected', hung: 'not answering' };

/// The header in a sentence: a screen reader reads each part of a styled line separately.
function showSentence() {
    const shown = id => byId(id).textContent;
    const test = byId('testing').hidden ? '' : ', keyboard test running';
    const keys = ['no key', '–'].includes(shown('held-now')) ? '' : `, held now: ${shown('held-now')}`;
    const status = `Model ${shown('device-model')}, state ${shown('device-state')}, daemon ${shown('device-status')}`;
    setText(byId('device-sentence'), `${status}${test}${keys}.`);
}

/// `names` are the names of all keys that are down, here and elsewhere.
export function showHeldKeys(names) {
    setText(byId('held-now'), isConnected() ? names.join(', ') || 'no key' : '–');
    showSentence();
}

export function showHeader() {
    const status = deviceStatus();
    setText(byId('device-model'), (isConnected() && device.model) || '–');
    setText(byId('device-state'), (isConnected() && device.state) || '–');
    setText(byId('device-status'), statusTexts[status] ?? status);
    byId('daemon-lamp').dataset.status = status;
    byId('testing').hidden = !isConnected() || !device.testing;
    byId('ended').hidden = status !== 'ended';
    setText(byId('ended-reason'), device.reason ?? '');
    showSentence();
}

on('#restart-device', 'click', () => {
    focusView(); // the button goes
    restart({});
});
