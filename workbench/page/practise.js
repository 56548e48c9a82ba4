// SPDX-License-Identifier: MIT
// Practising: tasks from the key card, which the server judges.
import { card } from './card.js';
import { device } from './device.js';
import { byId, on, setText } from './dom.js';
import { describe, setPractice } from './learn.js';
import { showStatus } from './messages.js';
import { count } from './wording.js';

let state; // for which the tasks are, while there are any
let task; // an entry of the card
let done = new Set(); // names of entries

const nameOf = ({ kind, keys, action, receivers }) => JSON.stringify([kind, keys, action, receivers]);
const isForOneHand = ({ kind }) => kind !== 'shortcut'; // which is a key while another is held

/// Gestures come before single keys.
function openTasks() {
    const entries = card.states.find(each => each.state === state)?.entries ?? [];
    const isOpen = entry => !done.has(nameOf(entry)) && (!byId('one-hand').checked || isForOneHand(entry));
    const open = entries.filter(isOpen);
    const isGesture = ({ kind }) => kind !== 'single';
    return [...open.filter(isGesture), ...open.filter(entry => !isGesture(entry))];
}

const taskText = ({ kind, keys, action, how }) =>
    `Do ${kind === 'single' ? `the single key ${keys[0]}` : action}: ${how}`;

function question() {
    const { kind, keys, action, receivers, holdMs } = task;
    return { state, task: { kind, keys, action, receivers, holdMs }, ownPace: byId('own-pace').checked };
}

function showTask() {
    setText(byId('task'), task ? taskText(task) : '');
    setText(byId('practise'), state ? 'Stop practising' : 'Practise');
    byId('next-task').hidden = !task;
    byId('repeat-task').hidden = !task;
}

function stop() {
    state = undefined;
    task = undefined;
    done = new Set();
    setPractice();
    if (document.activeElement.matches('#next-task, #repeat-task')) {
        byId('practise').focus(); // they go
    }
    showTask();
}

/// Sets the next task. Returns a sentence about it.
function advance() {
    const number = done.size;
    [task] = openTasks();
    if (!task) {
        stop();
        return number > 0 ? `That was the last of ${count(number, 'task')}.` : 'There are no tasks for this state.';
    }
    setPractice({ question, onJudged });
    showTask();
    return taskText(task);
}

function onJudged({ right, text }) {
    const isOpen = openTasks().some(entry => nameOf(entry) === nameOf(task));
    if (right) {
        done.add(nameOf(task));
    }
    describe(`${right ? 'Right.' : 'Not yet.'} ${text} ${right || !isOpen ? advance() : taskText(task)}`);
}

on('#practise', 'click', () => {
    if (state) {
        stop();
        showStatus('The tasks have ended.');
    } else {
        state = byId('learn-state').value || device.state;
        showStatus(advance());
    }
});
on('#next-task', 'click', () => {
    done.add(nameOf(task));
    showStatus(advance());
});
on('#repeat-task', 'click', () => {
    setPractice({ question, onJudged });
    showStatus(taskText(task));
});
for (const choice of ['#one-hand', '#learn-state']) {
    on(choice, 'change', () => {
        if (state) {
            state = byId('learn-state').value || device.state;
            showStatus(advance());
        }
    });
}
on('#learning', 'change', stop);
