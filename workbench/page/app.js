// SPDX-License-Identifier: MIT
// The front panel: sends what is done on the page as key-script statements and shows what comes of it.
import { Announcer } from './announcer.js';
import { Drafts } from './drafts.js';
import { jsonFault } from './jsonFault.js';
import { OpenCommands, answerPatience } from './openCommands.js';
import { ask } from './question.js';
import { RecordingWatch } from './recordingWatch.js';
import { Timeline } from './timeline.js';

const byId = id => document.getElementById(id);

function element(name, properties = {}, ...children) {
    const made = Object.assign(document.createElement(name), properties);
    made.append(...children);
    return made;
}

/// A text that stays the same is nothing new to a screen reader.
function showText(place, text) {
    if (place.textContent !== text) {
        place.textContent = text;
    }
}

// ---------------------------------------------------------------- messages

const announcer = new Announcer(byId('announcements'));

/// Has a screen reader say `text`, a sentence that begins with what matters. `kind` is what it is about: an "action"
/// (or its refusal), another "event" at the device, the "reply" to what the user does on the page, or a "fault". What the
/// daemon's log says `isLogged`.
function announce(text, kind, isLogged = false) {
    announcer.announce(text, kind, isLogged);
}

function show(place, text) {
    byId(place).textContent = text;
}

function tell(text, kind = 'reply') {
    show('alert', '');
    show('status', text);
    announce(text, kind);
}

function complain(text) {
    show('status', '');
    show('alert', text);
    announce(text, 'fault');
}

const levelKey = 'announcements';

function setUpAnnouncer() {
    const choice = byId('announcement-level');
    announcer.level = localStorage.getItem(levelKey) ?? 'all';
    choice.value = announcer.level;
    choice.addEventListener('change', () => {
        announcer.level = choice.value;
        localStorage.setItem(levelKey, choice.value);
    });
}

/// Asks a question; comes back with whether the answer is yes. The dialog hides the announcements: they wait.
async function askHere(question, answer) {
    announcer.hold();
    announcer.clear();
    try {
        return await ask(byId('question'), question, answer);
    } finally {
        announcer.release();
    }
}

/// Waits for `work`; what goes wrong is shown. Tells whether all went well.
async function attempt(work) {
    try {
        await work;
        return true;
    } catch (fault) {
        complain(fault.message);
        return false;
    }
}

// ---------------------------------------------------------------- requests

const answerTime = 15000; // milliseconds

let client = 0;           // the name under which the simulator knows this page's keys
let connection = 'first'; // 'open', 'lost'
let epoch = 0;            // counts up when the connection goes; what still waited to be sent then is void
let queue = Promise.resolve();

async function faultOf(response) {
    const { error, faults = [] } = await response.json().catch(() => ({}));
    const fault = new Error(error ?? `The simulator answers with status ${response.status}.`);
    fault.isAnswer = true;
    fault.lines = faults.map(({ line, text }) => `Line ${line}: ${text}`);
    return fault;
}

async function request(path, options = {}) {
    const response = await fetch(path, { signal: AbortSignal.timeout(answerTime), ...options }).catch(() => {
        throw new Error('The simulator does not answer.');
    });
    if (!response.ok) {
        throw await faultOf(response);
    }
    return response;
}

function post(path, body = '', headers = {}) {
    return request(path, { method: 'POST', body, headers });
}

/// Sends statements of a key script after all those before: a release never overtakes its press.
/// Whether they are still wanted is asked when it is their turn.
function send(statements, isWanted = () => true) {
    const mine = epoch;
    const headers = { 'Content-Type': 'text/plain', 'X-Client': String(client) };
    const sent = queue.then(async () => {
        if (mine === epoch && isWanted()) {
            await post('/api/steps', statements, headers);
            show('alert', '');
        }
    });
    queue = sent.catch(() => {});
    return sent;
}

function restart(changes) {
    return attempt(post('/api/restart', JSON.stringify(changes), { 'Content-Type': 'application/json' }));
}

async function download(path, fileName) {
    saveFile(await (await request(path)).blob(), fileName);
}

function saveFile(blob, fileName) {
    const url = URL.createObjectURL(blob);
    element('a', { href: url, download: fileName }).click();
    setTimeout(() => URL.revokeObjectURL(url), answerTime);
}

// ---------------------------------------------------------------- keys

const keyButtons = () => [...document.querySelectorAll('[data-key]')];
const held = new Map(); // "device key" -> how this page holds it; the holder is a pointer's id, 'keyboard' or 'latch'
const down = new Set(); // "device key", whoever holds it
const pointerReleases = new WeakMap(); // key button -> when a pointer left it

const inputDevice = () => document.querySelector('[name="input-device"]:checked').value;
const idOf = key => `${inputDevice()} ${key}`;
/// Until the device has reported the press of this page, the page shows it as done.
const isDown = id => down.has(id) || held.get(id)?.isReported === false;
const pressedHere = new Set(); // "device key", from the press by this page to the release that the device reports
const isHeldElsewhere = key => ['0', '1'].some(number => down.has(`${number} ${key}`) && !pressedHere.has(`${number} ${key}`));
const isDownAnywhere = key => ['0', '1'].some(number => isDown(`${number} ${key}`));

function statementsOf(verb, id) {
    const [number, key] = id.split(' ');
    return `device ${number}\n${verb} ${key}`;
}

function showKeys() {
    const latching = byId('latch').checked;
    for (const button of keyButtons()) {
        const { key } = button.dataset;
        const isPressed = isDownAnywhere(key);
        button.classList.toggle('down', isPressed);
        if (latching) {
            button.setAttribute('aria-pressed', String(isPressed));
        }
        showText(button.querySelector('.for-readers'), !latching && isHeldElsewhere(key) ? ', held elsewhere' : '');
    }
    showHeld();
}

/// All keys that are down, here and elsewhere, in the header of each view.
function showHeld() {
    const names = keyButtons().map(({ dataset }) => dataset.key).flatMap(key => [
        ...isDown(`0 ${key}`) ? [key] : [],
        ...isDown(`1 ${key}`) ? [`${key} (device 1)`] : [],
    ]);
    byId('held-now').textContent = connection === 'open' ? names.join(', ') || 'no key' : '–';
    showSummary();
}

