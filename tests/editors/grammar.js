// The grammar of the VS Code extension in the library that VS Code runs it with. Texts are taken as
// bytes, one character for each, as the lexer counts columns.
"use strict";

const fs = require("fs");
const path = require("path");
const { createRequire } = require("module");

const root = path.resolve(__dirname, "..", "..");
const grammarPath = path.join(root, "editors/vscode/syntaxes/pellum.tmLanguage.json");

// The packages lie below the build folder, which `modules` names.
async function loadGrammar(modules) {
    const load = createRequire(path.join(path.resolve(modules), "package.json"));
    const oniguruma = load("vscode-oniguruma");
    const textmate = load("vscode-textmate");
    const wasm = fs.readFileSync(load.resolve("vscode-oniguruma/release/onig.wasm"));
    await oniguruma.loadWASM(wasm);
    const registry = new textmate.Registry({
        onigLib: Promise.resolve({
            createOnigScanner: (patterns) => new oniguruma.OnigScanner(patterns),
            createOnigString: (text) => new oniguruma.OnigString(text),
        }),
        loadGrammar: async () =>
            textmate.parseRawGrammar(fs.readFileSync(grammarPath, "utf8"), grammarPath),
    });
    return { grammar: await registry.loadGrammar("source.pellum"), initial: textmate.INITIAL };
}

// The scopes of each character, line by line, without that of the whole language. Throws where a
// line leaves a rule open that must not reach over its end.
function scopesOf({ grammar, initial }, text) {
    const lines = text.split("\n");
    let stack = initial;
    return lines.map((line, number) => {
        const result = grammar.tokenizeLine(line, stack);
        stack = result.ruleStack;
        const open = result.tokens.length > 0 && stack.depth > 1 && !isHead(lines, number);
        if (open) throw new Error(`line ${number + 1} leaves a rule open: ${line}`);
        const scopes = new Array(line.length);
        for (const token of result.tokens) {
            scopes.fill(token.scopes.slice(1), token.startIndex, token.endIndex);
        }
        return scopes;
    });
}

function isHead(lines, number) {
    return lines.slice(0, number + 1).every((line) => /^[ \t\r]*(#|$)/.test(line));
}

// All words of the list that the comment "generated: NAME" announces.
function wordsOf(name) {
    const found = [];
    (function search(rule) {
        if (rule === null || typeof rule !== "object") return;
        if (rule.comment === `generated: ${name}`) {
            found.push(...rule.match.match(/\(\?:([A-Za-z_|]+)\)/)[1].split("|"));
        }
        Object.values(rule).forEach(search);
    })(JSON.parse(fs.readFileSync(grammarPath, "utf8")));
    return found;
}

module.exports = { loadGrammar, root, scopesOf, wordsOf };
