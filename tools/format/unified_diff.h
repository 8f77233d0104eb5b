// The difference between a source and its new layout, for people and for `patch`.
#pragma once

#include <string>
#include <string_view>

namespace pellum::tools {

// A unified diff with three lines of context, under `name`; empty when the texts are equal. Lines
// are matched by what is written in them, since a new layout changes nothing but blanks, line ends
// and a comma here and there: that takes time linear in the texts. Other texts give a diff too, if
// not a short one.
std::string unifiedDiff(std::string_view before, std::string_view after, std::string_view name);

}  // namespace pellum::tools
