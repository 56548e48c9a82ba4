// SPDX-License-Identifier: MIT
// Finds and makes elements of the page.

const downloadTime = 15000; // milliseconds that the browser has to fetch a saved file

export const byId = id => document.getElementById(id);
export const all = selector => [...document.querySelectorAll(selector)];
export const on = (selector, type, listener) => all(selector).forEach(each => each.addEventListener(type, listener));

export function element(name, properties = {}, children = []) {
    const made = Object.assign(document.createElement(name), properties);
    made.append(...children);
    return made;
}

/// Leaves an equal text alone: a screen reader would take it for a new one.
export function setText(place, text) {
    if (place.textContent !== text) {
        place.textContent = text;
    }
}

export const line = (text, className = '') => element('p', { textContent: text, className });
/// With an explicit role, because some browsers take lists without markers for no lists.
export const list = items => element('ul', { role: 'list' }, items);
export const keyCaps = keys => keys.flatMap(key => [element('kbd', { textContent: key }), ' ']);

export function saveFile(blob, fileName) {
    const url = URL.createObjectURL(blob);
    element('a', { href: url, download: fileName }).click();
    setTimeout(() => URL.revokeObjectURL(url), downloadTime);
}
