#include "value/string.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <exception>
#include <new>
#include <random>
#include <stdexcept>
#include <utility>

namespace pellum {

// Bytes that several strings share from the front. Only ever appended to, so every holder's part
// stays what it was.
class StringBuffer {
public:
    static StringBuffer* make(std::size_t capacity) {
        void* memory = allocateCell(sizeof(StringBuffer) + capacity);
        return new (memory) StringBuffer(capacity);
    }

    void retain() noexcept { ++references_; }
    void release() noexcept {
        if (--references_ == 0) releaseCell(this, sizeof(StringBuffer) + capacity_);
    }

    char* data() noexcept { return reinterpret_cast<char*>(this + 1); }
    std::size_t used() const noexcept { return used_; }
    bool hasRoomFor(std::size_t count) const noexcept { return count <= capacity_ - used_; }

    // REQUIRES: hasRoomFor(text.size()).
    void append(std::string_view text) noexcept {
        std::memmove(data() + used_, text.data(), text.size());
        used_ += text.size();
    }

private:
    explicit StringBuffer(std::size_t capacity) noexcept : capacity_(capacity) {}

    std::size_t references_ = 1;
    std::size_t used_ = 0;
    std::size_t capacity_;
};

namespace {

// Up to here a result is copied whole rather than given a buffer to grow in.
constexpr std::size_t maxInlineResult = limit(128, 4);

// What a buffer that is known to grow is given beyond the length it needs now.
constexpr std::size_t roomFor(std::size_t length) noexcept {
    return limit(length / 2, std::size_t{2});
}

void checkLength(std::size_t length) {
    if (length > maxStringLength) throw std::length_error("string too long");
}

}  // namespace

Ref<StringObj> StringObj::makeUninitialized(std::size_t length) {
    checkLength(length);
    auto* string = new (allocateCell(sizeFor(length))) StringObj;
    string->length_ = static_cast<std::uint32_t>(length);
    return Ref<StringObj>(string);
}

Ref<StringObj> StringObj::makeOver(StringBuffer* adopted, std::size_t length) {
    StringObj* string = nullptr;
    try {
        string = new (allocateCell(sizeFor(0))) StringObj;
    } catch (...) {
        adopted->release();
        throw;
    }
    string->buffer_ = adopted;
    string->bytes_ = adopted->data();
    string->length_ = static_cast<std::uint32_t>(length);
    return Ref<StringObj>(string);
}

Ref<StringObj> StringObj::make(std::string_view text) {
    if (text.empty()) return empty();
    if (text.size() == 1) return oneByte(static_cast<unsigned char>(text[0]));
    Ref<StringObj> string = makeUninitialized(text.size());
    std::memcpy(const_cast<char*>(string->bytes_), text.data(), text.size());
    return string;
}

constinit thread_local std::size_t StringObj::sizeOfTheDead = 0;

StringObj::~StringObj() {
    if (!isInline()) buffer_->release();
    sizeOfTheDead = sizeFor(isInline() ? length_ : 0);
}

bool StringObj::canGrowBy(std::size_t count) const noexcept {
    return !isInline() && buffer_->used() == length_ && buffer_->hasRoomFor(count);
}

bool StringObj::extend(std::string_view right) noexcept {
    if (!canGrowBy(right.size()) || right.size() > maxStringLength - length_) return false;
    buffer_->append(right);
    length_ += static_cast<std::uint32_t>(right.size());
    hash_ = 0;
    return true;
}

Ref<StringObj> StringObj::concatenate(Ref<StringObj> left, std::string_view right) {
    if (right.empty()) return left;
    const std::size_t leftLength = left->length_;
    const std::size_t length = leftLength + right.size();
    checkLength(length);

    if (length <= maxInlineResult) {
        Ref<StringObj> result = makeUninitialized(length);
        char* bytes = const_cast<char*>(result->bytes_);
        std::memcpy(bytes, left->bytes_, leftLength);
        std::memcpy(bytes + leftLength, right.data(), right.size());
        return result;
    }
    if (left->isUnshared() && left->extend(right)) return left;
    if (left->canGrowBy(right.size())) {
        left->buffer_->retain();
        Ref<StringObj> result = makeOver(left->buffer_, length);
        left->buffer_->append(right);
        return result;
    }
    // A left part that has been appended to before will be again: leave room. Any other sum gets
    // what it needs and no more.
    const bool endsItsBuffer = !left->isInline() && left->buffer_->used() == leftLength;
    const std::size_t room = endsItsBuffer ? roomFor(length) : 0;
    StringBuffer* buffer = StringBuffer::make(std::min(length + room, maxStringLength));
    buffer->append(left->view());
    buffer->append(right);
    return makeOver(buffer, length);
}

std::uint64_t StringObj::computeHash() const noexcept { return hash_ = hashBytes(view()); }

SharedStrings::SharedStrings() : empty_(StringObj::makeUninitialized(0)) {
    for (std::size_t byte = 0; byte < oneByte_.size(); ++byte) {
        oneByte_[byte] = StringObj::makeUninitialized(1);
        oneByte_[byte]->inline_[0] = static_cast<char>(byte);
    }
}

SharedStrings::~SharedStrings() {
    if (StringObj::oneByteStrings == oneByte_.data()) StringObj::oneByteStrings = nullptr;
}

constinit thread_local SharedStrings* SharedStrings::inUse = nullptr;

SharedStrings& SharedStrings::current() {
    if (inUse) return *inUse;
#if defined(__MINGW32__)
    // The memory of a thread's variables goes before their destructors run there, so these stay.
    thread_local SharedStrings* const ofTheThread = new SharedStrings;
    return *ofTheThread;
#else
    thread_local SharedStrings ofTheThread;
    return ofTheThread;
#endif
}

SharedStrings* SharedStrings::use(SharedStrings* strings) noexcept {
    StringObj::oneByteStrings = strings ? strings->oneByte_.data() : nullptr;
    return std::exchange(inUse, strings);
}

const Ref<StringObj>& SharedStrings::intern(std::string_view text) {
    auto found = interned_.find(text);
    if (found == interned_.end()) {
        Ref<StringObj> string = StringObj::make(text);
        found = interned_.emplace(string->view(), string).first;
    }
    return found->second;
}

void SharedStrings::forgetUnused() noexcept {
    std::erase_if(interned_, [](const auto& entry) { return entry.second->isUnshared(); });
}

constinit thread_local const Ref<StringObj>* StringObj::oneByteStrings = nullptr;

const Ref<StringObj>* StringObj::makeOneByteStrings() {
    return oneByteStrings = SharedStrings::current().oneByte_.data();
}

const Ref<StringObj>& StringObj::empty() { return SharedStrings::current().empty_; }

namespace {

__extension__ using Wide = unsigned __int128;

std::uint64_t mix(std::uint64_t a, std::uint64_t b) noexcept {
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

// What nobody can guess who chooses keys.
std::array<std::uint64_t, 2> makeSeed() noexcept {
    try {
        std::random_device device;
        const auto word = [&] { return (std::uint64_t{device()} << 32 | device()) | 1; };
        return {word(), word()};
    } catch (const std::exception&) {
        // There is no source of randomness. When and where this run takes place is the next best.
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        const auto place = reinterpret_cast<std::uintptr_t>(&now);
        return {static_cast<std::uint64_t>(now) | 1, std::uint64_t{place} * 0x9E37'79B9 | 1};
    }
}

template <typename Word>
std::uint64_t load(const char* bytes) noexcept {
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// A word that differs where the bytes do. REQUIRES: at most 8 bytes.
std::uint64_t loadUpTo8(const char* bytes, std::size_t count) noexcept {
    if (count >= 4) {  // the two halves may overlap
        return load<std::uint32_t>(bytes) << 32 | load<std::uint32_t>(bytes + count - 4);
    }
    if (count == 0) return 0;
    return load<std::uint8_t>(bytes) << 16 | load<std::uint8_t>(bytes + count / 2) << 8 |
           load<std::uint8_t>(bytes + count - 1);
}

const std::array<std::uint64_t, 2>& hashSeed() noexcept {
    static const std::array<std::uint64_t, 2> seed = makeSeed();
    return seed;
}

std::uint32_t finishHash(std::uint64_t state) noexcept {
    const auto hash = static_cast<std::uint32_t>(state ^ state >> 32);
    return hash ? hash : 1;
}

}  // namespace

std::uint32_t hashBytes(std::string_view bytes) noexcept {
    const std::array<std::uint64_t, 2>& seed = hashSeed();
    std::uint64_t state = seed[0] ^ bytes.size();
    const char* at = bytes.data();
    std::size_t left = bytes.size();
    for (; left > 8; at += 8, left -= 8) {
        state = mix(state ^ load<std::uint64_t>(at), seed[1]);
    }
    return finishHash(mix(state ^ loadUpTo8(at, left), seed[1]));
}

std::uint32_t hashWord(std::uint64_t word) noexcept {
    const std::array<std::uint64_t, 2>& seed = hashSeed();
    return finishHash(mix(seed[0] ^ word, seed[1]));
}

Symbol::Symbol(std::string_view text) : string_(SharedStrings::current().intern(text)) {}

}  // namespace pellum
