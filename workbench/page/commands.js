// SPDX-License-Identifier: MIT
// The view Commands: the commands of the bus interface with their answers, and the console of the daemon.
import { send } from './connection.js';
import { device } from './device.js';
import { all, byId, element, line, on } from './dom.js';
import { EntryLog } from './entryLog.js';
import { markField } from './fieldFault.js';
import { announce, attempt, showFault } from './messages.js';
import { OpenCommands, answerPatience } from './openCommands.js';
import { isNested, unansweredText } from './wording.js';

const openCommands = new OpenCommands();

export const answers = new EntryLog('answers', 8, {
    command: ({ text }) => line(text, 'typed'),
    answer: entry => element('div', {}, describeAnswer(entry)),
    unanswered: entry => line(unansweredText(entry), 'fault'),
});

export const consoleLog = new EntryLog('console', 300, {
    console: ({ text }) => line(text, 'typed'),
    log: ({ text }) => line(text, 'log'),
    output: ({ text }) => line(text, 'output'),
});

function describeAnswer({ text, response, command }) {
    if (!response || !Object.values(response).some(isNested)) {
        return [line(text, 'answer')];
    }
    const plain = Object.entries(response).map(([key, value]) => `${key}=${isNested(value) ? '…' : value}`);
    const details = element('details', {}, [
        element('summary', { textContent: `Whole answer to ${command || 'a command'}` }),
        element('pre', { tabIndex: 0, textContent: JSON.stringify(response, null, 2) }),
    ]);
    return [line(`answer ${plain.join(' ')}`, 'answer'), details];
}

/// Shows the outcome of a command in its form as well.
function showInForm(command, children) {
    document.querySelector(`[data-command="${command}"] .outcome`)?.replaceChildren(...children);
}

/// Marks the texts of a form that could not be sent.
function markFields(form, isFaulty) {
    const faultId = isFaulty ? `outcome-${form.dataset.command}` : '';
    form.querySelectorAll('input').forEach(input => markField(input, faultId));
}

function report(unanswered) {
    for (const entry of unanswered) {
        answers.add(entry);
        showInForm(entry.text.split(' ')[0], [line(unansweredText(entry), 'fault')]);
        showFault(unansweredText(entry));
    }
}

function watchAnswers() {
    // A timer may fire a little early.
    setTimeout(() => report(openCommands.late(performance.now())), answerPatience + 50);
}

export function followCommands(entry) {
    report(openCommands.take(entry, performance.now()));
    if (entry.type === 'command') {
        watchAnswers();
    } else if (entry.type === 'answer' && entry.command) {
        showInForm(entry.command, describeAnswer(entry));
    }
}

/// Begins with the entries of `history`; `at` is the present on their clock.
export function resetAnswers(history, at) {
    answers.reset(openCommands.reset(history, at, performance.now()));
    watchAnswers();
}

export function followConsole() {
    const place = byId('console');
    place.scrollTop = place.scrollHeight;
}

function fillSelect(place, names, chosen) {
    if (byId(place).length === 0) {
        byId(place).append(...names.map(name => new Option(name, name, name === chosen, name === chosen)));
    }
}

export function fillCommandChoices() {
    fillSelect('command-sender', device.services, 'ServiceTool');
    fillSelect('simulated-action', device.actions, 'Pressed');
    fillSelect('simulated-key', device.keys, 'Menu');
}

for (const form of all('[data-command]')) {
    form.append(element('div', { className: 'lines outcome', id: `outcome-${form.dataset.command}` }));
}
on('[data-command]', 'submit', event => {
    event.preventDefault();
    const { command } = event.target.dataset;
    const words = new FormData(event.target).getAll('argument');
    showInForm(command, []);
    markFields(event.target, false);
    send(['command', command, 'as', byId('command-sender').value, ...words].join(' ').trim()).catch(({ message }) => {
        showInForm(command, [line(message, 'fault')]);
        markFields(event.target, true);
        announce(message, 'fault');
    });
});
on('#console-form', 'submit', async event => {
    event.preventDefault();
    if (await attempt(send(`console ${byId('console-line').value}`.trim()))) {
        byId('console-line').select();
    }
});
