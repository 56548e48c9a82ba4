// SPDX-License-Identifier: MIT
// The picture of the timeline.
import { Plane, gutter, inSight, minDistance } from './timelinePlane.js';
import { LabelRows, charWidth, holdEndShape, legendShape, markers, svgElement, tickStep } from './timelineShapes.js';
import { runName, seconds, stateName } from './timelineTexts.js';

const laneHeight = 34;
const labelHeight = 16;
const labelRows = 4;
const ticksAtLeast = 90;
/// Kind, label, and whether the lane is there without anything in it.
const momentLanes = [
    ['announcement', 'Announced', true],
    ['refusal', 'Refused', true],
    ['speech', 'Spoken', true],
    ['command', 'Commands', false],
    ['heading', 'Headings', false],
];

const momentOf = ({ at }) => at;

/// Draws the part of a model that is in sight. One path stands for all bars of a lane and kind.
export class Drawing extends Plane {
    #moments = inSight(this.model.moments, this.from, this.to, momentOf, momentOf);

    /// The groups, and the height that they take.
    draw() {
        for (const lane of this.model.lanes) {
            this.#drawLane(lane);
        }
        this.#drawWindows();
        for (const [kind, label, always] of momentLanes) {
            if (always || this.model.moments.some(one => one.kind === kind)) {
                this.#drawMoments(kind, label);
            }
        }
        this.#drawRuns();
        this.#drawStates();
        this.#drawTimes();
        this.#drawBreaks();
        this.#drawLegend();
        return { groups: [this.grid, this.things], height: this.y + 8 };
    }

