// SPDX-License-Identifier: MIT
// plot.mjs RESULT router|model: plots the cost of an event in the router against the length of the key lists, or that of
// searching the model against the number of rows, as SVG with logarithmic axes. RESULT is the output of tools/bench --json.
import { readFileSync } from 'node:fs';

const [width, height] = [640, 400];
const [left, right, top, bottom] = [70, 160, 20, 55];
const colours = ['#0072b2', '#d55e00', '#009e73', '#cc79a7'];
const dashes = ['none', '6 3', '2 3', '8 3 2 3'];

const words = {
    router: {
        title: 'Time of a key event in the router against the number of rows in each key list',
        x: 'rows in each key list',
    },
    model: { title: 'Time of a search of the model against the number of rows', x: 'rows in all key lists' },
};
const [resultPath, kind] = process.argv.slice(2);
const curvesByName = Object.entries(JSON.parse(readFileSync(resultPath))[kind]);
const lengthsOf = cost => Object.keys(cost).map(Number);
const lengths = curvesByName.flatMap(([, cost]) => lengthsOf(cost));
const costs = curvesByName.flatMap(([, cost]) => Object.values(cost));
const decade = (value, round) => 10 ** round(Math.log10(value));

/// Maps the values of `from` to `to` to the pixels `start` to `end`.
function axis(from, to, start, end) {
    const scale = (end - start) / Math.log10(to / from);
    const ticks = [];
    for (let tick = from; tick <= to; tick *= 10) {
        ticks.push(tick);
    }
    return { ticks, at: value => (start + Math.log10(value / from) * scale).toFixed(1) };
}

const x = axis(Math.min(...lengths), Math.max(...lengths), left, width - right);
const y = axis(decade(Math.min(...costs), Math.floor), decade(Math.max(...costs), Math.ceil), height - bottom, top);

const units = [
    [1e9, 's'],
    [1e6, 'ms'],
    [1e3, 'µs'],
    [1, 'ns'],
];
const time = ns => {
    const [factor, unit] = units.find(([least]) => ns >= least);
    return `${ns / factor} ${unit}`;
};
const text = (px, py, content, rest = '') => `<text x="${px}" y="${py}" ${rest}>${content}</text>`;
const rule = (x1, y1, x2, y2) => `<line x1="${x1}" y1="${y1}" x2="${x2}" y2="${y2}" stroke="#d0d0d0"/>`;

const grid = [
    ...x.ticks.flatMap(tick => [
        rule(x.at(tick), top, x.at(tick), height - bottom),
        text(x.at(tick), height - bottom + 18, tick.toLocaleString('en-US'), 'text-anchor="middle"'),
    ]),
    ...y.ticks.flatMap(tick => [
        rule(left, y.at(tick), width - right, y.at(tick)),
        text(left - 8, Number(y.at(tick)) + 4, time(tick), 'text-anchor="end"'),
    ]),
];

// Labels are next to the ends of their curves, without overlap.
const labels = curvesByName
    .map(([name, cost], i) => ({
        name,
        i,
        px: x.at(lengthsOf(cost).at(-1)),
        py: Number(y.at(Object.values(cost).at(-1))) + 4,
    }))
    .sort((one, other) => one.py - other.py);
labels.forEach((label, i) => {
    label.py = Math.max(label.py, (labels[i - 1]?.py ?? 0) + 15);
});

const curves = curvesByName.map(([, cost], i) => {
    const points = lengthsOf(cost)
        .map(length => `${x.at(length)},${y.at(cost[length])}`)
        .join(' ');
    return `<polyline points="${points}" fill="none" stroke="${colours[i]}" stroke-width="2" stroke-dasharray="${dashes[i]}"/>`;
});

console.log(`<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 ${width} ${height}" font-family="sans-serif" font-size="13">
<title>${words[kind].title}</title>
<rect width="${width}" height="${height}" fill="white"/>
${[...grid, ...curves].join('\n')}
${labels.map(({ name, i, px, py }) => text(Number(px) + 8, py, name, `fill="${colours[i]}"`)).join('\n')}
${text((left + width - right) / 2, height - 12, words[kind].x, 'text-anchor="middle"')}
</svg>`);
