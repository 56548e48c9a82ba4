// SPDX-License-Identifier: MIT
import assert from 'node:assert/strict';

import { eventually } from './eventually.mjs';

/// The page, in the words of who uses it.
export class PanelPage {
    faults = [];

    constructor(page) {
        this.page = page;
        this.context = page.context();
        page.on('pageerror', fault => {
            this.faults.push(String(fault));
            page.close(); // what is waited for might never come
        });
        page.on('console', message => {
            if (message.type() === 'error' && message.text().includes('Content Security Policy')) {
                this.faults.push(message.text());
            }
        });
    }

    /// One more page of the same browser, once the place of its device's status has this text.
    async another({ status = 'ready' } = {}) {
        const panel = new PanelPage(await this.context.newPage());
        panel.faults = this.faults;
        await panel.page.goto(this.page.url());
        await panel.showsText('#device-status', status);
        return panel;
    }

    key(name) {
        return this.page.locator(`[data-key="${name}"]`);
    }

    button(name) {
        return this.page.getByRole('button', { name, exact: true });
    }

    /// Opens the disclosure with this id, unless it is open.
    async disclose(id) {
        const details = this.page.locator(`#${id}`);
        if (!(await details.getAttribute('open').then(open => open !== null))) {
            await details.locator('summary').click();
        }
    }

    /// The open question, if any.
    get question() {
        return this.page.getByRole('dialog');
    }

    /// Answers the question with the button of this name.
    async reply(name) {
        await this.question.getByRole('button', { name, exact: true }).click();
        await this.question.waitFor({ state: 'hidden' });
    }

    async goTo(view) {
        await this.page.getByRole('navigation').getByRole('link', { name: view, exact: true }).click();
        await this.page.getByRole('heading', { name: view, level: 2, exact: true }).waitFor();
    }

    /// Waits for a line with this text in what was spoken (announced, refused) since the page is open.
    isTold(text) {
        return this.page.locator('#spoken-live p, #announced-live p').filter({ hasText: text }).first().waitFor();
    }

    /// Waits until the place has this text, or one that fits.
    showsText(place, text) {
        return eventually(async () => {
            const shown = (await this.page.locator(place).innerText()).trim();
            if (text instanceof RegExp) {
                assert.match(shown, text);
            } else {
                assert.equal(shown, text);
            }
        });
    }

    texts(place) {
        return this.page.locator(place).allInnerTexts();
    }

    /// Two fingers and more: one more touches down, or all are lifted.
    async touch(...names) {
        this.fingers ??= await this.context.newCDPSession(this.page);
        const touchPoints = [];
        for (const [id, name] of names.entries()) {
            const { x, y, width, height } = await this.key(name).boundingBox();
            touchPoints.push({ id, x: x + width / 2, y: y + height / 2 });
            await this.fingers.send('Input.dispatchTouchEvent', { type: 'touchStart', touchPoints });
        }
    }

    liftFingers() {
        return this.fingers.send('Input.dispatchTouchEvent', { type: 'touchEnd', touchPoints: [] });
    }
}
