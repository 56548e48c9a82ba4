// SPDX-License-Identifier: MIT
// report.mjs DEVICE ROUTER MODEL RESULT: prints the figures of device-benchmark, router-benchmark and model-benchmark as
// tables, with the daemon's goals relative to the references, and writes them to the file RESULT as JSON.
import { readFileSync, writeFileSync } from 'node:fs';
import os from 'node:os';

const programs = ['daemon', 'relayingQt', 'minimalQt', 'minimalSdBus'];
const events = ['press', 'release', 'repeat', 'shortcut'];
// The searches of the model, and what they are called.
const searches = {
    oneRecogniserAtATime: 'one recogniser at a time',
    allRecognisers: 'all recognisers at once',
    verdicts: 'proof of each row',
};
const [modelStep, daemonStep] = ['stepOfTheModel', 'stepOfTheDaemon'];

const count = value => Math.round(value).toLocaleString('en-US');
const us3 = ns => `${(ns / 1000).toFixed(3)} µs`;
const us = value => `${value.toFixed(0)} µs`;
const ms = value => `${(value / 1000).toFixed(2)} ms`;
const kib = value => `${value} KiB`;

// Name, value, format and limits of each figure. A limit is the maximum ratio of the daemon's figure to that of a
// reference, or the maximum of the figure itself (`max`).
const rows = [
    ['release to announcement, p50', own => own.keyUs.p50, us, { minimalQt: 1.1, minimalSdBus: 2 }],
    ['release to announcement, p99', own => own.keyUs.p99, us],
    ['release to announcement, longest', own => own.keyUs.max, us],
    ['start to ready, p50', own => own.startUs.p50, ms, { minimalQt: 1.3 }],
    ['start to ready, p99', own => own.startUs.p99, ms],
    ['instructions of a key', own => own.instructionsPerKey, count, { minimalQt: 1.3 }],
    ['anonymous memory', own => own.anonymousKib, kib, { minimalQt: 1.25 }],
    ['memory (PSS)', own => own.pssKib, kib],
    ['wake-ups when idle', own => own.idleWakeUps, count, { max: 0 }],
    ['wake-ups in a second of waiting for services', own => own.waitingWakeUps, value => value.toFixed(1), { max: 4 }],
    ['processor time of ten such seconds', own => own.waitingMs, value => `${value} ms`],
    ['last service ready to ready, p50', own => own.servicesUs?.p50, ms],
    ['last service ready to ready, longest', own => own.servicesUs?.max, ms, { max: 20_000 }],
    ['burst: records drained a second', own => own.recordsPerSecond, count],
    ['burst: announcements delivered a second', own => own.announcementsPerSecond, count],
];

function goalsOf(values, limits) {
    return Object.entries(limits ?? {}).map(([reference, limit]) => {
        const reached = reference === 'max' ? values.daemon : values.daemon / values[reference];
        return { reference, limit, reached, met: reached <= limit };
    });
}

function measure(figures, [name, valueOf, format, limits]) {
    const values = Object.fromEntries(programs.map(program => [program, valueOf(figures[program])]));
    return { name, values, format, goals: goalsOf(values, limits) };
}

const line = cells => `| ${cells.join(' | ')} |`;

function table(heads, body) {
    return [line(heads), line(heads.map(() => '---')), ...body.map(line)].join('\n');
}

function goalText({ reference, limit, reached, met }, format) {
    const times = reference === 'max' ? format(limit) : `${limit} × ${reference === 'minimalQt' ? 'Qt' : 'C'}`;
    return `${times}: ${met ? 'met' : 'not met'}${reference === 'max' ? '' : ` (${reached.toFixed(2)})`}`;
}

function deviceTable(measured) {
    return table(
        ['', 'daemon', 'relaying Qt', 'minimal Qt', 'minimal C', 'goal'],
        measured.map(({ name, values, format, goals }) => [
            name,
            ...programs.map(program => (values[program] === undefined ? '' : format(values[program]))),
            goals.map(goal => goalText(goal, format)).join(', '),
        ]),
    );
}

