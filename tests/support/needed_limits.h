// Which tests a build with small limits has to leave out, and which an ordinary one. Cases that are
// programs of their own say so themselves, in a comment; the others are listed here.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

// Whether this build has the limits that the test `name` needs.
bool canRun(std::string_view name);

// The command line's pattern of tests, `filter`, without those that cannot run.
std::string withoutWhatCannotRun(std::string filter);

// A row of the list that is true of none of the tests `names`.
std::optional<std::string> uselessNeed(const std::vector<std::string>& names);

}  // namespace pellum::test
