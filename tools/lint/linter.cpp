#include "lint/linter.h"

#include "common/comments.h"
#include "lint/allowances.h"
#include "lint/code_rules.h"
#include "lint/name_rules.h"
#include "lint/names.h"
#include "lint/places.h"

#include "driver/pragmas.h"
#include "parser/parser.h"

#include <algorithm>
#include <tuple>
#include <unordered_set>

namespace pellum::lint {

namespace {

void checkPragmas(std::string_view source, const std::vector<tools::Comment>& comments,
                  Findings& findings) {
    const PragmaInfo info = scanPragmas(source);
    std::unordered_set<std::uint32_t> heard;
    for (const Pragma& pragma : info.pragmas) {
        heard.insert(static_cast<std::uint32_t>(pragma.line));
    }
    for (const tools::Comment& comment : comments) {
        if (!isPragma(comment.text) || heard.contains(comment.line)) continue;
        findings.push_back({{comment.line, comment.column},
                            Rule::IdlePragma,
                            "behind the first line of code a pragma is a comment"});
    }
    for (const Pragma& pragma : info.unknown) {
        const auto line = static_cast<std::uint32_t>(pragma.line);
        const auto comment = std::ranges::lower_bound(comments, line, {}, &tools::Comment::line);
        findings.push_back({{line, comment->column},
                            Rule::IdlePragma,
                            "there is no pragma '" + pragma.name + "'"});
    }
}

}  // namespace

Findings lint(std::string_view source) {
    const tools::LexedSource lexed = tools::lexSource(source);
    const Block program = parse(lexed.tokens);
    const Places places(source, lexed.tokens, program);
    const Names names(program, places);
    Findings findings;
    checkNames(names, places, findings);
    checkCode(program, names, places, findings);
    checkPragmas(source, lexed.comments, findings);
    applyAllowances(lexed, findings);
    std::ranges::sort(findings, {}, [](const Finding& finding) {
        return std::tuple(finding.at.line, finding.at.column, finding.rule,
                          std::string_view(finding.text));
    });
    return findings;
}

}  // namespace pellum::lint
