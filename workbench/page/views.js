// SPDX-License-Identifier: MIT
// The views of the page, one of which is shown.
import { all, on } from './dom.js';

const views = all('.view');
const currentView = () => views.find(view => `#${view.id}` === location.hash) ?? views[0];

export const isView = id => currentView().id === id;
export const focusView = () => currentView().querySelector('h2').focus();

function showView() {
    const current = currentView();
    views.forEach(view => view.toggleAttribute('hidden', view !== current));
    for (const link of all('nav a')) {
        if (link.hash === `#${current.id}`) {
            link.setAttribute('aria-current', 'page');
        } else {
            link.removeAttribute('aria-current');
        }
    }
    document.title = `${current.querySelector('h2').textContent} – Embosser front panel`;
}

/// Shows the view that the address names, and follows the links to the views. Calls `onLeaving` before the view
/// changes, and `onShown` when one is shown.
export function setUpViews(onLeaving, onShown) {
    const changeView = () => {
        onLeaving();
        showView();
        onShown();
        focusView();
    };
    window.addEventListener('popstate', changeView);
    // A browser that jumps to a fragment has a screen reader read where it was before, too.
    on('nav a', 'click', event => {
        if (event.ctrlKey || event.shiftKey || event.metaKey || event.altKey) {
            return; // to open another page
        }
        event.preventDefault();
        history.pushState(null, '', event.currentTarget.hash);
        changeView();
    });
    showView();
}

on('#skip-link', 'click', event => {
    event.preventDefault(); // the address keeps the view
    focusView();
});

// Disclosures stay as the user left them.
for (const details of all('details[id]')) {
    const name = `${details.id} is open`;
    details.open = localStorage.getItem(name) === 'true';
    details.addEventListener('toggle', () => localStorage.setItem(name, String(details.open)));
}
