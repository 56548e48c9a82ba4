// SPDX-License-Identifier: MIT
// The view Key lists: the files in use, what is typed in their place, and what the daemon says about them.
import { card } from './card.js';
import { getJson, restart } from './connection.js';
import { device } from './device.js';
import { all, byId, element, keyCaps, line, list, on, saveFile, setText } from './dom.js';
import { getDraft, setDraft } from './drafts.js';
import { EntryLog } from './entryLog.js';
import { jsonFault } from './jsonFault.js';
import { announce, ask, attempt, news, showStatus } from './messages.js';
import { jsonFaultText } from './wording.js';

const typingPause = 1000; // milliseconds
const maxAnnounced = 3; // errors
const listNames = { long: 'long presses', combination: 'combinations', shortcut: 'shortcuts' };
const isAboutLists = text => /KeyList|ModifierKey::|ShortcutKey::|LongKey::|KeyEntry|JFile/.test(text);

const fields = all('[data-file]'); // text areas
const loaded = new Map(); // field -> its content as the daemon has it
const typingTimers = new Map(); // field -> its timer
let daemonLists = {}; // file name -> its content, as the daemon has read it
let mistakes = []; // what the checks find in them, but for files that the daemon cannot read

const fileOf = field => field.dataset.file;
const noteOf = field => byId(`${field.id}-note`);
const isDraft = field => field.value !== loaded.get(field);

export const listsRead = 'The daemon has read all three lists.';
export const listLog = new EntryLog('list-log', 50, {
    log: ({ text }) => (isAboutLists(text) ? line(text, 'log') : null),
});

/// Returns the fault that is shown, or an empty text.
function checkField(field) {
    const fault = jsonFault(field.value);
    const text = fault ? jsonFaultText(fault) : '';
    setText(noteOf(field), text);
    field.setAttribute('aria-invalid', String(Boolean(fault)));
    return text;
}

// Waits for a pause: a half-typed word is not a fault.
function checkAfterTyping(field) {
    const check = () => {
        const former = noteOf(field).textContent;
        const text = checkField(field);
        if (text || former) {
            announce(text || `${fileOf(field)} is JSON now.`, 'reply');
        }
    };
    clearTimeout(typingTimers.get(field));
    typingTimers.set(field, setTimeout(check, typingPause));
}

function fillField(field, text) {
    field.value = text;
    checkField(field);
}

/// Keeps what is typed, as long as the daemon does not have it.
function keepDraft(field) {
    setDraft('draft', fileOf(field), isDraft(field) ? field.value : undefined);
}

/// Keeps the previous text, which the user can restore.
function replaceText(field, text) {
    if (field.value !== text) {
        setDraft('former', fileOf(field), field.value);
        fillField(field, text);
        news.add('The previous texts of the key lists can be restored in the view Key lists.');
    }
    showFormer();
}

function showFormer() {
    byId('former-lists').hidden = fields.every(field => getDraft('former', fileOf(field)) === undefined);
}

function bringBackFormer() {
    for (const field of fields) {
        const former = getDraft('former', fileOf(field));
        if (former !== undefined) {
            setDraft('former', fileOf(field), undefined);
            replaceText(field, former);
            keepDraft(field);
        }
    }
    showStatus('The fields have the previous texts again. They take effect after "Check and restart".');
}

/// Gets the lists that the daemon has. What is typed stays, also over a reload.
export async function loadLists() {
    daemonLists = await getJson('/api/key-lists');
    for (const field of fields) {
        const text = (daemonLists[fileOf(field)] ?? '').replace(/\r\n?/g, '\n'); // as a text area has it
        if (!loaded.has(field)) {
            loaded.set(field, text);
            fillField(field, getDraft('draft', fileOf(field)) ?? text);
        } else if (!isDraft(field)) {
            loaded.set(field, text);
            replaceText(field, text);
        }
        keepDraft(field);
    }
    showFormer();
}

const unreadable = ['syntax', 'section', 'too-large']; // the page itself describes these
const mistakeText = ({ file, line: number, level, message }) =>
    `${file}, line ${number}: ${level}: ${message}${message.endsWith('?') ? '' : '.'}`;

/// Gets what the checks find in the lists that the daemon has.
export async function loadMistakes() {
    const { findings } = await getJson('/api/findings');
    mistakes = findings.filter(({ id, level }) => level !== 'note' && !unreadable.includes(id));
}

