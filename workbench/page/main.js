// SPDX-License-Identifier: MIT
// The front panel: the page sends what the user does as statements of a key script and shows what the device does.
import { announceEntry } from './announcements.js';
import { answers, consoleLog, fillCommandChoices, followCommands, followConsole, resetAnswers } from './commands.js';
import { showDoButtons } from './card.js';
import { connect } from './connection.js';
import { device, deviceStatus, setDevice, updateDevice } from './device.js';
import { announced, speakAloud, spoken } from './feedback.js';
import { showHeader } from './header.js';
import { releaseMomentary, resetKeys, showKeys, updateKeys } from './keys.js';
import { showLearning } from './learn.js';
import './letterKeys.js';
import { listLog } from './lists.js';
import { end, kindOf, news, showFault, showStatus } from './messages.js';
import { showPanel } from './panel.js';
import './practise.js';
import { expectReadiness, loadAfterConnecting, reportReadiness } from './readiness.js';
import { followRecording, showRecording, showReplay } from './recording.js';
import './statements.js';
import { strip } from './strip.js';
import { timeline } from './timelineView.js';
import { setUpViews } from './views.js';

const logs = [spoken, announced, strip, answers, consoleLog, listLog];

let lastId = 0; // of an entry

function showDevice() {
    showHeader();
    showPanel();
    showLearning();
    showDoButtons(deviceStatus() === 'ready' ? device.state : undefined);
    showKeys();
}

const notAnswering = 'The daemon does not answer. What is pressed waits until it does.';
const endText = reason => `${reason ?? 'The daemon has ended.'} "Restart the device" is at the top of the page.`;

function reportDevice({ status, reason }) {
    if (status === 'ended') {
        end('restart');
        showFault(endText(reason));
    } else if (status === 'starting') {
        showStatus('The device restarts.', kindOf('restart'));
        expectReadiness();
    } else {
        reportReadiness();
    }
}

function reportState({ state }) {
    showStatus(`State ${state}.`, kindOf('state'));
    end('state');
}

/// What has changed while there was no connection; `former` is the device as it was known before.
function changeText(former) {
    if (device.status === 'ended') {
        return former.status === 'ended' ? '' : ` ${endText(device.reason)}`;
    }
    const isHung = device.answering === false && former.answering !== false;
    const isOtherState = former.state && former.state !== device.state;
    return (isOtherState ? ` State ${device.state}.` : '') + (isHung ? ` ${notAnswering}` : '');
}

/// What the page does about a new entry, after it has shown the new state of the device.
const reactions = {
    device: reportDevice,
    state: reportState,
    key: showKeys,
    daemon: ({ answering }) => (answering ? showStatus('The daemon answers again.', 'event') : showFault(notAnswering)),
    test: ({ running }) => showStatus(`The keyboard test ${running ? 'is running' : 'has ended'}.`, 'event'),
    recording: showRecording,
    replay: showReplay,
    speech: speakAloud,
    cancel: speakAloud,
    console: followConsole,
    log: followConsole,
    output: followConsole,
};

const sinceLastStart = history => history.slice(history.findLastIndex(({ status }) => status === 'starting') + 1);

function onSnapshot({ history, at, device: description }, isAgain) {
    const former = device;
    lastId = history.at(-1)?.id ?? 0;
    history.forEach(followRecording);
    news.clear();
    setDevice(description);
    resetKeys(device.held);
    showRecording({ status: device.recording ? 'recording' : 'full', former: device.formerRecording });
    showReplay(history.findLast(({ type }) => type === 'replay'));
    logs.forEach(log => log.reset(history));
    resetAnswers(history, at);
    listLog.reset(sinceLastStart(history));
    timeline.setTimes(device.times);
    timeline.reset(history, at);
    if (isAgain) {
        showStatus(`Connected again.${changeText(former)}`, 'fault');
    }
    fillCommandChoices();
    showDevice();
    followConsole();
    loadAfterConnecting();
}

function onEntry(entry) {
    if (entry.id <= lastId) {
        return;
    }
    lastId = entry.id;
    const isDeviceChanged = updateDevice(entry);
    updateKeys(entry);
    followRecording(entry);
    followCommands(entry);
    logs.forEach(log => log.add(entry));
    timeline.add(entry);
    announceEntry(entry);
    if (isDeviceChanged) {
        showDevice();
    }
    reactions[entry.type]?.(entry);
}

function onLost(reason) {
    resetKeys();
    showDevice();
    timeline.stop('There is no connection to the simulator. The timeline ends where it was lost.');
    showFault(reason);
}

setUpViews(releaseMomentary, followConsole);
connect({ onSnapshot, onEntry, onLost });
