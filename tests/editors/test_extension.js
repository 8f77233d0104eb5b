// node test_extension.js PELLUM SCRATCH   tests what the VS Code extension has beside its grammar: the
// manifest, the rules of indentation on all examples, and that the snippets are programs. Exits with
// 1 when it finds something.
"use strict";

const { spawnSync } = require("child_process");
const fs = require("fs");
const path = require("path");
const { root } = require("./grammar");

const [pellum, scratch] = process.argv.slice(2);
const folder = path.join(root, "editors/vscode");
const read = (name) => fs.readFileSync(path.join(folder, name), "utf8");
let checks = 0;
let failures = 0;

function expect(what, wanted, given) {
    ++checks;
    if (JSON.stringify(wanted) === JSON.stringify(given)) return;
    ++failures;
    console.log(`${what}: wanted ${JSON.stringify(wanted)}, got ${JSON.stringify(given)}`);
}

const manifest = JSON.parse(read("package.json"));
const { languages: [language], grammars: [grammar], snippets: [snippets] } = manifest.contributes;
const configuration = JSON.parse(read(language.configuration));

function checkManifest() {
    const version = /project\(pellum VERSION ([0-9.]+)/
        .exec(fs.readFileSync(path.join(root, "CMakeLists.txt"), "utf8"))[1];
    expect("the version", version, manifest.version.slice(0, version.length));
    expect("the change notes", true, read("CHANGELOG.md").includes(`\n## ${manifest.version}\n`));
    expect("the language", "pellum", language.id);
    expect("the extensions", [".pellum", ".plm"], language.extensions);
    expect("the language of the grammar", language.id, grammar.language);
    expect("the language of the snippets", language.id, snippets.language);
    const { scopeName, fileTypes, firstLineMatch } = JSON.parse(read(grammar.path));
    expect("the scope", scopeName, grammar.scopeName);
    expect("the file types", language.extensions, fileTypes.map((type) => `.${type}`));
    expect("the first line", language.firstLine, firstLineMatch);
    const first = new RegExp(language.firstLine);
    for (const line of ["#!/usr/bin/env pellum", "#!/usr/local/bin/pellum", "#! pellum",
        "#!/usr/bin/env -S pellum --tree"]) {
        expect(line, true, first.test(line));
    }
    for (const line of ["#!/usr/bin/env pellum-fmt", "#!/bin/notpellum", "# pellum", "pellum"]) {
        expect(line, false, first.test(line));
    }
    for (const file of ["package-lock.json", "../../tests/editors/package-lock.json"]) {
        expect(`addresses of packages in ${file}`, false, read(file).includes('"resolved"'));
    }
}

// As the editor indents a text from nothing: each line as the one above, one step further in behind
// a line that opens something, and one step back where it closes something.
function checkIndentation() {
    const increase = new RegExp(configuration.indentationRules.increaseIndentPattern);
    const decrease = new RegExp(configuration.indentationRules.decreaseIndentPattern);
    const examples = path.join(root, "examples");
    for (const name of fs.readdirSync(examples).filter((file) => file.endsWith(".plm"))) {
        let indent = 0;
        fs.readFileSync(path.join(examples, name), "utf8").split("\n").forEach((line, number) => {
            const code = line.trim();
            if (code === "") return;
            if (decrease.test(code)) --indent;
            const given = " ".repeat(4 * Math.max(indent, 0)) + code;
            expect(`examples/${name}:${number + 1}`, line, given);
            if (increase.test(code)) ++indent;
        });
    }
}

function checkSnippets() {
    fs.mkdirSync(scratch, { recursive: true });
    const file = path.join(scratch, "snippet.pellum");
    const all = Object.entries(JSON.parse(read(snippets.path)));
    for (const [name, { body, prefix, description }] of all) {
        const text = body.join("\n").replace(/\$\{\d+:([^}]*)\}/g, "$1").replace(/\$\d/g, "nil");
        // In a function that is not called, so that its names need not exist.
        const source = text.startsWith("#") ? `${text}\n` : `function unused()\n${text}\nend\n`;
        fs.writeFileSync(file, source);
        const run = spawnSync(pellum, [file]);
        expect(`the snippet "${name}"`, [0, ""], [run.status, run.stderr.toString()]);
        expect(`prefix and description of "${name}"`, true, Boolean(prefix && description));
    }
}

checkManifest();
checkIndentation();
checkSnippets();
console.log(`${checks} checks of the extension, ${failures} failures`);
process.exitCode = failures === 0 ? 0 : 1;
