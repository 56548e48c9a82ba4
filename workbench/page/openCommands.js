// SPDX-License-Identifier: MIT

/// The page shows a command as unanswered when it has waited this long for its answer.
export const answerPatience = 3000; // milliseconds

const unanswered = ({ text }, isFinal) => ({ type: 'unanswered', text, isFinal });

/// The commands that have no answer yet. The daemon answers them in order.
export class OpenCommands {
    #open = [];

    /// Takes in `entry`, the next one of the session, which came at `moment` of the page's clock. An answer gets the
    /// name of its `command`. Returns an entry of the type "unanswered" for each command that gets no answer any more,
    /// because the device restarts or has ended.
    take(entry, moment) {
        if (entry.type === 'command') {
            this.#open.push({ text: entry.text, moment, isReported: false });
        } else if (entry.type === 'answer') {
            entry.command = this.#open.shift()?.text.split(' ')[0] ?? '';
        }
        return entry.type === 'device' ? this.#open.splice(0).map(each => unanswered(each, true)) : [];
    }

    /// Returns such an entry for each command that has waited longer than `answerPatience`, once.
    late(moment) {
        const late = this.#open.filter(each => !each.isReported && moment - each.moment >= answerPatience);
        late.forEach(each => Object.assign(each, { isReported: true }));
        return late.map(each => unanswered(each, false));
    }

    /// Begins with the entries of `history`, the present being `at` on their clock and `moment` on the page's. Returns
    /// the history with the entries for commands without an answer added.
    reset(history, at, moment) {
        this.#open = [];
        const complete = history.flatMap(entry => [...this.take(entry, moment - at + entry.at), entry]);
        return [...complete, ...this.late(moment)];
    }
}
