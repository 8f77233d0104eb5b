// All programs of the repository, and what `pellum --tokens` says about them.
"use strict";

const { execFileSync, spawnSync } = require("child_process");
const fs = require("fs");
const path = require("path");
const { root } = require("./grammar");

function filesBelow(folder, wanted) {
    const entries = fs.readdirSync(folder, { withFileTypes: true });
    entries.sort((a, b) => (a.name < b.name ? -1 : 1));
    return entries.flatMap((entry) => {
        const file = path.join(folder, entry.name);
        if (entry.isDirectory()) return filesBelow(file, wanted);
        return entry.isFile() && wanted.test(entry.name) ? [file] : [];
    });
}

const read = (file) => ({ name: path.relative(root, file), text: fs.readFileSync(file, "latin1") });

// The programs of a page: its blocks that are marked `pellum`.
function programsOfPage(file) {
    const programs = [];
    const { name: page, text } = read(file);
    let block = null;
    text.split("\n").forEach((line, number) => {
        if (block === null) {
            if (/^```pellum\b/.test(line)) block = { name: `${page}:${number + 2}`, lines: [] };
        } else if (line.startsWith("```")) {
            programs.push({ name: block.name, text: block.lines.join("\n") + "\n" });
            block = null;
        } else {
            block.lines.push(line);
        }
    });
    return programs;
}

// Name and text of each program: the examples, the benchmarks, the pages and the tests.
function allPrograms() {
    const folders = ["examples", "bench", "tests"].map((name) => path.join(root, name));
    const programs = folders.flatMap((folder) => filesBelow(folder, /\.(pellum|plm)$/)).map(read);
    for (const file of filesBelow(path.join(root, "tests/listings"), /\.listing$/)) {
        const { name, text } = read(file);
        programs.push({ name, text: text.split(/^----$/m)[0] });
    }
    const pages = ["README.md", "CONTRIBUTING.md"].map((name) => path.join(root, name));
    for (const page of [...pages, ...filesBelow(path.join(root, "docs"), /\.md$/)]) {
        programs.push(...programsOfPage(page));
    }
    return programs;
}

// What the fuzzers begin with: mostly spoilt programs.
function corpus() {
    return filesBelow(path.join(root, "fuzz/corpus"), /./).map(read);
}

// The tokens of each text, as {kind, text, line, column} from 0, or null for one that does not fall
// into tokens. One shell runs the program once for each file in `scratch`.
function tokensOf(pellum, texts, scratch) {
    fs.rmSync(scratch, { recursive: true, force: true });
    fs.mkdirSync(scratch, { recursive: true });
    texts.forEach((text, index) => {
        fs.writeFileSync(path.join(scratch, `${index}`), text, "latin1");
    });
    const loop = 'i=0; while [ $i -lt "$2" ]; do ' +
        '"$1" --tokens $i >$i.tokens 2>/dev/null || rm $i.tokens; i=$((i + 1)); done';
    execFileSync("/bin/sh", ["-c", loop, "sh", path.resolve(pellum), `${texts.length}`],
        { cwd: scratch });
    return texts.map((text, index) => {
        const dump = path.join(scratch, `${index}.tokens`);
        return fs.existsSync(dump) ? readDump(fs.readFileSync(dump, "latin1")) : null;
    });
}

// Whether a program that falls into tokens has code in an interpolation that does not.
function failsInLexer(pellum, text, scratch) {
    const file = path.join(scratch, "program");
    fs.writeFileSync(file, text, "latin1");
    const run = spawnSync(pellum, ["--tree", file], { timeout: 10000, input: "" });
    return run.stderr.toString("latin1").startsWith("SyntaxError (lexing)");
}

// A string shows its contents, so a line of the dump may go on in further lines.
function readDump(dump) {
    const kinds = "number|string|interp-string|name|token|end of line|end of file";
    const row = new RegExp(
        `(${kinds}) '([^]*?)' @(\\d+):(\\d+)\\n(?=(?:${kinds}) '|$)`, "gy");
    const tokens = [];
    let end = 0;
    for (const [whole, kind, text, line, column] of dump.matchAll(row)) {
        tokens.push({ kind, text, line: line - 1, column: column - 1 });
        end += whole.length;
    }
    if (end !== dump.length) throw new Error(`cannot read a dump of tokens: ${dump.slice(0, 200)}`);
    return tokens;
}

module.exports = { allPrograms, corpus, failsInLexer, tokensOf };
