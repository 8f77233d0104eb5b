#include "value/map.h"

#include "value/string.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace pellum {

namespace {

// Up to here a scan beats the index.
constexpr std::size_t maxUnindexed = 8;

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
    const double number = key.asNumber() + 0.0;
    char bytes[sizeof number];
    std::copy_n(reinterpret_cast<const char*>(&number), sizeof number, bytes);
    return hashBytes({bytes, sizeof bytes});
}

}  // namespace

std::size_t MapData::findPosition(const Value& key) const noexcept {
    if (slots_.empty()) {
        for (std::size_t position = 0; position < entries_.size(); ++position) {
            if (keysEqual(entries_[position].key, key)) return position;
        }
        return npos;
    }
    if (isUnfindable(key)) return npos;
    const std::uint32_t hash = hashKey(key);
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t at = hash & mask; slots_[at].positionPlusOne != 0; at = (at + 1) & mask) {
        const std::size_t position = slots_[at].positionPlusOne - 1;
        if (slots_[at].hash == hash && keysEqual(entries_[position].key, key)) return position;
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
    // The index is made ready first, so that a refused allocation leaves the map as it was.
    const std::size_t newSize = entries_.size() + 1;
    if (newSize > maxUnindexed && newSize * 3 > slots_.size() * 2) {
        rebuildIndex(std::bit_ceil(newSize * 2));
    }
    entries_.push_back({key, std::move(value)});
    if (!slots_.empty()) addToIndex(newSize - 1);
}

bool MapData::remove(const Value& key) {
    const std::size_t position = findPosition(key);
    if (position == npos) return false;
    // The entry leaves the map before it is released: its release may reach this map again.
    const Entry removed = std::move(entries_[position]);
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(position));
    if (!slots_.empty()) rebuildIndex(slots_.size());
    return true;
}

Ref<MapData> MapData::copy() const {
    auto result = makeRef<MapData>();
    result->entries_ = entries_;
    result->slots_ = slots_;
    return result;
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
    for (std::size_t position = 0; position < entries_.size(); ++position) addToIndex(position);
}

}  // namespace pellum