// A screen reader does not notice that a button has become a toggle button: the buttons are replaced.
function onLatch() {
    releaseAll();
    for (const button of keyButtons()) {
        const made = button.cloneNode(true);
        made.removeAttribute('aria-pressed');
        setUpKey(made);
        button.replaceWith(made);
    }
    showKeys();
}

function onReleaseAll() {
    const names = [...held.keys()].map(id => id.split(' ')[1]);
    announce(names.length ? `Released: ${names.join(', ')}.` : 'No key is held by this page.', 'reply');
    releaseAll();
}

function press(id, holder) {
    if (held.has(id)) {
        return;
    }
    const hold = { holder, hasFailed: false, isRefused: false, isReported: down.has(id) };
    held.set(id, hold);
    pressedHere.add(id);
    showKeys();
    const sent = send(statementsOf('press', id));
    sent.catch(({ isAnswer = false }) => {
        hold.hasFailed = true;
        hold.isRefused = isAnswer; // what is not answered may be done yet, and is to be undone then
        if (held.get(id) === hold) {
            release((_, each) => each === id);
        }
    });
    attempt(sent);
}

function release(isMeant) {
    for (const [id, hold] of held) {
        if (isMeant(hold.holder, id)) {
            held.delete(id);
            send(statementsOf('release', id), () => !hold.isRefused)
                .catch(({ message }) => hold.hasFailed || complain(message));
        }
    }
    showKeys();
}

const releaseHeldBy = holder => release(each => each === holder);
const releaseMomentary = () => release(holder => holder !== 'latch');
const releaseAll = () => release(() => true);

function forgetHeldKeys() {
    held.clear();
    pressedHere.clear();
    showKeys();
}

function begin(key, holder) {
    const id = idOf(key);
    if (!byId('latch').checked) {
        press(id, holder);
    } else if (held.has(id)) {
        release((_, each) => each === id);
    } else if (down.has(id)) { // another page or a script holds it
        attempt(send(statementsOf('release', id)));
    } else {
        press(id, 'latch');
    }
}

// Assistive technology clicks without a pointer and without a key of the keyboard: a tap.
function onKeyClick(event) {
    const button = event.currentTarget;
    const fromPointer = event.detail > 0 && event.timeStamp - (pointerReleases.get(button) ?? -Infinity) < 1000;
    if (fromPointer) {
        return;
    }
    const { key } = button.dataset;
    if (byId('latch').checked) {
        begin(key, 'latch');
    } else {
        pressedHere.add(idOf(key));
        attempt(send(statementsOf('tap', idOf(key))));
    }
}

function onKeyPointer(event) {
    if (event.pointerType === 'mouse' && event.button !== 0) {
        return;
    }
    begin(event.currentTarget.dataset.key, event.pointerId);
    event.currentTarget.setPointerCapture(event.pointerId);
}

function onKeyPointerEnd(event) {
    pointerReleases.set(event.currentTarget, event.timeStamp);
    releaseHeldBy(event.pointerId);
}

function onKeyDown(event) {
    if (!['Enter', ' '].includes(event.key) || event.ctrlKey || event.altKey || event.metaKey) {
        return;
    }
    event.preventDefault(); // no click
    if (!event.repeat) {
        announcer.hold();
        begin(event.currentTarget.dataset.key, 'keyboard');
    }
}

// Whatever other keys are down meanwhile.
function onKeyUp(event) {
    if (['Enter', ' '].includes(event.key)) {
        event.preventDefault(); // no click
        releaseKeyboard();
    }
}

function releaseKeyboard() {
    releaseHeldBy('keyboard');
    announcer.release();
}

// The page goes: what waits is dropped, and the releases must not wait for an answer.
function releaseOnLeaving() {
    ++epoch;
    if (held.size > 0) {
        const statements = [...held.keys()].map(id => statementsOf('release', id));
        navigator.sendBeacon(`/api/steps?client=${client}`, statements.join('\n'));
    }
    forgetHeldKeys();
}

function setUpKey(button) {
    button.addEventListener('pointerdown', onKeyPointer);
    for (const end of ['pointerup', 'pointercancel', 'lostpointercapture']) {
        button.addEventListener(end, onKeyPointerEnd);
    }
    button.addEventListener('keydown', onKeyDown);
    button.addEventListener('keyup', onKeyUp);
    button.addEventListener('blur', releaseKeyboard);
    button.addEventListener('click', onKeyClick);
    button.addEventListener('contextmenu', event => event.preventDefault()); // of a long touch
}

function setUpKeys() {
    keyButtons().forEach(setUpKey);
    window.addEventListener('blur', releaseMomentary);
    document.addEventListener('visibilitychange', () => document.hidden && releaseMomentary());
    window.addEventListener('pagehide', releaseOnLeaving);
    byId('latch').addEventListener('change', onLatch);
    byId('release-all').addEventListener('click', onReleaseAll);
    for (const choice of document.getElementsByName('input-device')) {
        choice.addEventListener('change', showKeys);
    }
}

function onKey({ device: number, key, value }) {
    const id = `${number} ${key}`;
    const hold = held.get(id);
    if (value !== 0) {
        down.add(id);
        if (hold) {
            hold.isReported = true;
        }
        return;
    }
    down.delete(id);
    pressedHere.delete(id);
    // A finger or a key of the keyboard that rests on it still sends its release when it is lifted.
    if (hold?.isReported && hold.holder === 'latch') {
        held.delete(id);
    }
}

// ---------------------------------------------------------------- device

let device = { status: 'starting', model: '', state: '', states: [], models: [] };

function fillChoice(place, names, choose) {
    const present = [...byId(place).children].map(button => button.textContent);
    if (present.join() !== names.join()) {
        byId(place).replaceChildren(...names.map(name => element('button', {
            type: 'button', textContent: name, onclick: () => choose(name),
        })));
    }
}

function markChoice(place, name) {
    for (const button of byId(place).children) {
        button.setAttribute('aria-pressed', String(button.textContent === name));
    }
}

