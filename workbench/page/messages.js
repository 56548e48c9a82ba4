// SPDX-License-Identifier: MIT
// The messages and questions of the page, on the screen and for a screen reader.
import { Announcer } from './announcer.js';
import { byId, on, setText } from './dom.js';
import { focusView } from './views.js';

const level = byId('announcement-level');
const levelKey = 'announcements';
const dialog = byId('question');
const [yes] = dialog.querySelectorAll('button');
/// A closed dialog remains for this long, unseen: a screen reader says where the focus goes only if it still finds
/// where the focus was.
const lingerTime = 500; // milliseconds

let resolveAnswer = () => {};

/// Sentences that belong to the next message that the device is ready.
export const news = new Set();
export const announcer = new Announcer(byId('announcements'));

/// What the user has begun on this page: "restart", "state" or "replay". What the device does about it is a reply.
const begun = new Set();
export const begin = what => begun.add(what);
export const kindOf = what => (begun.has(what) ? 'reply' : 'event');
export const end = what => begun.delete(what);

export const announce = (text, kind, isLogged) => announcer.announce(text, kind, isLogged);

export function showStatus(text, kind = 'reply') {
    setText(byId('alert'), '');
    setText(byId('status'), text);
    announce(text, kind);
}

export function showFault(text) {
    setText(byId('status'), '');
    setText(byId('alert'), text);
    announce(text, 'fault');
}

/// Waits for `work` and shows its error. Returns whether it succeeded.
export async function attempt(work) {
    try {
        await work;
        return true;
    } catch (error) {
        showFault(error.message);
        return false;
    }
}

/// Asks `question` in a dialog, whose first button gets the name `answer`. Returns whether that button was chosen;
/// Escape and the other button are a no. The dialog hides the announcements: they wait until it is closed.
export function ask(question, answer) {
    const text = `${answer}? ${question}`;
    setText(dialog.querySelector('p'), text);
    dialog.setAttribute('aria-label', text);
    setText(yes, answer);
    announcer.hold('question');
    announcer.clear();
    dialog.close(); // it may still linger
    dialog.showModal();
    dialog.focus(); // a screen reader says the question, and a key that is pressed by mistake loses nothing
    return new Promise(resolve => (resolveAnswer = resolve)).finally(() => announcer.release('question'));
}

function closeQuestion(event, isYes) {
    event.preventDefault();
    dialog.close(); // the focus goes back
    dialog.open = true;
    setTimeout(() => dialog.matches(':modal') || dialog.close(), lingerTime);
    resolveAnswer(isYes);
}

announcer.level = localStorage.getItem(levelKey) ?? 'all';
level.value = announcer.level;
level.addEventListener('change', () => {
    announcer.level = level.value;
    localStorage.setItem(levelKey, level.value);
});
on('#dismiss', 'click', () => {
    focusView(); // the button goes
    setText(byId('alert'), '');
});
dialog.addEventListener('submit', event => closeQuestion(event, event.submitter === yes));
dialog.addEventListener('cancel', event => closeQuestion(event, false));
