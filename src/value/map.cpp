#include "value/map.h"

#include "value/limits.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <new>

namespace pellum {

namespace {

// Up to here a scan beats the index.
constexpr std::size_t maxUnindexed = limit(8, 1);

// The index counts in 32 bits. No memory holds so many entries.
constexpr std::size_t maxPosition = std::numeric_limits<std::uint32_t>::max() - 1;

// The key of an entry that has been removed: a NaN of its own kind, which no computation yields. It
// equals no key, so that a lookup passes over it, and its slot in the index stays to be passed
// over.
constexpr std::uint64_t gapBits = 0x7FF8'0000'7061'6765;

bool isGap(const Value& key) noexcept {
    return key.isFloat() && std::bit_cast<std::uint64_t>(key.asFloat()) == gapBits;
}

// How many slots an index for `count` entries is given: at least twice as many.
std::size_t slotsFor(std::size_t count) noexcept {
    return count > maxUnindexed ? std::bit_ceil(count * 2) : 0;
}

// A key that equals none, itself included: NaN and whatever keysEqual never matches.
bool isUnfindable(const Value& key) noexcept {
    return key.isList() || key.isMap() || key.isFunction() ||
           (key.isFloat() && std::isnan(key.asFloat()));
}

// Equal keys have equal hashes. REQUIRES: the key is not unfindable.
std::uint32_t hashKey(const Value& key) noexcept {
    if (key.isString()) return static_cast<std::uint32_t>(key.asString().hash());
    if (!key.isNumber()) return isTruthy(key) ? 2 : 1;
    // Numbers are compared as doubles, so they are hashed as doubles; adding 0.0 turns -0.0 into
    // 0.0.
    return hashWord(std::bit_cast<std::uint64_t>(key.asNumber() + 0.0));
}

}  // namespace

std::size_t MapData::findPosition(const Value& key) const noexcept {
    if (!key.isString()) {
        return findWhere(key, [&](const Value& other) { return keysEqual(other, key); });
    }
    const StringObj& text = key.asString();
    return findWhere(key, [&](const Value& other) {
        return other.isString() && areSameText(other.asString(), text);
    });
}

template <typename IsKey>
std::size_t MapData::findWhere(const Value& key, IsKey isKey) const noexcept {
    if (slots_.empty()) {
        for (std::size_t position = 0; position < entries_.size(); ++position) {
            if (isKey(entries_[position].key)) return position;
        }
        return npos;
    }
    if (isUnfindable(key)) return npos;
    const std::uint32_t hash = hashKey(key);
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t at = hash & mask; slots_[at].positionPlusOne != 0; at = (at + 1) & mask) {
        const std::size_t position = slots_[at].positionPlusOne - 1;
        if (slots_[at].hash == hash && isKey(entries_[position].key)) return position;
    }
    return npos;
}

Value* MapData::find(const Value& key) noexcept {
    const std::size_t position = findPosition(key);
    return position == npos ? nullptr : &entries_[position].value;
}

void MapData::set(const Value& key, Value&& value) {
    const std::size_t position = findPosition(key);
    if (position != npos) {
        entries_[position].value = std::move(value);
        return;
    }
    if (entries_.size() == maxPosition) throw std::bad_alloc();
    // The index is made ready first, so that a refused allocation leaves the map as it was.
    if (needsIndexFor(entries_.size() + 1)) {
        // Closing a few gaps would not last: the next entries would soon ask for it again.
        if (gaps_ > entries_.size() / 4) closeGaps();
        if (needsIndexFor(entries_.size() + 1)) rebuildIndex(slotsFor(entries_.size() + 1));
    }
    entries_.push_back({key, std::move(value)});
    if (!slots_.empty()) addToIndex(entries_.size() - 1);
}

bool MapData::remove(const Value& key) noexcept {
    const std::size_t position = findPosition(key);
    if (position == npos) return false;
    // The entry leaves the map before it is released: its release may reach this map again.
    const Entry removed = std::move(entries_[position]);
    if (slots_.empty()) {
        entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(position));
    } else {
        entries_[position].key = Value(std::bit_cast<double>(gapBits));
        // Closed when they are the greater part, gaps cost each removal a step or two.
        if (++gaps_ > entries_.size() / 2) closeGaps();
    }
    return true;
}

Ref<MapData> MapData::copy() {
    auto result = makeRef<MapData>();
    result->entries_ = entries();
    result->slots_ = slots_;
    return result;
}

// More than two thirds of the slots in use make lookups slow.
bool MapData::needsIndexFor(std::size_t count) const noexcept {
    return count > maxUnindexed && count * 3 > slots_.size() * 2;
}

// Allocates nothing, since the index does not grow.
void MapData::closeGaps() noexcept {
    std::erase_if(entries_, [](const Entry& entry) { return isGap(entry.key); });
    gaps_ = 0;
    rebuildIndex(std::min(slots_.size(), slotsFor(entries_.size())));
}

void MapData::addToIndex(std::size_t position) noexcept {
    const Value& key = entries_[position].key;
    if (isUnfindable(key)) return;
    const std::uint32_t hash = hashKey(key);
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = hash & mask;
    while (slots_[at].positionPlusOne != 0) at = (at + 1) & mask;
    slots_[at] = {hash, static_cast<std::uint32_t>(position + 1)};
}

void MapData::rebuildIndex(std::size_t slotCount) {
    slots_.assign(slotCount, Slot{});
    if (slots_.empty()) return;
    for (std::size_t position = 0; position < entries_.size(); ++position) addToIndex(position);
}

}  // namespace pellum
