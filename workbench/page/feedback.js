// SPDX-License-Identifier: MIT
// What the device speaks and announces, next to each view.
import { byId, element, keyCaps, line, setText } from './dom.js';
import { EntryLog } from './entryLog.js';
import { showFault } from './messages.js';
import { refusalText, speechText } from './wording.js';

const aloud = byId('aloud');

export const isSpokenAloud = () => aloud.checked;

export const spoken = new EntryLog('spoken', 6, { speech: entry => line(speechText(entry)) });

export const announced = new EntryLog('announced', 6, {
    announcement: describeAnnouncement,
    refusal: entry => line(refusalText(entry), 'refusal'),
});

function describeAnnouncement({ action, keys, receiver, sender }) {
    const route = `to ${receiver || 'no service'} ${sender ? `from ${sender}` : 'without a sender'}`;
    return element('p', { className: 'announcement' }, [
        element('span', { className: 'action', textContent: action }),
        ' ',
        ...keyCaps(keys),
        element('span', { textContent: route }),
    ]);
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
