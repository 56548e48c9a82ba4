// SPDX-License-Identifier: MIT
// The keys of the panel: which are down, and how the page presses and releases them.
import { send, sendOnLeaving } from './connection.js';
import { device } from './device.js';
import { all, byId, on, setText } from './dom.js';
import { showHeldKeys } from './header.js';
import { announce, announcer, attempt, showFault } from './messages.js';

const lateness = 100; // milliseconds by which the daemon may get a key later than the page
const maxClickDelay = 1000; // milliseconds from the release of a pointer to its click

// The id of a key is "device key", with the number of the input device.
const held = new Map(); // id -> how this page holds the key; its holder is a pointer's id or a name
const down = new Set(); // ids of all keys that are down, here and elsewhere
const pressedHere = new Set(); // ids, from the press by this page to the release that the device reports
const pointerReleases = new WeakMap(); // key button -> when a pointer left it
let learner; // gets the keys in place of the device, if there is one

let lastKeyMoment = -Infinity; // when the device last reported a key

const keyButtons = () => all('[data-key]');
const isLatching = () => byId('latch').checked;
const idsOf = key => [`0 ${key}`, `1 ${key}`];
const chosenId = key => `${document.querySelector('[name="input-device"]:checked').value} ${key}`;
/// Until the device has reported the press of this page, the page shows it as done.
const isDown = id => down.has(id) || held.get(id)?.isReported === false;
const isHeldElsewhere = id => down.has(id) && !pressedHere.has(id);
const isActivation = ({ key }) => ['Enter', ' '].includes(key);

export const idOf = ({ device, key }) => `${device} ${key}`;
export const isPressedHere = id => pressedHere.has(id);

export function showKeys() {
    for (const button of keyButtons()) {
        const ids = idsOf(button.dataset.key);
        const isPressed = ids.some(isDown);
        button.classList.toggle('down', isPressed);
        if (isLatching()) {
            button.setAttribute('aria-pressed', String(isPressed));
        }
        const note = !isLatching() && ids.some(isHeldElsewhere) ? ', held elsewhere' : '';
        setText(button.querySelector('.for-readers'), note);
    }
    const ids = keyButtons().flatMap(({ dataset }) => idsOf(dataset.key));
    showHeldKeys(ids.filter(isDown).map(nameOf));
}

function nameOf(id) {
    const [number, key] = id.split(' ');
    return number === '0' ? key : `${key} (device ${number})`;
}

export function statementsOf(verb, id) {
    const [number, key] = id.split(' ');
    return `device ${number}\n${verb} ${key}`;
}

function deliver(verb, id, isWanted) {
    return learner ? Promise.resolve(learner.take(verb, id)) : send(statementsOf(verb, id), isWanted);
}

/// From now on, the methods of `other` are called in place of sending keys to the device: `take` with "press" or
/// "release" and the id of a key, `play` with the statements of an entry of the key card, and `drop` when the page
/// forgets which keys it holds. Without `other`, the device gets the keys.
export function setLearner(other) {
    releaseAll();
    learner = other;
}

function press(id, holder) {
    if (held.has(id)) {
        return;
    }
    const hold = { holder, error: undefined, isReported: down.has(id) };
    held.set(id, hold);
    if (!learner) {
        pressedHere.add(id);
    }
    showKeys();
    const sent = deliver('press', id);
    sent.catch(error => {
        hold.error = error;
        if (held.get(id) === hold) {
            release([id]);
        }
    });
    attempt(sent);
}

function release(ids) {
    for (const id of ids) {
        const hold = held.get(id);
        held.delete(id);
        // A press without an answer may still be done, and is to be undone then.
        const sent = deliver('release', id, () => !hold.error?.isAnswer);
        sent.catch(({ message }) => hold.error || showFault(message));
    }
    showKeys();
}

function releaseHeldBy(isHolder) {
    release([...held.keys()].filter(id => isHolder(held.get(id).holder)));
}

export const releaseHolder = holder => releaseHeldBy(each => each === holder);
export const releaseMomentary = () => releaseHeldBy(holder => holder !== 'latch');
const releaseAll = () => release([...held.keys()]);
const releasedText = () => `Released: ${[...held.keys()].map(id => id.split(' ')[1]).join(', ')}.`;

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

/// Presses `key`, or latches it. `holder` is a name for `releaseHolder`.
export function begin(key, holder) {
    const id = chosenId(key);
    if (!isLatching()) {
        press(id, holder);
    } else if (held.has(id)) {
        release([id]);
    } else if (down.has(id) && !learner) {
        // Another page or a script holds it.
        attempt(send(statementsOf('release', id)));
    } else {
        press(id, 'latch');
    }
}

