// SPDX-License-Identifier: MIT
import { setTimeout as delay } from 'node:timers/promises';

const reminderTime = 10000;

/// Prints at intervals, until the returned function is called, what `missing` says is waited for.
export function remind(missing) {
    const timer = setInterval(() => console.log(`Still waiting: ${missing()}`), reminderTime);
    return () => clearInterval(timer);
}

/// Tries `check` until it does not throw any more, however long that takes; comes back with its result.
export async function eventually(check) {
    let last;
    const stop = remind(() => last.stack);
    for (;;) {
        try {
            const result = await check();
            stop();
            return result;
        } catch (fault) {
            last = fault;
        }
        await delay(20);
    }
}
