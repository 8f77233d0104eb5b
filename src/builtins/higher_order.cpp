#include "builtins/families.h"

// All of these work on the elements that the list has when they are called: what a callback does to
// the list in the meantime changes nothing.

namespace pellum::library {

namespace {

Value callWith(Caller& caller, const Value& function, Value argument) {
    return caller.call(function, {&argument, 1});
}

}  // namespace

Value map(Caller& caller, Arguments args) {
    Values elements = listArg(args[1], "map: second argument must be a list");
    for (Value& element : elements) element = callWith(caller, args[0], std::move(element));
    return makeList(std::move(elements));
}

Value filter(Caller& caller, Arguments args) {
    Values elements = listArg(args[1], "filter: second argument must be a list");
    std::erase_if(elements, [&](const Value& element) {
        return !isTruthy(callWith(caller, args[0], element));
    });
    return makeList(std::move(elements));
}

Value reduce(Caller& caller, Arguments args) {
    Values elements = listArg(args[1], "reduce: second argument must be a list");
    const bool hasInitial = args.size() > 2;
    require(hasInitial || !elements.empty(), "reduce: empty list with no initial value");
    Value accumulator = std::move(hasInitial ? args[2] : elements.front());
    for (std::size_t i = hasInitial ? 0 : 1; i < elements.size(); ++i) {
        Value both[] = {std::move(accumulator), std::move(elements[i])};
        accumulator = caller.call(args[0], both);
    }
    return accumulator;
}

}  // namespace pellum::library
