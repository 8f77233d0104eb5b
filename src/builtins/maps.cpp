#include "builtins/families.h"

namespace pellum::library {

namespace {

// A list with one element for each entry, in entry order.
template <typename Choose>
Value listOfEntries(MapData& map, Choose choose) {
    checkListLength(map.size());
    Values elements;
    elements.reserve(map.size());
    for (const MapData::Entry& entry : map.entries()) elements.push_back(choose(entry));
    return makeList(std::move(elements));
}

}  // namespace

Value keys(Caller&, Arguments args) {
    return listOfEntries(mapArg(args[0], "keys: expected a map"),
                         [](const MapData::Entry& entry) { return entry.key; });
}

Value values(Caller&, Arguments args) {
    return listOfEntries(mapArg(args[0], "values: expected a map"),
                         [](const MapData::Entry& entry) { return entry.value; });
}

Value items(Caller&, Arguments args) {
    require(args[0].isMap(), "items: expected a map");
    return listOfEntries(args[0].asMap(), [](const MapData::Entry& entry) {
        return makeList(pairOf(entry.key, entry.value));
    });
}

Value deleteKey(Caller&, Arguments args) {
    require(args[0].isMap(), "delete: expected a map");
    return Value(args[0].asMap().remove(args[1]));
}

}  // namespace pellum::library
