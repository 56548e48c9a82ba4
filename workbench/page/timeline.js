// SPDX-License-Identifier: MIT
// What happened at the device, over time: as a picture, and as a table with the same content.
import { saveFile, setText } from './dom.js';
import { TimelineCursor } from './timelineCursor.js';
import { Drawing } from './timelineDrawing.js';
import { TimelineHistory } from './timelineHistory.js';
import { buildParts } from './timelineParts.js';
import { followPointer } from './timelinePointer.js';
import { summary } from './timelineRows.js';
import { svgElement, svgNamespace, tickStep } from './timelineShapes.js';
import { Sight } from './timelineSight.js';
import { style } from './timelineStyle.js';

const minWidth = 640;
/// Between two drawings of the picture while something happens, while nothing does, and of the table.
const busyInterval = 100;
const idleInterval = 2000;
const tableInterval = 1000;
/// How far the picture moves by one key press or button, in parts of its width.
const moveBy = 0.25;
/// How many steps of the slider go through the time that is shown.
const stepsOfSlider = 10;
const keysHint =
    'Arrow keys move it, plus and minus zoom, 0 shows all, N and P go to the next and previous event, W says why.';

/// Shows the entries of a session in `container`: buttons, the picture, and the table with the same content. Does
/// nothing while it is not seen.
export class Timeline {
    #history = new TimelineHistory();
    #sight = new Sight();
    #isNew = true; // whether it was not drawn yet
    #drawing;
    #cursor;
    #isSeen = false;
    #timer;
    #isTimerBusy = false;
    #isDrawingDue = false;
    #lastTable = -Infinity;
    #parts;
    #announce;
    #calm = matchMedia('(prefers-reduced-motion: reduce)');

    /// `announce` is given what is shown when a key or a button has changed it. `ask` gets a question about keys, and
    /// resolves with the lines of the answer.
    constructor(container, announce, ask) {
        this.#announce = announce;
        this.#parts = buildParts(container, announce);
        this.#cursor = new TimelineCursor(this.#parts, announce, ask);
        this.#connect();
        new ResizeObserver(() => this.#wake()).observe(this.#parts.frame);
        document.addEventListener('visibilitychange', () => this.#wake());
    }

    /// Takes in what has just happened.
    add(entry) {
        this.#history.add(entry);
        this.#expectNews();
    }

    /// Begins with other entries; `now` is the time on the device's clock, without it that of the last entry.
    reset(entries, now = entries.at(-1)?.at ?? 0) {
        this.#history.reset(entries, now);
        this.#setNote('');
        this.#expectNews();
    }

    /// Takes the times from the device's description.
    setTimes(times) {
        this.#history.setTimes(times);
    }

    setCard(card) {
        this.#history.setCard(card);
        this.#expectNews();
    }

    /// Nothing is known from now on, until `reset`; `note` says so.
    stop(note) {
        this.#history.stop();
        this.#isDrawingDue = true;
        this.#setNote(note);
        this.#expectNews();
    }

    get #model() {
        return this.#history.model;
    }

    #setNote(text) {
        this.#parts.note.textContent = text;
        this.#parts.note.hidden = text === '';
    }

