// SPDX-License-Identifier: MIT

const space = /[ \t\n\r]*/y;
const scalar = /"(?:[^"\\\u0000-\u001f]|\\(?:["\\/bfnrt]|u[0-9a-fA-F]{4}))*"|-?(?:0|[1-9]\d*)(?:\.\d+)?(?:[eE][+-]?\d+)?(?![\w.])|(?:true|false|null)(?!\w)/y;
const name = /"(?:[^"\\\u0000-\u001f]|\\(?:["\\/bfnrt]|u[0-9a-fA-F]{4}))*"/y;

/// Reads a JSON text up to its first fault. The messages of browsers differ, and some name no place.
class JsonReader {
    #text;
    #at = 0;

    constructor(text) {
        this.#text = text;
    }

    read() {
        this.#value();
        if (this.#next() !== undefined) {
            this.#fail('the text should end');
        }
    }

    #value() {
        switch (this.#next()) {
        case '{': return this.#list('}', () => this.#member());
        case '[': return this.#list(']', () => this.#value());
        default: return this.#match(scalar) || this.#fail('a value is missing');
        }
    }

    #member() {
        this.#next();
        if (!this.#match(name)) {
            this.#fail('a name in double quotes is missing');
        }
        this.#take(':') || this.#fail('a colon is missing');
        this.#value();
    }

    #list(end, readItem) {
        ++this.#at;
        if (this.#take(end)) {
            return true;
        }
        do {
            readItem();
        } while (this.#take(','));
        return this.#take(end) || this.#fail(`a comma or ${end} is missing`);
    }

    #next() {
        this.#match(space);
        return this.#text[this.#at];
    }

    #take(character) {
        const isThere = this.#next() === character;
        this.#at += isThere ? 1 : 0;
        return isThere;
    }

    #match(pattern) {
        pattern.lastIndex = this.#at;
        const found = pattern.test(this.#text);
        this.#at = found ? pattern.lastIndex : this.#at;
        return found;
    }

    #fail(what) {
        const lines = this.#text.slice(0, this.#at).split('\n');
        const found = this.#text[this.#at];
        throw Object.assign(new SyntaxError(), {
            line: lines.length,
            column: lines.at(-1).length + 1,
            text: `${what}${found === undefined ? ' at the end' : ` before ${found}`}`,
        });
    }
}

/// The first fault of a text that should be JSON, with its `line` and `column` from 1 on; null if it is JSON.
export function jsonFault(text) {
    try {
        JSON.parse(text);
        return null;
    } catch (fault) {
        return placeOf(text, fault);
    }
}

function placeOf(text, fault) {
    try {
        new JsonReader(text).read();
    } catch (found) {
        if (found.line) {
            return found;
        }
    }
    return { line: 1, column: 1, text: fault.message }; // nested too deeply to be read here
}
