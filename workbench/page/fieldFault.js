// SPDX-License-Identifier: MIT

/// Marks `input` as faulty and describes it by the element with the id `faultId`; without an id, ends both. A field with
/// the focus is described when it loses it, because a screen reader would say the fault twice.
export function markField(input, faultId = '') {
    const describe = () => {
        if (input.getAttribute('aria-invalid') === 'true') {
            input.setAttribute('aria-describedby', faultId);
        } else {
            input.removeAttribute('aria-describedby');
        }
    };
    input.setAttribute('aria-invalid', String(faultId !== ''));
    if (faultId && document.activeElement === input) {
        input.addEventListener('blur', describe, { once: true });
    } else {
        describe();
    }
}
