// node test_grammar.js PELLUM MODULES SCRATCH [corpus]   tests the grammar of the VS Code extension:
// on the samples beside this file, and on all programs of the repository, or with "corpus" on what the
// fuzzers begin with, against `PELLUM --tokens`. MODULES is the folder with the node_modules, SCRATCH
// one for files of its own. Exits with 1 when it finds something.
"use strict";

const { compare, interpolationsOf } = require("./agreement");
const { loadGrammar, scopesOf, wordsOf } = require("./grammar");
const { allPrograms, corpus, failsInLexer, tokensOf } = require("./programs");
const { allSamples } = require("./samples");

const [pellum, modules, scratch, which] = process.argv.slice(2);
let failures = 0;

// A quote in a comment in an interpolation lets the lexer pass the end of the line. Editors end every
// string there.
const spansLines = /^tests\/format\/strings\.pellum:[56]:/;

function fail(where, message) {
    if (spansLines.test(where)) return;
    if (++failures <= 50) console.log(`${where}: ${message}`);
}

function checkSamples(highlighter) {
    let checks = 0;
    const shown = new Set();
    for (const { name, text, expectations } of allSamples()) {
        let scopes;
        try {
            scopes = scopesOf(highlighter, text);
        } catch (error) {
            fail(`tests/editors/samples/${name}`, error.message);
            continue;
        }
        const lines = text.split("\n");
        for (const { line, from, to, scopes: wanted } of expectations) {
            ++checks;
            shown.add(`${lines[line].slice(from, to)} ${wanted[wanted.length - 1]}`);
            for (let column = from; column < to; ++column) {
                const given = scopes[line][column] || [];
                if (given.slice(-wanted.length).join(" ") === wanted.join(" ")) continue;
                fail(`tests/editors/samples/${name}:${line + 1}:${column + 1}`,
                    `wanted ${wanted.join(" ")}, got ${given.join(" ")}`);
                break;
            }
        }
    }
    const mustShow = (words, scope) => {
        if (words.length === 0) fail("the grammar", `has no words of ${scope}`);
        for (const word of words) {
            if (!shown.has(`${word} ${scope}.pellum`)) {
                fail("tests/editors/samples", `no sample shows ${word} as ${scope}`);
            }
        }
    };
    mustShow(wordsOf("control"), "keyword.control");
    mustShow(wordsOf("declaration"), "storage.type");
    mustShow(wordsOf("operator"), "keyword.operator.logical");
    mustShow(wordsOf("constant"), "constant.language");
    mustShow(wordsOf("builtin functions"), "support.function.builtin");
    mustShow(wordsOf("builtin constants"), "support.constant.builtin");
    mustShow([..."ntr0\\\"'$"].map((letter) => "\\" + letter), "constant.character.escape");
    return checks;
}

// Compares texts with their scopes, and then what stands in their interpolations, as programs of
// their own, until there are no more.
function checkPrograms(highlighter) {
    const count = { programs: 0, invalid: 0, tokens: 0, interpolations: 0 };
    let batch = (which === "corpus" ? corpus() : allPrograms()).map(({ name, text }) => {
        // The lexer counts from behind a byte order mark, and editors take it away.
        const plain = text.replace(/^\xEF\xBB\xBF/, "");
        try {
            return { name, line: 0, start: 0, source: text, text: plain,
                scopes: scopesOf(highlighter, plain) };
        } catch (error) {
            fail(name, error.message);
            return null;
        }
    }).filter((piece) => piece !== null);
    for (let round = 0; batch.length > 0; ++round) {
        const dumps = tokensOf(pellum, batch.map((piece) => piece.source), scratch);
        const next = [];
        batch.forEach((piece, index) => {
            const tokens = dumps[index];
            const lines = piece.text.split("\n");
            const found = tokens ? compare(lines, piece.scopes, tokens) : [];
            // What is wrong inside an interpolation is noticed behind the tokens.
            const isLexed =
                tokens && (found.length === 0 || !failsInLexer(pellum, piece.source, scratch));
            if (round > 0) ++count.interpolations;
            else ++count[isLexed ? "programs" : "invalid"];
            if (!isLexed) return;
            count.tokens += tokens.length;
            for (const { line, column, message } of found) {
                fail(`${piece.name}:${piece.line + line + 1}:${piece.start + column + 1}`,
                    `"${lines[line].slice(column, column + 20)}" ${message}`);
            }
            lines.forEach((text, line) => {
                for (const inner of interpolationsOf(text, piece.scopes[line])) {
                    next.push({ name: piece.name, line: piece.line + line,
                        start: piece.start + inner.start, source: inner.text, text: inner.text,
                        scopes: inner.scopes });
                }
            });
        });
        batch = next;
    }
    if (count.programs < 1000 || count.interpolations < 10 || count.invalid < 50) {
        fail("the repository", `has too few programs: ${JSON.stringify(count)}`);
    }
    return count;
}

(async () => {
    const highlighter = await loadGrammar(modules);
    const checks = checkSamples(highlighter);
    const count = checkPrograms(highlighter);
    console.log(`${checks} places in samples; ` +
        `${count.tokens} tokens of ${count.programs} programs and ${count.interpolations} ` +
        `interpolations; ${count.invalid} programs without tokens`);
    console.log(failures === 0 ? "the grammar agrees" : `${failures} disagreements`);
    process.exitCode = failures === 0 ? 0 : 1;
})();
