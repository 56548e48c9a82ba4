// SPDX-License-Identifier: MIT
// What a mouse does in the drawing of the timeline. Fingers scroll and tap as elsewhere.

/// How far the pointer moves before a press is a drag, in pixels.
const minDrag = 4;
/// A turn of the wheel by this zooms by the factor two.
const wheelOfDouble = 240;
const pixelsOfLine = 16;

/// Follows the pointer over the `picture`. Calls `actions`, with places in the picture and distances in pixels:
/// `point(x, y)` as it moves, `leave()`, `choose(x, y)` for a click or tap, `drag(dx)`, `scroll(dx)` for a wheel that
/// turns sideways or with Shift, and `zoom(factor, x)` for a wheel with Ctrl.
export function followPointer(picture, actions) {
    let last; // x of the pressed pointer
    let isDrag = false;
    const placeOf = ({ clientX, clientY }) => {
        const { left, top } = picture.getBoundingClientRect();
        return [clientX - left, clientY - top];
    };
    picture.addEventListener('pointerdown', event => {
        isDrag = false;
        last = event.button === 0 && event.pointerType !== 'touch' ? event.clientX : undefined;
    });
    picture.addEventListener('pointermove', event => {
        if (last !== undefined && (isDrag || Math.abs(event.clientX - last) >= minDrag)) {
            isDrag = true;
            picture.setPointerCapture(event.pointerId);
            actions.drag(event.clientX - last);
            last = event.clientX;
        } else {
            actions.point(...placeOf(event));
        }
    });
    for (const type of ['pointerup', 'pointercancel']) {
        picture.addEventListener(type, () => (last = undefined));
    }
    picture.addEventListener('pointerleave', () => actions.leave());
    picture.addEventListener('click', event => isDrag || actions.choose(...placeOf(event)));
    picture.addEventListener('wheel', event => onWheel(event, actions, placeOf), { passive: false });
}

function onWheel(event, { scroll, zoom }, placeOf) {
    const unit = event.deltaMode === WheelEvent.DOM_DELTA_LINE ? pixelsOfLine : 1;
    const sideways = event.deltaX || (event.shiftKey ? event.deltaY : 0);
    if (event.ctrlKey) {
        zoom(2 ** ((event.deltaY * unit) / wheelOfDouble), placeOf(event)[0]);
    } else if (sideways) {
        scroll(sideways * unit);
    } else {
        return; // the page scrolls
    }
    event.preventDefault();
}