function fillSelect(place, names, chosen) {
    if (byId(place).length === 0) {
        byId(place).append(...names.map(name => new Option(name, name, name === chosen, name === chosen)));
    }
}

function fillChoices() {
    fillChoice('states', device.states, state => attempt(send(`state ${state}`)));
    fillChoice('models', device.models, model => restart({ model }));
    fillSelect('command-sender', device.services, 'ServiceTool');
    fillSelect('simulated-action', device.actions, 'Pressed');
    fillSelect('simulated-key', device.keys, 'Menu');
}

/// The header in a sentence: a screen reader reads each part of a styled line separately.
function showSummary() {
    const shown = id => byId(id).textContent;
    const test = byId('testing').hidden ? '' : ', keyboard test running';
    const keys = ['no key', '–'].includes(shown('held-now')) ? '' : `, held now: ${shown('held-now')}`;
    showText(byId('device-sentence'), `Model ${shown('device-model')}, state ${shown('device-state')}, `
        + `daemon ${shown('device-status')}${test}${keys}.`);
}

function showDevice() {
    const isConnected = connection === 'open';
    const isHung = device.status === 'ready' && device.answering === false;
    const [model, state] = isConnected ? [device.model, device.state] : ['', ''];
    byId('device-model').textContent = model || '–';
    byId('device-state').textContent = state || '–';
    byId('device-status').textContent = !isConnected ? 'not connected' : isHung ? 'not answering' : device.status;
    byId('daemon-lamp').dataset.status = !isConnected ? 'lost' : isHung ? 'hung' : device.status;
    byId('testing').hidden = !isConnected || !device.testing;
    byId('ended').hidden = !isConnected || device.status !== 'ended';
    showSummary();
    byId('ended-reason').textContent = device.reason ?? '';
    markChoice('states', state);
    markChoice('models', model);
    showNow();
}

function onDevice({ status, model, state, reason }) {
    sentCommands.length = 0;
    Object.assign(device, { status, model, state, reason, answering: true, testing: false });
    down.clear();
    forgetHeldKeys();
}

function reportDevice({ status, reason }) {
    if (status === 'ended') {
        complain(`${reason ?? 'The daemon has ended.'} "Restart the device" is at the top of the page.`);
    } else if (status === 'starting') {
        tell('The device restarts.', 'event');
    } // what is ready is told with what is known of the lists
}

function setUpDevice() {
    byId('restart-device').addEventListener('click', () => {
        currentView().querySelector('h2').focus(); // the button goes
        restart({});
    });
}

// ---------------------------------------------------------------- feedback

/// The latest entries of some types. Only what comes live is in the live region: the past is not read again.
class EntryLog {
    constructor(place, limit, describe) {
        [this.earlier, this.live] = byId(place).querySelectorAll('[data-part]');
        this.limit = limit;
        this.describe = describe; // an entry's element, or null when it does not belong here
    }

    reset(history) {
        const elements = [];
        for (let at = history.length - 1; at >= 0 && elements.length < this.limit; --at) {
            const made = this.describe(history[at]);
            if (made) {
                elements.unshift(made);
            }
        }
        this.live.replaceChildren();
        this.earlier.replaceChildren(...elements);
    }

    add(entry) {
        const made = this.describe(entry);
        if (made) {
            this.live.append(made);
            this.trim();
        }
    }

    trim() {
        for (const part of [this.earlier, this.live]) {
            while (part.firstChild && this.earlier.childElementCount + this.live.childElementCount > this.limit) {
                part.firstChild.remove();
            }
        }
    }
}

const line = (text, className = '') => element('p', { textContent: text, className });
const keysOf = keys => keys.flatMap(key => [element('kbd', { textContent: key }), ' ']);
const speechText = ({ text, observation }) => text || observation.replace(/^speak (\S+) (\d+)$/, 'Sentence $2 of $1, which has no text');

function describeAnnouncement({ action, keys, receiver, sender }) {
    return element('p', { className: 'announcement' },
        element('span', { className: 'action', textContent: action }), ' ', ...keysOf(keys),
        element('span', { textContent: `to ${receiver || 'no service'} ${sender ? `from ${sender}` : 'without a sender'}` }));
}

function refusalText({ reason, expected, current, action }) {
    const what = action ? `Refused: ${action}.` : 'Refused:';
    if (expected === undefined) {
        return `${what} ${reason}`;
    }
    return expected ? `${what} Expected state is ${expected}, but current state is ${current}.`
        : `${what} It is for no state, and the current state is ${current}.`;
}

function describeAnnounced(entry) {
    switch (entry.type) {
    case 'announcement': return describeAnnouncement(entry);
    case 'refusal': return line(refusalText(entry), 'refusal');
    default: return null;
    }
}

const consoleClasses = { console: 'typed', log: 'log', output: 'output' };
const isAboutLists = text => /KeyList|ModifierKey::|ShortcutKey::|LongKey::|KeyEntry|JFile/.test(text);

const logs = {
    spoken: new EntryLog('spoken', 6, entry => (entry.type === 'speech' ? line(speechText(entry)) : null)),
    announced: new EntryLog('announced', 6, describeAnnounced),
    answers: new EntryLog('answers', 8, describeAnswer),
    console: new EntryLog('console', 300, ({ type, text }) => {
        return type in consoleClasses ? line(text, consoleClasses[type]) : null;
    }),
    lists: new EntryLog('list-log', 50, ({ type, text }) => {
        return type === 'log' && isAboutLists(text) ? line(text, 'log') : null;
    }),
};

function followConsole() {
    const place = byId('console');
    place.scrollTop = place.scrollHeight;
}

// ---------------------------------------------------------------- speech

const aloud = byId('aloud');

function onSpeechFault({ error }) {
    if (!['canceled', 'interrupted'].includes(error)) {
        aloud.checked = false;
        complain(`This browser cannot speak (${error}).`);
    }
}

