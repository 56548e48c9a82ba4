// SPDX-License-Identifier: MIT
// screenshots.mjs FOLDER: takes the pictures of the front panel that the documents show.
import { join } from 'node:path';

import { PanelSession } from './panelSession.mjs';

const [folder] = process.argv.slice(2);
const size = { width: 1280, height: 860 };

/// What a timeline can show, within the time that it shows.
const story = `
    tap Up; wait 1600
    hold Help 2400; wait 1550
    press Function; wait 200; tap Up; release Function; wait 1550
    tap Help; wait 150; tap Feed; wait 1550
    press Feed; wait 200; tap Ok; release Feed; wait 500
    state Print; wait 300; tap Up; wait 100; command GetLastKey`;

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

async function pictureTimeline(panel, simulator) {
    await simulator.restart();
    await simulator.take(...story.split(/[;\n]/));
    await panel.goTo('Timeline');
    await panel.page.locator('path.command').waitFor({ state: 'attached' });
    await panel.button('Pause').click();
    await panel.page.screenshot({ path: join(folder, 'timeline.png') });
}

async function pictureCard(panel, simulator) {
    await simulator.take('state Idle');
    await panel.goTo('Key card');
    await panel.page.screenshot({ path: join(folder, 'key-card.png') });
}

const session = new PanelSession();
await session.begin();
const panel = await session.open({ viewport: size, colorScheme: 'light', reducedMotion: 'reduce' });
for (const take of [picturePanel, pictureTimeline, pictureCard]) {
    await take(panel, session.simulator);
}
await session.end();
