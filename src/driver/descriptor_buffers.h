// The stream buffers behind the standard streams of the process. Unlike those of the library they
// wait where a descriptor is in non-blocking mode, and the output can be written out by a signal
// handler, so that an interrupted program loses nothing of what it has printed.
#pragma once

#include "value/limits.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <streambuf>

namespace pellum {

// In bytes, of each direction.
inline constexpr std::size_t bufferSize = limit(1 << 16, 16);

class InputBuffer final : public std::streambuf {
public:
    explicit InputBuffer(int descriptor) noexcept : descriptor_(descriptor) {}

protected:
    // Whatever cannot be read is the end of the input.
    int_type underflow() override;

private:
    int descriptor_;
    std::array<char, bufferSize> bytes_;
};

class OutputBuffer final : public std::streambuf {
public:
    explicit OutputBuffer(int descriptor) noexcept : descriptor_(descriptor) {}

    // Writes out what is held. False: it could not be written, `errno` says why, and it is dropped.
    // A signal handler may call this unless it has interrupted a write.
    bool drain() noexcept;
    bool isWriting() const noexcept { return isWriting_.load(std::memory_order_relaxed); }

    // Called whenever a write has returned, with all that it has written accounted for.
    void (*afterWrite)() noexcept = nullptr;

protected:
    std::streamsize xsputn(const char* text, std::streamsize length) override;
    int_type overflow(int_type byte) override;
    int sync() override { return drain() ? 0 : -1; }

private:
    // The bytes from begin_ to end_ are held. A handler finds them whole at any moment at which
    // isWriting_ is false.
    int descriptor_;
    std::atomic<bool> isWriting_ = false;
    std::atomic<std::size_t> begin_ = 0;
    std::atomic<std::size_t> end_ = 0;
    std::array<char, bufferSize> bytes_;

    static_assert(std::atomic<std::size_t>::is_always_lock_free);
    static_assert(std::atomic<bool>::is_always_lock_free);
};

}  // namespace pellum
