// SPDX-License-Identifier: MIT
// What the checks find in the key lists, below the field of each.
import { byId, element, line, list, setText } from './dom.js';
import { fields, fileOf, goToPlace } from './listFields.js';
import { count, findingText, joinWords, placeText } from './wording.js';

const maxShown = 200; // in each file
const levels = ['error', 'warning', 'note'];

let shown = { findings: [], unsearched: [] };

const isIn = file => finding => finding.file === file;

/// "2 errors and 1 warning"; empty without findings.
function countText(findings) {
    const counts = levels.map(level => [level, findings.filter(finding => finding.level === level).length]);
    return joinWords(counts.filter(([, number]) => number > 0).map(([level, number]) => count(number, level)));
}

/// A sentence about a file that the daemon cannot read; undefined if it can.
export function unreadableText({ findings, unsearched }, file) {
    const isUnreadable = unsearched.some(each => each.file === file && each.row === null);
    const fault = findings.find(each => each.file === file && each.level === 'error');
    return isUnreadable && fault ? findingText(fault) : undefined;
}

/// The mistakes that do not keep the daemon from reading the files, as sentences.
export const errorTexts = ({ findings, unsearched }) =>
    findings
        .filter(({ file, level }) => level === 'error' && !unreadableText({ findings, unsearched }, file))
        .map(finding => `${finding.file}: ${findingText(finding)}`);

export const isUnreadable = field => unreadableText(shown, fileOf(field)) !== undefined;

/// What the note of a field says.
export const noteTextOf = field => byId(`${field.id}-note`).textContent;

/// A sentence about all that was found.
export function summaryText() {
    const texts = fields.map(fileOf).map(file => [file, countText(shown.findings.filter(isIn(file)))]);
    const found = texts.filter(([, text]) => text).map(([file, text]) => `${file} has ${text}`);
    return found.length > 0 ? `${found.join('; ')}.` : 'The check finds nothing.';
}

function placeButton(place, text) {
    const button = element('button', { type: 'button', textContent: text });
    button.addEventListener('click', () => goToPlace(place));
    return button;
}

function describe(finding, number, field) {
    const { file, help, related, level } = finding;
    const button = placeButton(finding, findingText(finding));
    button.classList.toggle('fault', level === 'error');
    const others = related.map(place => placeButton(place, placeText(place, file)));
    const helpLine = element('p', { id: `${field.id}-help-${number}`, textContent: `Help: ${help}.` });
    if (help) {
        button.setAttribute('aria-describedby', helpLine.id);
    }
    return element('li', {}, [button, ...(help ? [helpLine] : []), ...others]);
}

/// Shows other findings, and keeps the focus if one of them has it.
function replace(field, findings) {
    const place = byId(`${field.id}-findings`);
    const buttons = () => [...place.querySelectorAll('button')];
    const focused = buttons().indexOf(document.activeElement);
    const items = findings.slice(0, maxShown).map((finding, i) => describe(finding, i, field));
    const found = Object.assign(list(items), { ariaLabel: `Findings in ${fileOf(field)}` });
    const others = findings.length - maxShown;
    const rest = others > 0 ? [line(`${others} more are not shown.`)] : [];
    place.replaceChildren(...(items.length > 0 ? [found, ...rest] : []));
    if (focused >= 0) {
        (buttons()[focused] ?? field).focus();
    }
}

/// Shows the answer of a check.
export function showFindings(answer) {
    const former = shown;
    shown = answer;
    for (const field of fields) {
        const isHere = isIn(fileOf(field));
        const findings = shown.findings.filter(isHere);
        if (JSON.stringify(findings) !== JSON.stringify(former.findings.filter(isHere))) {
            replace(field, findings);
        }
        const errors = findings.filter(({ level }) => level === 'error');
        const note = errors.length > 0 ? `${count(errors.length, 'error')}, below.` : '';
        setText(byId(`${field.id}-note`), unreadableText(shown, fileOf(field)) ?? note);
        field.setAttribute('aria-invalid', String(errors.length > 0));
    }
}

/// Ties the note to its field, or unties it: a note that changes under the focus would be read as well as announced.
/// As an error message, too, it would be read twice.
export function tieNote(field, isTied) {
    if (isTied) {
        field.setAttribute('aria-describedby', `${field.id}-note`);
    } else {
        field.removeAttribute('aria-describedby');
    }
}
