// SPDX-License-Identifier: MIT
// Puts what happens at the device into words.

const usualSender = 'KeyboardHandler';
const replayTexts = { playing: 'The script is being replayed.', stopped: 'The replay was stopped.' };

export const count = (number, noun) => `${number} ${noun}${number === 1 ? '' : 's'}`;
export const seconds = milliseconds => `${milliseconds / 1000} s`;
export const withNotes = (text, notes = []) => [text, ...notes].join(' ');
export const isNested = value => typeof value === 'object' && value !== null;

export function speechText({ text, observation }) {
    return text || observation.replace(/^speak (\S+) (\d+)$/, 'Sentence $2 of $1, which has no text');
}

export function actionText({ action, keys, receiver, sender }) {
    const names = keys.join(' ');
    const what = action === 'SingleKey' ? [names, 'single key'] : [action, names === action ? '' : names];
    const from = sender && sender !== usualSender ? `from ${sender}` : '';
    return [...what, `to ${receiver}`, from].filter(Boolean).join(', ');
}

/// Leaves out the usual sender.
export function routeText({ receiver, sender }) {
    const from = sender ? ` from ${sender}` : ' without a sender';
    return `to ${receiver || 'no service'}${sender === usualSender ? '' : from}`;
}

/// An announcement or a refusal as the page shows it.
export function eventText(entry) {
    const { type, action, keys } = entry;
    return type === 'refusal' ? refusalText(entry) : [action, ...keys, routeText(entry)].join(' ');
}

export const timesText = times => (times > 1 ? ` × ${times}` : '');
export const momentText = milliseconds => `${(milliseconds / 1000).toFixed(1)} s`;

export function refusalText({ reason, expected, current, action }) {
    const what = action ? `Refused: ${action}.` : 'Refused:';
    if (expected === undefined) {
        return `${what} ${reason}`;
    }
    return expected
        ? `${what} Expected state is ${expected}, but current state is ${current}.`
        : `${what} It is for no state, and the current state is ${current}.`;
}

export function answerText({ command, text, response }) {
    const { resultId, errorId, ...values } = response ?? { resultId: text };
    const words = Object.entries(values).map(([key, value]) => (isNested(value) ? `${key} below` : `${key} ${value}`));
    const fault = errorId === 'Undefined' ? undefined : errorId;
    return `${command || 'Command'}: ${[resultId, fault, ...words].filter(word => word !== undefined).join(', ')}.`;
}

export const unansweredText = ({ text, isFinal }) =>
    `${text}: the daemon ${isFinal ? 'did not answer' : 'has not answered yet'}.`;

export function replayText({ status, differences = [], expectations }) {
    const all = count(expectations, 'expectation');
    const different = `${count(differences.length, 'difference')}, with ${all}:`;
    return replayTexts[status] ?? (differences.length > 0 ? different : `Everything came as written: ${all}.`);
}

const sentence = text => (/[.!?]$/.test(text) ? text : `${text}.`);

/// "a, b and c"
export const joinWords = words => [words.slice(0, -1).join(', '), ...words.slice(-1)].filter(Boolean).join(' and ');

/// What a check finds, with its place in its file.
export const findingText = ({ line, column, level, message, remark }) =>
    `Line ${line}, column ${column}: ${level}: ${sentence([message, remark].filter(Boolean).join(': '))}`;

/// A place that explains a finding in `file`.
export const placeText = ({ file: other, line, column, remark }, file) =>
    [other === file ? '' : other, `Line ${line}, column ${column}`, sentence(remark)].filter(Boolean).join(': ');
