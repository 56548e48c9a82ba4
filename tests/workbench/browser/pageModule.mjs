// SPDX-License-Identifier: MIT
import { readFile } from 'node:fs/promises';

const pageFolder = new URL('../../../workbench/page/', import.meta.url);

/// The module as a URL that contains it and the modules that it imports.
async function dataUrl(name) {
    let source = await readFile(new URL(name, pageFolder), 'utf8');
    for (const [, imported] of source.matchAll(/^import [^;]* from '\.\/([\w.]+)';$/gm)) {
        source = source.replace(`'./${imported}'`, `'${await dataUrl(imported)}'`);
    }
    return `data:text/javascript;base64,${Buffer.from(source).toString('base64')}`;
}

/// Imports a module of the page, which has no package that would say what its files are.
export async function pageModule(name) {
    return import(await dataUrl(name));
}