/// Shows the mistakes in the lists that the daemon has, and returns sentences about the errors among them.
export function showMistakes() {
    const heading = element('h3', { textContent: 'Mistakes' });
    const lines = mistakes.map(mistake => line(mistakeText(mistake), mistake.level === 'error' ? 'fault' : 'log'));
    byId('mistakes').replaceChildren(...(lines.length > 0 ? [heading, ...lines] : []));
    const errors = mistakes.filter(({ level }) => level === 'error').map(mistakeText);
    const others = errors.length - maxAnnounced;
    return others > 0 ? [...errors.slice(0, maxAnnounced), `${others} more errors are in the view Key lists.`] : errors;
}

async function loadFile(input) {
    const [file] = input.files;
    if (!file) {
        return;
    }
    const field = fields.find(each => fileOf(each) === file.name) ?? byId(input.dataset.list);
    replaceText(field, await file.text());
    keepDraft(field);
    input.value = '';
    showStatus(`${file.name} is in the field of ${fileOf(field)}. It takes effect after "Check and restart".`);
}

async function restoreInstalled() {
    const names = fields.filter(isDraft).map(fileOf);
    const question =
        `What you have typed in ${names.join(' and ')} is not in use yet. ` +
        'The installed lists replace it. It can be restored in this browser.';
    if (names.length === 0 || (await ask(question, 'Take the installed lists'))) {
        await restartWith(null);
    }
}

/// Restarts the device with these lists; null means the installed ones. What is typed is no longer a draft then, so
/// that the lists of the daemon replace it; if the restart fails, it stays a draft.
async function restartWith(keyLists) {
    const former = [...loaded];
    fields.forEach(field => loaded.set(field, field.value));
    if (!(await restart({ keyLists }))) {
        former.forEach(([field, text]) => loaded.set(field, text));
    }
}

/// Sentences about the lists that the daemon could not read. Where the JSON is right, the card knows more.
function unreadLists() {
    const describe = file => {
        const fault = file in daemonLists ? jsonFault(daemonLists[file]) : null;
        return fault ? `${file}: ${jsonFaultText(fault)}` : card.notes.find(note => note.startsWith(`${file} `));
    };
    return fields.map(fileOf).map(describe).filter(Boolean);
}

/// Shows what is known of the lists that the daemon has, and returns the faults: those of the files, then its log.
export function showListFaults() {
    const logged = all('#list-log p.log').map(each => each.textContent);
    const unread = unreadLists();
    if (unread.length + logged.length > 0) {
        listLog.earlier.prepend(...unread.map(text => line(text, 'fault')));
    } else if (device.status === 'ready') {
        listLog.earlier.append(line(listsRead));
    }
    return [...unread, ...logged];
}

function describeNever({ kind, row, keys, action, why }) {
    const place = `Row ${row} of the ${listNames[kind]}, `;
    return element('li', {}, [place, ...keyCaps(keys), element('strong', { textContent: action }), `: ${why}`]);
}

/// Shows the rows of the loaded lists that no key can ever complete.
export function showNever() {
    const heading = element('h3', { textContent: 'Rows that never work' });
    const proof = line(`Proved for ${card.environment}.`);
    const parts = [heading, list(card.never.map(describeNever)), proof];
    byId('never').replaceChildren(...(card.never.length > 0 ? parts : []));
}

on('#lists-form', 'submit', event => {
    event.preventDefault();
    restartWith(Object.fromEntries(fields.map(field => [fileOf(field), field.value])));
});
on('#default-lists', 'click', restoreInstalled);
on('#former-lists', 'click', bringBackFormer);
on('[data-save]', 'click', ({ currentTarget }) => {
    const field = byId(currentTarget.dataset.save);
    saveFile(new Blob([field.value], { type: 'application/json' }), fileOf(field));
});
on('[data-list]', 'change', ({ currentTarget }) => attempt(loadFile(currentTarget)));
on('[data-file]', 'input', ({ currentTarget }) => {
    keepDraft(currentTarget);
    checkAfterTyping(currentTarget);
    // A description that changes under the focus would be read as well as the announcement.
    currentTarget.removeAttribute('aria-describedby');
});
on('[data-file]', 'blur', ({ currentTarget }) => {
    currentTarget.setAttribute('aria-describedby', `${currentTarget.id}-note`);
});
