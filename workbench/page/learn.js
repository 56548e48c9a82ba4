// SPDX-License-Identifier: MIT
// Learning: the keys go to the server's model of the keys in place of the device, and each gesture is described.
import { postJson } from './connection.js';
import { device } from './device.js';
import { all, byId, element, line, on, setText } from './dom.js';
import { Gesture } from './gesture.js';
import { setLearner } from './keys.js';
import { announce, attempt, showFault, showStatus } from './messages.js';

const maxDescribed = 5; // gestures

let gesture = new Gesture();
let timer; // runs until the keys of the gesture no longer matter
let last; // the question about the last gesture that was described
let practice; // while a task is set

const stateForLearning = () => byId('learn-state').value || device.state;

function drop() {
    clearTimeout(timer);
    gesture = new Gesture();
}

function forgetLast() {
    last = undefined;
    byId('why-gesture').hidden = true;
    byId('reasons').replaceChildren();
}

export function describe(text) {
    byId('described').prepend(line(text));
    all('#described p')
        .slice(maxDescribed)
        .forEach(each => each.remove());
    showStatus(text);
}

function end(question, answer) {
    const { onJudged = ({ text }) => describe(text) } = practice ?? {};
    drop();
    forgetLast();
    last = question;
    byId('why-gesture').hidden = false;
    onJudged(answer);
}

/// Keys that follow before the former ones are forgotten belong to the same gesture.
async function ask(asked) {
    const { script } = asked;
    const question = { state: stateForLearning(), script, ...practice?.question() };
    const isCurrent = () => asked === gesture && asked.script === script;
    try {
        const answer = await postJson(question.task ? '/api/judgement' : '/api/what', question);
        if (isCurrent() && answer.forgottenAfter !== undefined) {
            timer = setTimeout(end, Math.max(0, answer.forgottenAfter - asked.rest), question, answer);
        }
    } catch ({ message }) {
        if (isCurrent()) {
            drop();
            showFault(message);
        }
    }
}

function take(verb, id) {
    if (gesture.take(verb, id)) {
        clearTimeout(timer);
        if (!gesture.hasKeysDown) {
            ask(gesture);
        }
    }
}

/// Sets what is to be done with the next gestures; without `other`, there is no task. Its `question` returns the
/// members of a question that the server judges by, and `onJudged` gets the judgement.
export function setPractice(other) {
    practice = other;
    drop();
    forgetLast();
}

async function showReasons() {
    const { lines } = await postJson('/api/why', last);
    const texts = lines.filter(Boolean).map(text => text.trim().split(/ {2,}/).join(', ')); // of columns
    byId('reasons').replaceChildren(...texts.map(text => line(text)));
    texts.forEach(text => announce(text, 'reply'));
}

/// Describes what the keys of an entry of the key card do.
async function play(statements) {
    drop();
    const { text } = await postJson('/api/what', { state: stateForLearning(), script: statements.join('\n') });
    describe(text);
}

export function showLearning() {
    const select = byId('learn-state');
    const known = [...select.options].map(({ value }) => value).filter(Boolean);
    if (known.join() !== device.states.join()) {
        const { value } = select;
        const options = device.states.map(state => element('option', { value: state, textContent: state }));
        select.replaceChildren(select.options[0], ...options);
        select.value = value;
    }
}

on('#learning', 'change', ({ target }) => {
    setLearner(target.checked ? { take, drop, play: statements => attempt(play(statements)) } : undefined);
    setPractice();
    byId('keys').classList.toggle('learning', target.checked);
    byId('learn-more').hidden = !target.checked;
    byId('described').replaceChildren();
    setText(byId('task'), '');
    showStatus(target.checked ? 'The device does not get the keys now.' : 'The device gets the keys again.');
});
on('#learn-state', 'change', drop);
on('#why-gesture', 'click', () => attempt(showReasons()));
