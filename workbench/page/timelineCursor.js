// SPDX-License-Identifier: MIT
// The events of the timeline that are chosen and pointed at.
import { setText } from './dom.js';
import { detailsHint } from './timelineParts.js';
import { questionOf } from './timelineQuestion.js';
import { eventText } from './timelineRows.js';

/// Marks these events in the picture, and shows the details of one of them. Knows them by their names, because a model
/// may begin again.
export class TimelineCursor {
    #chosen;
    #pointed;
    #parts;
    #announce;
    #ask;

    /// `ask` gets a question about keys and resolves with the `lines` of its answer.
    constructor(parts, announce, ask) {
        this.#parts = parts;
        this.#announce = announce;
        this.#ask = ask;
    }

    /// The next event in this direction; without a chosen one, the first or last one in sight.
    neighbour(direction, { events }, sight) {
        const index = events.findIndex(({ name }) => name === this.#chosen);
        if (index >= 0) {
            return events[index + direction];
        }
        return direction > 0
            ? events.find(({ from }) => from >= sight.from)
            : events.findLast(({ from }) => from <= sight.to);
    }

    choose(event) {
        this.#chosen = event?.name;
        this.#showAnswer([]);
        if (event) {
            this.#announce(eventText(event));
        }
    }

    /// Returns whether that is another event than before.
    point(event) {
        const isOther = this.#pointed !== event?.name;
        this.#pointed = event?.name;
        return isOther;
    }

    show({ events }, drawing) {
        const find = name => name && events.find(event => event.name === name);
        const [chosen, pointed] = [find(this.#chosen), find(this.#pointed)];
        const { marks, details } = this.#parts;
        const shapes = [chosen && drawing?.markOf(chosen, 'mark')];
        shapes.push(pointed && pointed !== chosen && drawing?.markOf(pointed, 'mark pointed'));
        marks.replaceChildren(...shapes.filter(Boolean));
        const shown = pointed ?? chosen;
        setText(details, shown ? eventText(shown) : detailsHint);
        details.classList.toggle('no-print', !shown);
    }

    /// On a narrow page, the drawing is wider than its frame.
    scrollToMark() {
        const { frame, marks } = this.#parts;
        const x = Number(marks.firstChild?.getAttribute('x'));
        if (x < frame.scrollLeft || x > frame.scrollLeft + frame.clientWidth) {
            frame.scrollLeft = x - frame.clientWidth / 2;
        }
    }

    /// Asks why the chosen key did what it did; shows and announces the answer.
    async explain(model) {
        const event = model.events.find(({ name }) => name === this.#chosen);
        if (event?.kind !== 'key') {
            this.#announce('Go to a key first, with "Previous event" or "Next event".');
            return;
        }
        const { fault, ...question } = questionOf(model, event);
        const lines = fault ? [fault] : await this.#ask(question).catch(error => [error.message]);
        if (this.#chosen === event.name) {
            this.#showAnswer(lines);
            this.#announce(reasonsOf(lines));
        }
    }

    #showAnswer(lines) {
        const { answer } = this.#parts;
        answer.hidden = lines.length === 0;
        answer.querySelector('p').hidden = lines.length === 1; // a fault
        setText(answer.querySelector('pre'), lines.join('\n'));
    }
}

/// The reasons in an answer, without the rule of each key; the rules if there are no reasons.
function reasonsOf(lines) {
    const isRule = line => /^\s+\d/.test(line);
    const reasons = lines.filter(line => !isRule(line));
    const rules = lines.map(line => `${line.replace(/\s*\[.*\]$/, '')}.`);
    return (reasons.some(Boolean) ? reasons : rules)
        .map(line => line.trim().replaceAll(/ {2,}/g, ' '))
        .join(' ')
        .trim();
}
