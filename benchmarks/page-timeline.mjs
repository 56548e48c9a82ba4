// SPDX-License-Identifier: MIT
// Measures the timeline of the front panel's page with a history of 10,000 entries, next to the page of another revision
// of this repository, in turns. Prints the worst of the rounds. Run it with the packages and the simulator of a build:
//
//     tests/workbench/browser/in-build build/release benchmarks/page-timeline.mjs REVISION [ROUNDS]
import { execFileSync } from 'node:child_process';
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { setTimeout as delay } from 'node:timers/promises';
import { fileURLToPath } from 'node:url';

import { eventually } from '../tests/workbench/browser/eventually.mjs';
import { PanelSession } from '../tests/workbench/browser/panelSession.mjs';
import { Relay } from '../tests/workbench/browser/relay.mjs';

const [revision, rounds = 5] = process.argv.slice(2);
if (!revision) {
    throw new Error('usage: page-timeline.mjs REVISION [ROUNDS]');
}
const root = fileURLToPath(new URL('..', import.meta.url));
const historySize = 10000;
const measuredTime = 5000; // milliseconds
const tapInterval = 100; // milliseconds
const settlingTime = 4000; // until nothing is in progress at the device, and the page is loaded

/// Taps in a state in which each key is announced at once, until the history is full.
async function fillHistory(simulator) {
    await simulator.enter('Print');
    const codes = [103, 105, 106, 108];
    const taps = codes.flatMap(code => [`record 1 ${code} 1`, `record 1 ${code} 0`]);
    const tapAll = new Array(25).fill(taps).flat();
    const observer = await simulator.observe();
    while (observer.snapshot.history.length + observer.entries.length < historySize) {
        await eventually(() => simulator.take(...tapAll));
        await delay(tapInterval);
    }
    observer.close();
    await simulator.enter('Idle');
}

/// The processor time of all processes of the browser, in seconds.
async function processorTime(browser) {
    const session = await browser.newBrowserCDPSession();
    const { processInfo } = await session.send('SystemInfo.getProcessInfo');
    await session.detach();
    return processInfo.reduce((sum, { cpuTime }) => sum + cpuTime, 0);
}

async function shareOf(browser) {
    const before = await processorTime(browser);
    await delay(measuredTime);
    return ((await processorTime(browser)) - before) / (measuredTime / 100000);
}

/// How much of a processor the browser takes for the page while nothing happens, in per cent.
async function idleShare(session, options) {
    await session.open(options);
    await delay(settlingTime);
    const share = await shareOf(session.browser);
    await session.closePages();
    return share;
}

/// Opens the table in the page; the time until it is painted, in milliseconds.
function timeTable() {
    return new Promise(resolve => {
        const details = document.querySelector('.timeline-table');
        const begun = performance.now();
        const painted = () => requestAnimationFrame(() => setTimeout(() => resolve(performance.now() - begun)));
        details.addEventListener('toggle', () => setTimeout(painted));
        details.querySelector('summary').click();
    });
}

/// The processor time of the main thread of a page so far, in milliseconds.
async function mainThreadTime(tools) {
    const { metrics } = await tools.send('Performance.getMetrics');
    return metrics.find(({ name }) => name === 'TaskDuration').value * 1000;
}

/// The longest task of the main thread of a page in a trace, in milliseconds, and the longest by its processor time.
function worstTasks(trace) {
    const { traceEvents } = JSON.parse(trace);
    const threads = traceEvents.filter(({ args }) => args?.name === 'CrRendererMain');
    const isMain = ({ pid, tid }) => threads.some(thread => thread.pid === pid && thread.tid === tid);
    const tasks = traceEvents.filter(event => event.name === 'RunTask' && event.dur && isMain(event));
    const longest = name => Math.max(...tasks.map(task => task[name] ?? 0)) / 1000;
    return { task: longest('dur'), work: longest('tdur') };
}

/// The time to open the table, and the longest task while keys are tapped, with everything in sight.
async function measureLive(session, options) {
    const panel = await session.open({ ...options, view: '#timeline' });
    await delay(settlingTime);
    await panel.button('Fit').click();
    const tools = await panel.context.newCDPSession(panel.page);
    await tools.send('Performance.enable', { timeDomain: 'threadTicks' });
    const before = await mainThreadTime(tools);
    const table = await panel.page.evaluate(timeTable);
    const tableWork = (await mainThreadTime(tools)) - before;
    await session.browser.startTracing(panel.page, {
        categories: ['__metadata', 'disabled-by-default-devtools.timeline'],
    });
    const end = performance.now() + measuredTime;
    while (performance.now() < end) {
        await session.simulator.take('record 1 103 1', 'record 1 103 0');
        await delay(tapInterval);
    }
    const tasks = worstTasks(await session.browser.stopTracing());
    await session.closePages();
    return { table, tableWork, ...tasks };
}

/// What the browser takes without a page of the simulator, in per cent of a processor.
async function emptyShare({ browser }) {
    const page = await browser.newPage();
    await delay(settlingTime);
    const share = await shareOf(browser);
    await page.close();
    return share;
}

async function measure(session, url) {
    const live = await measureLive(session, { url });
    const idle = await idleShare(session, { url, view: '#timeline' });
    const calm = await idleShare(session, { url, view: '#timeline', reducedMotion: 'reduce' });
    const panel = await idleShare(session, { url, view: '#panel' });
    const empty = await emptyShare(session);
    return { ...live, idle, calm, panel, empty };
}

const figures = {
    task: ['longest task while ten keys a second are tapped', 'ms', 50],
    work: ['longest processor time of a task meanwhile', 'ms', 50],
    table: ['table opened', 'ms', 200],
    tableWork: ['processor time of that', 'ms', 200],
    idle: ['idle timeline, of a processor', '%', 3],
    calm: ['the same with reduced motion', '%', 3],
    panel: ['idle view Panel', '%', undefined],
    empty: ['the browser with an empty page', '%', undefined],
};

function print(before, now) {
    const worst = (results, name) => Math.max(...results.map(result => result[name]));
    console.log(`${historySize} entries; worst of ${rounds}\n`);
    console.log(`| | ${revision} | this page | goal |\n| --- | --- | --- | --- |`);
    for (const [name, [text, unit, goal]] of Object.entries(figures)) {
        const [old, own] = [before, now].map(results => worst(results, name));
        const verdict = goal && `${goal} ${unit}: ${own < goal ? 'met' : 'not met'}`;
        console.log(`| ${text} | ${old.toFixed(1)} ${unit} | ${own.toFixed(1)} ${unit} | ${verdict ?? ''} |`);
    }
}

const former = mkdtempSync(join(tmpdir(), 'page-'));
const session = new PanelSession();
try {
    const archive = execFileSync('git', ['-C', root, 'archive', `${revision}:workbench/page`]);
    execFileSync('tar', ['-x', '-C', former], { input: archive });
    await session.begin();
    await fillHistory(session.simulator);
    const folders = [former, join(root, 'workbench/page')];
    const relays = await Promise.all(folders.map(folder => Relay.to(session.simulator.url, folder)));
    const results = [[], []];
    for (let round = 0; round < Number(rounds); ++round) {
        for (const [index, { url }] of relays.entries()) {
            results[index].push(await measure(session, url));
            console.error(JSON.stringify(results[index].at(-1)));
        }
    }
    print(...results);
    await Promise.all(relays.map(relay => relay.close()));
} finally {
    rmSync(former, { recursive: true });
    await session.end();
}
