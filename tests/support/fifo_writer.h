// A named pipe with a process of its own that writes into it.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string_view>

namespace pellum::test {

class FifoWriter {
public:
    // Makes the pipe; `text` is written into it when somebody reads, or so many milliseconds later.
    // Throws std::system_error.
    FifoWriter(const std::filesystem::path& path, std::string_view text, unsigned delay = 0);
    // Stops writing, if there is still something to write.
    ~FifoWriter();
    FifoWriter(const FifoWriter&) = delete;
    FifoWriter& operator=(const FifoWriter&) = delete;

private:
    pid_t writer_;
};

}  // namespace pellum::test
