// SPDX-License-Identifier: MIT
// The view Timeline.
import { post } from './connection.js';
import { byId } from './dom.js';
import { announce } from './messages.js';
import { Timeline } from './timeline.js';

async function askWhy(question) {
    const response = await post('/api/why', JSON.stringify(question), { 'Content-Type': 'application/json' });
    return (await response.json()).lines;
}

export const timeline = new Timeline(byId('timeline-chart'), text => announce(text, 'reply'), askWhy);