function speakAloud(entry) {
    if (!aloud.checked) {
        return;
    }
    if (entry.type === 'cancel') {
        window.speechSynthesis.cancel();
    } else if (entry.type === 'speech') {
        const utterance = new SpeechSynthesisUtterance(speechText(entry));
        utterance.lang = 'en';
        utterance.onerror = onSpeechFault;
        window.speechSynthesis.speak(utterance);
    }
}

function setUpSpeech() {
    aloud.addEventListener('change', () => window.speechSynthesis.cancel());
    if (!('speechSynthesis' in window)) {
        aloud.disabled = true;
        byId('aloud-help').textContent = 'This browser cannot speak.';
    }
}

// ---------------------------------------------------------------- key card

const kinds = new Map([
    ['single', 'Single keys'],
    ['long', 'Long presses'],
    ['combination', 'Combinations: one key after the other'],
    ['shortcut', 'Shortcuts: a key while another is held'],
    ['hold', 'Holds'],
]);

let card = { states: [] };

const seconds = milliseconds => `${milliseconds / 1000} s`;
const isPart = (state, kind) => state.entries.some(entry => entry.kind === kind);
const entriesOf = (state, kind) => state.entries.filter(entry => entry.kind === kind);

function describeNow({ keys, how, holdMs, action, receivers, notes = [] }) {
    return element('li', {},
        element('p', {}, ...keysOf(keys), element('span', { className: 'action', textContent: action }),
            ` to ${receivers.join(' and ')}${holdMs ? `, ${seconds(holdMs)}` : ''}.`),
        element('p', { className: 'how', textContent: [how, ...notes].join(' ') }));
}

/// Why it is not known, or nothing at all, what leads to an action; empty when keys do.
function whyNothingNow() {
    if (connection !== 'open') {
        return 'Not known: there is no connection to the simulator.';
    }
    switch (device.status) {
    case 'ready': return device.answering === false
        ? 'Nothing: the daemon does not answer. What is pressed waits until it does.' : '';
    case 'ended': return 'Nothing: the daemon has ended.';
    default: return 'Nothing yet: the daemon is starting.';
    }
}

/// In a keyboard test single keys are counted, but in Idle; in Startup no key counts at all.
const isTested = () => device.testing && !['Idle', 'Startup'].includes(device.state);

function testText(state) {
    const ten = state?.entries.find(({ kind, keys }) => kind === 'single' && keys[0] === 'Ten');
    const hasCombinations = (card.never ?? []).some(({ kind, validOnState }) => {
        return kind === 'combination' && validOnState === device.state;
    });
    return [`The keyboard test is running in the state ${device.state}: each key is spoken and counted when it is released, `
        + 'and no service gets it.',
        `Ten ends the test and is announced as Ok to ${ten?.receivers.join(' and ') ?? 'a service'}.`,
        ...hasCombinations ? [`Combinations for ${device.state} are announced, too.`] : []].join(' ');
}

function nowText(state) {
    const reason = whyNothingNow();
    if (reason) {
        return reason;
    }
    if (isTested()) {
        return testText(state);
    }
    const text = state?.entries.length ? `In the state ${device.state}, on model ${device.model}.`
        : [`In the state ${device.state} no key leads to an action.`, ...state?.notes ?? []].join(' ');
    return device.testing ? `${text} The keyboard test counts no keys in ${device.state}.` : text;
}

function showNow() {
    const state = card.states.find(each => each.state === device.state);
    const isShown = kind => isPart(state, kind) && !(kind === 'single' && isTested());
    const shown = !whyNothingNow() && state ? [...kinds].filter(([kind]) => isShown(kind)) : [];
    const number = shown.reduce((sum, [kind]) => sum + entriesOf(state, kind).length, 0);
    byId('now-state').textContent = nowText(state);
    byId('now-details').hidden = number === 0;
    byId('now-count').textContent = count(number, 'action');
    byId('now-notes').textContent = number > 0 ? (state.notes ?? []).join(' ') : '';
    byId('now').replaceChildren(...shown.map(([kind, title]) => element('div', {},
        element('h4', { textContent: title }),
        element('ul', {}, ...entriesOf(state, kind).map(describeNow)))));
}

// Roles and labels of their own: on a narrow page the rows are laid out as blocks.
function cell(label, ...children) {
    const made = element('td', { role: 'cell' }, ...children);
    made.dataset.label = label;
    return made;
}

function cardRow({ keys, how, holdMs, action, receivers, notes = [] }) {
    return element('tr', { role: 'row' },
        element('th', { scope: 'row', role: 'rowheader' }, ...keysOf(keys)),
        cell('How', [how, ...notes].join(' ')),
        cell('Hold', ...(holdMs ? [seconds(holdMs)] : [])),
        cell('Action', action),
        cell('For', receivers.join(', ')));
}

function cardKind(state, [kind, title]) {
    const head = element('th', { scope: 'rowgroup', role: 'rowheader', colSpan: 5, textContent: title });
    return element('tbody', { role: 'rowgroup' }, element('tr', { role: 'row' }, head),
        ...entriesOf(state, kind).map(cardRow));
}

// The first row is seen on paper only, on top of each page.
function cardHead({ state }) {
    const running = element('th', { colSpan: 5, textContent: `Key card of the ${card.model}: state ${state}` });
    const heads = ['Keys', 'How', 'Hold', 'Action', 'For'];
    return element('thead', { role: 'rowgroup' },
        element('tr', { className: 'running-head' }, running),
        element('tr', { role: 'row' },
            ...heads.map(text => element('th', { scope: 'col', role: 'columnheader', textContent: text }))));
}

function cardTable(state) {
    const caption = [`What can be pressed in the state ${state.state}.`, ...state.notes ?? []].join(' ');
    return element('table', { role: 'table' },
        element('caption', { textContent: caption }),
        element('colgroup', {}, ...Array.from({ length: 5 }, () => element('col'))),
        cardHead(state), ...[...kinds].filter(([kind]) => isPart(state, kind)).map(kind => cardKind(state, kind)));
}

function cardState(state) {
    const lines = ['No key leads to an action.', ...state.notes ?? []];
    return element('section', { className: 'state' },
        element('h3', { textContent: `State ${state.state}` }),
        ...(state.entries.length ? [cardTable(state)] : lines.map(text => line(text))));
}

