// check.mjs FILE: AsyncAPI's own parser on the description of the API; 1: it is none.

import {readFileSync} from 'node:fs';

import {Parser} from '@asyncapi/parser';

const [file] = process.argv.slice(2);
const {document, diagnostics} = await new Parser().parse(readFileSync(file, 'utf8'));
// Notes and hints are about taste and later versions.
const findings = diagnostics.filter(({severity}) => severity <= 1);
for (const {message, path, range} of findings) {
    console.error(`torlan: ${file}:${range.start.line + 1}: ${path.join('.')}: ${message}`);
}
if (!document || findings.length > 0) {
    process.exit(1);
}
console.log(`torlan: ${file} is AsyncAPI ${document.version()}: ${document.channels().all().length} ` +
    `channels, ${document.operations().all().length} operations`);
