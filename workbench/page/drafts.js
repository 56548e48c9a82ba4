// SPDX-License-Identifier: MIT
// Texts of key lists that only this browser has.

/// Keeps texts by their file's name: the "draft", typed but not in use yet, and the "former" one, which another text has
/// replaced. They outlive a reload; without room in the storage of the browser they live as long as the page.
export class Drafts {
    #storage;
    #texts = new Map();

    constructor(storage) {
        this.#storage = storage;
    }

    /// Undefined when there is none.
    get(kind, file) {
        const name = nameOf(kind, file);
        return this.#texts.get(name) ?? this.#storage.getItem(name) ?? undefined;
    }

    set(kind, file, text) {
        const name = nameOf(kind, file);
        this.#texts.set(name, text);
        try {
            this.#storage.setItem(name, text);
        } catch {
            this.#storage.removeItem(name); // no room: rather none than an old one
        }
    }

    remove(kind, file) {
        this.#texts.delete(nameOf(kind, file));
        this.#storage.removeItem(nameOf(kind, file));
    }
}

function nameOf(kind, file) {
    return `${kind} ${file}`;
}
