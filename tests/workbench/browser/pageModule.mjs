// SPDX-License-Identifier: MIT
import { readFile } from 'node:fs/promises';

const pageFolder = new URL('../../../workbench/page/', import.meta.url);

/// Imports a module of the page, which has no package that would say what its files are.
export async function pageModule(name) {
    const source = await readFile(new URL(name, pageFolder), 'base64');
    return import(`data:text/javascript;base64,${source}`);
}
