// SPDX-License-Identifier: MIT
// The table of the timeline.
import { setText } from './dom.js';
import { timelineRows } from './timelineRows.js';
import { htmlElement } from './timelineShapes.js';
import { seconds } from './timelineTexts.js';

/// Shows the rows of a model. Rows that remain keep their elements.
export class TimelineTable {
    details;
    #body;
    #rows = new Map();

    constructor() {
        const { details, body } = buildTable();
        this.details = details;
        this.#body = body;
    }

    /// Does nothing while the table is closed.
    fill(model) {
        if (!this.details.open) {
            return;
        }
        const former = this.#rows;
        this.#rows = new Map();
        let next = this.#body.firstChild;
        for (const row of timelineRows(model)) {
            const line = former.get(row.name) ?? buildRow();
            former.delete(row.name);
            this.#rows.set(row.name, line);
            fillRow(line, row);
            if (line === next) {
                next = next.nextSibling;
            } else {
                this.#body.insertBefore(line, next);
            }
        }
        for (const line of former.values()) {
            line.remove();
        }
    }
}

function buildTable() {
    const details = htmlElement('details', { class: 'timeline-table' });
    const frame = htmlElement('div', {
        class: 'timeline-table-frame',
        tabindex: '0',
        role: 'group',
        'aria-label': 'Timeline table',
    });
    const table = htmlElement('table');
    const head = htmlElement('tr');
    head.append(...['Time', 'Kind', 'What', 'Lasts'].map(text => htmlElement('th', { scope: 'col' }, text)));
    const header = htmlElement('thead');
    header.append(head);
    const body = htmlElement('tbody');
    table.append(
        htmlElement('caption', {}, 'What happened, by its beginning since the start of the device'),
        header,
        body,
    );
    frame.append(table);
    details.append(htmlElement('summary', {}, 'Timeline as a table'), frame);
    return { details, body };
}

function buildRow() {
    const row = htmlElement('tr');
    row.append(htmlElement('th', { scope: 'row' }), htmlElement('td'), htmlElement('td'), htmlElement('td'));
    return row;
}

function fillRow(row, { time, kind, what, duration }) {
    const texts = [seconds(time), kind, what, duration === undefined ? '' : `${Math.round(duration)} ms`];
    texts.forEach((text, index) => setText(row.children[index], text));
}
