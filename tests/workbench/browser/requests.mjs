// SPDX-License-Identifier: MIT
// The requests of a page: a test that moves the clock of the page waits for their answers first, which take real time.

/// Keeps the number of requests that have no whole answer yet (runs in the page).
export function countRequests() {
    const { fetch } = window;
    window.openRequests = 0;
    window.fetch = async (...words) => {
        ++window.openRequests;
        try {
            const answer = await fetch(...words);
            await answer.clone().arrayBuffer();
            return answer;
        } finally {
            --window.openRequests;
        }
    };
}

/// Waits until a page that counts its requests has all answers.
export const hasAnswers = page => page.waitForFunction(() => !window.openRequests, null, { polling: 20 });
