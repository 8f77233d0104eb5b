// When the machine lets go of what no variable holds any longer.
#include "allocation/failing_memory.h"
#include "unit/running.h"

#include <gtest/gtest.h>

namespace pellum::test {
namespace {

// Each is run in a function, above two locals; `long()` gives a string of its own.
const char* const bodies[] = {
    "[long()][0] = 1",
    "[1, long()][len(long()) - 10000] = long()",
    "[[long()]][0][0] = 2",
    "{a: long()}.b = 1",
    "{a: long()}[0] = long()",
    "{a: {b: long()}}.a.b = long()",
    "let c = [long()][0] + {a: long()}.a",
    "if [long()][0] == {a: long()}.a and long() then let c = long() end",
    "if true then\nlet c = nil\nc = long() + \"y\"\nend",
    "if true then\nlet c = nil\nc = [long()][0]\nend",
    "if true then\nlet c = long()\nlet d = 1\nlet e = long()\nlet f = long()\nend",
    "for x in [long(), long()] do\nlet y = x\nend",
    "for x in [long(), long()] do\nlet y = x + long()\nbreak\nend",
    "while true do\nlet x = long()\nif len(x) > 1 then break end\nend",
    "try\nlet x = long()\nerror(long())\ncatch problem\nend",
    "try\nlet x = [long(), -long()]\ncatch problem\nend",
    "try\n[long()][long()] = long()\ncatch problem\nend",
    "if true then\nlet c = long()\nlet f = function() return c end\nf()\nend",
    "return long()",
    "return [long(), {a: long()}]",
};

// What a free slot still held would live on until the slot is used again. `wipe` uses all of them.
TEST(Lifetimes, NothingStaysInFreeSlots) {
    for (const VM::Code preferred : {VM::Code::Register, VM::Code::Stack}) {
        for (const std::string body : bodies) {
            SCOPED_TRACE(body);
            MemoryConsole memory;
            VM vm(memory.console, preferred);
            std::string wipe = "function wipe()\n";
            for (int i = 0; i < 30; ++i) wipe += "let v" + std::to_string(i) + " = 0\n";
            const Value made =
                vm.run(compileText("function long() return repeat(\"x\", 10000) end\nfunction "
                                   "work()\nlet a = 1\nlet b = 2\n" +
                                   body + "\nend\n" + wipe + "end\nreturn [work, wipe]"));
            const Values& functions = made.asList().items;
            // What is made once is made now.
            callWith(vm, functions[0], {});
            callWith(vm, functions[1], {});
            const std::int64_t before = liveBlocks();
            callWith(vm, functions[0], {});
            EXPECT_EQ(liveBlocks(), before);
        }
    }
}

}  // namespace
}  // namespace pellum::test
