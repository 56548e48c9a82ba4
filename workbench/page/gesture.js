// SPDX-License-Identifier: MIT
// The keys of a gesture.
import { statementsOf } from './keys.js';

/// Movements of keys with their real times, as a key script.
export class Gesture {
    #statements = [];
    #down = new Set(); // ids of keys
    #start;
    #last = 0; // when the last key was moved, in milliseconds since the start

    /// Returns whether it counts: the release of a key that was pressed before the gesture does not.
    take(verb, id) {
        if (verb === 'release' && !this.#down.has(id)) {
            return false;
        }
        this.#start ??= performance.now();
        const at = Math.round(performance.now() - this.#start);
        this.#statements.push(`wait ${at - this.#last}`, statementsOf(verb, id));
        this.#last = at;
        if (verb === 'press') {
            this.#down.add(id);
        } else {
            this.#down.delete(id);
        }
        return true;
    }

    get hasKeysDown() {
        return this.#down.size > 0;
    }

    get script() {
        return this.#statements.join('\n');
    }

    /// The milliseconds since the last key was moved.
    get rest() {
        return performance.now() - this.#start - this.#last;
    }
}
