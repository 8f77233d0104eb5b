#include "builtins/console.h"

#include <cerrno>
#include <istream>
#include <ostream>

namespace pellum {

namespace {

// Streams do not say why they failed, but the system call behind them does.
void throwIfFailed(const std::ostream& out) {
    if (!out) throw OutputError{.readerIsGone = errno == EPIPE};
}

}  // namespace

void Console::write(std::string_view text) {
    errno = 0;
    out_.write(text.data(), static_cast<std::streamsize>(text.size()));
    throwIfFailed(out_);
}

void Console::flush() {
    errno = 0;
    out_.flush();
    throwIfFailed(out_);
}

std::optional<std::string> Console::readLine() {
    flush();
    std::string line;
    if (!std::getline(in_, line)) return std::nullopt;
    return line;
}

}  // namespace pellum
