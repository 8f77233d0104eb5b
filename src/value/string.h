// Strings of the language: immutable byte sequences of at most `maxStringLength` bytes, shared by
// all who hold them. Short ones carry their bytes inline. Longer ones are a length over a counted,
// append-only buffer, so that building a string piece by piece costs time in proportion to the
// result: `concatenate` writes behind its left part where that part ends at the end of the buffer,
// and older holders, who keep their own length, see nothing of it.
#pragma once

#include "value/limits.h"
#include "value/value.h"

#include <array>
#include <unordered_map>

namespace pellum {

inline constexpr std::size_t maxStringLength = limit(0x7FFF'FFFF, 10'000);

class StringBuffer;

class StringObj final : public Object {
public:
    // A new string with a copy of `text`. Throws std::length_error beyond maxStringLength and
    // std::bad_alloc when memory is refused, as do all functions below that make strings.
    static Ref<StringObj> make(std::string_view text);

    // A new string of `length` bytes, all of which `fill` writes from the pointer that it is given.
    template <typename Fill>
    static Ref<StringObj> build(std::size_t length, Fill fill) {
        if (length == 0) return empty();
        if (length == 1) {
            char byte = 0;
            fill(&byte);
            return oneByte(static_cast<unsigned char>(byte));
        }
        Ref<StringObj> string = makeUninitialized(length);
        fill(const_cast<char*>(string->bytes_));
        return string;
    }

    std::string_view view() const noexcept { return {bytes_, length_}; }
    std::size_t length() const noexcept { return length_; }

    // A hash of the bytes, computed once. Seeded per process, so that keys cannot be chosen to
    // collide.
    std::uint64_t hash() const noexcept { return hash_ ? hash_ : computeHash(); }

    // The string `left` followed by `right`. When the caller gives away the only reference to a
    // left part that can grow, that very object is extended and returned.
    static Ref<StringObj> concatenate(Ref<StringObj> left, std::string_view right);

    // Appends `right` to this very object if it can grow without being moved; false, and nothing
    // done, if not. REQUIRES: whoever calls holds the only reference.
    bool extend(std::string_view right) noexcept;

    // The shared strings of one byte and of none: these cost no allocation.
    static const Ref<StringObj>& oneByte(unsigned char byte) {
        return oneByteStrings ? oneByteStrings[byte] : makeOneByteStrings()[byte];
    }
    static const Ref<StringObj>& empty();

    // Strings differ in size, so each says on its death how much memory it gives back.
    static void* operator new(std::size_t, void* memory) noexcept { return memory; }
    static void operator delete(void* memory) noexcept { releaseCell(memory, sizeOfTheDead); }

private:
    friend class SharedStrings;

    StringObj() noexcept = default;
    ~StringObj() override;

    static constinit thread_local std::size_t sizeOfTheDead;
    static constinit thread_local const Ref<StringObj>* oneByteStrings;  // by byte, once made
    static const Ref<StringObj>* makeOneByteStrings();

    static constexpr std::size_t sizeFor(std::size_t inlineLength) noexcept {
        return sizeof(StringObj) +
               (inlineLength > sizeof(inline_) ? inlineLength - sizeof(inline_) : 0);
    }

    bool isInline() const noexcept { return bytes_ == inline_; }
    bool canGrowBy(std::size_t count) const noexcept;
    std::uint64_t computeHash() const noexcept;
    static Ref<StringObj> makeUninitialized(std::size_t length);
    static Ref<StringObj> makeOver(StringBuffer* adopted, std::size_t length);

    const char* bytes_ = inline_;
    std::uint32_t length_ = 0;
    mutable std::uint32_t hash_ = 0;  // 0: not yet computed
    union {
        char inline_[8];  // the bytes of a short string start here and run past the object's end
        StringBuffer* buffer_;
    };
};

// The strings that all others may be: those of one byte and of none, and the interned ones. Each
// thread has its own until it is told to use others.
class SharedStrings {
public:
    SharedStrings();
    ~SharedStrings();
    SharedStrings(const SharedStrings&) = delete;
    SharedStrings& operator=(const SharedStrings&) = delete;

    static SharedStrings& current();

    // Makes this thread use these, or its own where there are none; answers what it used before.
    static SharedStrings* use(SharedStrings* strings) noexcept;

    // The one string with this text that all who ask get.
    const Ref<StringObj>& intern(std::string_view text);

    // Drops the interned strings that nobody holds. REQUIRES: nobody who points at one without
    // holding it goes on using it.
    void forgetUnused() noexcept;

private:
    friend class StringObj;

    static constinit thread_local SharedStrings* inUse;

    Ref<StringObj> empty_;
    std::array<Ref<StringObj>, 256> oneByte_;
    std::unordered_map<std::string_view, Ref<StringObj>> interned_;
};

// Whether two strings have the same bytes. Where they differ their first bytes usually tell.
inline bool areSameText(const StringObj& a, const StringObj& b) noexcept {
    if (&a == &b) return true;
    const std::string_view left = a.view();
    const std::string_view right = b.view();
    if (left.size() != right.size()) return false;
    return left.empty() || (left.front() == right.front() && left == right);
}

// Less than, equal to or greater than zero as `a` comes before, with or after `b`, by bytes.
inline int compareTexts(const StringObj& a, const StringObj& b) noexcept {
    const std::string_view left = a.view();
    const std::string_view right = b.view();
    if (!left.empty() && !right.empty() && left.front() != right.front()) {
        return static_cast<unsigned char>(left.front()) - static_cast<unsigned char>(right.front());
    }
    return left.compare(right);
}

// Seeded hashes of some bytes and of one word, never 0.
std::uint32_t hashBytes(std::string_view bytes) noexcept;
std::uint32_t hashWord(std::uint64_t word) noexcept;

// A name or literal of a program, interned: equal texts share one StringObj, so symbols compare by
// address, and a field access finds its key by address too. Interned strings live as long as the
// `SharedStrings` that they belong to.
class Symbol {
public:
    Symbol() : string_(StringObj::empty()) {}
    explicit Symbol(std::string_view text);

    std::string_view text() const noexcept { return string_->view(); }
    const Ref<StringObj>& string() const noexcept { return string_; }
    friend bool operator==(const Symbol&, const Symbol&) noexcept = default;

private:
    Ref<StringObj> string_;
};

inline Value::Value(Ref<StringObj> string) noexcept : Value(ValueKind::String, string.leak()) {}
inline const StringObj& Value::asString() const {
    require(isString());
    return static_cast<const StringObj&>(*payload_.object);
}
inline std::string_view Value::asText() const { return asString().view(); }

}  // namespace pellum
