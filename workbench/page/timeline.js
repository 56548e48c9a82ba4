// SPDX-License-Identifier: MIT
// What happened at the device, over time: as a picture, and as a table with the same content.
import { setText } from './dom.js';
import { Drawing } from './timelineDrawing.js';
import { longTimesOf, prolong, timelineModel, unknownTimes } from './timelineModel.js';
import { buildParts } from './timelineParts.js';
import { summary } from './timelineRows.js';
import { svgElement, svgNamespace, tickStep } from './timelineShapes.js';
import { style } from './timelineStyle.js';
import { seconds } from './timelineTexts.js';

const maxEntries = 10000;
const minimumWidth = 640;
const firstSpan = 15000;
const shortestSpan = 200;
/// Between two drawings of the picture, and of the table, as time passes.
const pictureInterval = 100;
const tableInterval = 1000;
/// How far the picture moves by one key press or button, in parts of its width.
const moveBy = 0.25;
/// Room for the words next to what happens now.
const aheadOfNow = 0.12;
/// How many steps of the slider go through the time that is shown.
const stepsOfSlider = 10;

/// Shows the entries of a session in `container`: buttons, the picture, and the table with the same content.
export class Timeline {
    #entries = [];
    #shown;
    #lost; // the moment at which the connection was lost
    #fits = false; // whether all is in sight, however long it becomes
    #isNew = true; // whether it was not drawn yet
    #times = unknownTimes;
    #longTimes = {};
    #model = timelineModel([]);
    #stale = true;
    #clock = { at: 0, stamp: performance.now() };
    #view = { from: 0, to: firstSpan };
    #lastDrawing = 0;
    #lastTable = 0;
    #parts;
    #announce;
    #calm = matchMedia('(prefers-reduced-motion: reduce)');

    /// `announce` is given what is shown when a key or a button has changed it.
    constructor(container, announce = () => {}) {
        this.#announce = announce;
        this.#parts = buildParts(container);
        this.#connect();
        new ResizeObserver(() => this.#draw()).observe(this.#parts.frame);
        const tick = now => {
            this.#onFrame(now);
            requestAnimationFrame(tick);
        };
        requestAnimationFrame(tick);
    }

    /// Takes in what has just happened.
    add(entry) {
        this.#entries.push(entry);
        if (this.#entries.length > maxEntries) {
            this.#entries.splice(0, this.#entries.length - maxEntries);
        }
        this.#setClock(entry.at);
        this.#stale = true;
    }

    /// Begins with other entries; `now` is the time on the device's clock, without it that of the last entry.
    reset(entries, now = entries[entries.length - 1]?.at ?? 0) {
        this.#entries = entries.slice(-maxEntries);
        this.#lost = undefined;
        this.#setNote('');
        this.#setClock(now);
        this.#stale = true;
    }

    /// Takes the times from the device's description.
    setTimes(times) {
        this.#times = times;
    }

    /// Nothing is known from now on, until `reset`; `note` says so.
    stop(note) {
        this.#lost = this.#liveNow();
        this.#setNote(note);
    }

    #setNote(text) {
        this.#parts.note.textContent = text;
        this.#parts.note.hidden = text === '';
    }

    /// The key card knows the times of the long presses; they count from the last start of the device on.
    setCard(card) {
        this.#longTimes = longTimesOf(card, this.#times);
        const starts = entry => entry.type === 'device' && entry.status === 'starting';
        const last = this.#entries.reduce((found, entry, index) => (starts(entry) ? index : found), -1);
        if (last >= 0) {
            this.#entries[last] = { ...this.#entries[last], longTimes: this.#longTimes };
        }
        this.#stale = true;
    }

