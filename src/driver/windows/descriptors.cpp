#include "driver/descriptors.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <windows.h>

namespace pellum {

namespace {

HANDLE handleOf(int descriptor) noexcept {
    constexpr std::array<DWORD, 3> names = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
    return GetStdHandle(names[static_cast<std::size_t>(descriptor)]);
}

std::ptrdiff_t failed() noexcept {
    switch (GetLastError()) {
        case ERROR_BROKEN_PIPE:
        case ERROR_NO_DATA:
        case ERROR_PIPE_NOT_CONNECTED: errno = EPIPE; break;
        case ERROR_DISK_FULL: errno = ENOSPC; break;
        case ERROR_OPERATION_ABORTED: errno = EINTR; break;
        default: errno = EIO;
    }
    return -1;
}

// A console deals in UTF-16. What is no character yet waits for the rest of it.

std::size_t toUtf8(const wchar_t* wide, std::size_t length, char* bytes,
                   std::size_t size) noexcept {
    const int count = WideCharToMultiByte(CP_UTF8, 0, wide, static_cast<int>(length), bytes,
                                          static_cast<int>(size), nullptr, nullptr);
    return static_cast<std::size_t>(count);
}

// A line that begins with one of these ends the input; they are handed over as soon as they are
// typed.
constexpr wchar_t ctrlD = 0x04;
constexpr wchar_t ctrlZ = 0x1A;

std::ptrdiff_t readFromConsole(HANDLE console, char* bytes, std::size_t size) noexcept {
    static wchar_t firstHalf = 0;  // of a character of two units
    std::array<wchar_t, 1024> wide;
    std::size_t length = 0;
    if (firstHalf) wide[length++] = firstHalf;
    firstHalf = 0;
    // A unit becomes three bytes at most.
    const std::size_t room = std::min(wide.size(), size / 3);
    CONSOLE_READCONSOLE_CONTROL control{sizeof control, 0, 1U << ctrlD | 1U << ctrlZ, 0};
    DWORD count = 0;
    SetLastError(ERROR_SUCCESS);
    if (!ReadConsoleW(console, wide.data() + length, static_cast<DWORD>(room - length), &count,
                      &control)) {
        return failed();
    }
    if (count == 0) return GetLastError() == ERROR_OPERATION_ABORTED ? failed() : 0;
    if (length == 0 && (wide[0] == ctrlD || wide[0] == ctrlZ)) return 0;
    length += count;
    if (IS_HIGH_SURROGATE(wide[length - 1])) firstHalf = wide[--length];
    const auto end = std::remove_if(wide.begin(), wide.begin() + length, [](wchar_t c) {
        return c == L'\r' || c == ctrlD || c == ctrlZ;
    });
    length = static_cast<std::size_t>(end - wide.begin());
    if (length == 0) return readFromConsole(console, bytes, size);
    return static_cast<std::ptrdiff_t>(toUtf8(wide.data(), length, bytes, size));
}

// How many bytes at the end are the beginning of a character.
std::size_t incompleteEnd(std::string_view bytes) noexcept {
    for (std::size_t count = 1; count < 4 && count <= bytes.size(); ++count) {
        const auto byte = static_cast<unsigned char>(bytes[bytes.size() - count]);
        if (byte < 0x80) return 0;
        if (byte < 0xC0) continue;
        const std::size_t length = byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
        return count < length ? count : 0;
    }
    return 0;
}

std::ptrdiff_t writeToConsole(HANDLE console, int descriptor, std::string_view bytes) noexcept {
    struct Beginning {
        std::array<char, 4> bytes;
        std::size_t length = 0;
    };
    static std::array<Beginning, 3> beginnings;
    Beginning& beginning = beginnings[static_cast<std::size_t>(descriptor)];
    std::array<char, 4096> text;
    std::copy_n(beginning.bytes.begin(), beginning.length, text.begin());
    const std::size_t taken = std::min(bytes.size(), text.size() - beginning.length);
    std::copy_n(bytes.begin(), taken, text.begin() + beginning.length);
    const std::size_t length = beginning.length + taken;
    const std::size_t waiting = incompleteEnd({text.data(), length});
    std::array<wchar_t, text.size()> wide;
    const int count =
        MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(length - waiting),
                            wide.data(), static_cast<int>(wide.size()));
    if (count > 0 &&
        !WriteConsoleW(console, wide.data(), static_cast<DWORD>(count), nullptr, nullptr)) {
        return failed();
    }
    beginning.length = waiting;
    std::memcpy(beginning.bytes.data(), text.data() + length - waiting, waiting);
    return static_cast<std::ptrdiff_t>(taken);
}

constexpr std::size_t greatestTransfer = std::size_t{1} << 20;

}  // namespace

bool isTerminal(int descriptor) noexcept {
    DWORD mode = 0;
    return GetConsoleMode(handleOf(descriptor), &mode) != 0;
}

std::ptrdiff_t readFrom(int descriptor, char* bytes, std::size_t size) noexcept {
    if (isTerminal(descriptor)) return readFromConsole(handleOf(descriptor), bytes, size);
    DWORD count = 0;
    if (ReadFile(handleOf(descriptor), bytes, static_cast<DWORD>(std::min(size, greatestTransfer)),
                 &count, nullptr)) {
        return static_cast<std::ptrdiff_t>(count);
    }
    // All writers have closed their end.
    return GetLastError() == ERROR_BROKEN_PIPE ? 0 : failed();
}

std::ptrdiff_t writeTo(int descriptor, std::string_view bytes) noexcept {
    if (isTerminal(descriptor)) return writeToConsole(handleOf(descriptor), descriptor, bytes);
    DWORD count = 0;
    const auto size = static_cast<DWORD>(std::min(bytes.size(), greatestTransfer));
    if (!WriteFile(handleOf(descriptor), bytes.data(), size, &count, nullptr)) return failed();
    return static_cast<std::ptrdiff_t>(count);
}

bool mayTryAgain(int, Direction) noexcept { return errno == EINTR; }

}  // namespace pellum
