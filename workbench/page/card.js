// SPDX-License-Identifier: MIT
// The view Key card: what can be pressed, by state.
import { download, getJson } from './connection.js';
import { all, byId, element, keyCaps, line, on } from './dom.js';
import { playEntry } from './keys.js';
import { seconds, withNotes } from './wording.js';

/// What the card calls each kind of its entries, in their order.
const kinds = {
    long: 'Long presses',
    combination: 'Combinations: one key after the other',
    shortcut: 'Shortcuts: a key while another is held',
    hold: 'Holds',
    single: 'Single keys',
};

/// The columns that follow the keys.
const columns = {
    How: ({ how, notes }) => withNotes(how, notes),
    Hold: ({ holdMs }) => (holdMs ? seconds(holdMs) : ''),
    Action: ({ action }) => action,
    For: ({ receivers }) => receivers.join(', '),
};
const headings = ['Keys', ...Object.keys(columns), 'Do it'];
const colSpan = headings.length;

export let card = { states: [], notes: [], never: [] };

/// Returns the entries by their kind, as pairs of a title and entries. Leaves out kinds without entries.
export function groupsOf({ entries }) {
    return Object.entries(kinds)
        .map(([kind, title]) => [title, entries.filter(entry => entry.kind === kind)])
        .filter(([, group]) => group.length > 0);
}

/// The entries with one for all single keys that have the same effect.
function rowsOf({ entries, singleKeys }) {
    return [...entries.filter(({ kind }) => kind !== 'single'), ...singleKeys];
}

// Rows and cells have explicit roles and labels: on a narrow page they are laid out as blocks.
const row = cells => element('tr', { role: 'row' }, cells);

function cell(label, textContent) {
    const made = element('td', { role: 'cell', textContent });
    made.dataset.label = label;
    return made;
}

function entryRow(entry) {
    const head = element('th', { scope: 'row', role: 'rowheader' }, keyCaps(entry.keys));
    const cells = Object.entries(columns).map(([label, textOf]) => cell(label, textOf(entry)));
    return row([head, ...cells, element('td', { role: 'cell', className: 'do' })]);
}

function kindRows([title, entries]) {
    const head = element('th', { scope: 'rowgroup', role: 'rowheader', colSpan, textContent: title });
    return element('tbody', { role: 'rowgroup' }, [row([head]), ...entries.map(entryRow)]);
}

// The first row is seen on paper only, on top of each page.
function tableHead({ state }) {
    const running = element('th', { colSpan, textContent: `Key card of the ${card.model}: state ${state}` });
    const columnHead = text => element('th', { scope: 'col', role: 'columnheader', textContent: text });
    return element('thead', { role: 'rowgroup' }, [
        element('tr', { className: 'running-head' }, [running]),
        row(headings.map(columnHead)),
    ]);
}

function stateTable(state) {
    const cols = headings.map(() => element('col'));
    return element('table', { role: 'table' }, [
        element('caption', { textContent: withNotes(`What can be pressed in the state ${state.state}.`, state.notes) }),
        element('colgroup', {}, cols),
        tableHead(state),
        ...groupsOf({ entries: rowsOf(state) }).map(kindRows),
    ]);
}

function stateSection(state) {
    const lines = ['No key leads to an action.', ...(state.notes ?? [])];
    const section = element('section', { className: 'state' }, [
        element('h3', { textContent: `State ${state.state}` }),
        ...(state.entries.length ? [stateTable(state)] : lines.map(text => line(text))),
    ]);
    section.dataset.state = state.state;
    return section;
}

/// The buttons that press the keys of a row: one, or one for each single key.
function doButtons(entry, { entries }) {
    const isJoined = entry.kind === 'single';
    const played = isJoined
        ? entries.filter(({ kind, keys }) => kind === 'single' && entry.keys.includes(keys[0]))
        : [entry];
    return played.map(each => {
        const keys = each.keys.join(' ');
        const textContent = isJoined ? keys : 'Do it';
        const made = element('button', { type: 'button', textContent, onclick: () => playEntry(each) });
        made.setAttribute('aria-label', isJoined ? `Do it: ${keys}` : `Do it: ${keys}, ${each.action}`);
        return made;
    });
}

/// Shows the buttons of the state that the device is in, which is called `current`.
export function showDoButtons(current) {
    for (const section of all('.state')) {
        const isCurrent = section.dataset.state === current;
        if (isCurrent !== section.classList.contains('current')) {
            const state = card.states.find(each => each.state === section.dataset.state);
            const rows = groupsOf({ entries: rowsOf(state) }).flatMap(([, entries]) => entries);
            const cells = [...section.querySelectorAll('.do')];
            cells.forEach((place, i) => place.replaceChildren(...(isCurrent ? doButtons(rows[i], state) : [])));
            section.classList.toggle('current', isCurrent);
        }
    }
}

export async function loadCard() {
    card = { notes: [], never: [], ...(await getJson('/api/card')) };
    const heads = [`Model ${card.model}`, ...card.notes].map(text => line(text));
    byId('card-tables').replaceChildren(...heads, ...card.states.map(stateSection));
}

on('#print-card', 'click', () => window.print());
on('#sheets', 'change', ({ target }) => byId('card-tables').classList.toggle('sheets', target.checked));
on('#download-braille', 'click', () => download('/api/card.brf', 'key-card.brf'));
