// SPDX-License-Identifier: MIT
// A question before something is lost.

/// A dialog that has ended remains for this long, unseen: a screen reader says where the focus goes only if it still
/// finds where it was.
const lingerTime = 500; // milliseconds

/// Asks `question` in the dialog element `dialog`, whose first button gets the name `answer`. Comes back with whether
/// that button was chosen; Escape and the other button are a no.
export function ask(dialog, question, answer) {
    const [yes] = dialog.querySelectorAll('button');
    const text = `${answer}? ${question}`;
    dialog.querySelector('p').textContent = text;
    dialog.setAttribute('aria-label', text);
    yes.textContent = answer;
    return new Promise(resolve => {
        const listening = new AbortController();
        const on = (type, isYes) => dialog.addEventListener(type, event => {
            event.preventDefault();
            listening.abort();
            leave(dialog);
            resolve(isYes(event));
        }, { signal: listening.signal });
        on('submit', ({ submitter }) => submitter === yes);
        on('cancel', () => false);
        dialog.close(); // it may still linger
        dialog.showModal();
        dialog.focus(); // which a screen reader says, and where no key that is pressed by mistake loses anything
    });
}

function leave(dialog) {
    dialog.close(); // the focus goes back
    dialog.open = true;
    setTimeout(() => dialog.matches(':modal') || dialog.close(), lingerTime);
}
