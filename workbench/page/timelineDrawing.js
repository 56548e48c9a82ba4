// SPDX-License-Identifier: MIT
// The picture of the timeline.
import { LabelRows, charWidth, holdEndShape, legendShape, markers, svgElement, tickStep } from './timelineShapes.js';
import { seconds, stateName } from './timelineTexts.js';

const gutter = 132;
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

/// Draws the part of a model between two moments into a group. One path stands for all bars of a lane and kind.
export class Drawing {
    #model;
    #from;
    #to;
    #width;
    #scale;
    #grid = svgElement('g');
    #things = svgElement('g');
    #y = 44;

    constructor(model, view, width) {
        this.#model = model;
        this.#from = view.from;
        this.#to = view.to;
        this.#width = width;
        this.#scale = (width - gutter - 8) / (view.to - view.from);
    }

    /// The groups, and the height that they take.
    draw() {
        for (const lane of this.#model.lanes) {
            this.#drawLane(lane);
        }
        this.#drawWindows();
        for (const [kind, label, always] of momentLanes) {
            if (always || this.#model.moments.some(one => one.kind === kind)) {
                this.#drawMoments(kind, label);
            }
        }
        this.#drawStates();
        this.#drawTimes();
        this.#drawBreaks();
        this.#drawLegend();
        return { groups: [this.#grid, this.#things], height: this.#y + 8 };
    }

    #x(at) {
        const inside = Math.min(Math.max(at, this.#from), this.#to);
        return Math.round((gutter + (inside - this.#from) * this.#scale) * 10) / 10;
    }

    #sees(from, to) {
        return to >= this.#from && from <= this.#to;
    }

    #seen(spans) {
        return spans.filter(span => this.#sees(span.from, span.to));
    }

    #put(name, attributes, text) {
        this.#things.append(svgElement(name, attributes, text));
    }

    #gridLine(d) {
        this.#grid.append(svgElement('path', { d, class: 'grid' }));
    }

    #label(text, y, className = '') {
        this.#put('text', { x: 8, y, class: className }, text);
    }

    /// Bars of at least a visible width; those that would fall on the same pixels are drawn once.
    #bars(spans, y, height, className) {
        let path = '';
        let last = -1;
        for (const span of spans) {
            const x = this.#x(span.from);
            const width = Math.max(this.#x(span.to) - x, 2);
            if (x + width > last) {
                path += `M${x},${y}h${width}v${height}h${-width}z`;
                last = Math.ceil(x + width);
            }
        }
        if (path) {
            this.#put('path', { d: path, class: className });
        }
    }

    #ticks(moments, y, height, className) {
        let path = '';
        let last = -2;
        for (const at of moments) {
            const x = this.#x(at);
            if (this.#sees(at, at) && x >= last + 2) {
                path += `M${x},${y}v${height}`;
                last = x;
            }
        }
        if (path) {
            this.#put('path', { d: path, class: className });
        }
    }

    /// The state is written above and shades what happens in it, unless it is Idle.
    #drawStates() {
        this.#label('State', 36);
        this.#seen(this.#model.states).forEach(span => {
            const x = this.#x(span.from);
            const width = this.#x(span.to) - x;
            const name = stateName(span.state);
            const height = span.state === 'Idle' ? 20 : this.#y - 22;
            this.#grid.prepend(svgElement('rect', { x, y: 22, width, height, class: 'band' }));
            if (this.#sees(span.from, span.from)) {
                this.#put('path', { d: `M${x},22V${this.#y}`, class: 'edge' });
            }
            if (name.length * charWidth + 8 < width) {
                this.#put('text', { x: x + 5, y: 36 }, name);
            }
        });
    }

    #drawLane(lane) {
        const y = this.#y;
        this.#gridLine(`M0,${y}.5H${this.#width}`);
        this.#label(lane.label, y + 20);
        const bars = this.#seen(lane.bars);
        this.#bars(
            bars.filter(bar => bar.heard),
            y + 5,
            14,
            'key',
        );
        this.#bars(
            bars.filter(bar => !bar.heard),
            y + 5,
            14,
            'unheard',
        );
        this.#ticks(
            bars.flatMap(bar => bar.repeats),
            y + 8,
            8,
            'repeat',
        );
        const holds = this.#seen(lane.holds);
        this.#bars(holds, y + 22, 7, 'hold');
        holds.filter(hold => hold.outcome !== 'running').forEach(hold => this.#drawHoldEnd(hold, y + 25.5));
        this.#y += laneHeight;
    }

    #drawHoldEnd(hold, y) {
        if (this.#sees(hold.to, hold.to)) {
            const x = this.#x(hold.to);
            this.#put('path', { d: holdEndShape(hold.outcome, x, y), class: `hold-end ${hold.outcome}` });
        }
    }

    #drawWindows() {
        const y = this.#y;
        this.#gridLine(`M0,${y}.5H${this.#width}`);
        if (this.#model.windowMs > 0) {
            this.#label(`Window ${this.#model.windowMs / 1000} s`, y + 17);
        }
        const windows = this.#seen(this.#model.windows);
        this.#bars(windows, y + 6, 14, 'window');
        this.#ticks(
            windows.flatMap(window => window.restarts),
            y + 3,
            20,
            'restart',
        );
        this.#y += 26;
    }

    /// Words are next to their markers; markers without room for words are in a separate row.
    #drawMoments(kind, label) {
        const y = this.#y;
        const moments = this.#model.moments.filter(one => one.kind === kind && this.#sees(one.at, one.at));
        const rows = new LabelRows(labelRows, gutter, this.#width);
        this.#gridLine(`M0,${y}.5H${this.#width}`);
        this.#label(label, y + 17);
        let crowdedX = -Infinity;
        for (const moment of moments) {
            const x = this.#x(moment.at);
            const place = rows.placeOf(x, moment.text);
            if (place) {
                this.#drawMarker(kind, x, y, place.row);
                this.#drawWords(moment.text, x, y, place);
            } else if (x >= crowdedX + 4) {
                this.#drawMarker(kind, x, y, labelRows);
                crowdedX = x;
            }
        }
        this.#y += Math.max(rows.used + (crowdedX > 0 ? 1 : 0), 1) * labelHeight + 10;
    }

    #drawMarker(kind, x, y, row) {
        const transform = `translate(${x},${y + 13 + row * labelHeight})`;
        this.#put('path', { d: markers[kind], class: kind, transform });
    }

    #drawWords(text, x, y, { row, before }) {
        const [wordX, anchor] = before ? [x - 9, 'end'] : [x + 9, 'start'];
        this.#put('text', { x: wordX, y: y + 17 + row * labelHeight, 'text-anchor': anchor }, text);
    }

    #drawTimes() {
        const step = tickStep(ticksAtLeast / this.#scale);
        const rows = new LabelRows(1, gutter, this.#width);
        this.#label('Time', 15);
        for (const run of this.#seen(this.#model.runs)) {
            const first = Math.max(run.from, this.#from) - run.offset;
            const last = Math.min(run === this.#model.runs[this.#model.runs.length - 1] ? this.#to : run.to, this.#to);
            for (let at = Math.ceil(first / step) * step; at + run.offset <= last; at += step) {
                const x = this.#x(at + run.offset);
                this.#gridLine(`M${x},18V${this.#y}`);
                const text = seconds(at, step < 1000 ? 1 : 0);
                if (rows.placeOf(x, text)?.before === false) {
                    this.#put('text', { x: x + 3, y: 15, class: 'muted' }, text);
                }
            }
        }
    }

    #drawBreaks() {
        for (const one of this.#model.breaks.filter(one => this.#sees(one.at, one.at))) {
            this.#put('path', { d: `M${this.#x(one.at)},0V${this.#y}`, class: 'break' });
        }
    }

    #drawLegend() {
        const y = this.#y + 18;
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
        this.#gridLine(`M0,${this.#y}.5H${this.#width}`);
        let x = 8;
        let row = 0;
        for (const [className, text] of items) {
            const width = 26 + text.length * charWidth + 14;
            if (x + width > this.#width) {
                x = 8;
                row += 1;
            }
            this.#put('path', { d: legendShape(className, x, y + row * 20), class: className });
            this.#put('text', { x: x + 26, y: y + row * 20 }, text);
            x += width;
        }
        this.#y = y + row * 20 + 6;
    }
}
