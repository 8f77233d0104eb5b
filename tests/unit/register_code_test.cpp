#include "unit/register_code.h"

#include "support/files.h"
#include "unit/running.h"

#include <gtest/gtest.h>

namespace pellum::test {
namespace {

bool isJump(RegisterOp op) {
    return (op >= RegisterOp::IF_EQUAL_RR && op <= RegisterOp::FOR_IN_LOOP) ||
           op == RegisterOp::TRY_BEGIN;
}

// Which operands are slots does not matter here: whatever is small enough to be one must be.
void checkBounds(const RegisterCode& code) {
    ASSERT_FALSE(code.instructions.empty());
    const auto count = static_cast<std::ptrdiff_t>(code.instructions.size());
    for (std::ptrdiff_t index = 0; index < count; ++index) {
        const Instruction& at = code.instructions[static_cast<std::size_t>(index)];
        if (isJump(at.op)) {
            ASSERT_GE(index + at.extra, 0);
            ASSERT_LT(index + at.extra, count);
            const bool mayBeOwnBody = at.op >= RegisterOp::JUMP && at.op <= RegisterOp::FOR_IN_LOOP;
            ASSERT_TRUE(at.extra != 0 || mayBeOwnBody) << "a jump without a label";
        }
        const bool writesSlot =
            at.op <= RegisterOp::GREATER_EQUAL_RI && at.op != RegisterOp::SET_UPVALUE;
        if (writesSlot) {
            ASSERT_LE(at.a, code.maxDepth * sizeof(Value));
        }
    }
    const RegisterOp last = code.instructions.back().op;
    ASSERT_TRUE(last == RegisterOp::RETURN_LOCAL || last == RegisterOp::RETURN_P ||
                last == RegisterOp::JUMP || last == RegisterOp::FOR_LOOP ||
                last == RegisterOp::FOR_LOOP_UP || last == RegisterOp::FOR_IN_LOOP)
        << "control would run out of the code";
}

TEST(RegisterCode, JumpsAndSlotsStayInsideTheFunction) {
    std::size_t functions = 0;
    for (const char* folder : {"lang", "errors", "builtins", "limits", "regression"}) {
        for (const auto& path : filesUnder(std::filesystem::path("tests") / folder, ".pellum")) {
            Ref<FunctionProto> script;
            try {
                script = compileText(readFile(path));
            } catch (const std::exception&) {
                continue;  // others look at what does not compile
            }
            SCOPED_TRACE(path);
            forEachFunction(script, [&](const Ref<FunctionProto>& proto) {
                const Translation translation(proto);
                if (!translation.code.isUsable()) return;
                ++functions;
                checkBounds(translation.code);
                EXPECT_FALSE(listRegisterCode(translation.code).empty());
            });
        }
    }
    EXPECT_GT(functions, 2000u);
}

TEST(RegisterCode, ListsWhatEachInstructionWorksOn) {
    EXPECT_EQ(registerCodeOf("function mix(a, b)\n"
                             "    count = a + 1 - b\n"
                             "    b[a] = nil\n"
                             "    b.key = b[a][1]\n"
                             "    return max(a, -b[a].size, 2.5)\n"
                             "end\n"),
              "== mix ==\n"
              "    0 ADD_RI              s2 = s0, 1\n"
              "    1 SUB_RR              s2 = s2, s1\n"
              "    2 SET_GLOBAL          count = s2\n"
              "    3 SET_INDEX_RR_P      s1, s0 = nil\n"
              "    4 INDEX_RR            s4 = s1, s0\n"
              "    5 INDEX_RP            s4 = s4, 1\n"
              "    6 SET_FIELD_R         s1.key = s4\n"
              "    7 INDEX_THEN_FIELD    s4 = s1, s0\n"
              "    8 FIELD_R             s4 = s4.size\n"
              "    9 NEGATE              s4 = s4\n"
              "   10 MOVE                s3 = s0\n"
              "   11 LOAD                s5 = 2.5\n"
              "   12 CALL_P              s2 = max, 3\n"
              "   13 RETURN_LOCAL        s2\n");
}

TEST(RegisterCode, ListsLoopsHandlersAndClosures) {
    EXPECT_EQ(registerCodeOf("function walk(xs)\n"
                             "    let n = 0\n"
                             "    for i = 1, len(xs) do n += i end\n"
                             "    for x in xs do\n"
                             "        if x == nil or not (x < 3) then n = x end\n"
                             "    end\n"
                             "    try n = [n, {a: 1}] catch e n = e end\n"
                             "    return function()\n"
                             "        n = nil\n"
                             "        return n\n"
                             "    end\n"
                             "end\n"),
              "== walk ==\n"
              "    0 MOVE                s4 = s0\n"
              "    1 CALL_P              s3 = len, 1\n"
              "    2 LOAD                s1 = 0\n"
              "    3 LOAD                s2 = 1\n"
              "    4 LOAD                s4 = 1\n"
              "    5 FOR_TEST            s2 to s3 by s4 -> 8\n"
              "    6 ADD_RR              s1 = s1, s2\n"
              "    7 FOR_LOOP_UP         s2 to s3 by 1 -> 6\n"
              "    8 CLEAR_RANGE         s2 to s4\n"
              "    9 ITER_LIST           s2 = s0\n"
              "   10 LOAD                s3 = 0\n"
              "   11 LOAD                s4 = nil\n"
              "   12 FOR_IN_TEST         s4 = s2, s3 -> 17\n"
              "   13 IF_EQUAL_RP         s4, nil -> 15\n"
              "   14 IF_LESS_RI          s4, 3 -> 16\n"
              "   15 MOVE                s1 = s4\n"
              "   16 FOR_IN_LOOP         s4 = s2, s3 -> 13\n"
              "   17 CLEAR_RANGE         s2 to s4\n"
              "   18 TRY_BEGIN           catch -> 26\n"
              "   19 LOAD                s3 = \"a\"\n"
              "   20 LOAD                s4 = 1\n"
              "   21 BUILD_MAP           s3 = 2 from s3\n"
              "   22 MOVE                s2 = s1\n"
              "   23 BUILD_LIST          s1 = 2 from s2\n"
              "   24 TRY_END\n"
              "   25 JUMP                -> 28\n"
              "   26 MOVE                s1 = s2\n"
              "   27 CLEAR               s2\n"
              "   28 CLOSURE             s2 = function 0\n"
              "   29 RETURN_LOCAL        s2\n"
              "== <anonymous> ==\n"
              "    0 SET_UPVALUE         upvalue 0 = nil\n"
              "    1 GET_UPVALUE         s0 = upvalue 0\n"
              "    2 RETURN_LOCAL        s0\n");
}

}  // namespace
}  // namespace pellum::test
