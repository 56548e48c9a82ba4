// SPDX-License-Identifier: MIT
import { setTimeout as delay } from 'node:timers/promises';

/// How long a condition is waited for: far longer than it takes, so that only what never comes is a failure.
export const patience = 60000;

/// Tries `check` until it does not throw any more; comes back with its result, or fails with its last fault.
export async function eventually(check) {
    const end = Date.now() + patience;
    for (;;) {
        try {
            return await check();
        } catch (fault) {
            if (Date.now() > end) {
                throw fault;
            }
        }
        await delay(20);
    }
}
