// An engine for tests of natives: a console on string streams, and a `call` that the test supplies.
#pragma once

#include "builtins/builtins.h"

#include <functional>
#include <sstream>
#include <stdexcept>

namespace pellum::test {

namespace detail {

struct StringConsole {
    std::istringstream in;
    std::ostringstream out;
    Console console{in, out};
};

}  // namespace detail

class FakeCaller : private detail::StringConsole, public Caller {
public:
    using Answer = std::function<Value(Values& args)>;

    // `answer` stands for every function that is called back.
    explicit FakeCaller(Answer answer = {})
        : Caller(static_cast<detail::StringConsole&>(*this).console), answer_(std::move(answer)) {}

    Value call(const Value&, std::span<Value> args) override {
        ++calls_;
        Values given(args.begin(), args.end());
        return answer_(given);
    }

    // Calls the builtin of that name as an engine would, at line 7, column 3.
    Value run(std::string_view name, Values args) {
        for (const Builtin& row : builtinCatalogue()) {
            if (row.name != name) continue;
            const NativeObj native(row.name, row.fn, row.minArity, row.maxArity);
            return callNative(native, *this, args, Position{7, 3});
        }
        throw std::logic_error("no builtin of that name");
    }

    std::size_t calls() const { return calls_; }
    std::string printed() const { return out.str(); }
    void type(const std::string& lines) { in.str(lines); }

private:
    Answer answer_;
    std::size_t calls_ = 0;
};

}  // namespace pellum::test
