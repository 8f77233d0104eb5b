#include "driver/posix/history.h"

#include "driver/descriptors.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pellum {

namespace {

constexpr mode_t forOwner = 0600;
constexpr mode_t folderForOwner = 0700;

class Descriptor {
public:
    explicit Descriptor(int number) noexcept : number_(number) {}
    ~Descriptor() {
        if (isOpen()) close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const noexcept { return number_; }
    bool isOpen() const noexcept { return number_ >= 0; }

private:
    int number_;
};

// Makes the folder and those above it that are missing.
void makeFolder(const std::string& path) {
    for (std::size_t end = 0; end != path.npos;) {
        end = path.find('/', end + 1);
        mkdir(path.substr(0, end).c_str(), folderForOwner);
    }
}

// The folder, locked against other prompts for as long as the object lives. Waits for at most a
// second: no history is worth more.
class LockedFolder {
public:
    explicit LockedFolder(const std::string& path)
        : folder_(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        if (!folder_.isOpen()) return;
        for (int tries = 0; tries < 1'000 && !isLocked_; ++tries) {
            if (tries > 0) usleep(1'000);
            isLocked_ = flock(folder_.number(), LOCK_EX | LOCK_NB) == 0;
        }
        if (isLocked_) fchmod(folder_.number(), folderForOwner);
    }

    explicit operator bool() const noexcept { return isLocked_; }
    int openFile(const char* name, int flags) const noexcept {
        return openat(folder_.number(), name, flags | O_CLOEXEC | O_NOFOLLOW, forOwner);
    }
    bool rename(const char* from, const char* to) const noexcept {
        return renameat(folder_.number(), from, folder_.number(), to) == 0;
    }

private:
    Descriptor folder_;
    bool isLocked_ = false;
};

constexpr const char* fileName = "history";
constexpr const char* newFileName = "history.new";

std::string readAll(int file) {
    std::string text;
    std::array<char, 1 << 14> chunk;
    for (;;) {
        const ssize_t count = read(file, chunk.data(), chunk.size());
        if (count > 0) {
            text.append(chunk.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return text;
        }
    }
}

std::string encoded(std::string_view input) {
    std::string line;
    for (const char c : input) {
        if (c == '\\') {
            line += "\\\\";
        } else if (c == '\n') {
            line += "\\n";
        } else {
            line += c;
        }
    }
    return line + '\n';
}

std::string decoded(std::string_view line) {
    std::string input;
    for (std::size_t at = 0; at < line.size(); ++at) {
        const bool isEscape = line[at] == '\\' && at + 1 < line.size();
        if (isEscape) ++at;
        input += isEscape && line[at] == 'n' ? '\n' : line[at];
    }
    return input;
}

// The part of the file's text that is worth keeping: the last lines.
std::string_view latest(std::string_view text) {
    std::size_t start = text.size();
    for (std::size_t count = 0; count < History::maxEntries && start > 0; ++count) {
        const std::size_t before = start < 2 ? text.npos : text.rfind('\n', start - 2);
        const std::size_t lineStart = before == text.npos ? 0 : before + 1;
        if (text.size() - lineStart > History::maxBytes) break;
        start = lineStart;
    }
    return text.substr(start);
}

// Puts the text in the place of the file. Whoever reads the file finds the old or the new one.
void replaceFile(const LockedFolder& folder, std::string_view text) {
    const Descriptor file(folder.openFile(newFileName, O_WRONLY | O_CREAT | O_TRUNC));
    if (file.isOpen() && writeAll(file.number(), text)) folder.rename(newFileName, fileName);
}

}  // namespace

std::vector<std::string> History::load() const {
    std::vector<std::string> entries;
    const LockedFolder folder(folder_);
    if (!folder) return entries;
    const Descriptor file(folder.openFile(fileName, O_RDONLY));
    if (!file.isOpen()) return entries;
    const std::string text = readAll(file.number());
    const std::string_view kept = latest(text);
    if (kept.size() < text.size()) replaceFile(folder, kept);
    for (std::string_view rest = kept; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        entries.push_back(decoded(rest.substr(0, end)));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return entries;
}

void History::add(std::string_view input) {
    if (folder_.empty() || input == last_) return;
    std::string line = encoded(input);
    if (line.size() > maxEntryBytes) return;
    makeFolder(folder_);
    const LockedFolder folder(folder_);
    if (!folder) return;
    const Descriptor file(folder.openFile(fileName, O_RDWR | O_CREAT | O_APPEND));
    struct stat status {};
    if (!file.isOpen() || fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) return;
    fchmod(file.number(), forOwner);
    char end = '\n';
    if (pread(file.number(), &end, 1, status.st_size - 1) == 1 && end != '\n') line = '\n' + line;
    // What cannot be written whole must not stay there in part.
    if (!writeAll(file.number(), line)) {
        [[maybe_unused]] const int result = ftruncate(file.number(), status.st_size);
        return;
    }
    last_ = input;
    if (static_cast<std::size_t>(status.st_size) + line.size() > 2 * maxBytes) {
        lseek(file.number(), 0, SEEK_SET);
        replaceFile(folder, latest(readAll(file.number())));
    }
}

std::string stateFolder() {
    const auto absolute = [](const char* name) {
        const char* value = std::getenv(name);
        return value && *value == '/' ? std::string(value) : std::string();
    };
    if (const std::string state = absolute("XDG_STATE_HOME"); !state.empty()) {
        return state + "/pellum";
    }
    const std::string home = absolute("HOME");
    return home.empty() ? home : home + "/.local/state/pellum";
}

}  // namespace pellum
