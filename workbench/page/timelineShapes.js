// SPDX-License-Identifier: MIT
// Shapes of the timeline's picture, and where its labels have room.

export const svgNamespace = 'http://www.w3.org/2000/svg';
export const charWidth = 6.6;

export const markers = {
    announcement: 'M0,-6 L6,0 L0,6 L-6,0 Z',
    refusal: 'M-5,-5 L5,5 M-5,5 L5,-5',
    speech: 'M-5,-4 H5 V3 H0 L-3,6 V3 H-5 Z',
    command: 'M-4,-5 L5,0 L-4,5 Z',
    heading: 'M-5,-5 H5 M-5,0 H5 M-5,5 H1',
};

export function svgElement(name, attributes = {}, text = undefined) {
    const element = document.createElementNS(svgNamespace, name);
    for (const [attribute, value] of Object.entries(attributes)) {
        element.setAttribute(attribute, value);
    }
    if (text !== undefined) {
        element.textContent = text;
    }
    return element;
}

export function htmlElement(name, attributes = {}, text = undefined) {
    const element = document.createElement(name);
    for (const [attribute, value] of Object.entries(attributes)) {
        element.setAttribute(attribute, value);
    }
    if (text !== undefined) {
        element.textContent = text;
    }
    return element;
}

export function holdEndShape(outcome, x, y) {
    return outcome === 'stopped' ? `M${x},${y - 5}v10` : `M${x - 5},${y}l5,-5l5,5l-5,5z`;
}

export function legendShape(className, x, y) {
    if (className.startsWith('hold-end')) {
        return holdEndShape(className.split(' ')[1], x + 10, y - 4);
    }
    return className === 'break' ? `M${x},${y - 4}h20` : `M${x},${y - 10}h20v12h-20z`;
}

/// The first of 1, 2, 5, 10, ... times a power of ten milliseconds that is not shorter than `least`.
export function tickStep(least) {
    const power = 10 ** Math.max(Math.floor(Math.log10(least)), 1);
    return [1, 2, 5, 10].map(factor => factor * power).find(step => step >= least);
}

/// Finds rows in which labels have room next to their markers, so that they never cover each other.
export class LabelRows {
    used = 0;
    #ends;
    #right;

    constructor(count, left, right) {
        this.#ends = new Array(count).fill(left - 7); // a marker may stand on the left edge
        this.#right = right;
    }

    /// The row of the marker at `x`, and whether its label stands before it; undefined without room for it.
    placeOf(x, text) {
        const length = 14 + text.length * charWidth;
        const before = x + length > this.#right;
        const begin = before ? x - length : x - 7;
        const row = this.#ends.findIndex(end => end <= begin);
        if (row < 0) {
            return undefined;
        }
        this.#ends[row] = before ? x + 7 : x + length;
        this.used = Math.max(this.used, row + 1);
        return { row, before };
    }
}
