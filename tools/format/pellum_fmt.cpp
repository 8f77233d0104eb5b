#include "format/pellum_fmt.h"

#include "format/format.h"
#include "format/printer.h"
#include "format/replace_file.h"
#include "format/unified_diff.h"

#include <system_error>

namespace pellum::tools {

namespace {

constexpr std::string_view usage =
    "pellum-fmt FILE...           lay the files out anew, in place\n"
    "pellum-fmt -                 lay out standard input, onto standard output\n"
    "pellum-fmt --check FILE...   name the files that would change; status 1 if there are any\n"
    "pellum-fmt --diff FILE...    show what would change, likewise\n"
    "pellum-fmt --version\n";

// What to do with a file whose layout is another.
enum class Action { Rewrite, Check, Diff };

struct Request {
    Action action = Action::Rewrite;
    std::vector<std::string> paths;
    std::string problem;  // why it cannot be fulfilled, or empty
};

Request requestOf(const Arguments& arguments) {
    Request request;
    bool hasOptions = true;
    for (const std::string& argument : arguments) {
        if (!hasOptions || argument == standardInput || !argument.starts_with('-')) {
            request.paths.push_back(argument);
        } else if (argument == "--") {
            hasOptions = false;
        } else if (argument != "--check" && argument != "--diff") {
            request.problem = "unknown option " + argument;
            return request;
        } else {
            const Action action = argument == "--check" ? Action::Check : Action::Diff;
            if (request.action != Action::Rewrite && request.action != action) {
                request.problem = "--check and --diff exclude each other";
            }
            request.action = action;
        }
    }
    if (request.paths.empty() && request.problem.empty()) request.problem = "no file is given";
    return request;
}

// Puts the result where it belongs; false when that failed.
bool rewrite(const std::string& path, const std::string& before, const std::string& after,
             Session& session) {
    if (path == standardInput) {
        session.console.write(after);
        return true;
    }
    if (before == after) return true;
    try {
        replaceFile(path, after);
        return true;
    } catch (const std::system_error& error) {
        session.complain("cannot write " + path + ": " + error.code().message());
        return false;
    }
}

// The new layout of a source, or none after saying why there is none.
std::optional<std::string> layOut(const std::string& path, const std::string& source,
                                  Session& session) {
    std::optional<std::string> result;
    try {
        reportsNoProblem(source, path, session, [&] { result = format(source); });
    } catch (const FormatterFault& fault) {
        session.complain(nameOfSource(path) +
                         ": internal error, so nothing is changed: " + fault.what());
    } catch (const TextTooLong& problem) {
        session.complain(nameOfSource(path) + ": " + problem.what());
    }
    return result;
}

// True when nothing was wrong, and nothing would change where that was the question.
bool treat(const std::string& path, Action action, Session& session) {
    const std::optional<std::string> source = readInput(path, session);
    if (!source) return false;
    const std::optional<std::string> result = layOut(path, *source, session);
    if (!result) return false;
    switch (action) {
        case Action::Rewrite: return rewrite(path, *source, *result, session);
        case Action::Check:
            if (*result != *source) session.console.write(nameOfSource(path) + "\n");
            break;
        case Action::Diff:
            session.console.write(unifiedDiff(*source, *result, nameOfSource(path)));
            break;
    }
    return *result == *source;
}

int run(const Arguments& arguments, Session& session) {
    const Request request = requestOf(arguments);
    if (!request.problem.empty()) return complainOfUsage(request.problem, session);
    ExitStatus status = exitSuccess;
    for (const std::string& path : request.paths) {
        if (!treat(path, request.action, session)) status = exitFailure;
    }
    return status;
}

}  // namespace

const Tool pellumFmt = {"pellum-fmt", usage, run};

}  // namespace pellum::tools