    /// The state is written above and shades what happens in it, unless it is Idle.
    #drawStates() {
        this.label('State', 36);
        this.band(20, ['state'], undefined, 22);
        let lastX = -Infinity;
        for (const span of this.seen(this.model.states)) {
            const x = this.x(span.from);
            const width = this.x(span.to) - x;
            if (x + width >= lastX + minDistance) {
                this.#drawState(span, x, width);
                lastX = x;
            }
        }
    }

    #drawState(span, x, width) {
        const name = stateName(span.state);
        const height = span.state === 'Idle' ? 20 : this.y - 22;
        this.grid.prepend(svgElement('rect', { x, y: 22, width, height, class: 'band' }));
        if (this.sees(span.from, span.from)) {
            this.put('path', { d: `M${x},22V${this.y}`, class: 'edge' });
        }
        if (name.length * charWidth + 8 < width) {
            this.put('text', { x: x + 5, y: 36 }, name);
        }
    }

    #drawLane(lane) {
        const y = this.y;
        this.gridLine(`M0,${y}.5H${this.width}`);
        this.label(lane.label, y + 20);
        this.band(21, ['key'], lane);
        this.band(laneHeight - 21, ['hold'], lane, y + 21);
        const bars = this.seen(lane.bars);
        this.bars(
            bars.filter(bar => bar.heard),
            y + 5,
            14,
            'key',
        );
        this.bars(
            bars.filter(bar => !bar.heard),
            y + 5,
            14,
            'unheard',
        );
        this.ticks(
            bars.flatMap(bar => bar.repeats),
            y + 8,
            8,
            'repeat',
        );
        const holds = this.seen(lane.holds);
        this.bars(holds, y + 22, 7, 'hold');
        for (const outcome of ['stopped', 'refused', 'fired']) {
            this.#drawHoldEnds(
                holds.filter(hold => hold.outcome === outcome),
                outcome,
                y + 25.5,
            );
        }
        this.y += laneHeight;
    }

    #drawHoldEnds(holds, outcome, y) {
        const xs = this.separate(holds.filter(({ to }) => this.sees(to, to)).map(({ to }) => to));
        if (xs.length > 0) {
            const d = xs.map(x => holdEndShape(outcome, x, y)).join('');
            this.put('path', { d, class: `hold-end ${outcome}` });
        }
    }

    #drawWindows() {
        const y = this.y;
        this.gridLine(`M0,${y}.5H${this.width}`);
        if (this.model.windowMs > 0) {
            this.label(`Window ${this.model.windowMs / 1000} s`, y + 17);
        }
        this.band(26, ['window']);
        const windows = this.seen(this.model.windows);
        this.bars(windows, y + 6, 14, 'window');
        this.ticks(
            windows.flatMap(window => window.restarts),
            y + 3,
            20,
            'restart',
        );
        this.y += 26;
    }

    /// Words are next to their markers; markers without room for words are in a separate row.
    #drawMoments(kind, label) {
        const y = this.y;
        const moments = this.#moments.filter(one => one.kind === kind);
        const rows = new LabelRows(labelRows, gutter, this.width);
        this.gridLine(`M0,${y}.5H${this.width}`);
        this.label(label, y + 17);
        let crowdedX = -Infinity;
        for (const moment of moments) {
            const x = this.x(moment.at);
            const place = rows.placeOf(x, moment.text);
            if (place) {
                this.#drawMarker(kind, x, y, place.row);
                this.#drawWords(moment.text, x, y, place);
            } else if (x >= crowdedX + 4) {
                this.#drawMarker(kind, x, y, labelRows);
                crowdedX = x;
            }
        }
        const height = Math.max(rows.used + (crowdedX > 0 ? 1 : 0), 1) * labelHeight + 10;
        this.band(height, [kind]);
        this.y += height;
    }

    #drawMarker(kind, x, y, row) {
        const transform = `translate(${x},${y + 13 + row * labelHeight})`;
        this.put('path', { d: markers[kind], class: kind, transform });
    }

    #drawWords(text, x, y, { row, before }) {
        const [wordX, anchor] = before ? [x - 9, 'end'] : [x + 9, 'start'];
        this.put('text', { x: wordX, y: y + 17 + row * labelHeight, 'text-anchor': anchor }, text);
    }

    /// The runs have names once there are several.
    #drawRuns() {
        if (!(this.model.runs.at(-1)?.number > 1)) {
            return;
        }
        const rows = new LabelRows(1, gutter, this.width);
        this.gridLine(`M0,${this.y}.5H${this.width}`);
        this.label('Run', this.y + 17);
        for (const run of this.seen(this.model.runs)) {
            const x = this.x(run.from);
            if (rows.placeOf(x, runName(run))?.before === false) {
                this.put('text', { x: x + 5, y: this.y + 17 }, runName(run));
            }
        }
        this.y += 26;
    }

    #drawTimes() {
        const step = tickStep(ticksAtLeast / this.scale);
        const rows = new LabelRows(1, gutter, this.width);
        let lastX = -Infinity;
        this.label('Time', 15);
        for (const run of this.seen(this.model.runs)) {
            const first = Math.max(run.from, this.from) - run.offset;
            const last = Math.min(run === this.model.runs.at(-1) ? this.to : run.to, this.to);
            for (let at = Math.ceil(first / step) * step; at + run.offset <= last; at += step) {
                const x = this.x(at + run.offset);
                if (x < lastX + minDistance) {
                    continue;
                }
                lastX = x;
                this.gridLine(`M${x},18V${this.y}`);
                const text = seconds(at, step < 1000 ? 1 : 0);
                if (rows.placeOf(x, text)?.before === false) {
                    this.put('text', { x: x + 3, y: 15, class: 'muted' }, text);
                }
            }
        }
    }

    #drawBreaks() {
        const moments = inSight(this.model.breaks, this.from, this.to, momentOf, momentOf).map(momentOf);
        for (const x of this.separate(moments)) {
            this.put('path', { d: `M${x},0V${this.y}`, class: 'break' });
        }
        this.band(this.y, ['break'], undefined, 0);
    }

    #drawLegend() {
        const y = this.y + 18;
        const items = [
            ['key', 'pressed'],
            ['unheard', 'pressed, not heard'],
            ['hold', 'long press runs'],
            ['hold-end fired', 'recognised'],
            ['hold-end refused', 'refused'],
            ['hold-end stopped', 'stopped'],
            ['window', 'waits for more keys'],
            ['break', 'device restarted, ended or not answering'],
        ];
        this.gridLine(`M0,${this.y}.5H${this.width}`);
        let x = 8;
        let row = 0;
        for (const [className, text] of items) {
            const width = 26 + text.length * charWidth + 14;
            if (x + width > this.width) {
                x = 8;
                row += 1;
            }
            this.put('path', { d: legendShape(className, x, y + row * 20), class: className });
            this.put('text', { x: x + 26, y: y + row * 20 }, text);
            x += width;
        }
        this.y = y + row * 20 + 6;
    }
}
