#include "lint/command.h"

#include "lint/json.h"
#include "lint/linter.h"

#include <algorithm>

namespace pellum::lint {

namespace {

constexpr std::string_view usage =
    "usage: pellum-lint [--json] FILE...\n"
    "       pellum-lint --rules\n"
    "       pellum-lint -h | --help | -v | --version\n"
    "\n"
    "Looks in programs written in Pellum for what the language lets slip, and writes\n"
    "a line for each finding. A FILE that is called - is the standard input.\n"
    "\n"
    "  --json         write an array of objects instead of lines\n"
    "  --rules        list the rules\n"
    "  -h, --help     show this help\n"
    "  -v, --version  show the version\n"
    "\n"
    "A comment \"# lint: allow RULE\" silences a rule in its line, or in the next.\n"
    "The status is 0 without findings, 1 with some or for a file that cannot be read\n"
    "or parsed, and 2 for a mistake in the command line.\n";

// Writes findings, in one of two forms, as they come.
class Writer {
public:
    Writer(bool isJson, Console& console) : isJson_(isJson), console_(console) {
        if (isJson_) console_.write("[");
    }

    void write(const std::string& file, const Finding& finding) {
        std::string line;
        const std::string lineNumber = std::to_string(finding.at.line);
        const std::string column = std::to_string(finding.at.column);
        if (isJson_) {
            line = isFirst_ ? "\n{\"file\": " : ",\n{\"file\": ";
            appendJson(line, file);
            line += ", \"line\": " + lineNumber + ", \"column\": " + column + ", \"rule\": ";
            appendJson(line, nameOf(finding.rule));
            line += ", \"text\": ";
            appendJson(line, finding.text);
            line += "}";
        } else {
            line = file + ":" + lineNumber + ":" + column + ": ";
            line += nameOf(finding.rule);
            line += ": " + finding.text + "\n";
        }
        isFirst_ = false;
        console_.write(line);
    }

    void end() {
        if (isJson_) console_.write(isFirst_ ? "]\n" : "\n]\n");
    }

private:
    bool isJson_;
    bool isFirst_ = true;
    Console& console_;
};

int listRules(Session& session) {
    std::size_t width = 0;
    for (const RuleInfo& rule : ruleCatalogue()) width = std::max(width, rule.name.size());
    for (const RuleInfo& rule : ruleCatalogue()) {
        std::string line(rule.name);
        line.resize(width + 2, ' ');
        session.console.write(line.append(rule.summary) + "\n");
    }
    return exitSuccess;
}

// Whether there was nothing to say about the file.
bool checkFile(const std::string& path, Writer& writer, Session& session) {
    const auto source = tools::readInput(path, session);
    if (!source) return false;
    Findings findings;
    if (!tools::reportsNoProblem(*source, path, session, [&] { findings = lint(*source); })) {
        return false;
    }
    for (const Finding& finding : findings) writer.write(tools::nameOfSource(path), finding);
    return findings.empty();
}

int run(const tools::Arguments& arguments, Session& session) {
    std::vector<std::string> files;
    bool isJson = false;
    bool mayBeOption = true;
    for (const std::string& argument : arguments) {
        if (!mayBeOption || argument == tools::standardInput || !argument.starts_with('-')) {
            files.push_back(argument);
        } else if (argument == "--") {
            mayBeOption = false;
        } else if (argument == "--json") {
            isJson = true;
        } else if (argument == "--rules") {
            return listRules(session);
        } else {
            return tools::complainOfUsage("unknown option " + argument, session);
        }
    }
    if (files.empty()) return tools::complainOfUsage("no file is given", session);
    Writer writer(isJson, session.console);
    bool isClean = true;
    for (const std::string& file : files) isClean &= checkFile(file, writer, session);
    writer.end();
    return isClean ? exitSuccess : exitFailure;
}

}  // namespace

const tools::Tool lintTool = {"pellum-lint", usage, run};

}  // namespace pellum::lint
