// SPDX-License-Identifier: MIT
import { execFileSync } from 'node:child_process';
import { createRequire } from 'node:module';
import { join } from 'node:path';

import { PanelPage } from './panelPage.mjs';
import { Relay } from './relay.mjs';
import { Simulator } from './simulator.mjs';

/// The packages of package.json, which are installed in a folder of the build.
export const installed = createRequire(join(process.env.BROWSER_TEST_MODULES, 'package.json'));

/// A simulator, a browser, and the pages that are open in it.
export class PanelSession {
    #panels = [];
    #relays = [];

    async begin() {
        this.simulator = await Simulator.start();
        this.browser = await launchBrowser();
    }

    /// The page, in a separate context, once it has come to know the device. `url` and `view` say what is opened,
    /// `script` runs before the page does, `status` is the one that the page shows then; the other options are those of
    /// a browser context.
    async open({ url = this.simulator.url, view = '', script, status = 'ready', ...options } = {}) {
        const context = await this.browser.newContext({ viewport: { width: 1280, height: 900 }, ...options });
        context.setDefaultTimeout(0);
        const panel = new PanelPage(await context.newPage());
        this.#panels.push(panel);
        if (script) {
            await panel.page.addInitScript(script);
        }
        await panel.page.goto(new URL(view, url).href);
        await panel.showsText('#device-status', status);
        return panel;
    }

    /// A panel, and what the device gets from then on.
    async openObserved(options) {
        const panel = await this.open(options);
        return { panel, observer: await this.simulator.observe() };
    }

    /// A way to the simulator that can be cut.
    async relay() {
        const relay = await Relay.to(this.simulator.url);
        this.#relays.push(relay);
        return relay;
    }

    /// Closes all pages and relays; comes back with the faults that the pages had.
    async closePages() {
        const panels = this.#panels.splice(0);
        await Promise.all(panels.map(panel => panel.context.close()));
        await Promise.all(this.#relays.splice(0).map(relay => relay.close()));
        return panels.flatMap(panel => panel.faults);
    }

    async end() {
        await this.browser?.close();
        await this.simulator?.stop();
    }
}

function launchBrowser() {
    const { chromium } = installed('playwright-core');
    const executablePath = execFileSync('sh', ['-c', 'command -v chromium-headless-shell'], {
        encoding: 'utf8',
    }).trim();
    const args = process.getuid() === 0 ? ['--no-sandbox'] : [];
    return chromium.launch({ executablePath, args, timeout: 0 });
}
