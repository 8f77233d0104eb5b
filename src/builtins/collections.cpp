#include "builtins/families.h"

#include "builtins/search.h"

#include <algorithm>

namespace pellum::library {

namespace {

std::int64_t firstEqual(const Values& elements, const Value& sought) {
    for (std::size_t i = 0; i < elements.size(); ++i) {
        if (valuesEqual(elements[i], sought)) return static_cast<std::int64_t>(i);
    }
    return -1;
}

// A bound of `slice`, brought into 0 .. length. One that is missing or nil is `otherwise`.
std::size_t sliceBound(Arguments args, std::size_t which, std::size_t length,
                       std::size_t otherwise) {
    if (args.size() <= which || args[which].isNil()) return otherwise;
    const Value& bound = args[which];
    if (!bound.isInt()) failGot("slice: bounds must be integers", bound);
    const auto count = static_cast<std::int64_t>(length);
    const std::int64_t place = bound.asInt() < 0 ? bound.asInt() + count : bound.asInt();
    return static_cast<std::size_t>(std::clamp<std::int64_t>(place, 0, count));
}

// The length of `times` times `unitLength`, refused where it is beyond `limit`.
std::size_t repeatedLength(std::size_t unitLength, std::size_t times, std::size_t limit) {
    if (unitLength > 0 && times > limit / unitLength) failTooLarge();
    return unitLength * times;
}

}  // namespace

Value len(Caller&, Arguments args) {
    const Value& x = args[0];
    switch (x.kind()) {
        case ValueKind::String: return Value(x.asString().length());
        case ValueKind::List: return Value(listLength(x.asList()));
        case ValueKind::Map: return Value(mapSize(x.asMap()));
        default: throw RuntimeError(std::string("len: ") + typeName(x) + " has no length");
    }
}

Value has(Caller&, Arguments args) {
    const Value& collection = args[0];
    const Value& sought = args[1];
    switch (collection.kind()) {
        case ValueKind::Map: return Value(collection.asMap().find(sought) != nullptr);
        case ValueKind::List: return Value(firstEqual(collection.asList().items, sought) >= 0);
        case ValueKind::String:
            return Value(sought.isString() &&
                         TextSearcher(sought.asText()).find(collection.asText()) !=
                             TextSearcher::npos);
        default: throw RuntimeError(std::string("has: cannot search in ") + typeName(collection));
    }
}

Value get(Caller&, Arguments args) {
    const Value& collection = args[0];
    const Value& key = args[1];
    const Value* found = nullptr;
    if (collection.isMap()) {
        found = collection.asMap().find(key);
    } else {
        require(collection.isList(), "get: expected a map or list");
        require(key.isInt(), "get: list index must be an integer");
        const Values& elements = collection.asList().items;
        const std::optional<std::size_t> place = placeFor(key.asInt(), elements.size());
        if (place && *place < elements.size()) found = &elements[*place];
    }
    if (found) return *found;
    return args.size() > 2 ? args[2] : Value();
}

Value slice(Caller&, Arguments args) {
    const Value& x = args[0];
    if (x.isString()) {
        const std::string_view text = x.asText();
        const std::size_t start = sliceBound(args, 1, text.size(), 0);
        const std::size_t end = sliceBound(args, 2, text.size(), text.size());
        // An end before the start wraps around to a huge count, which means the whole remainder.
        // Lists differ; both are part of the language.
        return Value(text.substr(start, end - start));
    }
    const Values& elements = listArg(x, "slice: expected a list or string");
    const std::size_t start = sliceBound(args, 1, elements.size(), 0);
    const std::size_t end = std::max(start, sliceBound(args, 2, elements.size(), elements.size()));
    return makeList(Values(elements.data() + start, elements.data() + end));
}

Value reverse(Caller&, Arguments args) {
    const Value& x = args[0];
    if (x.isString()) {
        const std::string_view text = x.asText();
        return Value(StringObj::build(
            text.size(), [&](char* to) { std::reverse_copy(text.begin(), text.end(), to); }));
    }
    const Values& elements = listArg(x, "reverse: expected a list or string");
    return makeList(Values(elements.rbegin(), elements.rend()));
}

Value find(Caller&, Arguments args) {
    const Value& collection = args[0];
    const Value& sought = args[1];
    if (collection.isString()) {
        require(sought.isString(), "find: substring must be a string");
        const std::size_t place = TextSearcher(sought.asText()).find(collection.asText());
        return place == TextSearcher::npos ? Value(-1) : Value(place);
    }
    return Value(firstEqual(listArg(collection, "find: expected a list or string"), sought));
}

Value copy(Caller&, Arguments args) {
    const Value& x = args[0];
    if (x.isList()) return makeList(x.asList().items);
    if (x.isMap()) return Value(x.asMap().copy());
    return x;
}

Value repeat(Caller&, Arguments args) {
    const Value& x = args[0];
    const std::int64_t wanted = truncatedArg(args[1], "repeat");
    const std::size_t times = wanted < 0 ? 0 : static_cast<std::size_t>(wanted);

    if (x.isString()) {
        const std::string_view unit = x.asText();
        const std::size_t length = repeatedLength(unit.size(), times, maxStringLength);
        return Value(StringObj::build(length, [&](char* to) {
            // What is there already is copied behind itself, twice as much each time.
            std::copy(unit.begin(), unit.end(), to);
            for (std::size_t done = unit.size(); done < length;) {
                const std::size_t more = std::min(done, length - done);
                std::copy_n(to, more, to + done);
                done += more;
            }
        }));
    }
    require(x.isList(), "repeat: expected a string or list");
    const Values& unit = x.asList().items;
    const std::size_t length = repeatedLength(unit.size(), times, maxListLength);
    Values elements;
    elements.reserve(length);
    while (elements.size() < length) {
        elements.insert(elements.end(), unit.begin(), unit.end());
    }
    return makeList(std::move(elements));
}

}  // namespace pellum::library
