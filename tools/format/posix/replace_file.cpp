#include "format/replace_file.h"

#include "driver/descriptors.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pellum::tools {

namespace {

[[noreturn]] void fail(int error = errno) {
    throw std::system_error(error, std::generic_category());
}

// Puts off every signal, so that none ends the process while there is a file to be tidied up.
class SignalsPutOff {
public:
    SignalsPutOff() noexcept {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalsPutOff() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsPutOff(const SignalsPutOff&) = delete;
    SignalsPutOff& operator=(const SignalsPutOff&) = delete;

private:
    sigset_t before_;
};

// A new file beside another one, which is gone again unless it takes that one's place.
class FileBeside {
public:
    explicit FileBeside(const std::filesystem::path& target)
        : target_(target),
          name_((target.parent_path() / ("." + target.filename().string() + ".XXXXXX")).string()),
          descriptor_(mkstemp(name_.data())) {
        if (descriptor_ < 0) fail();
    }
    ~FileBeside() {
        close(descriptor_);
        if (!isInPlace_) unlink(name_.c_str());
    }
    FileBeside(const FileBeside&) = delete;
    FileBeside& operator=(const FileBeside&) = delete;

    void write(std::string_view contents) {
        if (!writeAll(descriptor_, contents)) fail();
    }

    void takePlace(const struct stat& original) {
        // Only the superuser can give a file away; for anybody else the file is theirs now.
        const bool isGiven = fchown(descriptor_, original.st_uid, original.st_gid) == 0;
        // The bits that lend the owner's rights do not go over to another owner.
        const mode_t bits = isGiven ? mode_t{07777} : mode_t{0777};
        if (fchmod(descriptor_, original.st_mode & bits) != 0) fail();
        if (fsync(descriptor_) != 0) fail();
        if (rename(name_.c_str(), target_.c_str()) != 0) fail();
        isInPlace_ = true;
    }

private:
    std::filesystem::path target_;
    std::string name_;
    int descriptor_;
    bool isInPlace_ = false;
};

}  // namespace

void replaceFile(const std::string& path, std::string_view contents) {
    const std::filesystem::path target = std::filesystem::canonical(path);
    struct stat original {};
    if (stat(target.c_str(), &original) != 0) fail();
    if (!S_ISREG(original.st_mode)) fail(EINVAL);
    // A new file could be written in spite of it.
    if (access(target.c_str(), W_OK) != 0) fail();
    const SignalsPutOff guard;
    FileBeside file(target);
    file.write(contents);
    file.takePlace(original);
}

}  // namespace pellum::tools
