// SPDX-License-Identifier: MIT
// document.mjs DOCUMENT REPORT: puts the tables of a report of report.mjs into a document, between its lines
// "<!-- figures: NAME -->" and "<!-- end of figures -->".
import { readFileSync, writeFileSync } from 'node:fs';

const [documentPath, reportPath] = process.argv.slice(2);
// The machine and the table of the device, then those of the router, of the model and of the watched daemon.
const [machine, device, router, searches, steps, watched] = readFileSync(reportPath, 'utf8').trim().split('\n\n');
const figures = { device: `${machine}\n\n${device}`, router, model: `${searches}\n\n${steps}`, watched };

let text = readFileSync(documentPath, 'utf8');
for (const [name, table] of Object.entries(figures)) {
    const block = new RegExp(`(?<=<!-- figures: ${name} -->\n).*?(?=<!-- end of figures -->)`, 's');
    if (!block.test(text)) {
        throw new Error(`${documentPath} has no place for the figures of the ${name}.`);
    }
    text = text.replace(block, () => `${table}\n`);
}
writeFileSync(documentPath, text);
