#include "lint/finding.h"

#include <algorithm>

namespace pellum::lint {

namespace {

constexpr RuleInfo catalogue[] = {
#define PELLUM_LINT_ROW(rule, name, summary) {name, summary},
    PELLUM_LINT_RULES(PELLUM_LINT_ROW)
#undef PELLUM_LINT_ROW
};

}  // namespace

std::span<const RuleInfo> ruleCatalogue() noexcept { return catalogue; }

std::string_view nameOf(Rule rule) noexcept {
    return catalogue[static_cast<std::size_t>(rule)].name;
}

std::optional<Rule> ruleNamed(std::string_view name) noexcept {
    const auto* const row = std::ranges::find(catalogue, name, &RuleInfo::name);
    if (row == std::end(catalogue)) return std::nullopt;
    return static_cast<Rule>(row - std::begin(catalogue));
}

}  // namespace pellum::lint
