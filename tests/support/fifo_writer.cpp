#include "support/fifo_writer.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace pellum::test {

namespace {

[[noreturn]] void writeInto(const char* path, std::string_view text, unsigned delay) {
    const int fifo = open(path, O_WRONLY);
    usleep(delay * 1000);
    while (!text.empty()) {
        const ssize_t count = write(fifo, text.data(), text.size());
        if (count <= 0) break;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    _exit(0);
}

}  // namespace

FifoWriter::FifoWriter(const std::filesystem::path& path, std::string_view text, unsigned delay) {
    if (mkfifo(path.c_str(), 0600) != 0 || (writer_ = fork()) < 0) {
        throw std::system_error(errno, std::generic_category(), path.string());
    }
    if (writer_ == 0) writeInto(path.c_str(), text, delay);
}

FifoWriter::~FifoWriter() {
    kill(writer_, SIGKILL);
    waitpid(writer_, nullptr, 0);
}

}  // namespace pellum::test
