#include "support/findings.h"

#include "lint/linter.h"

namespace pellum::test {

std::vector<std::string> findingsIn(std::string_view source) {
    std::vector<std::string> lines;
    for (const lint::Finding& finding : lint::lint(source)) {
        lines.push_back(std::to_string(finding.at.line) + ":" + std::to_string(finding.at.column) +
                        ": " + std::string(lint::nameOf(finding.rule)) + ": " + finding.text);
    }
    return lines;
}

}  // namespace pellum::test
