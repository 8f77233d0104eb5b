#include "value/format.h"

#include "value/limits.h"
#include "value/map.h"
#include "value/string.h"

#include <algorithm>
#include <stdexcept>
#include <unordered_map>

namespace pellum {

namespace {

std::size_t quotedLength(std::string_view text) {
    return text.size() + 2 + static_cast<std::size_t>(std::ranges::count_if(text, escapeLetter));
}

std::size_t plainLength(const Value& value) {
    if (value.isString()) return quotedLength(value.asText());
    std::string text;
    appendDisplay(text, value);
    return text.size();
}

// Counts what the texts of values would take, without making them. What several containers hold is
// shown in each of them, so that a text can be astronomically longer than what it shows: each such
// string or container is walked once, and its length remembered.
//
// That is sound only where its text is the same everywhere. It is, unless a container can be
// reached from itself: only then may one that is around it also be met inside it, and be cut short
// there. The length of such a container is remembered together with what stands around it.
class LengthCounter {
public:
    std::size_t length() const noexcept { return length_; }

    void add(std::size_t length) {
        length_ += length;
        if (length_ > maxStringLength) throw std::length_error("text too long");
    }

    void addRepr(const Value& value) {
        root_ = value.isObject() ? value.object() : nullptr;
        open(value);
        while (!open_.empty()) next();
    }

private:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    // Whether the walk may come to a container more than once: when it has several holders, or is
    // where the walk began, which came from none of them.
    bool mayRecur(const Value& value) const {
        return !value.object()->isUnshared() || value.object() == root_;
    }

    // What is known of a long string, or of a container that may recur.
    struct Known {
        std::size_t depth = npos;  // its place among the open containers while it is one of them
        std::size_t length = 0;    // of its whole text, or 0 where that is not known
        std::uint64_t mark = 0;    // of a container: its share of `surroundings_`
    };

    // A container among certain open ones, by their marks.
    struct Placed {
        const Known* known;
        std::uint64_t surroundings;

        bool operator==(const Placed&) const = default;
    };
    struct HashOfPlaced {
        std::size_t operator()(const Placed& placed) const noexcept {
            return placed.surroundings ^ placed.known->mark * 3;
        }
    };

    // Beyond this many the memory is worth more than the time.
    static constexpr std::size_t maxPlaced = std::size_t{1} << 20;

    struct OpenContainer {
        const Value* container;
        Known* known;          // null where the container does not recur
        std::size_t position;  // of the element or entry to count next
        std::size_t start;     // length of what comes before it
        // The least depth at which an open container stands that was met inside this one, itself
        // included, or npos.
        std::size_t outermost;
    };

    // Counts a plain value whole, or the opening bracket of a container.
    void open(const Value& value) {
        if (!value.isList() && !value.isMap()) return addPlain(value);
        Known* known = nullptr;
        if (mayRecur(value)) {
            known = &known_[value.object()];
            if (known->length > 0) return add(known->length);
            if (known->depth != npos) {
                open_.back().outermost = std::min(open_.back().outermost, known->depth);
                return add(std::string_view("[...]").size());
            }
            if (known->mark == 0) known->mark = scrambled(known_.size());
            if (const auto found = placed_.find({known, surroundings_}); found != placed_.end()) {
                if (!open_.empty()) open_.back().outermost = 0;  // or further in: nobody asks
                return add(found->second);
            }
            known->depth = open_.size();
            surroundings_ ^= known->mark;
        }
        open_.push_back({&value, known, 0, length_, npos});
        add(1);
    }

    void addPlain(const Value& value) {
        constexpr std::size_t worthRemembering = limit(256, 2);
        if (!value.isString() || value.asText().size() < worthRemembering) {
            return add(plainLength(value));
        }
        std::size_t& length = known_[value.object()].length;
        if (length == 0) length = plainLength(value);
        add(length);
    }

    // Counts the next element of the innermost open container, or closes it.
    void next() {
        OpenContainer& top = open_.back();
        const std::size_t position = top.position++;
        const bool isList = top.container->isList();
        const std::size_t count =
            isList ? listLength(top.container->asList()) : mapSize(top.container->asMap());
        if (position == count) return close();
        if (position > 0) add(2);
        if (isList) return open(top.container->asList().items[position]);
        const MapData::Entry& entry = top.container->asMap().entries()[position];
        addPlain(entry.key);
        add(2);
        open(entry.value);
    }

    void close() {
        add(1);
        const OpenContainer closed = open_.back();
        open_.pop_back();
        const std::size_t depth = open_.size();
        if (closed.known) {
            closed.known->depth = npos;
            surroundings_ ^= closed.known->mark;
            const std::size_t length = length_ - closed.start;
            if (closed.outermost == npos) {
                closed.known->length = length;
            } else if (placed_.size() < maxPlaced) {
                placed_.emplace(Placed{closed.known, surroundings_}, length);
            }
        }
        if (closed.outermost < depth) {
            open_.back().outermost = std::min(open_.back().outermost, closed.outermost);
        }
    }

    // Spreads numbers over all bits, so that no two sets of marks are likely to have the same sum.
    static std::uint64_t scrambled(std::uint64_t n) noexcept {
        n *= 0x9E37'79B9'7F4A'7C15;
        n = (n ^ n >> 30) * 0xBF58'476D'1CE4'E5B9;
        n = (n ^ n >> 27) * 0x94D0'49BB'1331'11EB;
        return n ^ n >> 31;
    }

    std::size_t length_ = 0;
    const Object* root_ = nullptr;
    std::unordered_map<const Object*, Known> known_;
    std::vector<OpenContainer> open_;  // outermost first
    std::uint64_t surroundings_ = 0;   // the marks of those that may recur, added without carry
    std::unordered_map<Placed, std::size_t, HashOfPlaced> placed_;  // lengths of whole texts
};

}  // namespace

std::size_t displayLength(std::span<const Value> values) {
    LengthCounter counter;
    for (const Value& value : values) {
        if (value.isString()) {
            counter.add(value.asText().size());
        } else {
            counter.addRepr(value);
        }
    }
    return counter.length();
}

std::size_t reprLength(const Value& value) {
    LengthCounter counter;
    counter.addRepr(value);
    return counter.length();
}

}  // namespace pellum
