// SPDX-License-Identifier: MIT
// Measures the time from a press of Menu on the page to its announcement there, compared with the same press posted
// over HTTP and observed on the event stream. Run it with the packages and the simulator of a build:
//
//     tests/workbench/browser/in-build build/release benchmarks/page-latency.mjs
import { PanelSession } from '../tests/workbench/browser/panelSession.mjs';

const presses = 100;
const warmUp = 5;

const at = (sorted, part) => sorted[Math.min(Math.floor(sorted.length * part), sorted.length - 1)];

/// The times of the presses after the warm-up, in milliseconds.
async function measure(press) {
    const times = [];
    for (let count = 0; count < warmUp + presses; ++count) {
        times.push(await press());
    }
    const sorted = times.slice(warmUp).sort((one, other) => one - other);
    return { median: at(sorted, 0.5), p99: at(sorted, 0.99) };
}

/// Presses and releases Menu with keyboard events dispatched within the page, so that only the page is measured.
function pressOnPage() {
    return new Promise(resolve => {
        const announced = document.getElementById('announced-live');
        const key = document.querySelector('[data-key="Menu"]');
        const begun = performance.now();
        const watch = new MutationObserver(() => {
            watch.disconnect();
            requestAnimationFrame(() => resolve(performance.now() - begun));
        });
        watch.observe(announced, { childList: true });
        for (const type of ['keydown', 'keyup']) {
            key.dispatchEvent(new KeyboardEvent(type, { key: 'Enter', cancelable: true }));
        }
    });
}

async function pressOverHttp(simulator, observer) {
    const last = observer.entries[observer.entries.length - 1];
    const begun = performance.now();
    await simulator.take('device 0', 'press Menu');
    await simulator.take('device 0', 'release Menu');
    await observer.sees({ type: 'announcement', keys: ['Menu'] }, last);
    return performance.now() - begun;
}

const format = ({ median, p99 }) => `median ${median.toFixed(1)} ms, p99 ${p99.toFixed(1)} ms`;

const session = new PanelSession();
await session.begin();
const panel = await session.open();
const observer = await session.simulator.observe();
const reference = await measure(() => pressOverHttp(session.simulator, observer));
const page = await measure(() => panel.page.evaluate(pressOnPage));
observer.close();
await session.end();
console.log(`Menu pressed to announced, ${presses} times`);
console.log(`  over HTTP, without a browser: ${format(reference)}`);
console.log(`  on the page:                  ${format(page)}`);
console.log(`  ratio of the medians:         ${(page.median / reference.median).toFixed(2)}`);