    #connect() {
        const { buttons, frame, position, table } = this.#parts;
        const onClick = (button, act) => button.addEventListener('click', act);
        onClick(buttons.pause, () => {
            this.#history.isFrozen ? this.#resume() : this.#pause();
            this.#announce(this.#history.isFrozen ? 'Paused.' : 'Live again.');
        });
        const keys = this.#keyActions();
        onClick(buttons.zoomIn, keys['+']);
        onClick(buttons.zoomOut, keys['-']);
        onClick(buttons.fit, keys[0]);
        onClick(buttons.earlier, keys.ArrowLeft);
        onClick(buttons.later, keys.ArrowRight);
        onClick(buttons.previous, keys.p);
        onClick(buttons.next, keys.n);
        onClick(buttons.why, keys.w);
        onClick(buttons.save, () => this.#save());
        onClick(buttons.print, () => window.print());
        position.addEventListener('input', () => this.#showUpTo(Number(position.value)));
        frame.addEventListener('keydown', event => this.#onKey(event, keys));
        // Screen readers say little or nothing of an application that gets the focus.
        frame.addEventListener('focus', () => this.#announce(`Drawing, ${this.#sightText()}. ${keysHint}`));
        table.details.addEventListener('toggle', () => this.#fillTable());
        followPointer(this.#parts.svg, this.#pointerActions());
    }

    #keyActions() {
        const change = act => () => {
            act();
            this.#announce(this.#sightText());
        };
        return {
            ArrowLeft: change(() => this.#move(-moveBy)),
            ArrowRight: change(() => this.#move(moveBy)),
            PageUp: change(() => this.#move(-1)),
            PageDown: change(() => this.#move(1)),
            Home: change(() => this.#showUpTo(this.#model.from + this.#sight.span)),
            End: change(() => this.#showUpTo(this.#model.to)),
            '+': change(() => this.#zoom(0.5)),
            '-': change(() => this.#zoom(2)),
            0: change(() => this.#fit()),
            n: () => this.#step(1),
            p: () => this.#step(-1),
            w: () => this.#cursor.explain(this.#model),
        };
    }

    #onKey(event, actions) {
        const key = event.key.length === 1 ? event.key.toLowerCase() : event.key;
        if (Object.hasOwn(actions, key) && !event.ctrlKey && !event.altKey && !event.metaKey) {
            event.preventDefault();
            actions[key]();
        }
    }

    #pointerActions() {
        const at = (x, y) => this.#drawing?.eventAt(x, y);
        const moveBy = pixels => this.#showUpTo(this.#sight.to + this.#drawing.timeOf(pixels), false);
        return {
            point: (x, y) => this.#point(at(x, y)),
            leave: () => this.#point(undefined),
            choose: (x, y) => this.#choose(at(x, y)),
            drag: dx => moveBy(-dx),
            scroll: moveBy,
            zoom: (factor, x) => this.#zoom(factor, this.#drawing.partAt(x)),
        };
    }

    #sightText() {
        return this.#sight.text(this.#model);
    }

    /// `part` of the sight keeps its place, while the picture is paused.
    #zoom(factor, part = 0.5) {
        this.#sight.zoom(factor, this.#history.isFrozen ? part : 1, this.#model);
        this.#draw();
    }

    #fit() {
        this.#sight.fit(!this.#history.isFrozen, this.#model);
        this.#draw();
    }

    #move(parts) {
        this.#showUpTo(this.#sight.to + parts * this.#sight.span);
    }

    /// Who looks at the past wants it to stay.
    #showUpTo(to) {
        this.#pause();
        this.#sight.showUpTo(to, this.#model);
        this.#draw();
    }

    #point(event) {
        if (this.#cursor.point(event)) {
            this.#cursor.show(this.#model, this.#drawing);
        }
    }

    #choose(event) {
        if (event) {
            this.#pause();
        }
        this.#cursor.choose(event);
        this.#cursor.show(this.#model, this.#drawing);
    }

    #step(direction) {
        const event = this.#cursor.neighbour(direction, this.#model, this.#sight);
        if (event) {
            this.#pause();
            this.#sight.showMoment(event.from, this.#model);
            this.#cursor.choose(event);
            this.#draw();
            this.#cursor.scrollToMark();
        } else {
            this.#announce(direction > 0 ? 'No later event.' : 'No earlier event.');
        }
    }

    #pause() {
        if (!this.#history.isFrozen) {
            this.#history.freeze();
            this.#fillTable();
            this.#parts.buttons.pause.textContent = 'Resume';
            this.#draw();
        }
    }

    #resume() {
        this.#history.thaw();
        this.#parts.buttons.pause.textContent = 'Pause';
        this.#history.update(Infinity);
        this.#sight.follow(this.#model, this.#calm.matches);
        this.#draw();
        this.#fillTable();
        this.#schedule();
    }

    /// The timeline may have come into sight or left it, or got another size.
    #wake() {
        this.#isSeen = this.#parts.frame.clientWidth > 0 && !document.hidden;
        this.#isDrawingDue = true;
        this.#tick();
    }

    #expectNews() {
        if (this.#isSeen && !(this.#timer && this.#isTimerBusy)) {
            this.#schedule(busyInterval);
        }
    }

    #schedule(interval = this.#model.open ? busyInterval : idleInterval) {
        clearTimeout(this.#timer);
        this.#isTimerBusy = interval < idleInterval;
        this.#timer = this.#history.stands ? undefined : setTimeout(() => this.#tick(), interval);
    }

    #tick() {
        clearTimeout(this.#timer);
        this.#timer = undefined;
        if (!this.#isSeen) {
            return;
        }
        const hasStood = this.#history.stands;
        this.#isDrawingDue = this.#history.update() || this.#isDrawingDue;
        if (!this.#history.isFrozen && !this.#history.isComplete) {
            this.#schedule(0);
            return;
        }
        const hasMoved = !hasStood && this.#sight.follow(this.#model, this.#calm.matches);
        if (hasMoved || this.#isDrawingDue) {
            this.#draw();
        }
        if (performance.now() - this.#lastTable >= tableInterval) {
            this.#fillTable();
        }
        this.#schedule();
    }

    #draw() {
        if (!this.#isSeen) {
            return;
        }
        this.#isDrawingDue = false;
        const { frame, svg, picture, description, position } = this.#parts;
        const width = Math.max(frame.clientWidth, minWidth);
        this.#drawing = new Drawing(this.#model, this.#sight, width);
        const { groups, height } = this.#drawing.draw();
        picture.replaceChildren(...groups);
        svg.setAttribute('viewBox', `0 0 ${width} ${height}`);
        svg.setAttribute('width', width);
        svg.setAttribute('height', height);
        if (this.#isNew) {
            this.#isNew = false;
            frame.scrollLeft = frame.scrollWidth; // where it does not fit: what happens now
        }
        setText(description, summary(this.#model));
        if (document.activeElement !== position || this.#history.isFrozen) {
            this.#showPosition(position);
        }
        this.#cursor.show(this.#model, this.#drawing);
    }

    #showPosition(position) {
        const last = Math.round(this.#sight.lastEnd(this.#model));
        const step = tickStep(this.#sight.span / stepsOfSlider);
        position.max = last;
        position.min = last - Math.ceil((last - this.#model.from) / step) * step; // the last position is on a step
        position.step = step;
        position.value = Math.round(this.#sight.to);
        position.setAttribute('aria-valuetext', this.#sightText());
    }

    #fillTable() {
        if (this.#isSeen) {
            this.#lastTable = performance.now();
            this.#parts.table.fill(this.#model);
        }
    }

    #save() {
        const copy = this.#parts.svg.cloneNode(true);
        copy.setAttribute('xmlns', svgNamespace);
        copy.prepend(svgElement('style', {}, style));
        saveFile(new Blob([new XMLSerializer().serializeToString(copy)], { type: 'image/svg+xml' }), 'timeline.svg');
    }
}