const listNames = { long: 'long presses', combination: 'combinations', shortcut: 'shortcuts' };

function describeNever({ kind, row, keys, action, why }) {
    return element('li', {}, `Row ${row} of the ${listNames[kind]}, `, ...keysOf(keys),
        element('strong', { textContent: action }), `: ${why}`);
}

/// The rows of the loaded lists that no key can ever complete.
function showNever(rows) {
    byId('never').replaceChildren(...(rows.length === 0 ? [] : [
        element('h3', { textContent: 'Rows that never count' }),
        element('ul', {}, ...rows.map(describeNever)),
    ]));
}

function showCard() {
    showNever(card.never ?? []);
    byId('card-tables').replaceChildren(
        ...[`Model ${card.model}`, ...card.notes ?? []].map(text => line(text)), ...card.states.map(cardState));
    showNow();
}

async function loadCard() {
    card = await (await request('/api/card')).json();
    timeline.setCard(card);
    showCard();
}

function setUpCard() {
    byId('print-card').addEventListener('click', () => window.print());
    byId('download-braille').addEventListener('click', () => attempt(download('/api/card.brf', 'key-card.brf')));
}

// ---------------------------------------------------------------- key lists

const listFields = [...document.querySelectorAll('[data-file]')];
const loadedLists = new Map(); // text area -> its content as the daemon has it
const drafts = new Drafts(localStorage);
let daemonLists = {}; // file name -> its content, as the daemon has read it

function faultText({ line: number, column, text }) {
    return `Not JSON: line ${number}, column ${column}: ${text}.`;
}

/// Comes back with the fault that is shown, if any.
function checkList(field) {
    const fault = jsonFault(field.value);
    const text = fault ? faultText(fault) : '';
    byId(`${field.id}-note`).textContent = text;
    field.setAttribute('aria-invalid', String(Boolean(fault)));
    return text;
}

const typingPause = 1000; // milliseconds
const typingTimers = new Map(); // text area -> its timer

// A fault while a word is typed is none yet.
function checkAfterTyping(field) {
    clearTimeout(typingTimers.get(field));
    typingTimers.set(field, setTimeout(() => {
        const former = byId(`${field.id}-note`).textContent;
        const text = checkList(field);
        if (text || former) {
            announce(text || `${field.dataset.file} is JSON now.`, 'reply');
        }
    }, typingPause));
}

/// Sentences about the lists that the daemon could not read. Where the JSON is right, the card knows more.
function unreadLists() {
    return listFields.map(({ dataset: { file } }) => {
        const fault = file in daemonLists ? jsonFault(daemonLists[file]) : null;
        return fault ? `${file}: ${faultText(fault)}` : (card.notes ?? []).find(note => note.startsWith(`${file} `));
    }).filter(Boolean);
}

function fillList(field, text) {
    field.value = text;
    checkList(field);
}

const isDraft = field => field.value !== loadedLists.get(field);

/// Keeps what is typed, as long as the daemon does not have it.
function keepDraft(field) {
    if (isDraft(field)) {
        drafts.set('draft', field.dataset.file, field.value);
    } else {
        drafts.remove('draft', field.dataset.file);
    }
}

/// Puts `text` in the place of what stands in the field, which can be brought back.
function replaceText(field, text) {
    if (field.value !== text) {
        drafts.set('former', field.dataset.file, field.value);
        fillList(field, text);
        news.add('The former texts of the key lists can be brought back in the view Key lists.');
    }
    showFormer();
}

function showFormer() {
    byId('former-lists').hidden = !listFields.some(each => drafts.get('former', each.dataset.file) !== undefined);
}

function bringBackFormer() {
    for (const field of listFields) {
        const former = drafts.get('former', field.dataset.file);
        if (former !== undefined) {
            drafts.remove('former', field.dataset.file);
            replaceText(field, former);
            keepDraft(field);
        }
    }
    tell('The former texts stand in the fields again. They count after "Check and restart".');
}

/// What is typed stays, also over a reload.
async function loadLists() {
    daemonLists = await (await request('/api/key-lists')).json();
    for (const field of listFields) {
        const text = (daemonLists[field.dataset.file] ?? '').replace(/\r\n?/g, '\n'); // as a text area has it
        if (!loadedLists.has(field)) {
            loadedLists.set(field, text);
            fillList(field, drafts.get('draft', field.dataset.file) ?? text);
        } else if (!isDraft(field)) {
            loadedLists.set(field, text);
            replaceText(field, text);
        }
        keepDraft(field);
    }
    showFormer();
}

async function loadListFile(input) {
    const [file] = input.files;
    if (!file) {
        return;
    }
    const field = listFields.find(each => each.dataset.file === file.name) ?? byId(input.dataset.list);
    replaceText(field, await file.text());
    keepDraft(field);
    input.value = '';
    tell(`${file.name} stands in the field of ${field.dataset.file} now. It counts after "Check and restart".`);
}

async function backToInstalled() {
    const names = listFields.filter(isDraft).map(field => field.dataset.file);
    const question = `What you have typed in ${names.join(' and ')} is not in use yet. `
        + 'The installed lists take its place. It can be brought back in this browser.';
    if (names.length === 0 || await askHere(question, 'Take the installed lists')) {
        await restartWith(null);
    }
}

/// What is typed is given up for what the daemon has then, but only if it restarts.
async function restartWith(keyLists) {
    const former = [...loadedLists];
    listFields.forEach(field => loadedLists.set(field, field.value));
    if (!await restart({ keyLists })) {
        former.forEach(([field, text]) => loadedLists.set(field, text));
    }
}

function takeLists(event) {
    event.preventDefault();
    restartWith(Object.fromEntries(listFields.map(field => [field.dataset.file, field.value])));
}

const listsRead = 'The daemon has read all three lists.';
const logTime = 500; // milliseconds; the daemon's log and its readiness come by different ways
const news = new Set(); // sentences that are told with the readiness
let lastStart = {}; // another object at each start

