#include "fuzz/playing.h"

#include "fuzz/fuel.h"
#include "fuzz/memory.h"

#include "compiler/compiler.h"
#include "interp/interpreter.h"
#include "value/format.h"
#include "vm/vm.h"

#include <new>
#include <sstream>
#include <streambuf>

namespace pellum::fuzz {

namespace {

constexpr int steps = 400;
constexpr std::size_t singleAllocation = std::size_t{256} << 10;
constexpr std::size_t allAllocations = std::size_t{16} << 20;
constexpr std::size_t outputLimit = std::size_t{32} << 10;

// Takes so many bytes, then fails as a full disk does.
class BoundedBuffer final : public std::streambuf {
public:
    std::string take() { return std::move(text_); }

protected:
    std::streamsize xsputn(const char* bytes, std::streamsize count) override {
        if (text_.size() + static_cast<std::size_t>(count) > outputLimit) return 0;
        text_.append(bytes, static_cast<std::size_t>(count));
        return count;
    }
    int_type overflow(int_type byte) override {
        const char c = traits_type::to_char_type(byte);
        return xsputn(&c, 1) == 1 ? byte : traits_type::eof();
    }

private:
    std::string text_ = std::string(256, '\0').erase();
};

void run(Engine engine, const Block& program, Console& console) {
    if (engine == Engine::Tree) {
        Interpreter(console).run(program);
    } else {
        VM(console, engine == Engine::Stack ? VM::Code::Stack : VM::Code::Register)
            .run(compile(program));
    }
}

}  // namespace

Played play(Engine engine, const Block& program, std::string_view source) {
    std::istringstream in("a line of input\n\n42\n");
    BoundedBuffer buffer;
    std::ostream out(&buffer);
    Console console(in, out);
    Played played;
    refuel(steps);
    MemoryBudget budget(singleAllocation, allAllocations);
    try {
        run(engine, program, console);
    } catch (const PellumError& error) {
        played.ending = error.kind + ": " + error.message;
        played.line = error.line;
        renderError(error, source, "<fuzz>");
    } catch (const ThrownValue& thrown) {
        try {
            played.ending = "Error: " + toDisplayString(thrown.value);
        } catch (const std::exception&) {
            played.ending = "Error: a value that is too large to show";
        }
    } catch (const CutShort& cut) {
        played.ending = cut.reason;
    } catch (const OutputError&) {
        played.ending = "too much output";
    } catch (const std::bad_alloc&) {
        played.ending = "out of memory";
    }
    played.output = buffer.take();
    played.ranOutOfMemory = budget.wasExceeded();
    return played;
}

}  // namespace pellum::fuzz
