// SPDX-License-Identifier: MIT
// What was spoken, announced and refused last, next to the keys of a narrow page.
import { byId, setText } from './dom.js';
import { eventText, speechText, timesText } from './wording.js';

const outcomes = ['announcement', 'refusal'];
let last = { text: '', times: 0 };

function show(entry) {
    if (entry.type === 'speech') {
        setText(byId('strip-spoken'), `Spoken: ${speechText(entry)}`);
    } else if (outcomes.includes(entry.type)) {
        const text = eventText(entry);
        last = { text, times: text === last.text ? last.times + 1 : 1 };
        setText(byId('strip-announced'), `${text}${timesText(last.times)}`);
        byId('strip-announced').classList.toggle('refusal', entry.type === 'refusal');
    }
}

export const strip = {
    reset(history) {
        last = { text: '', times: 0 };
        setText(byId('strip-spoken'), 'Nothing spoken yet');
        setText(byId('strip-announced'), 'Nothing announced yet');
        history.forEach(show);
    },
    add: show,
};
