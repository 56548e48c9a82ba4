// SPDX-License-Identifier: MIT
// Commands without an answer.

/// A command that has no answer for so long is shown as unanswered.
export const answerPatience = 3000; // milliseconds

/// The commands that have no answer yet. The daemon answers them in their order.
export class OpenCommands {
    #open = [];

    /// Takes in `entry`, the next one of the session, which came at `moment` of the page's clock. Comes back with the
    /// texts of the commands that get no answer any more, because the device starts again or has ended.
    take({ type, text }, moment) {
        switch (type) {
        case 'command':
            this.#open.push({ text, moment, isReported: false });
            return [];
        case 'answer':
            this.#open.shift();
            return [];
        case 'device':
            return this.#open.splice(0).map(each => each.text);
        default:
            return [];
        }
    }

    /// The texts of the commands that wait longer than `answerPatience`, each once.
    late(moment) {
        const late = this.#open.filter(each => !each.isReported && moment - each.moment >= answerPatience);
        late.forEach(each => { each.isReported = true; });
        return late.map(each => each.text);
    }

    /// Begins with the entries of `history`, the present being `at` on their clock and `moment` on the page's. Comes
    /// back with the history in which entries of the type "unanswered" stand for the commands without an answer.
    reset(history, at, moment) {
        this.#open = [];
        const told = [];
        for (const entry of history) {
            for (const text of this.take(entry, moment - at + entry.at)) {
                told.push({ type: 'unanswered', text, isFinal: true });
            }
            told.push(entry);
        }
        return [...told, ...this.late(moment).map(text => ({ type: 'unanswered', text, isFinal: false }))];
    }
}
