// SPDX-License-Identifier: MIT
// Texts of key lists that only this browser has, by kind and file: the "draft", typed but not in use yet, and the
// "former" one, which another text has replaced. They outlive a reload, but without room in the storage of the browser
// they live as long as the page.

const texts = new Map();

/// Returns undefined when there is none.
export function getDraft(kind, file) {
    const name = `${kind} ${file}`;
    return texts.get(name) ?? localStorage.getItem(name) ?? undefined;
}

/// An undefined `text` removes the draft.
export function setDraft(kind, file, text) {
    const name = `${kind} ${file}`;
    texts.set(name, text);
    localStorage.removeItem(name); // an old text must not stay if there is no room for the new one
    try {
        if (text !== undefined) {
            localStorage.setItem(name, text);
        }
    } catch {} // `texts` has it
}
