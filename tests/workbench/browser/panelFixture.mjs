// SPDX-License-Identifier: MIT
import assert from 'node:assert/strict';
import { after, afterEach, before, beforeEach } from 'node:test';

import { PanelSession } from './panelSession.mjs';

/// A session for the tests of a file. Each test begins in Idle with no gesture under way and no page open, and fails if
/// one of its pages had a fault.
export function panelFixture() {
    const session = new PanelSession();
    before(() => session.begin());
    beforeEach(() => session.simulator.settle());
    afterEach(async () => assert.deepEqual(await session.closePages(), []));
    after(() => session.end());
    return session;
}
