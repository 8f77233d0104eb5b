// Whether the colours of a program are those of its tokens: each character belongs to a token, or
// to a comment, or is blank, and its scopes must say the same.
"use strict";

const classes = [
    ["comment", /^comment\./],
    ["invalid", /^invalid\.illegal\./],
    ["string", /^(string\.|constant\.character\.escape|punctuation\.(definition\.string|section\.interpolation))/],
    ["number", /^constant\.numeric\./],
    ["word", /^(keyword\.control|storage\.type|keyword\.operator\.logical|constant\.language)\./],
    ["operator", /^(keyword\.operator|punctuation)\./],
    ["name", /^(variable|entity\.name\.function|support\.(function|constant))\./],
];

// The class of a character by the innermost scope that has one; null for what has none.
function classOf(scopes) {
    if (scopes.some((scope) => scope.startsWith("comment."))) return "comment";
    for (let i = scopes.length - 1; i >= 0; --i) {
        const found = classes.find(([, pattern]) => pattern.test(scopes[i]));
        if (found) return found[0];
    }
    return null;
}

// The texts of the outermost interpolations of one line: where they start, and their scopes from
// there inwards.
function interpolationsOf(line, scopes) {
    const found = [];
    const depthOf = (at) => scopes[at].indexOf("meta.interpolation.pellum");
    for (let at = 0; at < line.length; ++at) {
        const depth = depthOf(at);
        if (depth < 0) continue;
        let start = at + 2;
        const isOwn = (i, what) => i < line.length && depthOf(i) === depth &&
            scopes[i][depth + 1] === `punctuation.section.interpolation.${what}.pellum`;
        let end = start;
        while (end < line.length && depthOf(end) === depth && !isOwn(end, "end")) ++end;
        const inside = scopes.slice(start, end).map((list) => list.slice(depth + 2));
        found.push({ start, text: line.slice(start, end), scopes: [inside] });
        at = end;
    }
    return found;
}

function wantedClass(token) {
    switch (token.kind) {
        case "number": return "number";
        case "string":
        case "interp-string": return "string";
        case "name": return "name";
        default: return /^[a-z]/.test(token.text) ? "word" : "operator";
    }
}

// A number with letters right behind it falls into tokens, though no program can go on so.
function isMalformed(token, next) {
    return token.kind === "number" && next !== undefined && next.kind === "name" &&
        next.line === token.line && next.column === token.column + token.text.length;
}

// The places where the scopes of `lines` and the tokens differ, as {line, column, message}. The
// scopes within interpolations count as those of the string, and are left to the caller.
function compare(lines, scopes, tokens) {
    const found = [];
    const complain = (line, column, message) => found.push({ line, column, message });
    // A string's token does not say where it ends, only that blanks and comments follow.
    const classAt = (line, column) => {
        const list = scopes[line][column];
        const interpolation = list.indexOf("meta.interpolation.pellum");
        return interpolation < 0 ? classOf(list) : "string";
    };
    const gap = (line, from, to) => {
        for (let column = from; column < to; ++column) {
            const isBlank = /[ \t\r]/.test(lines[line][column]);
            const given = classAt(line, column);
            if (given !== "comment" && !(isBlank && given === null)) {
                complain(line, column, `is ${given}, between two tokens`);
                return;
            }
        }
    };
    const real = tokens.filter((token) => !token.kind.startsWith("end of "));
    let line = 0;
    let column = 0;
    const gapUntil = (toLine, toColumn) => {
        for (; line < toLine; ++line, column = 0) gap(line, column, lines[line].length);
        gap(line, column, toColumn);
    };
    real.forEach((token, index) => {
        gapUntil(token.line, token.column);
        const next = real[index + 1];
        let wanted = wantedClass(token);
        if (isMalformed(token, next) || (index > 0 && isMalformed(real[index - 1], token))) {
            wanted = "invalid";
        }
        line = token.line;
        column = token.column;
        if (wanted === "string") {
            const first = scopes[line][column];
            if (!first.includes("punctuation.definition.string.begin.pellum")) {
                complain(line, column, "does not begin a string");
            }
            const limit = next && next.line === line ? next.column : lines[line].length;
            const isEnd = () =>
                scopes[line][column].length === first.length &&
                scopes[line][column].includes("punctuation.definition.string.end.pellum");
            while (column < limit && !isEnd()) {
                if (classAt(line, column) !== "string") {
                    complain(line, column, `is ${classAt(line, column)} in a string`);
                    break;
                }
                ++column;
            }
            if (column < limit && isEnd()) ++column;
            else complain(line, token.column, "is a string that does not end");
            return;
        }
        for (const end = column + token.text.length; column < end; ++column) {
            const given = classAt(line, column);
            if (given !== wanted) {
                complain(line, column, `is ${given}, but ${wanted} in ${token.kind} ${token.text}`);
                break;
            }
        }
        column = token.column + token.text.length;
    });
    gapUntil(lines.length - 1, lines[lines.length - 1].length);
    return found;
}

module.exports = { compare, interpolationsOf };
