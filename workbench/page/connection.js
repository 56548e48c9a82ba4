// SPDX-License-Identifier: MIT
// Requests to the simulator, and the stream of its events.
import { byId, saveFile, setText } from './dom.js';
import { attempt, begin } from './messages.js';

const answerTimeout = 15000; // milliseconds
const searchTimeout = 60000; // milliseconds; lists of thousands of rows are searched one after the other
const retryDelay = 3000; // milliseconds
const maxStreams = 5; // a browser has six connections to a server, for all its pages and requests

let status = 'first'; // then 'open' or 'lost'
let client = 0; // the name under which the simulator knows this page's keys
let epoch = 0; // increases when the statements in the queue become void
let queue = Promise.resolve();

export const isConnected = () => status === 'open';

async function errorOf(response) {
    const { error, faults = [] } = await response.json().catch(() => ({}));
    const lines = faults.map(({ line, text }) => `Line ${line}: ${text}`);
    const text = error ?? `The simulator answers with status ${response.status}.`;
    return Object.assign(new Error(text), { isAnswer: true, lines });
}

async function request(path, options = {}) {
    const response = await fetch(path, { signal: AbortSignal.timeout(answerTimeout), ...options }).catch(() => {
        throw new Error('The simulator does not answer.');
    });
    if (!response.ok) {
        throw await errorOf(response);
    }
    return response;
}

export const getJson = async path => (await request(path)).json();
export const getText = async path => (await request(path)).text();
export const post = (path, body = '', headers = {}) => request(path, { method: 'POST', body, headers });
export const postScript = (path, script, headers = {}) =>
    post(path, script, { 'Content-Type': 'text/plain', ...headers });
export const postJson = async (path, value) =>
    (await post(path, JSON.stringify(value), { 'Content-Type': 'application/json' })).json();

/// Asks for what is found in key lists.
export async function search(path, keyLists) {
    const headers = { 'Content-Type': 'application/json' };
    const signal = AbortSignal.timeout(searchTimeout);
    return (await request(path, { method: 'POST', body: JSON.stringify({ keyLists }), headers, signal })).json();
}

/// Sends statements of a key script after all earlier ones: a release never overtakes its press.
/// `isWanted` is called when it is their turn; they are dropped if it returns false.
export function send(statements, isWanted = () => true) {
    const mine = epoch;
    const sent = queue.then(async () => {
        if (mine === epoch && isWanted()) {
            await postScript('/api/steps', statements, { 'X-Client': String(client) });
            setText(byId('alert'), '');
        }
    });
    queue = sent.catch(() => {});
    return sent;
}

/// Sends statements from a page that is being left: drops the queue, and does not wait for an answer.
export function sendOnLeaving(statements) {
    ++epoch;
    if (statements.length > 0) {
        navigator.sendBeacon(`/api/steps?client=${client}`, statements.join('\n'));
    }
}

export function restart(changes) {
    begin('restart');
    return attempt(post('/api/restart', JSON.stringify(changes), { 'Content-Type': 'application/json' }));
}

/// Returns whether the file was downloaded; shows the error otherwise.
export function download(path, fileName) {
    const save = async () => saveFile(await (await request(path)).blob(), fileName);
    return attempt(save());
}

function lose(reason, { onLost }) {
    if (status !== 'lost') {
        status = 'lost';
        ++epoch;
        onLost(`${reason} The page keeps trying.`);
    }
}

function open(handlers) {
    const events = new EventSource('/api/events');
    events.addEventListener('snapshot', ({ data }) => {
        const snapshot = JSON.parse(data);
        const isAgain = status === 'lost';
        status = 'open';
        client = snapshot.client;
        handlers.onSnapshot(snapshot, isAgain);
    });
    events.addEventListener('entry', ({ data }) => handlers.onEntry(JSON.parse(data)));
    events.addEventListener('error', () => {
        if (events.readyState === EventSource.CLOSED) {
            // The browser does not reconnect after a refusal.
            lose('The simulator accepts no more pages at the moment.', handlers);
            setTimeout(open, retryDelay, handlers);
        } else {
            lose('There is no connection to the simulator.', handlers);
        }
    });
}

/// Returns whether the lock was free; this page keeps it then.
function tryLock(name) {
    return new Promise(resolve => {
        navigator.locks.request(name, { ifAvailable: true }, lock => {
            resolve(lock !== null);
            return lock && new Promise(() => {});
        });
    });
}

/// Opens the stream of events, unless so many pages of this browser have one that their requests would find no
/// connection; retries then. `handlers` are `onSnapshot`, which also gets whether the connection was lost before,
/// `onEntry` and `onLost`, which gets the reason.
export async function connect(handlers) {
    for (let place = 1; place <= maxStreams; ++place) {
        if (await tryLock(`event stream ${place}`)) {
            open(handlers);
            return;
        }
    }
    lose('This browser has the panel open in as many pages as it can serve.', handlers);
    setTimeout(connect, retryDelay, handlers);
}
