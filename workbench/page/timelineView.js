// SPDX-License-Identifier: MIT
// The view Timeline.
import { byId } from './dom.js';
import { announce } from './messages.js';
import { Timeline } from './timeline.js';

export const timeline = new Timeline(byId('timeline-chart'), text => announce(text, 'reply'));
