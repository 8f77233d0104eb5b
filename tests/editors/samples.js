// Samples: programs with the expected colours below their lines, each as
//
//     #   ^^^^  ^^^ scope [scope...] | group
//
// where the carets stand below the text that has these scopes, the innermost last, or this syntax
// group in Vim. For text at the margin, "#<<<" means as many characters as there are "<".
"use strict";

const fs = require("fs");
const path = require("path");
const { root } = require("./grammar");

const folder = path.join(root, "tests/editors/samples");

// All expectations of a sample: 0-based line, from, to (exclusive), scopes, group.
function readSample(name) {
    const text = fs.readFileSync(path.join(folder, name), "latin1");
    const expectations = [];
    let above = 0;
    text.split("\n").forEach((line, number) => {
        const marked = /^#(<+|[ \t^]*\^)(?= )(.*)$/.exec(line);
        if (!marked) {
            above = number;
            return;
        }
        const [scopes, group] = marked[2].split("|").map((side) => side.trim());
        if (!scopes || !group) throw new Error(`${name}:${number + 1}: needs scopes and a group`);
        const add = (from, to) =>
            expectations.push({ line: above, from, to, scopes: scopes.split(/\s+/), group });
        if (marked[1].startsWith("<")) add(0, marked[1].length);
        for (const carets of line.slice(0, marked[1].length + 1).matchAll(/\^+/g)) {
            add(carets.index, carets.index + carets[0].length);
        }
    });
    return { name, text, expectations };
}

function allSamples() {
    return fs.readdirSync(folder).filter((name) => name.endsWith(".pellum")).sort().map(readSample);
}

module.exports = { allSamples };
