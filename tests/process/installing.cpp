#include "process/installing.h"

#include "support/files.h"
#include "support/process.h"

#include <cstdlib>

namespace fs = std::filesystem;

namespace pellum::test {

Outcome install(std::vector<std::string> arguments, const fs::path& destdir) {
    arguments.insert(arguments.begin(), {"--install", PELLUM_BUILD});
    Process cmake;
    cmake.executable = PELLUM_CMAKE;
    cmake.arguments = std::move(arguments);
    cmake.prepare = [&] {
        return destdir.empty() ? unsetenv("DESTDIR") == 0
                               : setenv("DESTDIR", destdir.c_str(), true) == 0;
    };
    Outcome outcome = cmake.run();
    if (outcome.status == 0) outcome.output.clear();
    return outcome;
}

std::set<fs::path> namesUnder(const fs::path& folder) {
    std::set<fs::path> names;
    for (const fs::path& file : filesUnder(folder, ""))
        names.insert(file.lexically_relative(folder));
    return names;
}

}  // namespace pellum::test
