// SPDX-License-Identifier: MIT
// The view Key lists: the files in use, what is typed in their place, and what the daemon says about them.
import { card } from './card.js';
import { showChanges } from './changes.js';
import { getJson, isConnected, restart, search } from './connection.js';
import { device } from './device.js';
import { all, byId, element, keyCaps, line, list, on, saveFile } from './dom.js';
import { getDraft, setDraft } from './drafts.js';
import { EntryLog } from './entryLog.js';
import {
    errorTexts,
    isUnreadable,
    noteTextOf,
    showFindings,
    summaryText,
    tieNote,
    unreadableText,
} from './findings.js';
import { fields, fileOf, fieldOf, fillField } from './listFields.js';
import { announce, ask, attempt, news, showStatus } from './messages.js';

const typingPause = 1000; // milliseconds
const maxAnnounced = 3; // errors
const listNames = { long: 'long presses', combination: 'combinations', shortcut: 'shortcuts' };
const isAboutLists = text => /KeyList|ModifierKey::|ShortcutKey::|LongKey::|KeyEntry|JFile/.test(text);

const loaded = new Map(); // field -> its content as the daemon has it
const typingTimers = new Map(); // field -> its timer
let daemonFindings = { findings: [], unsearched: [] }; // of the lists that the daemon has
let checks = 0; // counts the checks of the fields

const isDraft = field => field.value !== loaded.get(field);
const draft = () => Object.fromEntries(fields.map(field => [fileOf(field), field.value]));

export const listsRead = 'The daemon has read all three lists.';
export const listLog = new EntryLog('list-log', 50, {
    log: ({ text }) => (isAboutLists(text) ? line(text, 'log') : null),
});

/// Checks what is in the fields. Returns false if a later check has begun meanwhile.
async function checkFields() {
    const mine = ++checks;
    const answer = await search('/api/findings', draft());
    if (mine === checks) {
        showFindings(answer);
    }
    return mine === checks;
}

async function reportTyped(field) {
    const wasUnreadable = isUnreadable(field);
    if ((await checkFields()) && (wasUnreadable || isUnreadable(field))) {
        announce(isUnreadable(field) ? noteTextOf(field) : `${fileOf(field)} can be read now.`, 'reply');
    }
}

// Waits for a pause: a half-typed word is not a fault.
function checkAfterTyping(field) {
    clearTimeout(typingTimers.get(field));
    const check = () => isConnected() && attempt(reportTyped(field));
    typingTimers.set(field, setTimeout(check, typingPause));
}

async function reportCheck() {
    if (await checkFields()) {
        showStatus(summaryText());
    }
}

async function reportChanges() {
    showStatus('The lists are being compared.'); // for seconds
    showStatus(showChanges(await search('/api/diff', draft())));
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
    showStatus('The fields have the previous texts again. They take effect after "Try".');
    attempt(checkFields());
}

/// Gets the lists that the daemon has. What is typed stays, also over a reload.
export async function loadLists() {
    const lists = await getJson('/api/key-lists');
    for (const field of fields) {
        const text = (lists[fileOf(field)] ?? '').replace(/\r\n?/g, '\n'); // as a text area has it
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

/// Gets what the checks find in the lists that the daemon has.
export async function loadMistakes() {
    daemonFindings = await getJson('/api/findings');
}

/// Shows the mistakes in the fields. Returns sentences about the errors in the lists that the daemon has, but for files
/// that it cannot read.
export function showMistakes() {
    if (fields.some(isDraft)) {
        attempt(checkFields());
    } else {
        ++checks;
        showFindings(daemonFindings);
    }
    const errors = errorTexts(daemonFindings);
    const others = errors.length - maxAnnounced;
    return others > 0 ? [...errors.slice(0, maxAnnounced), `${others} more errors are in the view Key lists.`] : errors;
}

async function loadFile(input) {
    const [file] = input.files;
    if (!file) {
        return;
    }
    const field = fieldOf(file.name) ?? byId(input.dataset.list);
    replaceText(field, await file.text());
    keepDraft(field);
    input.value = '';
    showStatus(`${file.name} is in the field of ${fileOf(field)}. It takes effect after "Try".`);
    await checkFields();
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

/// Sentences about the lists that the daemon could not read. Of a file that is missing, the card knows.
function unreadLists() {
    const describe = file => {
        const text = unreadableText(daemonFindings, file);
        return text ? `${file}: ${text}` : card.notes.find(note => note.startsWith(`${file} `));
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
    restartWith(draft());
});
on('#check-lists', 'click', () => attempt(reportCheck()));
on('#compare-lists', 'click', () => attempt(reportChanges()));
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
    tieNote(currentTarget, false);
});
on('[data-file]', 'blur', ({ currentTarget }) => tieNote(currentTarget, true));
