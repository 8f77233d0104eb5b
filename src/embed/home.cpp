#include "embed/home.h"

#include "value/format.h"

#include <new>
#include <stdexcept>

namespace pellum::embed {

namespace {

// Its address stands for the thread.
thread_local char thisThread;

std::string nameOf(const Place& place) {
    return place.source ? std::string(place.source->name->view()) : std::string();
}

std::string_view textOf(const Place& place) noexcept {
    return place.source ? place.source->text->view() : std::string_view();
}

void empty(FunctionProto& function) noexcept {
    // First what it refers to: the last to hold one of these would destroy them.
    std::vector<Ref<FunctionProto>> inner = std::move(function.functions);
    for (const Ref<FunctionProto>& each : inner) empty(*each);
    function.name = std::string();
    function.code = {};
    function.lines = {};
    function.constants = {};
    function.upvalues = {};
}

}  // namespace

Home::~Home() {
    const Heap::Inside inside(heap);
    for (const Ref<FunctionProto>& function : functions) empty(*function);
    functions.clear();
}

Value::Reference::~Reference() {
    const Heap::Inside inside(home->heap);
    value = pellum::Value();
}

Inside::Inside(const std::shared_ptr<Home>& entered) : home_(entered), before_(nullptr) {
    if (!home_->user.compare_exchange_strong(before_, &thisThread, std::memory_order_acquire) &&
        before_ != &thisThread) {
        throwMisuse("the engine is in use by another thread");
    }
    heap_.emplace(home_->heap);
}

Inside::~Inside() {
    heap_.reset();
    if (!before_) home_->user.store(nullptr, std::memory_order_release);
}

const Value::Reference* Inside::referenceOf(const embed::Value& value) noexcept {
    const auto* const reference =
        std::get_if<std::shared_ptr<const Value::Reference>>(&value.data_);
    return reference ? reference->get() : nullptr;
}

embed::Value Inside::outer(pellum::Value value) const {
    switch (value.kind()) {
        case ValueKind::Nil: return {};
        case ValueKind::Bool: return value.asBool();
        case ValueKind::Int: return value.asInt();
        case ValueKind::Float: return value.asFloat();
        case ValueKind::String: return value.asText();
        default: break;
    }
    return embed::Value(std::make_shared<const Value::Reference>(home_, std::move(value)));
}

pellum::Value Inside::inner(const embed::Value& value) const {
    switch (value.kind()) {
        case Kind::Nil: return {};
        case Kind::Bool: return pellum::Value(value.asBool());
        case Kind::Int: return pellum::Value(value.asInt());
        case Kind::Float: return pellum::Value(value.asFloat());
        case Kind::String: return pellum::Value(value.asString());
        default: break;
    }
    const Value::Reference& reference = *referenceOf(value);
    if (reference.home != home_) throwMisuse("the value belongs to another engine");
    return reference.value;
}

void Inside::throwError(const Place& place) const {
    try {
        translate(place);
    } catch (const std::bad_alloc&) {
        throw outOfMemory();
    }
}

// Lets a lack of memory pass.
void Inside::translate(const Place& place) const {
    try {
        throw;
    } catch (const Error&) {
        throw;
    } catch (const LimitReached& limit) {
        throw limitError(limit.what, place);
    } catch (const PellumError& error) {
        throw programError(error, place);
    } catch (const ThrownValue& thrown) {
        throw thrownError(thrown, place);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::length_error&) {
        throw programError(RuntimeError("result too large"), place);
    } catch (const std::exception& other) {  // of the lexer
        throw errorOf(Failure::Syntax, other.what(), std::string("pellum: ") + other.what(),
                      nameOf(place));
    } catch (...) {
        throw errorOf(Failure::Runtime, "internal error", "pellum: internal error");
    }
}

Error Inside::limitError(LimitReached::What what, const Place& place) {
    const bool isMemory = what == LimitReached::What::Memory;
    const bool isSteps = what == LimitReached::What::Steps;
    const PellumError error("LimitError",
                            isMemory  ? "memory limit reached"
                            : isSteps ? "step limit reached"
                                      : "interrupted",
                            place.line, 0);
    return errorOf(isMemory  ? Failure::Memory
                   : isSteps ? Failure::Steps
                             : Failure::Interrupted,
                   error.message, renderError(error, textOf(place), nameOf(place)), nameOf(place),
                   place.line);
}

Error Inside::programError(const PellumError& error, const Place& place) const {
    const bool isRuntime = dynamic_cast<const RuntimeError*>(&error) != nullptr;
    // Builtins do not know where they are called. The diagnostic is the program's own all the same.
    const std::uint32_t line = error.line == 0 && isRuntime ? place.line : error.line;
    return errorOf(isRuntime ? Failure::Runtime : Failure::Syntax, error.message,
                   renderError(error, textOf(place), nameOf(place)), nameOf(place), line,
                   error.column);
}

Error Inside::thrownError(const ThrownValue& thrown, const Place& place) const {
    std::string text;
    try {
        text = toDisplayString(thrown.value);
    } catch (const std::length_error&) {
        text = typeName(thrown.value);  // too long to be shown
    } catch (const LimitReached&) {
        text = typeName(thrown.value);
    }
    return errorOf(Failure::Thrown, text, renderThrown(text), nameOf(place), place.line, 0,
                   outer(thrown.value));
}

}  // namespace pellum::embed
