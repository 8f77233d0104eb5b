// Installs this build, for the tests of what comes of it.
#pragma once

#include "support/playing.h"

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace pellum::test {

// "cmake --install" with these arguments, and DESTDIR in its environment unless that is empty. Its
// output is left out of what comes back when it succeeds.
Outcome install(std::vector<std::string> arguments, const std::filesystem::path& destdir = {});

// All files below `folder`, by their paths from there.
std::set<std::filesystem::path> namesUnder(const std::filesystem::path& folder);

}  // namespace pellum::test