// Assistive technology clicks without a pointer and without a key of the keyboard: a tap.
function onClick({ currentTarget, detail, timeStamp }) {
    const isPointer = detail > 0 && timeStamp - (pointerReleases.get(currentTarget) ?? -Infinity) < maxClickDelay;
    if (isPointer) {
        return;
    }
    const { key } = currentTarget.dataset;
    if (isLatching()) {
        begin(key, 'latch');
    } else if (learner) {
        press(chosenId(key), 'click');
        releaseHeldBy(holder => holder === 'click');
    } else {
        pressedHere.add(chosenId(key));
        attempt(send(statementsOf('tap', chosenId(key))));
    }
}

/// Presses the keys of an entry of the key card, once the keys before count no more.
export function playEntry({ keys, statements }) {
    if (learner) {
        learner.play(statements);
        return;
    }
    keys.forEach(key => idsOf(key).forEach(id => pressedHere.add(id)));
    const rest = Math.ceil(lastKeyMoment + device.times.singleKeyMs + lateness - performance.now());
    attempt(send([...(rest > 0 ? [`wait ${rest}`] : []), ...statements].join('\n')));
}

function onPointerDown({ currentTarget, pointerType, pointerId, button }) {
    if (pointerType === 'mouse' && button !== 0) {
        return;
    }
    begin(currentTarget.dataset.key, pointerId);
    currentTarget.setPointerCapture(pointerId);
}

function onPointerEnd({ currentTarget, pointerId, timeStamp }) {
    pointerReleases.set(currentTarget, timeStamp);
    releaseHolder(pointerId);
}

function onKeyDown(event) {
    if (!isActivation(event) || event.ctrlKey || event.altKey || event.metaKey) {
        return;
    }
    event.preventDefault(); // no click
    if (!event.repeat) {
        announcer.hold('keyboard');
        begin(event.currentTarget.dataset.key, 'keyboard');
    }
}

// Ends the press whatever other keys are down meanwhile.
function onKeyUp(event) {
    if (isActivation(event)) {
        event.preventDefault(); // no click
        releaseKeyboard();
    }
}

function releaseKeyboard() {
    releaseHolder('keyboard');
    announcer.release('keyboard');
}

// The releases must not wait for an answer.
function onPageHide() {
    sendOnLeaving(learner ? [] : [...held.keys()].map(id => statementsOf('release', id)));
    resetKeys();
    showKeys();
}

function setUpKey(button) {
    button.addEventListener('pointerdown', onPointerDown);
    for (const end of ['pointerup', 'pointercancel', 'lostpointercapture']) {
        button.addEventListener(end, onPointerEnd);
    }
    button.addEventListener('keydown', onKeyDown);
    button.addEventListener('keyup', onKeyUp);
    button.addEventListener('blur', releaseKeyboard);
    button.addEventListener('click', onClick);
    button.addEventListener('contextmenu', event => event.preventDefault()); // of a long touch
}

/// Forgets all keys but those that the device reports as held.
export function resetKeys(reported = []) {
    learner?.drop();
    [held, pressedHere, down].forEach(keys => keys.clear());
    reported.forEach(key => down.add(idOf(key)));
}

export function updateKeys(entry) {
    if (entry.type === 'key') {
        lastKeyMoment = performance.now();
    }
    const id = idOf(entry);
    const hold = learner ? undefined : held.get(id);
    if (entry.type === 'device') {
        resetKeys();
    } else if (entry.type === 'key' && entry.value === 0) {
        down.delete(id);
        pressedHere.delete(id);
        // A finger or a key of the keyboard that rests on it still sends its release when it is lifted.
        if (hold?.isReported && hold.holder === 'latch') {
            held.delete(id);
        }
    } else if (entry.type === 'key') {
        down.add(id);
        Object.assign(hold ?? {}, { isReported: true });
    }
}

keyButtons().forEach(setUpKey);
window.addEventListener('blur', releaseMomentary);
document.addEventListener('visibilitychange', () => document.hidden && releaseMomentary());
window.addEventListener('pagehide', onPageHide);
on('#latch', 'change', onLatch);
on('#release-all', 'click', () => {
    announce(held.size > 0 ? releasedText() : 'No key is held by this page.', 'reply');
    releaseAll();
});
document.addEventListener('keydown', ({ key, isComposing, target }) => {
    if (key === 'Escape' && held.size > 0 && !isComposing && !target.closest?.('dialog')) {
        announce(releasedText(), 'reply');
        releaseAll();
    }
});
on('[name="input-device"]', 'change', showKeys);
