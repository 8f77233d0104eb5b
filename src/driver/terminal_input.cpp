#include "driver/terminal_input.h"

#include "driver/descriptors.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace pellum {

TerminalInput::Event TerminalInput::readSome() {
    std::array<char, 4096> chunk;
    const std::ptrdiff_t count = readFrom(inDescriptor, chunk.data(), chunk.size());
    if (count > 0) {
        bytes_.erase(0, taken_);
        taken_ = 0;
        bytes_.append(chunk.data(), static_cast<std::size_t>(count));
        return Event::Byte;
    }
    const bool isPassing = count < 0 && (errno == EINTR || errno == EAGAIN);
    return isPassing ? Event::Signal : Event::End;
}

std::optional<std::string> TerminalInput::takePlainLine() {
    const auto isControl = [](char c) {
        return (static_cast<unsigned char>(c) < 0x20 && c != '\t') || c == 0x7F;
    };
    const auto text = waiting();
    const auto end = std::ranges::find_if(text, isControl);
    if (end == text.end() || (*end != '\n' && *end != '\r')) return std::nullopt;
    std::string line(text.begin(), end);
    take(line.size() + 1);
    return line;
}

}  // namespace pellum
