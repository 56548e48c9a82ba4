// SPDX-License-Identifier: MIT
// Letters and digits of the user's keyboard that press keys of the panel: off at first, chosen by the user, and kept in
// the browser.
import { all, byId, element, on, setText } from './dom.js';
import { markField } from './fieldFault.js';
import { begin, releaseHolder } from './keys.js';
import { announce, announcer } from './messages.js';
import { isView } from './views.js';

const storageKey = 'letters of the keys';
/// On many keyboards, these letters lie as the keys do on the panel. FactoryReset is left out: a mistake would reset the
/// device.
const usualLetters = {
    On: 'q',
    Off: 'a',
    Feed: 'z',
    Menu: 'w',
    Up: 'e',
    Help: 'r',
    Back: 's',
    Ok: 'd',
    Right: 'f',
    Function: 'x',
    Down: 'c',
    Chs: 'v',
    One: 't',
    Ten: 'g',
};
/// No other characters: browsers and screen readers have their own use for them, and for keys with Ctrl, Alt and Meta.
const isLetter = text => /^[\p{L}\p{N}]$/u.test(text);
const typingPlaces = 'input:not([type="checkbox"], [type="radio"]), select, textarea, dialog';

const letterSwitch = byId('letters-on');
const fault = byId('letters-fault');
const down = new Set(); // ids of the keys of the keyboard that press one
let letters = { ...usualLetters }; // name of a key -> its letter, if it has one

const idOf = ({ code, key }) => code || key.toLowerCase();
const holderOf = id => `letter ${id}`;
const fieldOf = key => byId(`letter-${key}`);
const keyNames = () => all('[data-key]').map(({ dataset }) => dataset.key);
const keyOf = letter => Object.keys(letters).find(key => letters[key] === letter.toLowerCase());

function load() {
    try {
        const { isOn, letters: kept } = JSON.parse(localStorage.getItem(storageKey));
        letterSwitch.checked = isOn === true;
        const isUsable = ([key, letter]) => keyNames().includes(key) && isLetter(letter);
        letters = Object.fromEntries(Object.entries(kept).filter(isUsable));
    } catch {
        letters = { ...usualLetters }; // nothing is kept, or nothing that this page has written
    }
}

function save() {
    localStorage.setItem(storageKey, JSON.stringify({ isOn: letterSwitch.checked, letters }));
}

function showLetters() {
    for (const button of all('[data-key]')) {
        const letter = letterSwitch.checked ? letters[button.dataset.key] : undefined;
        for (const name of ['data-letter', 'aria-keyshortcuts']) {
            if (letter) {
                button.setAttribute(name, letter);
            } else {
                button.removeAttribute(name);
            }
        }
    }
}

function showFields() {
    for (const key of keyNames()) {
        fieldOf(key).value = letters[key] ?? '';
        markField(fieldOf(key));
    }
    setText(fault, '');
}

function releaseLetters() {
    [...down].map(holderOf).forEach(releaseHolder);
    down.clear();
    announcer.release('letters');
}

/// Returns the sentence that says why the letter cannot press the key, or nothing.
function faultOf(letter, key) {
    const other = keyOf(letter);
    if (letter && !isLetter(letter)) {
        return `${key}: only a letter or a digit can press a key.`;
    }
    return letter && other && other !== key ? `${key}: ${letter} already presses ${other}.` : '';
}

function takeLetter(key) {
    const field = fieldOf(key);
    const letter = field.value.trim().toLowerCase();
    const text = faultOf(letter, key);
    setText(fault, text);
    announce(text, 'fault');
    if (text) {
        markField(field, fault.id);
        return;
    }
    releaseLetters();
    letters[key] = letter;
    if (!letter) {
        delete letters[key];
    }
    save();
    showFields();
    showLetters();
}

function fieldFor(key) {
    const input = element('input', { id: `letter-${key}`, maxLength: 1, autocomplete: 'off', spellcheck: false });
    input.setAttribute('autocapitalize', 'none');
    input.addEventListener('focus', () => input.select());
    input.addEventListener('change', () => takeLetter(key));
    return element('p', {}, [element('label', { htmlFor: input.id, textContent: key }), ' ', input]);
}

function isForPanel({ target, isComposing, defaultPrevented }) {
    const isTyped = isComposing || defaultPrevented || target.closest?.(typingPlaces);
    return letterSwitch.checked && isView('panel') && !isTyped;
}

function onKeyDown(event) {
    if (event.ctrlKey || event.altKey || event.metaKey) {
        releaseLetters(); // some systems do not report the release of a key that is down together with these
        return;
    }
    const key = isForPanel(event) && keyOf(event.key);
    if (!key) {
        return;
    }
    event.preventDefault();
    const id = idOf(event);
    if (!event.repeat && !down.has(id)) {
        down.add(id);
        announcer.hold('letters'); // each repetition of the keyboard would interrupt a screen reader
        begin(key, holderOf(id));
    }
}

function onKeyUp(event) {
    const id = idOf(event);
    if (down.delete(id)) {
        releaseHolder(holderOf(id));
    }
    if (down.size === 0) {
        announcer.release('letters');
    }
}

byId('letters').append(...keyNames().map(fieldFor));
load();
showFields();
showLetters();
document.addEventListener('keydown', onKeyDown);
document.addEventListener('keyup', onKeyUp);
window.addEventListener('blur', releaseLetters);
document.addEventListener('visibilitychange', () => document.hidden && releaseLetters());
letterSwitch.addEventListener('change', () => {
    releaseLetters();
    save();
    showLetters();
});
on('#usual-letters', 'click', () => {
    releaseLetters();
    letters = { ...usualLetters };
    save();
    showFields();
    showLetters();
    announce('All keys have their usual letters again.', 'reply');
});
