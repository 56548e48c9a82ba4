// SPDX-License-Identifier: MIT
import { AssertionError } from 'node:assert/strict';
import { setTimeout as delay } from 'node:timers/promises';

const reminderTime = 10000;
const retryTime = 100; // shorter ones take much time of the processor

/// Prints at intervals, until the returned function is called, what `missing` says is waited for.
export function remind(missing) {
    const timer = setInterval(() => console.log(`Still waiting: ${missing()}`), reminderTime);
    return () => clearInterval(timer);
}

/// Tries `check` until it does not throw any more, however long that takes; comes back with its result. What can never
/// come right, a closed page or a process that has ended, fails at once.
export async function eventually(check) {
    let last = 'the first answer';
    const stop = remind(() => last);
    try {
        for (;;) {
            try {
                return await check();
            } catch (fault) {
                if (!(fault instanceof AssertionError) && / has (been closed|ended)\b/.test(fault.message)) {
                    throw fault;
                }
                last = fault.stack;
            }
            await delay(retryTime);
        }
    } finally {
        stop();
    }
}
