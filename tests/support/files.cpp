#include "support/files.h"

#include <algorithm>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace fs = std::filesystem;

namespace pellum::test {

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream contents;
    // An empty file sets the failure bit of `contents`, not of `file`.
    if (!file || !(contents << file.rdbuf(), file)) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return std::move(contents).str();
}

void writeFile(const fs::path& path, std::string_view contents) {
    std::ofstream file(path, std::ios::binary);
    file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

std::vector<fs::path> filesUnder(const fs::path& folder, std::string_view extension) {
    std::vector<fs::path> files;
    if (!fs::is_directory(folder)) return files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) continue;
        if (extension.empty() || entry.path().extension() == extension) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<fs::path> repositoryFiles() {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(".")) {
        const std::string name = entry.path().filename().string();
        if (!entry.is_directory()) {
            files.push_back(name);
        } else if (name == ".ci" || name == ".github" ||
                   !(name.starts_with('.') || name.starts_with("build"))) {
            const std::vector<fs::path> inside = filesUnder(name, "");
            files.insert(files.end(), inside.begin(), inside.end());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

TemporaryFolder::TemporaryFolder() {
    std::random_device random;
    do {
        path_ = fs::temp_directory_path() / ("pellum-test-" + std::to_string(random()));
    } while (!fs::create_directory(path_));  // a name that is taken
    fs::permissions(path_, fs::perms::owner_all);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

CurrentFolder::CurrentFolder(const fs::path& folder) : previous_(fs::current_path()) {
    fs::current_path(folder);
}

CurrentFolder::~CurrentFolder() {
    std::error_code ignored;
    fs::current_path(previous_, ignored);
}

}  // namespace pellum::test
