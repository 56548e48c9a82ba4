// SPDX-License-Identifier: MIT
// validate.mjs MODULES SCHEMA: compares the JSON document on standard input with the file SCHEMA and prints the faults,
// with the validator in the folder MODULES.
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { argv, exit } from 'node:process';

const [modules, schemaFile] = argv.slice(2);
const require = createRequire(`${modules}/package.json`);
const schema = JSON.parse(readFileSync(schemaFile, 'utf8'));
const Ajv = require(schema.$schema.includes('draft-04') ? 'ajv-draft-04' : 'ajv').default;
const addFormats = require('ajv-formats').default;

// A pattern of the schema of SARIF has a bracket that Unicode expressions reject.
const ajv = new Ajv({ allErrors: true, strict: false, unicodeRegExp: false });
addFormats(ajv);
const validate = ajv.compile(schema);
if (!validate(JSON.parse(readFileSync(0, 'utf8')))) {
    for (const { instancePath, message, params } of validate.errors) {
        console.log(`${instancePath || '/'} ${message} ${JSON.stringify(params)}`);
    }
    exit(1);
}
