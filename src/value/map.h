// The storage of a map: key/value pairs in insertion order. Lookup scans while the map is small;
// a larger map also keeps an index from key to position, and leaves gaps where entries are removed,
// so that neither looking up nor adding nor removing costs more as the map grows. Order, key
// equality and every result are those of the plain scan.
#pragma once

#include "value/string.h"

namespace pellum {

class MapData final : public Object {
public:
    struct Entry {
        Value key;
        Value value;
    };

    // In order of first insertion. Replacing a value never moves its entry. Closes the gaps that
    // removals have left, so that whoever walks the entries meets none.
    const CellVector<Entry>& entries() noexcept {
        if (gaps_ > 0) closeGaps();
        return entries_;
    }
    std::size_t size() const noexcept { return entries_.size() - gaps_; }

    // The value under the first key that is keysEqual to `key`, or null. The pointer is valid until
    // the map next changes.
    Value* find(const Value& key) noexcept;
    const Value* find(const Value& key) const noexcept {
        return const_cast<MapData*>(this)->find(key);
    }

    // The value of the entry at `place` if its key is that very string object, else null: a cheap
    // first guess for whoever looks up the same constant key again and again. Places, in bytes,
    // come from `placeOf`; any other multiple of the size of an entry is safe as well.
    Value* valueAt(std::uint32_t place, const StringObj* key) noexcept {
        if (place >= entries_.size() * sizeof(Entry)) return nullptr;
        auto* const start = reinterpret_cast<char*>(entries_.data());
        auto* const entry = reinterpret_cast<Entry*>(start + place);
        if (!entry->key.isString()) return nullptr;
        return entry->key.object() == static_cast<const Object*>(key) ? &entry->value : nullptr;
    }

    // The place of the entry whose value `find` has just yielded. Later entries may take it over
    // when gaps are closed; beyond four gigabytes of entries the guess is merely wrong.
    std::uint32_t placeOf(const Value* found) const noexcept {
        const auto* start = reinterpret_cast<const char*>(entries_.data());
        const auto offset = static_cast<std::size_t>(reinterpret_cast<const char*>(found) - start);
        return static_cast<std::uint32_t>(offset / sizeof(Entry) * sizeof(Entry));
    }

    // Makes room for `count` entries in all, as far as they need no index.
    void reserve(std::size_t count) { entries_.reserve(count); }

    // Replaces the value under `key`, keeping the key as first stored, or appends an entry.
    void set(const Value& key, Value&& value);

    // Removes the entry under `key`, keeping the order of the others; false if there is none.
    bool remove(const Value& key) noexcept;

    // A new map with the same entries in the same order; keys and values are shared.
    Ref<MapData> copy();

private:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    // One slot of the index: part of the key's hash, and the entry's position plus one (0: free).
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t positionPlusOne = 0;
    };

    std::size_t findPosition(const Value& key) const noexcept;
    template <typename IsKey>
    std::size_t findWhere(const Value& key, IsKey isKey) const noexcept;
    bool needsIndexFor(std::size_t count) const noexcept;
    void addToIndex(std::size_t position) noexcept;
    void rebuildIndex(std::size_t slotCount);
    void closeGaps() noexcept;

    CellVector<Entry> entries_;
    CellVector<Slot> slots_;  // empty while the map is small, else a power of two
    std::size_t gaps_ = 0;    // entries that have been removed; none while there is no index
};

inline Value::Value(Ref<MapData> map) noexcept : Value(ValueKind::Map, map.leak()) {}
inline MapData& Value::asMap() const {
    require(isMap());
    return static_cast<MapData&>(*payload_.object);
}

inline std::size_t mapSize(const MapData& map) noexcept { return map.size(); }

}  // namespace pellum
