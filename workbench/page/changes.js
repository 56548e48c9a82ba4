// SPDX-License-Identifier: MIT
// What the keys do with the key lists in the fields and not with those in use.
import { byId, element, line, list } from './dom.js';
import { count } from './wording.js';

const describe = ({ lines: [keys, was, now] }) =>
    element('li', {}, [element('strong', { textContent: keys }), line(was), line(now)]);

/// Shows the answer of a comparison; nothing without one. Returns a sentence about it.
export function showChanges(report) {
    const place = byId('changes');
    if (!report) {
        place.replaceChildren();
        return '';
    }
    const { differences, leftOut, conclusion } = report;
    const heading = element('h3', { textContent: 'What changes' });
    const rest = leftOut > 0 ? [line(`${leftOut} more are not shown.`)] : [];
    const items = differences.length > 0 ? [list(differences.map(describe)), ...rest] : [];
    place.replaceChildren(heading, ...items, line(conclusion));
    const number = differences.length + leftOut;
    return number > 0 ? `${count(number, 'difference')}, below "What changes".` : conclusion;
}