/// What is known of the lists that the daemon has: the faults of the files first, then its log. Shows that, and comes
/// back with the faults.
function showListFaults() {
    const logged = [...byId('list-log').querySelectorAll('p.log')].map(each => each.textContent);
    const unread = unreadLists();
    if (unread.length + logged.length > 0) {
        logs.lists.earlier.prepend(...unread.map(text => line(text, 'fault')));
    } else if (device.status === 'ready') {
        logs.lists.earlier.append(line(listsRead));
    }
    return [...unread, ...logged];
}

async function reportReady() {
    const start = lastStart;
    const isLoaded = loadDeviceFiles();
    await new Promise(resolve => { setTimeout(resolve, logTime); });
    await isLoaded;
    if (start !== lastStart || device.status !== 'ready') {
        return;
    }
    const faults = showListFaults();
    const sentences = [...news];
    news.clear();
    if (faults.length > 0) {
        complain([...faults, `The daemon runs without what it could not read, on model ${device.model}.`, ...sentences].join(' '));
    } else {
        const read = isView('lists') ? [listsRead] : [];
        tell([...read, `The daemon is ready, on model ${device.model}.`, ...sentences].join(' '), 'event');
    }
}

function saveList({ currentTarget }) {
    const field = byId(currentTarget.dataset.save);
    saveFile(new Blob([field.value], { type: 'application/json' }), field.dataset.file);
}

function setUpLists() {
    byId('lists-form').addEventListener('submit', takeLists);
    byId('default-lists').addEventListener('click', backToInstalled);
    byId('former-lists').addEventListener('click', bringBackFormer);
    for (const button of document.querySelectorAll('[data-save]')) {
        button.addEventListener('click', saveList);
    }
    for (const field of listFields) {
        field.addEventListener('input', () => keepDraft(field));
        field.addEventListener('input', () => checkAfterTyping(field));
        // A description that changes under the focus would be read as well as the announcement.
        field.addEventListener('input', () => field.removeAttribute('aria-describedby'));
        field.addEventListener('blur', () => field.setAttribute('aria-describedby', `${field.id}-note`));
    }
    for (const input of document.querySelectorAll('[data-list]')) {
        input.addEventListener('change', () => attempt(loadListFile(input)));
    }
}

// ---------------------------------------------------------------- recording and replay

let shownReplay = 0; // the id of its entry

const recordingWatch = new RecordingWatch();

function showRecording(status) {
    byId('download-former').hidden = !device.formerRecording;
    byId('recording-status').textContent = status === 'full'
        ? 'The recording is full: what happens now is not in it.' : 'The device is being recorded.';
}

const count = (number, noun) => `${number} ${noun}${number === 1 ? '' : 's'}`;

function differenceText({ differences = [], expectations }) {
    return differences.length === 0 ? `Everything came as written: ${count(expectations, 'expectation')}.`
        : `${count(differences.length, 'difference')}, with ${count(expectations, 'expectation')}:`;
}

function showLines(place, title, lines) {
    const list = lines.length ? [element('ul', {}, ...lines.map(text => element('li', { textContent: text })))] : [];
    byId(place).replaceChildren(line(title), ...list);
}

function replayText(entry) {
    switch (entry.status) {
    case 'playing': return 'The script is being replayed.';
    case 'stopped': return 'The replay was stopped.';
    default: return differenceText(entry);
    }
}

function showReplay(entry) {
    if (entry && entry.id !== shownReplay) { // a result is not read again
        shownReplay = entry.id;
        showLines('replay-result', replayText(entry), entry.differences ?? []);
    }
}

function announceReplay(entry) {
    [replayText(entry), ...entry.differences ?? []].forEach(text => announce(text, 'event'));
}

/// Asks before a recording that was not downloaded ends. Comes back with whether it may.
async function maySupersedeRecording(answer) {
    const question = 'The recording is not downloaded. A new one begins now. '
        + 'Until the next restart this one can be downloaded as the former recording.';
    return !recordingWatch.isUnsaved || askHere(question, answer);
}

async function startReplay(event) {
    event.preventDefault();
    if (!await maySupersedeRecording('Replay the script')) {
        return;
    }
    try {
        const [file] = byId('replay-file').files;
        await post('/api/replay', await file.text(), { 'Content-Type': 'text/plain' });
    } catch (fault) {
        const { lines = [] } = fault;
        const title = lines.length ? 'The script is faulty:' : fault.message;
        showLines('replay-result', title, lines);
        [title, ...lines].forEach(text => announce(text, 'fault'));
    }
}

function setUpRecording() {
    byId('restart-recording').addEventListener('click', async () => {
        if (await maySupersedeRecording('Start anew') && await attempt(post('/api/recording'))) {
            tell('The recording begins anew.');
        }
    });
    byId('download-recording').addEventListener('click', async () => {
        if (await attempt(download('/api/recording.keys', 'recording.keys'))) {
            recordingWatch.save();
        }
    });
    byId('download-former').addEventListener('click',
        () => attempt(download('/api/former-recording.keys', 'former-recording.keys')));
    byId('replay-form').addEventListener('submit', startReplay);
    byId('stop-replay').addEventListener('click', () => attempt(post('/api/replay/stop')));
}

// ---------------------------------------------------------------- commands and console

const isNested = value => typeof value === 'object' && value !== null;

function describeResponse({ text, response, command }) {
    if (!response || !Object.values(response).some(isNested)) {
        return [line(text, 'answer')];
    }
    const plain = Object.entries(response).map(([key, value]) => `${key}=${isNested(value) ? '…' : value}`);
    return [line(`answer ${plain.join(' ')}`, 'answer'), element('details', {},
        element('summary', { textContent: `Whole answer to ${command || 'a command'}` }),
        element('pre', { tabIndex: 0, textContent: JSON.stringify(response, null, 2) }))];
}

function describeAnswer(entry) {
    switch (entry.type) {
    case 'command': return line(entry.text, 'typed');
    case 'answer': return element('div', {}, ...describeResponse(entry));
    case 'unanswered': return line(unansweredText(entry), 'fault');
    default: return null;
    }
}

const openCommands = new OpenCommands();

