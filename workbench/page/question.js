// SPDX-License-Identifier: MIT
// A question before something is lost.

/// Asks `question` in the dialog element `dialog`, whose first button gets the name `answer`. Comes back with whether
/// that button was chosen; Escape and the other button are a no.
export function ask(dialog, question, answer) {
    const [yes, no] = dialog.querySelectorAll('button');
    dialog.querySelector('p').textContent = question;
    yes.textContent = answer;
    dialog.returnValue = '';
    return new Promise(resolve => {
        dialog.addEventListener('close', () => resolve(dialog.returnValue === 'yes'), { once: true });
        dialog.showModal();
        no.focus(); // what is pressed by mistake loses nothing
    });
}
