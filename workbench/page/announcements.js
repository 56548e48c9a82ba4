// SPDX-License-Identifier: MIT
// What a screen reader says about the entries of the session.
import { isSpokenAloud } from './feedback.js';
import { idOf, isPressedHere } from './keys.js';
import { announce, announcer, end, kindOf } from './messages.js';
import { isView } from './views.js';
import { actionText, answerText, refusalText, replayText, speechText } from './wording.js';

const minHold = 500; // milliseconds; a key that another page or a script holds for less is a tap
const holdsElsewhere = new Map(); // id of a key that another page or a script holds -> its timer, until it is announced

let lastSentence = ''; // what the device spoke last
let isAtConsole = false; // the daemon's log answers a line of the console

function announceSpeech(entry) {
    lastSentence = speechText(entry);
    // Nothing is heard twice.
    if (!isSpokenAloud()) {
        announce(lastSentence, 'event');
    }
}

// The device speaks the reason of a key that is refused in Startup.
function announceRefusal(entry) {
    const isSpoken = !entry.expected && entry.reason === lastSentence && announcer.level === 'all';
    if (!isSpoken) {
        announce(refusalText(entry), 'action', true);
    }
}

function announceKey(entry) {
    const id = idOf(entry);
    const name = entry.device === 0 ? entry.key : `${entry.key} of device ${entry.device}`;
    if (entry.value === 0) {
        clearTimeout(holdsElsewhere.get(id));
        if (holdsElsewhere.has(id) && !holdsElsewhere.get(id)) {
            announce(`${name} is released elsewhere.`, 'event');
        }
        holdsElsewhere.delete(id);
    } else if (entry.value === 1 && !isPressedHere(id)) {
        clearTimeout(holdsElsewhere.get(id));
        const announceHold = () => {
            holdsElsewhere.set(id, undefined);
            announce(`${name} is held elsewhere.`, 'event');
        };
        holdsElsewhere.set(id, setTimeout(announceHold, minHold));
    }
}

// A refusal is announced in words.
function announceConsole({ text }) {
    if (isAtConsole && isView('commands') && !text.startsWith('KeyboardManager::onEvent WARN')) {
        announce(text.replaceAll(/={3,}/g, '').trim(), 'reply', true);
    }
}

function announceReplay(entry) {
    [replayText(entry), ...(entry.differences ?? [])].forEach(text => announce(text, kindOf('replay')));
    if (entry.status !== 'playing') {
        end('replay');
    }
}

function setAtConsole({ type }) {
    isAtConsole = type === 'console';
}

const announceByType = {
    announcement: entry => announce(actionText(entry), 'action'),
    refusal: announceRefusal,
    speech: announceSpeech,
    key: announceKey,
    answer: entry => isView('commands') && announce(answerText(entry), 'reply'),
    console: setAtConsole,
    command: setAtConsole,
    log: announceConsole,
    output: announceConsole,
    replay: announceReplay,
};

export function announceEntry(entry) {
    announceByType[entry.type]?.(entry);
}