function unansweredText({ text, isFinal }) {
    return isFinal ? `${text}: the daemon went without an answer.` : `${text}: the daemon has not answered yet.`;
}

function reportUnanswered(texts, isFinal) {
    for (const text of texts) {
        const entry = { type: 'unanswered', text, isFinal };
        logs.answers.add(entry);
        complain(unansweredText(entry));
    }
}

function watchAnswers() {
    setTimeout(() => reportUnanswered(openCommands.late(performance.now()), false), answerPatience + 50); // a timer may fire a little early
}

function followCommands(entry) {
    reportUnanswered(openCommands.take(entry, performance.now()), true);
    if (entry.type === 'command') {
        watchAnswers();
    }
}

function sendCommand(event) {
    event.preventDefault();
    const words = new FormData(event.target).getAll('argument');
    const statement = ['command', event.target.dataset.command, 'as', byId('command-sender').value, ...words];
    attempt(send(statement.join(' ').trim()));
}

async function sendConsoleLine(event) {
    event.preventDefault();
    if (await attempt(send(`console ${byId('console-line').value}`.trim()))) {
        byId('console-line').select();
    }
}

function setUpCommands() {
    for (const form of document.querySelectorAll('[data-command]')) {
        form.addEventListener('submit', sendCommand);
    }
    byId('console-form').addEventListener('submit', sendConsoleLine);
}

// ---------------------------------------------------------------- what is heard of the device

const usualSender = 'KeyboardHandler';
const usualHold = 500; // milliseconds; a key that another page or a script holds for less is a tap

let lastSentence = '';          // what the device spoke last
const holdsElsewhere = new Map(); // "device key", down but not held by this page -> its timer; no timer: announced

function actionSentence({ action, keys, receiver, sender }) {
    const names = keys.join(' ');
    const what = action === 'SingleKey' ? [names, 'single key'] : [action, names === action ? '' : names];
    const from = sender && sender !== usualSender ? `from ${sender}` : '';
    return [...what, `to ${receiver}`, from].filter(Boolean).join(', ');
}

function announceSpeech(entry) {
    lastSentence = speechText(entry);
    if (!aloud.checked) { // nothing is heard twice
        announce(lastSentence, 'event');
    }
}

// The device speaks the reason of a key that is refused in Startup.
function announceRefusal(entry) {
    const isSpoken = !entry.expected && entry.reason === lastSentence && announcer.level === 'all';
    if (!isSpoken) {
        announce(refusalText(entry), 'action', true);
    }
}

function answerSentence({ command, text, response }) {
    const { resultId, errorId, ...values } = response ?? { resultId: text };
    const words = Object.entries(values).map(([key, value]) => (isNested(value) ? `${key} below` : `${key} ${value}`));
    const fault = errorId === 'Undefined' ? undefined : errorId;
    return `${command || 'Command'}: ${[resultId, fault, ...words].filter(word => word !== undefined).join(', ')}.`;
}

function announceKey({ device: number, key, value }) {
    const id = `${number} ${key}`;
    const name = number === 0 ? key : `${key} of device ${number}`;
    if (value === 0) {
        clearTimeout(holdsElsewhere.get(id));
        if (holdsElsewhere.has(id) && !holdsElsewhere.get(id)) {
            announce(`${name} is released elsewhere.`, 'event');
        }
        holdsElsewhere.delete(id);
    } else if (value === 1 && !pressedHere.has(id)) {
        clearTimeout(holdsElsewhere.get(id));
        holdsElsewhere.set(id, setTimeout(() => {
            holdsElsewhere.set(id, undefined);
            announce(`${name} is held elsewhere.`, 'event');
        }, usualHold));
    }
}

let isAtConsole = false; // the daemon's log answers a line of the console

// A refusal is announced in words.
function announceConsole({ text }) {
    if (isAtConsole && isView('commands') && !text.startsWith('KeyboardManager::onEvent WARN')) {
        announce(text.replaceAll(/={3,}/g, '').trim(), 'reply', true);
    }
}

function announceEntry(entry) {
    switch (entry.type) {
    case 'announcement': return announce(actionSentence(entry), 'action');
    case 'refusal': return announceRefusal(entry);
    case 'speech': return announceSpeech(entry);
    case 'key': return announceKey(entry);
    case 'answer': return isView('commands') && announce(answerSentence(entry), 'reply');
    case 'console': isAtConsole = true; return undefined;
    case 'command': isAtConsole = false; return undefined;
    case 'log':
    case 'output': return announceConsole(entry);
    case 'replay': return announceReplay(entry);
    default: return undefined;
    }
}

// ---------------------------------------------------------------- views

const views = [...document.querySelectorAll('.view')];
const currentView = () => views.find(view => `#${view.id}` === location.hash) ?? views[0];
const isView = id => currentView().id === id;

function showView() {
    const current = currentView();
    views.forEach(view => { view.hidden = view !== current; });
    for (const link of document.querySelectorAll('nav a')) {
        if (link.hash === `#${current.id}`) {
            link.setAttribute('aria-current', 'page');
        } else {
            link.removeAttribute('aria-current');
        }
    }
    document.title = `${current.querySelector('h2').textContent} – Embosser front panel`;
    followConsole();
}

/// Disclosures stay as the user left them.
function setUpDisclosures() {
    for (const details of document.querySelectorAll('details[id]')) {
        const name = `${details.id} is open`;
        details.open = localStorage.getItem(name) === 'true';
        details.addEventListener('toggle', () => localStorage.setItem(name, String(details.open)));
    }
}

function onViewChange() {
    releaseMomentary();
    showView();
    currentView().querySelector('h2').focus();
}

// A browser that jumps to a fragment has a screen reader read where it was before, too.
function onViewLink(event) {
    if (event.ctrlKey || event.shiftKey || event.metaKey || event.altKey) {
        return; // to open another page
    }
    event.preventDefault();
    history.pushState(null, '', event.currentTarget.hash);
    onViewChange();
}

