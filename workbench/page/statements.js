// SPDX-License-Identifier: MIT
// A line for statements of key scripts, as at the terminal, with the lines before.
import { send } from './connection.js';
import { byId, line, on } from './dom.js';
import { markField } from './fieldFault.js';
import { announce } from './messages.js';

const maxHistory = 100; // lines
const input = byId('statement-line');
const outcome = byId('statement-outcome');
const history = [];
let place = 0; // in the history; its end is the line that is being typed
let typed = '';

function showFaults(texts) {
    outcome.replaceChildren(...texts.map(text => line(text, 'fault')));
    markField(input, texts.length > 0 ? outcome.id : '');
    texts.forEach(text => announce(text, 'fault'));
}

function remember(text) {
    if (text !== history.at(-1)) {
        history.push(text);
    }
    history.splice(0, history.length - maxHistory);
    place = history.length;
}

function recall(step) {
    const next = Math.min(Math.max(place + step, 0), history.length);
    if (next === place) {
        return;
    }
    typed = place === history.length ? input.value : typed;
    place = next;
    input.value = history[place] ?? typed;
}

async function execute(event) {
    event.preventDefault();
    const text = input.value.trim();
    if (!text) {
        return;
    }
    remember(text);
    showFaults([]);
    try {
        await send(text.replaceAll(';', '\n'));
        input.select();
    } catch ({ message, lines = [] }) {
        showFaults(lines.length > 0 ? lines : [message]);
    }
}

on('#statement-form', 'submit', execute);
input.addEventListener('keydown', event => {
    const step = { ArrowUp: -1, ArrowDown: 1 }[event.key];
    if (step && !event.isComposing) {
        event.preventDefault(); // the caret stays at the end
        recall(step);
    }
});
