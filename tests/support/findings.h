// What the linter finds, as lines that a test can compare.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

// One text for each finding, in order: "LINE:COLUMN: RULE: TEXT".
std::vector<std::string> findingsIn(std::string_view source);

}  // namespace pellum::test
