// SPDX-License-Identifier: MIT
// The view Recording: the recording of the session, and the replay of key scripts.
import { download, getText, post, postScript } from './connection.js';
import { byId, element, line, list, on, setText } from './dom.js';
import { announce, ask, attempt, begin, news, showFault, showStatus } from './messages.js';
import { focusView } from './views.js';
import { replayText } from './wording.js';

const recordedTypes = ['key', 'record', 'state', 'command', 'console', 'heading'];

let isUnsaved = false; // whether something was recorded that was not downloaded
let shownReplay = 0; // the id of its entry
let isReplaying = false;

/// Follows the entries of the session, old and new.
export function followRecording({ type, status, former }) {
    if (type === 'recording' && former && isUnsaved) {
        news.add('The previous recording can be downloaded in the view Recording.');
    }
    if (type === 'recording' && status === 'recording') {
        isUnsaved = false;
    } else if (recordedTypes.includes(type)) {
        isUnsaved = true;
    }
}

/// `former` says whether there is a previous recording; nothing changes about it if it is missing.
export function showRecording({ status, former = !byId('download-former').hidden }) {
    byId('download-former').hidden = !former;
    const isFull = status === 'full';
    const text = isFull ? 'The recording is full: what happens now is not in it.' : 'The device is being recorded.';
    setText(byId('recording-status'), text);
}

function showResult(title, lines) {
    const items = lines.map(textContent => element('li', { textContent }));
    byId('replay-result').replaceChildren(line(title), ...(items.length > 0 ? [list(items)] : []));
}

function showPlaying() {
    const banner = byId('playing');
    if (!isReplaying && banner.contains(document.activeElement)) {
        focusView(); // the button goes
    }
    banner.hidden = !isReplaying;
}

export function showReplay(entry) {
    // A result is not read again.
    if (entry && entry.id !== shownReplay) {
        shownReplay = entry.id;
        isReplaying = entry.status === 'playing';
        showPlaying();
        showResult(replayText(entry), entry.differences ?? []);
    }
}

/// Asks before a recording that was not downloaded ends. Returns whether it may.
async function mayEndRecording(answer) {
    const question =
        'The current recording ends. It has not been downloaded; ' +
        'until the next restart it can be downloaded as the previous recording.';
    return !isUnsaved || ask(question, answer);
}

async function startReplay(event) {
    event.preventDefault();
    const [file] = byId('replay-file').files;
    if (!file) {
        byId('replay-file').focus();
        showFault('Choose a key script first.');
        return;
    }
    if (await mayEndRecording('Replay the script')) {
        await replay(() => file.text());
    }
}

async function replay(readScript) {
    try {
        const script = await readScript();
        ['restart', 'replay'].forEach(begin);
        await postScript('/api/replay', script);
        isReplaying = true; // its entry comes when the device is ready
    } catch ({ message, lines = [] }) {
        const title = lines.length ? 'The script is faulty:' : message;
        showResult(title, lines);
        [title, ...lines].forEach(text => announce(text, 'fault'));
    }
}

on('#restart-recording', 'click', async () => {
    if (!(await mayEndRecording('Start a new recording'))) {
        return;
    }
    begin('restart');
    if (await attempt(post('/api/recording'))) {
        showStatus('A new recording has begun.');
    }
});
on('#download-recording', 'click', async () => {
    if (await download('/api/recording.keys', 'recording.keys')) {
        isUnsaved = false;
    }
});
on('#download-former', 'click', () => download('/api/former-recording.keys', 'former-recording.keys'));
on('#replay-form', 'submit', startReplay);
on('#play-demonstration', 'click', async () => {
    if (await mayEndRecording('Play the demonstration')) {
        await replay(() => getText('/demonstration.keys'));
    }
});
on('#stop-replay, #stop-playing', 'click', () => {
    if (isReplaying) {
        begin('replay');
        attempt(post('/api/replay/stop'));
    } else {
        showStatus('No replay is running.');
    }
});