function setUpViews() {
    showView();
    window.addEventListener('popstate', onViewChange);
    for (const link of document.querySelectorAll('nav a')) {
        link.addEventListener('click', onViewLink);
    }
    byId('skip-link').addEventListener('click', event => {
        event.preventDefault(); // the address keeps the view
        currentView().querySelector('h2').focus();
    });
}

// ---------------------------------------------------------------- events

const retryTime = 3000; // milliseconds
const mostStreams = 5; // a browser has six connections to a server, for all its pages and requests

const timeline = new Timeline(byId('timeline-chart'), text => announce(text, 'reply'));
let lastId = 0;

const sentCommands = []; // the names of those without an answer; answers come in their order

function learnAnswer(entry) {
    entry.command = sentCommands.shift() ?? '';
}

/// What the page must know of an entry, old or new.
function learn(entry) {
    if (entry.type === 'recording' && entry.former && recordingWatch.isUnsaved) {
        news.add('The former recording can be downloaded in the view Recording.');
    }
    recordingWatch.take(entry);
    switch (entry.type) {
    case 'command': sentCommands.push(entry.text.split(' ')[0]); return undefined;
    case 'answer': return learnAnswer(entry);
    case 'device': return onDevice(entry);
    case 'key': return onKey(entry);
    case 'state': device.state = entry.state; return undefined;
    case 'daemon': device.answering = entry.answering; return undefined;
    case 'test': device.testing = entry.running; return undefined;
    default: return undefined;
    }
}

function reactToAnswering({ answering }) {
    showDevice();
    if (answering) {
        tell('The daemon answers again.', 'event');
    } else {
        complain('The daemon does not answer. What is pressed waits until it does.');
    }
}

function onRecording({ status, former }) {
    device.formerRecording = former ?? device.formerRecording;
    showRecording(status);
}

function reactToTest({ running }) {
    showDevice();
    tell(running ? 'The keyboard test is running.' : 'The keyboard test has ended.', 'event');
}

/// What is done about an entry at the moment that it comes.
function react(entry) {
    switch (entry.type) {
    case 'device': return reactToDevice(entry);
    case 'state': showDevice(); return tell(`State ${entry.state}.`, 'event');
    case 'key': return showKeys();
    case 'daemon': return reactToAnswering(entry);
    case 'test': return reactToTest(entry);
    case 'recording': return onRecording(entry);
    case 'replay': return showReplay(entry);
    case 'speech':
    case 'cancel': return speakAloud(entry);
    case 'console':
    case 'log':
    case 'output': return followConsole();
    default: return undefined;
    }
}

function reactToDevice(entry) {
    showDevice();
    reportDevice(entry);
    if (entry.status === 'starting') {
        lastStart = {};
        logs.lists.reset([]);
    } else if (entry.status === 'ready') {
        reportReady();
    }
}

function loadDeviceFiles() {
    return Promise.all([attempt(loadCard()), attempt(loadLists())]);
}

function sinceLastStart(history) {
    let first = history.length;
    while (first > 0 && history[first - 1].status !== 'starting') {
        --first;
    }
    return history.slice(first);
}

function takeSnapshot(snapshot) {
    const { history } = snapshot;
    client = snapshot.client;
    lastId = history.at(-1)?.id ?? 0;
    down.clear();
    held.clear();
    history.forEach(learn);
    news.clear();
    device = { reason: device.reason, ...snapshot.device };
    down.clear(); // the history may not reach back to each press
    device.held.forEach(hold => down.add(`${hold.device} ${hold.key}`));
    showRecording(device.recording ? 'recording' : 'full');
    showReplay(history.filter(entry => entry.type === 'replay').at(-1));
    Object.values(logs).forEach(log => log.reset(history));
    logs.answers.reset(openCommands.reset(history, snapshot.at, performance.now()));
    watchAnswers();
    logs.lists.reset(sinceLastStart(history));
    timeline.setTimes(device.times);
    timeline.reset(history, snapshot.at);
    if (connection === 'lost') {
        tell('Connected again.', 'fault');
    }
    connection = 'open';
    fillChoices();
    showDevice();
    showKeys();
    followConsole();
    const start = lastStart = {};
    loadDeviceFiles().then(() => start === lastStart && showListFaults());
}

function takeEntry(entry) {
    if (entry.id <= lastId) {
        return;
    }
    lastId = entry.id;
    learn(entry);
    followCommands(entry);
    Object.values(logs).forEach(log => log.add(entry));
    timeline.add(entry);
    announceEntry(entry);
    react(entry);
}

function loseConnection(reason) {
    if (connection !== 'lost') {
        connection = 'lost';
        ++epoch;
        down.clear();
        forgetHeldKeys();
        showDevice();
        timeline.stop('There is no connection to the simulator. The timeline ends where it was lost.');
        complain(`${reason} The page goes on trying.`);
    }
}

function connect() {
    const events = new EventSource('/api/events');
    events.addEventListener('snapshot', event => takeSnapshot(JSON.parse(event.data)));
    events.addEventListener('entry', event => takeEntry(JSON.parse(event.data)));
    events.addEventListener('error', () => {
        if (events.readyState === EventSource.CLOSED) { // the browser itself gives up when it is refused
            loseConnection('The simulator takes no further page now.');
            setTimeout(connect, retryTime);
        } else {
            loseConnection('There is no connection to the simulator.');
        }
    });
}

/// Whether the lock was free; it is this page's from then on.
function tryLock(name) {
    return new Promise(resolve => {
        navigator.locks.request(name, { ifAvailable: true }, lock => {
            resolve(lock !== null);
            return lock && new Promise(() => {});
        });
    });
}

/// Connects, unless so many pages of this browser have a connection that their requests would find none.
async function connectInTurn() {
    for (let place = 1; place <= mostStreams; ++place) {
        if (await tryLock(`event stream ${place}`)) {
            connect();
            return;
        }
    }
    loseConnection('This browser has the panel open in as many pages as it can serve.');
    setTimeout(connectInTurn, retryTime);
}

setUpAnnouncer();
setUpDisclosures();
setUpViews();
setUpKeys();
setUpDevice();
setUpSpeech();
setUpCard();
setUpLists();
setUpRecording();
setUpCommands();
connectInTurn();
