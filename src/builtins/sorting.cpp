#include "builtins/families.h"

#include "builtins/merge_sort.h"

namespace pellum::library {

namespace {

// Names the pair that inserting one element after the other would meet first: the element that
// does not fit, then the one at the front.
void checkComparable(const Values& elements) {
    for (std::size_t i = 1; i < elements.size(); ++i) {
        const Value& front = elements.front();
        const Value& next = elements[i];
        const bool comparable =
            (front.isNumber() && next.isNumber()) || (front.isString() && next.isString());
        if (!comparable) {
            throw RuntimeError(std::string("sort: cannot compare ") + typeName(next) + " and " +
                               typeName(front));
        }
    }
}

void sortByNature(Values& elements) {
    checkComparable(elements);
    if (elements.size() < 2) return;
    if (elements.front().isNumber()) {
        mergeSort(elements,
                  [](const Value& a, const Value& b) { return a.asNumber() < b.asNumber(); });
    } else {
        mergeSort(elements, [](const Value& a, const Value& b) { return a.asText() < b.asText(); });
    }
}

}  // namespace

Value sort(Caller& caller, Arguments args) {
    // Sorted as they are now: the comparison may change the list, but not this copy.
    Values elements = listArg(args[0], "sort: expected a list");
    if (args.size() > 1) {
        mergeSort(elements, [&](const Value& a, const Value& b) {
            Value both[] = {a, b};
            return isTruthy(caller.call(args[1], both));
        });
    } else {
        sortByNature(elements);
    }
    return makeList(std::move(elements));
}

}  // namespace pellum::library
