// SPDX-License-Identifier: MIT
// The view Panel without its keys: the state and model of the device, and what can be pressed now.
import { card, groupsOf } from './card.js';
import { isConnected, restart, send } from './connection.js';
import { device, deviceStatus } from './device.js';
import { byId, element, keyCaps, list, setText } from './dom.js';
import { attempt, begin } from './messages.js';
import { count, seconds, withNotes } from './wording.js';

/// Why it is not known, or nothing at all, what leads to an action; the daemon must be ready to take keys.
const nothingTexts = {
    lost: 'Not known: there is no connection to the simulator.',
    hung: 'Nothing: the daemon does not answer. What is pressed waits until it does.',
    starting: 'Nothing yet: the daemon is starting.',
    ended: 'Nothing: the daemon has ended.',
};

/// Shows a button for each name, and which one is `chosen`. Buttons that are there already keep the focus.
function showChoice(id, names, chosen, choose) {
    const { children } = byId(id);
    if ([...children].map(button => button.textContent).join() !== names.join()) {
        const onclick = ({ target }) => choose(target.textContent);
        const buttons = names.map(name => element('button', { type: 'button', textContent: name, onclick }));
        byId(id).replaceChildren(...buttons);
    }
    for (const button of children) {
        button.setAttribute('aria-pressed', String(isConnected() && button.textContent === chosen));
    }
}

/// In a keyboard test single keys are counted, but in Idle; in Startup no key counts at all.
const isTested = () => device.testing && !['Idle', 'Startup'].includes(device.state);

function testText(state) {
    const ten = state?.entries.find(({ kind, keys }) => kind === 'single' && keys[0] === 'Ten');
    const isCombinationHere = row => row.kind === 'combination' && row.validOnState === device.state;
    const others = card.never.some(isCombinationHere) ? ` Combinations for ${device.state} are announced, too.` : '';
    const test = `The keyboard test is running in the state ${device.state}`;
    const end = `Ten ends the test and is announced as Ok to ${ten?.receivers.join(' and ') ?? 'a service'}.`;
    return `${test}: each key is spoken and counted when it is released, and no service gets it. ${end}${others}`;
}

function nowText(state) {
    if (isTested()) {
        return testText(state);
    }
    const text = state?.entries.length
        ? `In the state ${device.state}, on model ${device.model}.`
        : withNotes(`In the state ${device.state} no key leads to an action.`, state?.notes);
    return device.testing ? `${text} The keyboard test counts no keys in ${device.state}.` : text;
}

function describeNow({ keys, how, holdMs, action, receivers, notes }) {
    const to = ` to ${receivers.join(' and ')}${holdMs ? `, ${seconds(holdMs)}` : ''}.`;
    return element('li', {}, [
        element('p', {}, [...keyCaps(keys), element('span', { className: 'action', textContent: action }), to]),
        element('p', { className: 'how', textContent: withNotes(how, notes) }),
    ]);
}

function describeGroup([title, entries]) {
    return element('div', {}, [element('h4', { textContent: title }), list(entries.map(describeNow))]);
}

function showNow() {
    const reason = nothingTexts[deviceStatus()];
    // The card comes after the page: it has no model before.
    const state = card.states.find(each => each.state === device.state);
    const entries = reason || !state ? [] : state.entries.filter(({ kind }) => kind !== 'single' || !isTested());
    setText(byId('now-state'), reason || (card.model ? nowText(state) : ''));
    byId('now-details').hidden = entries.length === 0;
    setText(byId('now-count'), count(entries.length, 'action'));
    setText(byId('now-notes'), entries.length > 0 ? (state.notes ?? []).join(' ') : '');
    byId('now').replaceChildren(...groupsOf({ entries }).map(describeGroup));
}

export function showPanel() {
    showChoice('states', device.states, device.state, state => {
        begin('state');
        attempt(send(`state ${state}`));
    });
    showChoice('models', device.models, device.model, model => restart({ model }));
    showNow();
}
