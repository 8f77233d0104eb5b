#include "builtins/families.h"

#include "value/number.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace pellum::library {

namespace {

// A run of numbers from `start` by `step`, up to but excluding `end`. Every number is the one
// before it plus the step, rounded; so it may be longer or shorter than the quotient says.
struct Range {
    double start = 0;
    double end = 0;
    double step = 1;

    bool contains(double x) const noexcept { return step > 0 ? x < end : step < 0 && x > end; }

    // Throws std::length_error where a list cannot hold them.
    std::size_t count() const;

private:
    bool isExactOnIntegers() const noexcept {
        constexpr double limit = 2251799813685248.0;  // 2^51, so that differences are exact too
        const auto isExact = [](double x) { return std::fabs(x) <= limit && x == std::trunc(x); };
        return isExact(start) && isExact(end) && isExact(step);
    }
};

std::size_t Range::count() const {
    if (!contains(start)) return 0;
    if (!contains(start + step)) return 1;
    if (start + step == start) throw RuntimeError("range: step too small to advance");

    // Divided first, since the difference might overflow. Rounding at most doubles a step. An
    // infinite end is reached where the running number overflows.
    constexpr double largest = std::numeric_limits<double>::max();
    const double estimate = std::clamp(end, -largest, largest) / step - start / step;
    if (!(estimate <= 2.0 * maxListLength)) failTooLarge();
    if (isExactOnIntegers()) {
        const auto exact = static_cast<std::size_t>(std::ceil((end - start) / step));
        checkListLength(exact);
        return exact;
    }
    std::size_t steps = 0;
    for (double x = start; contains(x); x += step) {
        checkListLength(++steps);
        if (x + step == x) throw RuntimeError("range: step too small to advance");
    }
    return steps;
}

}  // namespace

Value push(Caller&, Arguments args) {
    Values& elements = listArg(args[0], "push: first argument must be a list");
    checkListLength(elements.size() + args.size() - 1);
    elements.insert(elements.end(), std::make_move_iterator(args.begin() + 1),
                    std::make_move_iterator(args.end()));
    return std::move(args[0]);
}

Value pop(Caller&, Arguments args) {
    Values& elements = listArg(args[0], "pop: expected a list");
    require(!elements.empty(), "pop: list is empty");
    Value last = std::move(elements.back());
    elements.pop_back();
    return last;
}

Value insert(Caller&, Arguments args) {
    require(args[0].isList(), "insert: expected a list");
    Values& elements = args[0].asList().items;
    const std::optional<std::size_t> place =
        placeFor(truncatedArg(args[1], "insert"), elements.size());
    require(place.has_value(), "insert: index out of range");
    checkListLength(elements.size() + 1);
    elements.insert(elements.begin() + static_cast<std::ptrdiff_t>(*place), std::move(args[2]));
    return std::move(args[0]);
}

Value removeAt(Caller&, Arguments args) {
    require(args[0].isList(), "remove_at: expected a list");
    Values& elements = args[0].asList().items;
    const std::optional<std::size_t> place =
        placeFor(truncatedArg(args[1], "remove_at"), elements.size());
    require(place && *place < elements.size(), "remove_at: index out of range");
    const auto position = elements.begin() + static_cast<std::ptrdiff_t>(*place);
    Value removed = std::move(*position);
    elements.erase(position);
    return removed;
}

Value range(Caller&, Arguments args) {
    bool allIntegers = true;
    for (const Value& arg : args) {
        numberArg(arg, "range");
        allIntegers = allIntegers && arg.isInt();
    }
    Range numbers;
    if (args.size() == 1) {
        numbers.end = args[0].asNumber();
    } else {
        numbers.start = args[0].asNumber();
        numbers.end = args[1].asNumber();
        if (args.size() == 3) numbers.step = args[2].asNumber();
    }
    require(numbers.step != 0, "range: step cannot be 0");

    const std::size_t count = numbers.count();
    Values elements;
    elements.reserve(count);
    for (double x = numbers.start; elements.size() < count; x += numbers.step) {
        elements.push_back(allIntegers ? Value(truncateToInt(x)) : Value(x));
    }
    return makeList(std::move(elements));
}

Value count(Caller&, Arguments args) {
    std::int64_t found = 0;
    for (const Value& element : listArg(args[0], "count: expected a list")) {
        if (valuesEqual(element, args[1])) ++found;
    }
    return Value(found);
}

Value zip(Caller&, Arguments args) {
    require(args[0].isList() && args[1].isList(), "zip: expected two lists");
    const Values& left = args[0].asList().items;
    const Values& right = args[1].asList().items;
    const std::size_t shorter = std::min(left.size(), right.size());
    Values pairs;
    pairs.reserve(shorter);
    for (std::size_t i = 0; i < shorter; ++i) {
        pairs.push_back(makeList(pairOf(left[i], right[i])));
    }
    return makeList(std::move(pairs));
}

Value enumerate(Caller&, Arguments args) {
    require(args[0].isList(), "enumerate: expected a list");
    Values pairs;
    pairs.reserve(args[0].asList().items.size());
    for (const Value& element : args[0].asList().items) {
        pairs.push_back(makeList(pairOf(Value(pairs.size()), element)));
    }
    return makeList(std::move(pairs));
}

}  // namespace pellum::library
