#include "format/replace_file.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

#include <windows.h>

namespace pellum::tools {

namespace {

[[noreturn]] void fail(DWORD error = GetLastError()) {
    throw std::system_error(static_cast<int>(error), std::system_category());
}

class File {
public:
    explicit File(HANDLE handle) : handle_(handle) {
        if (handle_ == INVALID_HANDLE_VALUE) fail();
    }
    ~File() { close(); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    HANDLE handle() const noexcept { return handle_; }
    void close() noexcept {
        if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
        handle_ = INVALID_HANDLE_VALUE;
    }

private:
    HANDLE handle_;
};

// The file that is meant, where there are links on the way. It must be one that can be written,
// since a new file could be in spite of that.
std::string targetOf(const std::string& path) {
    constexpr DWORD sharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const File file(CreateFileA(path.c_str(), GENERIC_WRITE, sharing, nullptr, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
    std::array<char, 1 << 15> target;
    const DWORD length = GetFinalPathNameByHandleA(
        file.handle(), target.data(), static_cast<DWORD>(target.size()), FILE_NAME_NORMALIZED);
    if (length == 0) fail();
    if (length >= target.size()) fail(ERROR_BUFFER_OVERFLOW);
    return {target.data(), length};
}

// A new file beside another one, which is gone again unless it takes that one's place.
class FileBeside {
public:
    explicit FileBeside(std::string target)
        : target_(std::move(target)), name_(newName(target_)), file_(create(name_)) {}
    ~FileBeside() {
        file_.close();
        if (!isInPlace_) DeleteFileA(name_.c_str());
    }
    FileBeside(const FileBeside&) = delete;
    FileBeside& operator=(const FileBeside&) = delete;

    void write(std::string_view contents) {
        while (!contents.empty()) {
            constexpr std::size_t most = std::size_t{1} << 20;
            const auto size = static_cast<DWORD>(std::min(contents.size(), most));
            DWORD count = 0;
            if (!WriteFile(file_.handle(), contents.data(), size, &count, nullptr)) fail();
            contents.remove_prefix(count);
        }
    }

    // The file gets the rights and the attributes of the other one.
    void takePlace() {
        if (!FlushFileBuffers(file_.handle())) fail();
        file_.close();
        if (!ReplaceFileA(target_.c_str(), name_.c_str(), nullptr, 0, nullptr, nullptr)) fail();
        isInPlace_ = true;
    }

private:
    // Made of what no other process is using at the moment.
    static std::string newName(const std::string& target) {
        return target + "." + std::to_string(GetCurrentProcessId()) + "." +
               std::to_string(GetTickCount64());
    }
    static HANDLE create(const std::string& name) {
        return CreateFileA(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    }

    std::string target_;
    std::string name_;
    File file_;
    bool isInPlace_ = false;
};

}  // namespace

void replaceFile(const std::string& path, std::string_view contents) {
    FileBeside file(targetOf(path));
    file.write(contents);
    file.takePlace();
}

}  // namespace pellum::tools
