// SPDX-License-Identifier: MIT
// What the device speaks and announces, next to each view.
import { byId, element, keyCaps, line, setText } from './dom.js';
import { EntryLog } from './entryLog.js';
import { FoldedLog } from './foldedLog.js';
import { showFault } from './messages.js';
import { eventText, momentText, routeText, speechText, timesText } from './wording.js';

const aloud = byId('aloud');
const maxAnnounced = 100; // lines

export const isSpokenAloud = () => aloud.checked;

export const spoken = new EntryLog('spoken', 6, { speech: entry => line(speechText(entry)) });

const isOutcome = ({ type }) => ['announcement', 'refusal'].includes(type);

export const announced = new FoldedLog(
    'announced',
    maxAnnounced,
    entry => (isOutcome(entry) ? eventText(entry) : undefined),
    describeOutcome,
);

function describeOutcome(entry, text, times) {
    const isRefused = entry.type === 'refusal';
    const parts = isRefused ? [text] : describeAnnouncement(entry);
    const moment = element('time', { textContent: momentText(entry.at) });
    return element('p', { className: isRefused ? 'refusal' : 'announcement' }, [
        element('span', {}, [...parts, timesText(times)]),
        ' ',
        moment,
    ]);
}

function describeAnnouncement(entry) {
    const action = element('span', { className: 'action', textContent: entry.action });
    return [action, ' ', ...keyCaps(entry.keys), routeText(entry)];
}

function onSpeechError({ error }) {
    if (!['canceled', 'interrupted'].includes(error)) {
        aloud.checked = false;
        showFault(`This browser cannot speak (${error}).`);
    }
}

/// Has the browser speak what the device speaks, and stop where the device stops.
export function speakAloud(entry) {
    if (!aloud.checked) {
        return;
    }
    if (entry.type === 'cancel') {
        window.speechSynthesis.cancel();
    } else {
        const utterance = new SpeechSynthesisUtterance(speechText(entry));
        utterance.lang = 'en';
        utterance.onerror = onSpeechError;
        window.speechSynthesis.speak(utterance);
    }
}

aloud.addEventListener('change', () => window.speechSynthesis.cancel());
if (!('speechSynthesis' in window)) {
    aloud.disabled = true;
    setText(byId('aloud-help'), 'This browser cannot speak.');
}
