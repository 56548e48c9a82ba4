// SPDX-License-Identifier: MIT
// Times that the model of the timeline needs and the entries do not have.

/// Until the device describes itself: how long a released key waits for others, how long FactoryReset is held, and
/// when the kernel first repeats a held key.
export const unknownTimes = { singleKeyMs: 0, factoryResetMs: 0, repeatDelayMs: 0 };

/// The time of the long press of each key in milliseconds, from its first repetition; the card counts from the press.
export function longTimesOf(card, { repeatDelayMs }) {
    const groups = [...(card?.states ?? []).map(state => state.entries), card?.never ?? []];
    const rows = groups.flat().filter(row => row.kind === 'long' && row.holdMs >= repeatDelayMs);
    return Object.fromEntries(rows.map(row => [row.keys[0], row.holdMs - repeatDelayMs]));
}
