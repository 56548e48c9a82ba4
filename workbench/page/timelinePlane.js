// SPDX-License-Identifier: MIT
// The plane of the timeline's picture: time across, bands of events from the top to the bottom.
import { svgElement } from './timelineShapes.js';

export const gutter = 132;
const rightEdge = 8;
/// How near a pointer must be, and how far a mark reaches, in pixels.
const reach = 6;
const markEdge = 3;
/// Shapes that are this near to each other are drawn once.
export const minDistance = 3;

/// The items that are in sight between two moments, of items in the order of time that do not overlap. `endOf` and
/// `beginOf` give the moments of an item.
export function inSight(items, from, to, endOf = item => item.to, beginOf = item => item.from) {
    let low = 0;
    let high = items.length;
    while (low < high) {
        const middle = (low + high) >> 1;
        [low, high] = endOf(items[middle]) < from ? [middle + 1, high] : [low, middle];
    }
    let end = low;
    while (end < items.length && beginOf(items[end]) <= to) {
        end += 1;
    }
    return items.slice(low, end);
}

/// Begins as an empty plane for the part of a model that is in `sight`. What is drawn into it makes it higher.
export class Plane {
    model;
    from;
    to;
    width;
    scale;
    grid = svgElement('g');
    things = svgElement('g');
    y = 44;
    bands = []; // where which kinds of events are, in which lane

    constructor(model, sight, width) {
        this.model = model;
        this.from = sight.from;
        this.to = sight.to;
        this.width = width;
        this.scale = (width - gutter - rightEdge) / (sight.to - sight.from);
    }

    /// The event at a place of the picture, if any.
    eventAt(x, y) {
        const band = this.bands.find(one => one.y <= y && y < one.y + one.height);
        if (!band || x < gutter - reach) {
            return undefined;
        }
        const at = this.from + (x - gutter) / this.scale;
        const distance = event => Math.max(event.from - at, at - endOf(event), 0) * this.scale;
        return this.model.events
            .filter(event => band.kinds.includes(event.kind) && event.lane === band.lane && distance(event) <= reach)
            .reduce((one, other) => (one && distance(one) < distance(other) ? one : other), undefined);
    }

    /// A shape around an event; undefined if the event is out of sight.
    markOf(event, className) {
        const band = this.bands.find(one => one.kinds.includes(event.kind) && one.lane === event.lane);
        if (!band || !this.sees(event.from, endOf(event))) {
            return undefined;
        }
        const x = this.x(event.from) - markEdge;
        const width = this.x(endOf(event)) + markEdge - x;
        return svgElement('rect', { x, y: band.y + 1, width, height: band.height - 1, class: className });
    }

    /// How far a place is from the beginning of the sight, in parts of the sight.
    partAt(x) {
        const part = (x - gutter) / (this.width - gutter - rightEdge);
        return Math.min(Math.max(part, 0), 1);
    }

    /// The time that so many pixels are wide.
    timeOf(width) {
        return width / this.scale;
    }

    x(at) {
        const inside = Math.min(Math.max(at, this.from), this.to);
        return Math.round((gutter + (inside - this.from) * this.scale) * 10) / 10;
    }

    sees(from, to) {
        return to >= this.from && from <= this.to;
    }

    seen(spans) {
        return inSight(spans, this.from, this.to);
    }

    put(name, attributes, text) {
        this.things.append(svgElement(name, attributes, text));
    }

    gridLine(d) {
        this.grid.append(svgElement('path', { d, class: 'grid' }));
    }

    band(height, kinds, lane, y = this.y) {
        this.bands.push({ y, height, kinds, lane });
    }

    label(text, y, className = '') {
        this.put('text', { x: 8, y, class: className }, text);
    }

    /// Bars of at least a visible width; those that would fall on the same pixels are drawn once.
    bars(spans, y, height, className) {
        let path = '';
        let last = -1;
        for (const span of spans) {
            const x = this.x(span.from);
            const width = Math.max(this.x(span.to) - x, 2);
            if (x + width > last) {
                path += `M${x},${y}h${width}v${height}h${-width}z`;
                last = Math.ceil(x + width);
            }
        }
        if (path) {
            this.put('path', { d: path, class: className });
        }
    }

    ticks(moments, y, height, className) {
        let path = '';
        let last = -2;
        for (const at of moments) {
            const x = this.x(at);
            if (this.sees(at, at) && x >= last + 2) {
                path += `M${x},${y}v${height}`;
                last = x;
            }
        }
        if (path) {
            this.put('path', { d: path, class: className });
        }
    }

    /// The places of moments, without those that are too near to the one before.
    separate(moments) {
        const xs = [];
        for (const x of moments.map(at => this.x(at))) {
            if (xs.length === 0 || x >= xs.at(-1) + minDistance) {
                xs.push(x);
            }
        }
        return xs;
    }
}

/// The moment at which an event of the model ends.
function endOf({ item, from }) {
    return item.to ?? from;
}
