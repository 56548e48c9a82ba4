// SPDX-License-Identifier: MIT
// The parts of the page that the timeline consists of.
import { htmlElement, svgElement } from './timelineShapes.js';
import { TimelineTable } from './timelineTable.js';
import { style } from './timelineStyle.js';

export function buildParts(container) {
    const sheet = new CSSStyleSheet();
    sheet.replaceSync(style);
    document.adoptedStyleSheets = [...document.adoptedStyleSheets, sheet];
    const { svg, picture, description } = buildSvg();
    const buttons = buildButtons();
    const position = htmlElement('input', { type: 'range', id: 'timeline-position' });
    const positionBar = htmlElement('div', { class: 'timeline-position' });
    positionBar.append(htmlElement('label', { for: 'timeline-position' }, 'Time shown'), position);
    const bar = htmlElement('div', { class: 'timeline-toolbar', role: 'group', 'aria-label': 'Timeline controls' });
    bar.append(...Object.values(buttons), positionBar);
    const frame = htmlElement('div', {
        class: 'timeline-frame',
        tabindex: '0',
        role: 'application', // so that a screen reader leaves the arrow keys to it
        'aria-label': 'Drawing',
    });
    frame.append(svg);
    const note = htmlElement('p', { class: 'fault', hidden: '' });
    const table = new TimelineTable();
    container.replaceChildren(bar, note, frame, table.details);
    return { svg, picture, description, buttons, position, note, frame, table };
}

function buildSvg() {
    const svg = svgElement('svg', {
        class: 'timeline-svg',
        role: 'img',
        'aria-labelledby': 'timeline-title',
        'aria-describedby': 'timeline-description',
    });
    const description = svgElement('desc', { id: 'timeline-description' });
    const stripes = svgElement('pattern', {
        id: 'timeline-stripes',
        width: 6,
        height: 6,
        patternUnits: 'userSpaceOnUse',
        patternTransform: 'rotate(45)',
    });
    stripes.append(svgElement('path', { d: 'M1,0V6', class: 'stripe' }));
    const dots = svgElement('pattern', {
        id: 'timeline-dots',
        width: 6,
        height: 6,
        patternUnits: 'userSpaceOnUse',
    });
    dots.append(svgElement('circle', { cx: 3, cy: 3, r: 1.2, class: 'dot' }));
    const definitions = svgElement('defs');
    definitions.append(stripes, dots);
    const picture = svgElement('g');
    svg.append(
        svgElement('title', { id: 'timeline-title' }, 'Timeline of keys and actions'),
        description,
        definitions,
        picture,
    );
    return { svg, picture, description };
}

function buildButtons() {
    const names = {
        pause: 'Pause',
        zoomIn: 'Zoom in',
        zoomOut: 'Zoom out',
        fit: 'Fit',
        earlier: 'Earlier',
        later: 'Later',
        save: 'Save as SVG',
    };
    return Object.fromEntries(
        Object.entries(names).map(([name, text]) => [name, htmlElement('button', { type: 'button' }, text)]),
    );
}
