#include "driver/descriptor_buffers.h"

#include "driver/descriptors.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace pellum {

namespace {

constexpr auto relaxed = std::memory_order_relaxed;

}  // namespace

InputBuffer::int_type InputBuffer::underflow() {
    std::ptrdiff_t count;
    do {
        count = readFrom(descriptor_, bytes_.data(), bytes_.size());
    } while (count < 0 && mayTryAgain(descriptor_, Direction::Read));
    if (count <= 0) return traits_type::eof();
    setg(bytes_.data(), bytes_.data(), bytes_.data() + count);
    return traits_type::to_int_type(bytes_.front());
}

bool OutputBuffer::drain() noexcept {
    for (;;) {
        const std::size_t begin = begin_.load(relaxed);
        const std::size_t end = end_.load(relaxed);
        if (begin >= end) break;
        isWriting_.store(true, relaxed);
        std::atomic_signal_fence(std::memory_order_seq_cst);
        const std::ptrdiff_t count = writeTo(descriptor_, {bytes_.data() + begin, end - begin});
        if (count > 0) begin_.store(begin + static_cast<std::size_t>(count), relaxed);
        std::atomic_signal_fence(std::memory_order_seq_cst);
        isWriting_.store(false, relaxed);
        const int problem = errno;
        if (afterWrite) afterWrite();
        errno = problem;
        if (count > 0 || mayTryAgain(descriptor_, Direction::Write)) continue;
        end_.store(begin, relaxed);
        return false;
    }
    // Emptied in this order, so that a handler between the two finds nothing to write.
    end_.store(0, relaxed);
    begin_.store(0, relaxed);
    return true;
}

std::streamsize OutputBuffer::xsputn(const char* text, std::streamsize length) {
    auto left = static_cast<std::size_t>(length);
    while (left > 0) {
        if (end_.load(relaxed) == bytes_.size() && !drain()) break;
        const std::size_t end = end_.load(relaxed);
        const std::size_t count = std::min(left, bytes_.size() - end);
        std::memcpy(bytes_.data() + end, text, count);
        std::atomic_signal_fence(std::memory_order_seq_cst);
        end_.store(end + count, relaxed);
        text += count;
        left -= count;
    }
    return length - static_cast<std::streamsize>(left);
}

OutputBuffer::int_type OutputBuffer::overflow(int_type byte) {
    if (traits_type::eq_int_type(byte, traits_type::eof())) return traits_type::not_eof(byte);
    const char text = traits_type::to_char_type(byte);
    return xsputn(&text, 1) == 1 ? byte : traits_type::eof();
}

}  // namespace pellum
