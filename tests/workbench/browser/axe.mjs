// SPDX-License-Identifier: MIT
import { readFile } from 'node:fs/promises';

import { installed } from './panelSession.mjs';

const axe = await readFile(installed.resolve('axe-core/axe.min.js'), 'utf8');

/// What axe has against the page, by all its rules or only by some.
export async function violations(page, ...rules) {
    await page.evaluate(axe);
    const found = await page.evaluate(
        values => window.axe.run(values.length > 0 ? { runOnly: { type: 'rule', values } } : {}),
        rules,
    );
    return found.violations.map(
        ({ id, nodes }) => `${id}: ${nodes.map(node => `${node.target} (${node.failureSummary})`).join('; ')}`,
    );
}