/// The daemon with the tools of a technician running, against the daemon without them.
function watchedRatios({ daemonAlone, ...others }) {
    return Object.entries({ p50: 1.1, p99: 1.5 }).map(([quantile, limit]) => {
        const alone = daemonAlone.keyUs[quantile];
        const values = ['daemonRecorded', 'daemonWatched'].map(name => others[name].keyUs[quantile]);
        const ratios = values.map(value => value / alone);
        return { figure: `release to announcement, ${quantile}`, alone, values, limit, ratios };
    });
}

function watchedTable(rows) {
    return table(
        ['', 'daemon alone', 'with recorder', 'with recorder and monitor', 'goal'],
        rows.map(({ figure, alone, values, limit, ratios }) => [
            figure,
            ...[alone, ...values].map(us),
            `${limit} × alone: ${ratios.map(ratio => `${ratio <= limit ? 'met' : 'not met'} (${ratio.toFixed(2)})`).join(', ')}`,
        ]),
    );
}

/// Nanoseconds of each benchmark by the number of rows, the median of the repetitions.
function costsOf(benchmarks) {
    const costs = {};
    for (const {
        run_type: type,
        aggregate_name: aggregate,
        repetitions,
        run_name: name,
        cpu_time: time,
    } of benchmarks) {
        if (aggregate === 'median' || (type === 'iteration' && repetitions === 1)) {
            const [benchmark, length] = name.split('/');
            costs[benchmark] ??= {};
            costs[benchmark][length] = time;
        }
    }
    return costs;
}

function routerTable(costs) {
    return table(
        ['rows of each key list', ...events],
        Object.keys(costs[events[0]]).map(length => [
            count(Number(length)),
            ...events.map(event => `${(costs[event][length] / 1000).toFixed(2)} µs`),
        ]),
    );
}

function modelTable(costs) {
    return table(
        ['rows', ...Object.values(searches)],
        Object.keys(costs.verdicts).map(length => [
            count(Number(length)),
            ...Object.keys(searches).map(search =>
                costs[search]?.[length] === undefined ? '' : `${(costs[search][length] / 1e6).toFixed(1)} ms`,
            ),
        ]),
    );
}

function stepTable(costs) {
    return table(
        ['rows', 'step of the model', 'the same step of the daemon', 'ratio'],
        Object.keys(costs[modelStep]).map(length => {
            const [own, reference] = [costs[modelStep][length], costs[daemonStep][length]];
            return [count(Number(length)), us3(own), us3(reference), (own / reference).toFixed(2)];
        }),
    );
}

function machine() {
    const system = /^PRETTY_NAME="(.*)"$/m.exec(readFileSync('/etc/os-release', 'utf8'))[1];
    return `${os.cpus().length} × ${os.cpus()[0].model}, ${system}, Linux ${os.release()}, load ${os.loadavg()[0].toFixed(1)}`;
}

const [devicePath, routerPath, modelPath, resultPath] = process.argv.slice(2);
const figures = JSON.parse(readFileSync(devicePath));
const measured = rows.map(row => measure(figures, row));
const router = costsOf(JSON.parse(readFileSync(routerPath)).benchmarks);
const costs = costsOf(JSON.parse(readFileSync(modelPath)).benchmarks);
const model = Object.fromEntries(Object.entries(searches).map(([search, name]) => [name, costs[search] ?? {}]));
const goals = measured.flatMap(({ name, goals }) => goals.map(goal => ({ figure: name, ...goal })));

const watched = watchedRatios(figures);

console.log(
    [
        machine(),
        deviceTable(measured),
        routerTable(router),
        modelTable(costs),
        stepTable(costs),
        watchedTable(watched),
    ].join('\n\n'),
);
writeFileSync(resultPath, JSON.stringify({ machine: machine(), figures, goals, router, model, watched }, null, 2));
