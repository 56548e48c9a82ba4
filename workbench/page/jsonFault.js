// SPDX-License-Identifier: MIT

const token = source => new RegExp(`[ \\t\\n\\r]*(?:${source})`, 'y');

const string = String.raw`"(?:[^"\\\u0000-\u001f]|\\(?:["\\/bfnrt]|u[0-9a-fA-F]{4}))*"`;
const number = String.raw`-?(?:0|[1-9]\d*)(?:\.\d+)?(?:[eE][+-]?\d+)?(?![\w.])`;
const scalar = token(String.raw`${string}|${number}|(?:true|false|null)(?!\w)`);
const name = token(string);
const [colon, comma, end] = [':', ',', '$'].map(token);
const [objectStart, objectEnd, arrayStart, arrayEnd] = ['\\{', '\\}', '\\[', '\\]'].map(token);

/// Finds the first fault of a JSON text. The messages of browsers differ, and some name no place.
class JsonReader {
    #text;
    #at = 0;

    constructor(text) {
        this.#text = text;
    }

    /// Returns undefined when there is none, or when the text is nested too deeply to be read.
    fault() {
        try {
            this.#value();
            this.#take(end, 'the text should end');
        } catch (fault) {
            return fault.line ? fault : undefined;
        }
    }

    #value() {
        if (this.#match(objectStart)) {
            this.#items(() => this.#member(), objectEnd, 'a comma or } is missing');
        } else if (this.#match(arrayStart)) {
            this.#items(() => this.#value(), arrayEnd, 'a comma or ] is missing');
        } else {
            this.#take(scalar, 'a value is missing');
        }
    }

    #member() {
        this.#take(name, 'a name in double quotes is missing');
        this.#take(colon, 'a colon is missing');
        this.#value();
    }

    #items(readItem, last, fault) {
        if (this.#match(last)) {
            return;
        }
        do {
            readItem();
        } while (this.#match(comma));
        this.#take(last, fault);
    }

    #match(pattern) {
        pattern.lastIndex = this.#at;
        const isFound = pattern.test(this.#text);
        this.#at = isFound ? pattern.lastIndex : this.#at;
        return isFound;
    }

    #take(pattern, fault) {
        if (this.#match(pattern)) {
            return;
        }
        this.#match(token(''));
        const found = this.#text[this.#at];
        const lines = this.#text.slice(0, this.#at).split('\n');
        const place = found === undefined ? 'at the end' : `before ${found === '"' ? 'a quote' : `"${found}"`}`;
        throw Object.assign(new SyntaxError(), {
            line: lines.length,
            column: lines.at(-1).length + 1,
            text: `${fault} ${place}`,
        });
    }
}

/// Returns the first fault of a text that should be JSON, with its `line` and `column` from 1 on; null if it is JSON.
export function jsonFault(text) {
    try {
        JSON.parse(text);
        return null;
    } catch ({ message }) {
        return new JsonReader(text).fault() ?? { line: 1, column: 1, text: message };
    }
}
