// SPDX-License-Identifier: MIT
// The parts of the page that the timeline consists of.
import { htmlElement, svgElement } from './timelineShapes.js';
import { TimelineTable } from './timelineTable.js';
import { style } from './timelineStyle.js';

/// Shown while no event is chosen.
export const detailsHint =
    'Details of an event: point at it or click it in the drawing, or use "Previous event" and "Next event".';

/// Puts the parts into `container`. `announce` is given what a button has changed.
export function buildParts(container, announce) {
    const sheet = new CSSStyleSheet();
    sheet.replaceSync(style);
    document.adoptedStyleSheets = [...document.adoptedStyleSheets, sheet];
    const { svg, picture, marks, description } = buildSvg();
    const buttons = buildButtons();
    const position = htmlElement('input', { type: 'range', id: 'timeline-position' });
    const positionBar = htmlElement('div', { class: 'timeline-position' });
    positionBar.append(htmlElement('label', { for: 'timeline-position' }, 'Time shown'), position);
    const bar = htmlElement('div', {
        class: 'timeline-toolbar no-print',
        role: 'group',
        'aria-label': 'Timeline controls',
    });
    bar.append(...Object.values(buttons), positionBar);
    const frame = htmlElement('div', {
        class: 'timeline-frame',
        tabindex: '0',
        role: 'application', // so that a screen reader leaves the arrow keys to it
        'aria-label': 'Drawing',
    });
    frame.append(svg);
    const note = htmlElement('p', { class: 'fault', hidden: '' });
    const table = new TimelineTable(announce);
    const details = htmlElement('p', { class: 'timeline-event' }, detailsHint);
    const answer = buildAnswer();
    container.replaceChildren(bar, note, details, frame, answer, table.details);
    return { svg, picture, marks, description, details, answer, buttons, position, note, frame, table };
}

function buildAnswer() {
    const answer = htmlElement('section', { class: 'timeline-answer', 'aria-label': 'Why', hidden: '' });
    answer.append(
        htmlElement('h3', {}, 'Why'),
        htmlElement('p', {}, 'The rules that decided, by the time since the first of these keys:'),
        htmlElement('pre'),
    );
    return answer;
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
    const marks = svgElement('g');
    svg.append(
        svgElement('title', { id: 'timeline-title' }, 'Timeline of keys and actions'),
        description,
        definitions,
        picture,
        marks,
    );
    return { svg, picture, marks, description };
}

function buildButtons() {
    const names = {
        pause: 'Pause',
        zoomIn: 'Zoom in',
        zoomOut: 'Zoom out',
        fit: 'Fit',
        earlier: 'Earlier',
        later: 'Later',
        previous: 'Previous event',
        next: 'Next event',
        why: 'Why?',
        save: 'Save as SVG',
        print: 'Print',
    };
    return Object.fromEntries(
        Object.entries(names).map(([name, text]) => [name, htmlElement('button', { type: 'button' }, text)]),
    );
}
