#include "builtins/console.h"

#include "value/interrupt.h"

#include <cerrno>
#include <istream>
#include <ostream>
#include <streambuf>

namespace pellum {

namespace {

// Streams do not say why they failed, but the system call behind them does.
void throwIfFailed(const std::ostream& out) {
    if (!out) throw OutputError{.readerIsGone = errno == EPIPE};
}

}  // namespace

void Console::write(std::string_view text) {
    // In pieces, so that even a single long text can be stopped.
    constexpr std::size_t pieceLength = std::size_t{1} << 16;
    do {
        stopIfInterrupted();
        const std::string_view piece = text.substr(0, pieceLength);
        errno = 0;
        try {
            out_.write(piece.data(), static_cast<std::streamsize>(piece.size()));
        } catch (...) {  // where the stream lets that pass, it may go on afterwards
            out_.clear();
            throw;
        }
        throwIfFailed(out_);
        text.remove_prefix(piece.size());
    } while (!text.empty());
}

void Console::flush() {
    errno = 0;
    out_.flush();
    throwIfFailed(out_);
}

std::optional<std::string_view> Console::nextLine(std::string_view prompt) {
    if (lines_ && !isLineWhole_) return nextTypedLine(prompt);
    if (!prompt.empty()) write(prompt);
    flush();
    if (isLineWhole_) return line_;
    if (!in_) return std::nullopt;
    // Read from the buffer: the stream itself would take a lack of memory for the end of the input.
    std::streambuf& bytes = *in_.rdbuf();
    using Traits = std::streambuf::traits_type;
    try {
        for (auto byte = bytes.sgetc(); byte != '\n'; byte = bytes.snextc()) {
            if (Traits::eq_int_type(byte, Traits::eof())) {
                in_.setstate(std::ios::eofbit | std::ios::failbit);
                break;
            }
            if (line_.size() == maxLineLength) {
                takeLine();
                throw LineTooLong();
            }
            line_ += Traits::to_char_type(byte);
        }
        if (in_) bytes.sbumpc();
    } catch (const std::ios::failure&) {
        in_.setstate(std::ios::badbit);  // what cannot be read is the end as well
    }
    if (!in_ && line_.empty()) return std::nullopt;
    isLineWhole_ = true;
    return line_;
}

std::optional<std::string_view> Console::nextTypedLine(std::string_view prompt) {
    // An editor has to know what stands before the line, and that is the last line of the prompt.
    const std::size_t above = prompt.rfind('\n') + 1;
    if (above > 0) write(prompt.substr(0, above));
    flush();
    std::optional<std::string> line = lines_->readLine(prompt.substr(above));
    if (!line) return std::nullopt;
    line_ = std::move(*line);
    isLineWhole_ = true;
    return line_;
}

void Console::takeLine() noexcept {
    line_ = std::string();
    isLineWhole_ = false;
}

std::optional<std::string> Console::readLine() {
    std::optional<std::string> line;
    if (const auto next = nextLine()) line.emplace(*next);
    takeLine();
    return line;
}

}  // namespace pellum
