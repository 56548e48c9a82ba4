// SPDX-License-Identifier: MIT
// The table of the timeline, in pages: a screen reader can read all rows of a page, and a page is quickly made.
import { setText } from './dom.js';
import { rowOf } from './timelineRows.js';
import { htmlElement } from './timelineShapes.js';

const rowsOfPage = 100;

/// Shows rows of a model. Rows that remain keep their elements. The last page has up to twice as many rows as the
/// others: rows that come do not take away those that are being read.
export class TimelineTable {
    details;
    #body;
    #pages;
    #position;
    #announce;
    #rows = new Map();
    #events = [];
    #first; // the event of the first row; undefined for the last page, which follows what happens

    /// `announce` is given which rows are shown when a button has changed that.
    constructor(announce) {
        this.#announce = announce;
        const { details, body, pages, buttons, position } = buildTable();
        this.details = details;
        this.#body = body;
        this.#pages = pages;
        this.#position = position;
        const onClick = (button, startOf) => button.addEventListener('click', () => this.#turnTo(startOf()));
        onClick(buttons.first, () => 0);
        onClick(buttons.earlier, () => this.#start() - rowsOfPage);
        onClick(buttons.later, () => this.#start() + rowsOfPage);
        onClick(buttons.last, () => this.#lastStart());
    }

    /// Does nothing while the table is closed.
    fill({ events }) {
        this.#events = events;
        if (this.details.open) {
            this.#show();
        }
    }

    #lastStart() {
        return Math.max(Math.floor(this.#events.length / rowsOfPage) - 1, 0) * rowsOfPage;
    }

    #start() {
        const start = this.#events.findIndex(({ name }) => name === this.#first);
        return this.#first === undefined ? this.#lastStart() : Math.max(start, 0);
    }

    #turnTo(start) {
        this.#first = start >= this.#lastStart() ? undefined : this.#events[Math.max(start, 0)].name;
        this.#show();
        this.#announce(`${this.#position.textContent}.`);
    }

    #show() {
        const start = this.#start();
        const size = this.#first === undefined ? 2 * rowsOfPage : rowsOfPage;
        const events = this.#events.slice(start, start + size);
        this.#showRows(events.map(rowOf));
        this.#pages.hidden = this.#events.length < 2 * rowsOfPage;
        setText(this.#position, `Rows ${start + 1} to ${start + events.length} of ${this.#events.length}`);
    }

    #showRows(rows) {
        const former = this.#rows;
        this.#rows = new Map();
        let next = this.#body.firstChild;
        for (const row of rows) {
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
    const { pages, buttons, position } = buildPages();
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
    const caption = 'What happened, by its beginning since the start of the device';
    table.append(htmlElement('caption', {}, caption), header, body);
    frame.append(table);
    details.append(htmlElement('summary', {}, 'Timeline as a table'), pages, frame);
    return { details, body, pages, buttons, position };
}

function buildPages() {
    const names = { first: 'First rows', earlier: 'Earlier rows', later: 'Later rows', last: 'Last rows' };
    const makeButton = ([name, text]) => [name, htmlElement('button', { type: 'button' }, text)];
    const buttons = Object.fromEntries(Object.entries(names).map(makeButton));
    const position = htmlElement('span');
    const pages = htmlElement('div', {
        class: 'timeline-toolbar no-print',
        role: 'group',
        'aria-label': 'Rows of the table',
        hidden: '',
    });
    pages.append(...Object.values(buttons), position);
    return { pages, buttons, position };
}

function buildRow() {
    const row = htmlElement('tr');
    row.append(htmlElement('th', { scope: 'row' }), htmlElement('td'), htmlElement('td'), htmlElement('td'));
    return row;
}

function fillRow(row, { when, kind, what, duration }) {
    const texts = [when, kind, what, duration === undefined ? '' : `${Math.round(duration)} ms`];
    texts.forEach((text, index) => setText(row.children[index], text));
}
