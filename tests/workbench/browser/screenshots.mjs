// SPDX-License-Identifier: MIT
// screenshots.mjs FOLDER: takes the picture of the front panel that the documents show.
import { join } from 'node:path';

import { PanelSession } from './panelSession.mjs';

const [folder] = process.argv.slice(2);
const size = { width: 1280, height: 860 };

async function picturePanel(panel, simulator) {
    await simulator.take('tap Help Feed');
    await panel.isTold('PaperStatus Help Feed to PrintManager');
    await simulator.settle();
    await panel.key('Function').hover();
    await panel.page.mouse.down();
    await panel.page.locator('[data-key=Function].down').waitFor();
    await panel.page.screenshot({ path: join(folder, 'panel.png') });
    await panel.page.mouse.up();
}

const session = new PanelSession();
await session.begin();
const panel = await session.open({ viewport: size, colorScheme: 'light', reducedMotion: 'reduce' });
await picturePanel(panel, session.simulator);
await session.end();
