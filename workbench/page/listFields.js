// SPDX-License-Identifier: MIT
// The text areas of the key lists: the numbers next to their lines, and places in their texts.
import { all, on } from './dom.js';

export const fields = all('[data-file]');
export const fileOf = field => field.dataset.file;
export const fieldOf = file => fields.find(field => fileOf(field) === file);

const lineCounts = new Map(fields.map(field => [field, 1]));
const ruler = document.createElement('canvas').getContext('2d');

const lineHeightOf = field => parseFloat(getComputedStyle(field).lineHeight);

/// Shows the numbers of the lines that are in sight. They are not text of the page: nothing reads, finds or copies them.
function showNumbers(field) {
    const numbers = field.previousElementSibling;
    const height = lineHeightOf(field);
    const first = Math.floor(field.scrollTop / height);
    const count = Math.min(lineCounts.get(field) - first, Math.ceil(field.clientHeight / height) + 1);
    numbers.dataset.numbers = Array.from({ length: Math.max(count, 0) }, (_, i) => first + i + 1).join('\n');
    numbers.style.setProperty('--shift', `${first * height - field.scrollTop}px`);
    numbers.style.setProperty('--digits', String(lineCounts.get(field)).length);
}

function countLines(field) {
    lineCounts.set(field, field.value.split('\n').length);
    showNumbers(field);
}

/// The offset of a place in a text. Lines and columns count from 1, columns in characters of one or two units.
function offsetOf(text, line, column) {
    const lines = text.split('\n');
    const before = lines.slice(0, line - 1).reduce((sum, each) => sum + each.length + 1, 0);
    const inLine = [...(lines[line - 1] ?? '')].slice(0, column - 1).join('').length;
    return Math.min(before + inLine, text.length);
}

/// Scrolls so that the place is in sight: browsers do that for a caret that a person moves.
function scrollTo(field, offset) {
    const before = field.value.slice(0, offset).split('\n');
    const { font, paddingLeft } = getComputedStyle(field);
    ruler.font = font;
    const left = ruler.measureText(before.at(-1).replaceAll('\t', ' '.repeat(8))).width + parseFloat(paddingLeft);
    const isInSight = left < field.clientWidth * 0.75;
    field.scrollTop = (before.length - 1) * lineHeightOf(field) - field.clientHeight / 3;
    field.scrollLeft = isInSight ? 0 : left - field.clientWidth / 2;
}

export function fillField(field, text) {
    field.value = text;
    countLines(field);
}

/// Moves the focus into the field and selects the text of the place, with the caret at its begin.
export function goToPlace({ file, line, column, endLine, endColumn }) {
    const field = fieldOf(file);
    const begin = offsetOf(field.value, line, column);
    field.focus();
    field.setSelectionRange(begin, Math.max(begin, offsetOf(field.value, endLine, endColumn)), 'backward');
    scrollTo(field, begin);
}

on('[data-file]', 'input', ({ currentTarget }) => countLines(currentTarget));
on('[data-file]', 'scroll', ({ currentTarget }) => showNumbers(currentTarget));
const sizes = new ResizeObserver(entries => entries.forEach(({ target }) => showNumbers(target)));
fields.forEach(field => sizes.observe(field));
