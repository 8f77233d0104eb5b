// Files and folders as the tests need them. Tests run with the root of the repository as their
// current folder, so all paths here are relative to it and read well in messages.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

// The whole file, byte for byte. Throws std::runtime_error when it cannot be read.
std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, std::string_view contents);

// All files below `folder` with this extension (such as ".case"; "" for every file), sorted. A
// folder that does not exist has none.
std::vector<std::filesystem::path> filesUnder(const std::filesystem::path& folder,
                                              std::string_view extension);

// Every file of the repository, sorted: all but those of Git, builds, and hidden folders that
// editors keep.
std::vector<std::filesystem::path> repositoryFiles();

// A new empty folder that disappears with the object.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

// Makes `folder` the current one for as long as the object lives.
class CurrentFolder {
public:
    explicit CurrentFolder(const std::filesystem::path& folder);
    ~CurrentFolder();
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

private:
    std::filesystem::path previous_;
};

}  // namespace pellum::test
