// SPDX-License-Identifier: MIT
// What a single entry says in the timeline.

export const simulatedValues = { Released: 0, Pressed: 1, Repeated: 2 };

/// What a SimulateKey command stands for; undefined for any other command.
export function simulatedKey(text) {
    const [, action, key] = /^SimulateKey(?: as \S+)? (\S+) (\S+)$/.exec(text) ?? [];
    return Object.hasOwn(simulatedValues, action ?? '') ? { action, key } : undefined;
}

export function momentOf(entry) {
    switch (entry.type) {
        case 'announcement':
            return { kind: 'announcement', text: announcementText(entry) };
        case 'refusal':
            return { kind: 'refusal', text: refusalText(entry) };
        case 'speech':
            return { kind: 'speech', text: entry.text };
        case 'cancel':
            return { kind: 'speech', text: '(speech cut off)' };
        case 'command':
            return { kind: 'command', text: entry.text };
        case 'console':
            return { kind: 'command', text: `console ${entry.text}` };
        case 'record':
            return { kind: 'command', text: `record ${entry.recordType} ${entry.code} ${entry.value}` };
        case 'heading':
            return { kind: 'heading', text: entry.text };
        default:
            return undefined;
    }
}

function announcementText(entry) {
    const keys = entry.keys.length > 0 ? ` (${entry.keys.join(', ')})` : '';
    return `${entry.action}${keys} to ${entry.receiver}`;
}

function refusalText(entry) {
    const what = entry.action ? `${entry.action} refused` : 'Refused';
    return entry.expected === undefined
        ? `${what}: ${entry.reason}`
        : `${what}: for ${entry.expected || 'no state'}, not for ${entry.current}`;
}

/// A key that is pressed in Startup is refused by itself, before it could be part of an action.
export function isOfAction({ expected, current }) {
    return expected !== undefined || current === undefined;
}
