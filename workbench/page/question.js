// SPDX-License-Identifier: MIT
// A question before something is lost.

/// Before a screen reader is given the question: it must know the dialog first.
const settleTime = 300; // milliseconds

/// Asks `question` in the dialog element `dialog`, whose first button gets the name `answer`. Comes back with whether
/// that button was chosen; Escape and the other button are a no.
export function ask(dialog, question, answer) {
    const [yes, no] = dialog.querySelectorAll('button');
    const live = dialog.querySelector('[aria-live]');
    dialog.querySelector('p').textContent = question;
    yes.textContent = answer;
    live.textContent = '';
    dialog.returnValue = '';
    return new Promise(resolve => {
        const timer = setTimeout(() => { live.textContent = question; }, settleTime);
        dialog.addEventListener('close', () => {
            clearTimeout(timer);
            resolve(dialog.returnValue === 'yes');
        }, { once: true });
        dialog.showModal();
        no.focus(); // what is pressed by mistake loses nothing
    });
}
