// SPDX-License-Identifier: MIT
import assert from 'node:assert/strict';
import { isDeepStrictEqual } from 'node:util';

import { eventually, remind } from './eventually.mjs';

/// Listens to the event stream without a browser: what the page receives, and what the device really got.
export class Observer {
    snapshot;
    entries = [];
    #waiting = new Set();
    #abort = new AbortController();

    static async of(url) {
        const observer = new Observer();
        const answer = await fetch(new URL('/api/events', url), { signal: observer.#abort.signal });
        const listening = observer.#listen(answer.body.pipeThrough(new TextDecoderStream()));
        listening.catch(fault => observer.#end(fault));
        await observer.#until(() => observer.snapshot, 'the snapshot');
        return observer;
    }

    /// The first entry since the beginning, or since the entry `after`, that has these members.
    sees(members, after = undefined) {
        const from = () => (after ? this.entries.indexOf(after) + 1 : 0);
        const fits = entry => Object.entries(members).every(([name, value]) => isDeepStrictEqual(entry[name], value));
        return this.#until(() => this.entries.slice(from()).find(fits), JSON.stringify(members));
    }

    /// The records of keys so far, as "Up 1".
    keyRecords() {
        return this.entries.filter(({ type }) => type === 'key').map(({ key, value }) => `${key} ${value}`);
    }

    close() {
        this.#abort.abort();
    }

    #until(find, what) {
        return new Promise((resolve, reject) => {
            const stop = remind(() => this.#missing(what));
            const waiting = { stop, reject, look: () => this.#lookFor(find, waiting, resolve) };
            this.#waiting.add(waiting);
            waiting.look();
        });
    }

    #lookFor(find, waiting, resolve) {
        const found = find();
        if (found) {
            this.#settle(waiting, () => resolve(found));
        }
    }

    #settle(waiting, end) {
        waiting.stop();
        this.#waiting.delete(waiting);
        end();
    }

    #missing(what) {
        return `${what} has not come, but:\n${this.entries.map(entry => JSON.stringify(entry)).join('\n')}`;
    }

    #end(fault) {
        for (const waiting of [...this.#waiting]) {
            this.#settle(waiting, () => waiting.reject(fault));
        }
    }

    async #listen(stream) {
        let text = '';
        for await (const chunk of stream) {
            text += chunk;
            const events = text.split('\n\n');
            text = events.pop();
            events.forEach(event => this.#take(event));
            [...this.#waiting].forEach(waiting => waiting.look());
        }
        throw new Error('The event stream has ended.');
    }

    #take(event) {
        const fields = Object.fromEntries(event.split('\n').map(line => /^(\w*): ?(.*)$/.exec(line)?.slice(1) ?? []));
        if (fields.event === 'snapshot') {
            this.snapshot = JSON.parse(fields.data);
        } else if (fields.event === 'entry') {
            this.entries.push(JSON.parse(fields.data));
        }
    }
}

/// Waits until the keys came down and went up exactly so, repetitions apart.
export async function deviceGot(observer, ...records) {
    const moves = () => observer.keyRecords().filter(record => !record.endsWith(' 2'));
    await eventually(() => assert.deepEqual(moves(), records));
    observer.close();
}
