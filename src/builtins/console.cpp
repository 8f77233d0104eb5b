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
    // In pieces, so that a line without an end does not fill the memory.
    std::string line;
    char piece[1024];
    while (!in_.getline(piece, sizeof piece).bad()) {
        const bool hasNewline = in_.good();  // it is counted, and not in the piece
        const auto count = static_cast<std::size_t>(in_.gcount());
        line.append(piece, hasNewline ? count - 1 : count);
        if (in_.eof() && line.empty()) break;
        if (in_.fail() && !in_.eof()) in_.clear();  // the piece is full, which is no failure
        if (line.size() > maxLineLength) throw LineTooLong();
        if (hasNewline || in_.eof()) return line;
    }
    return std::nullopt;
}

}  // namespace pellum
