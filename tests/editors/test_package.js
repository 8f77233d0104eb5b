// node test_package.js FILE FOLDER MODULES   whether the packed extension in FILE has all that belongs
// into it from FOLDER, byte for byte, and nothing else.
"use strict";

const fs = require("fs");
const path = require("path");
const { createRequire } = require("module");

const [file, folder, modules] = process.argv.slice(2);
const yauzl = createRequire(path.join(path.resolve(modules), "package.json"))("yauzl");

const wanted = ["CHANGELOG.md", "LICENSE", "README.md", "language-configuration.json", "package.json",
    "snippets/pellum.json", "syntaxes/pellum.tmLanguage.json"];
const packedName = (name) => `extension/${name === "LICENSE" ? "LICENSE.txt" : name}`;
// What the packer adds.
const added = new Set(["extension.vsixmanifest", "[Content_Types].xml"]);

function fail(message) {
    console.error(`${file}: ${message}`);
    process.exitCode = 1;
}

yauzl.open(file, { lazyEntries: true }, (error, zip) => {
    if (error) throw error;
    const missing = new Map(wanted.map((name) => [packedName(name), name]));
    zip.on("entry", (entry) => {
        const name = missing.get(entry.fileName);
        if (!name) {
            if (!added.has(entry.fileName)) fail(`has ${entry.fileName}`);
            zip.readEntry();
            return;
        }
        missing.delete(entry.fileName);
        zip.openReadStream(entry, (problem, stream) => {
            if (problem) throw problem;
            const pieces = [];
            stream.on("data", (piece) => pieces.push(piece));
            stream.on("end", () => {
                const original = fs.readFileSync(path.join(folder, name));
                if (!Buffer.concat(pieces).equals(original)) fail(`${name} is not what was packed`);
                zip.readEntry();
            });
        });
    });
    zip.on("end", () => {
        for (const name of missing.values()) fail(`has no ${name}`);
    });
    zip.readEntry();
});