    #setClock(at) {
        this.#clock = { at, stamp: performance.now() };
    }

    #now() {
        return this.#shown?.now ?? this.#liveNow();
    }

    #liveNow() {
        return this.#lost ?? this.#clock.at + performance.now() - this.#clock.stamp;
    }

    #connect() {
        const { buttons, frame, position, table } = this.#parts;
        buttons.pause.addEventListener('click', () => {
            this.#shown ? this.#resume() : this.#pause();
            this.#announce(this.#shown ? 'Paused.' : 'Live again.');
        });
        const onClick = (button, change) => button.addEventListener('click', () => this.#change(change));
        onClick(buttons.zoomIn, () => this.#zoom(0.5));
        onClick(buttons.zoomOut, () => this.#zoom(2));
        onClick(buttons.fit, () => this.#fit());
        onClick(buttons.earlier, () => this.#move(-moveBy));
        onClick(buttons.later, () => this.#move(moveBy));
        buttons.save.addEventListener('click', () => this.#save());
        position.addEventListener('input', () => this.#showUpTo(Number(position.value)));
        frame.addEventListener('keydown', event => this.#onKey(event));
        // Screen readers say little or nothing of an application that gets the focus.
        frame.addEventListener('focus', () =>
            this.#announce(`Drawing, ${this.#sight()}. Arrow keys move it, plus and minus zoom, 0 shows all.`),
        );
        table.details.addEventListener('toggle', () => this.#fillTable());
    }

    #onKey(event) {
        const actions = {
            ArrowLeft: () => this.#move(-moveBy),
            ArrowRight: () => this.#move(moveBy),
            PageUp: () => this.#move(-1),
            PageDown: () => this.#move(1),
            Home: () => this.#showUpTo(this.#model.from + this.#span()),
            End: () => this.#showUpTo(this.#model.to),
            '+': () => this.#zoom(0.5),
            '-': () => this.#zoom(2),
            0: () => this.#fit(),
        };
        if (Object.hasOwn(actions, event.key) && !event.ctrlKey && !event.altKey && !event.metaKey) {
            event.preventDefault();
            this.#change(actions[event.key]);
        }
    }

    #change(change) {
        change();
        this.#announce(this.#sight());
    }

    #sight() {
        const before = Math.max(this.#model.to - this.#view.to, 0);
        const end = before > 0 ? `${seconds(before, 1)} before the end` : 'the end';
        return `${seconds(this.#span(), 1)} up to ${end}`;
    }

    #span() {
        return this.#view.to - this.#view.from;
    }

    #zoom(factor) {
        this.#fits = false;
        const longest = Math.max(this.#model.to - this.#model.from, firstSpan) * 1.1;
        const span = Math.min(Math.max(this.#span() * factor, shortestSpan), longest);
        const middle = (this.#view.from + this.#view.to) / 2;
        this.#view = this.#shown
            ? { from: middle - span / 2, to: middle + span / 2 }
            : { from: this.#view.to - span, to: this.#view.to };
        this.#draw();
    }

    #fit() {
        this.#fits = !this.#shown;
        this.#showAll();
        this.#draw();
    }

    #showAll() {
        const edge = Math.max(this.#model.to - this.#model.from, shortestSpan) * 0.02;
        this.#view = {
            from: this.#model.from,
            to: Math.max(this.#model.to, this.#model.from + shortestSpan) + edge,
        };
    }

    #move(parts) {
        this.#showUpTo(this.#view.to + parts * this.#span());
    }

    /// Who looks at the past wants it to stay.
    #showUpTo(to) {
        this.#pause();
        this.#fits = false;
        const span = this.#span();
        const end = Math.min(Math.max(to, this.#model.from + span), this.#lastPosition());
        this.#view = { from: end - span, to: end };
        this.#draw();
    }

    #lastPosition() {
        return Math.max(this.#model.to + this.#span() * aheadOfNow, this.#model.from + this.#span());
    }

    #pause() {
        if (!this.#shown) {
            this.#refresh();
            this.#shown = { entries: this.#entries.slice(), now: this.#now() };
            this.#fillTable();
        }
        this.#parts.buttons.pause.textContent = 'Resume';
        this.#draw();
    }

    #resume() {
        this.#shown = undefined;
        this.#stale = true;
        this.#parts.buttons.pause.textContent = 'Pause';
        this.#refresh();
        this.#follow();
        this.#draw();
        this.#fillTable();
    }

    #onFrame(now) {
        if (this.#shown || now - this.#lastDrawing < pictureInterval || !this.#isVisible()) {
            return;
        }
        this.#lastDrawing = now;
        const changed = this.#stale;
        this.#refresh();
        const isStill = this.#lost !== undefined && !changed;
        if (!isStill && (this.#follow() || changed)) {
            this.#draw();
        }
        if (now - this.#lastTable > tableInterval) {
            this.#lastTable = now;
            this.#fillTable();
        }
    }

    #isVisible() {
        return this.#parts.frame.clientWidth > 0;
    }

    #refresh() {
        const run = this.#model.runs[this.#model.runs.length - 1];
        if (!this.#stale && !this.#model.open && run) {
            prolong(this.#model, Math.max(this.#model.to, this.#now() + run.offset));
            return;
        }
        const entries = this.#shown?.entries ?? this.#entries;
        this.#model = timelineModel(entries, this.#times, this.#longTimes, this.#now());
        this.#stale = false;
    }

    /// Keeps the latest moment in sight; in steps where motion is not wanted. Whether the view has moved.
    #follow() {
        if (this.#fits) {
            return this.#followAll();
        }
        const span = this.#span();
        if (this.#calm.matches && this.#model.to <= this.#view.to && this.#model.to >= this.#view.from) {
            return false;
        }
        const to = this.#model.to + span * (this.#calm.matches ? 0.5 : aheadOfNow);
        this.#view = { from: to - span, to };
        return true;
    }

    #followAll() {
        if (this.#calm.matches && this.#model.to <= this.#view.to && this.#model.from === this.#view.from) {
            return false;
        }
        this.#showAll();
        if (this.#calm.matches) {
            this.#view.to += this.#span() * 0.5;
        }
        return true;
    }

    #draw() {
        if (!this.#isVisible()) {
            return;
        }
        const { frame, svg, picture, description, position } = this.#parts;
        const width = Math.max(frame.clientWidth, minimumWidth);
        const { groups, height } = new Drawing(this.#model, this.#view, width).draw();
        picture.replaceChildren(...groups);
        svg.setAttribute('viewBox', `0 0 ${width} ${height}`);
        svg.setAttribute('width', width);
        svg.setAttribute('height', height);
        if (this.#isNew) {
            this.#isNew = false;
            frame.scrollLeft = frame.scrollWidth; // where it does not fit: what happens now
        }
        setText(description, summary(this.#model));
        if (document.activeElement !== position || this.#shown) {
            this.#showPosition(position);
        }
    }

    #showPosition(position) {
        const last = Math.round(this.#lastPosition());
        const step = tickStep(this.#span() / stepsOfSlider);
        position.max = last;
        position.min = last - Math.ceil((last - this.#model.from) / step) * step; // the last position is on a step
        position.step = step;
        position.value = Math.round(this.#view.to);
        position.setAttribute('aria-valuetext', this.#sight());
    }

    #fillTable() {
        if (this.#isVisible()) {
            this.#parts.table.fill(this.#model);
        }
    }

    #save() {
        const copy = this.#parts.svg.cloneNode(true);
        copy.setAttribute('xmlns', svgNamespace);
        copy.prepend(svgElement('style', {}, style));
        const text = new XMLSerializer().serializeToString(copy);
        const link = document.createElement('a');
        link.href = URL.createObjectURL(new Blob([text], { type: 'image/svg+xml' }));
        link.download = 'timeline.svg';
        link.click();
        setTimeout(() => URL.revokeObjectURL(link.href), 1000);
    }
}
