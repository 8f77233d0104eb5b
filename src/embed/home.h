// Where the values of an engine live, and how the host's side gets at them. A home outlives its
// engine as long as the host holds a list, a map or a function from there.
#pragma once

#include <pellum/pellum.hpp>

#include "driver/errors/errors.h"
#include "value/heap.h"
#include "value/limit_reached.h"
#include "value/value.h"

#include "compiler/function_proto.h"

#include <atomic>
#include <memory>
#include <vector>

namespace pellum::embed {

struct Home {
    explicit Home(std::size_t maxMemory) : heap(maxMemory) {}
    // Empties the functions that circles keep alive, the one thing in them that is not of the heap.
    ~Home();

    Heap heap;
    std::vector<Ref<FunctionProto>> functions;  // what it had run when it ended
    std::atomic<const void*> user = nullptr;    // says which thread is inside
};

// A value that the host has a handle on.
struct Value::Reference {
    Reference(std::shared_ptr<Home> where, pellum::Value what) noexcept
        : home(std::move(where)), value(std::move(what)) {}
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference&) = delete;
    ~Reference();

    std::shared_ptr<Home> home;
    pellum::Value value;
};

// The text of a program, as its functions know it.
struct SourceText final : Object {
    Ref<StringObj> name;
    Ref<StringObj> text;
};

// Where a program was when something went wrong.
struct Place {
    Ref<SourceText> source;  // may be null
    std::uint32_t line = 0;
};

// The thread is inside the home's heap while this lives. Throws Misuse where another thread is.
struct Inside {
    explicit Inside(const std::shared_ptr<Home>& entered);
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;
    ~Inside();

    // Between the two kinds of value. A handle on what another engine has is Misuse.
    embed::Value outer(pellum::Value value) const;
    pellum::Value inner(const embed::Value& value) const;

    // The value behind a handle, or null.
    static const Value::Reference* referenceOf(const embed::Value& value) noexcept;

    // The exception that is being handled, as the host gets it.
    [[noreturn]] void throwError(const Place& place = {}) const;

    static Error outOfMemory() noexcept;
    static Error errorOf(Failure failure, std::string message, std::string diagnostic,
                         std::string source = {}, std::uint32_t line = 0, std::uint32_t column = 0,
                         embed::Value thrown = {});

    // Does something of which every failure becomes an Error.
    template <typename Work>
    auto attempt(Work work) const {
        try {
            return work();
        } catch (...) {
            throwError();
        }
    }

    static Error limitError(LimitReached::What what, const Place& place);

private:
    [[noreturn]] void translate(const Place& place) const;
    Error programError(const PellumError& error, const Place& place) const;
    Error thrownError(const ThrownValue& thrown, const Place& place) const;

    const std::shared_ptr<Home>& home_;
    const void* before_;
    std::optional<Heap::Inside> heap_;
};

[[noreturn]] void throwMisuse(const std::string& message);

}  // namespace pellum::embed
