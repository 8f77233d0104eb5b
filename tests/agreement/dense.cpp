// Functions that are hard on the machine's translator: many locals, deep expressions, conditions of
// many terms, comparisons of mixed numbers, locals and globals that change between two reads of one
// expression, growth in place of what has two names.
#include "agreement/writer.h"

namespace pellum::test {

namespace {

constexpr const char* globalCounter = "counter";

std::string joined(const std::vector<std::string>& pieces) {
    std::string text;
    for (const std::string& piece : pieces) text += (text.empty() ? "" : ", ") + piece;
    return text;
}

}  // namespace

Statement Writer::denseFunction() {
    Dense dense;
    const std::string name = newName("dense");
    Block body;
    for (int count = random_.between(3, random_.chance(20) ? 40 : 12); count > 0; --count) {
        const std::string local = newName("n");
        const std::string value = random_.chance(20)
                                      ? (random_.chance(50) ? extremeInt() : extremeFloat())
                                  : random_.chance(30) ? "a"
                                  : random_.chance(50) ? literal(Type::Int)
                                                       : literal(Type::Float);
        body.push_back(simple("let " + local + " = " + value));
        dense.numbers.push_back(local);
    }
    for (Statement& more : denseBlock(dense, random_.between(3, 9)))
        body.push_back(std::move(more));
    body.push_back(simple("return [" + joined(dense.numbers) + "]"));
    const std::string closing =
        "end\nprint(" + name + "(" + literal(Type::Int) + "))\n" +
        (random_.chance(40) ? "print(map(" + name + ", [1, 2.5, -3]))" : "print(" + name + ")");
    return {{{"function " + name + "(a)\n    fuel -= 1\n    if fuel < 0 then return [] end",
              std::move(body)}},
            closing};
}

// Its variables are known behind a statement, and unknown again behind the block.
Block Writer::denseBlock(Dense& dense, int count) {
    const std::size_t numbers = dense.numbers.size();
    const std::size_t functions = dense.functions.size();
    ++dense.depth;
    Block block;
    for (; count > 0; --count) block.push_back(denseStatement(dense));
    --dense.depth;
    dense.functions.resize(functions);
    if (dense.depth > 0) dense.numbers.resize(numbers);
    return block;
}

Statement Writer::denseStatement(Dense& dense) {
    const auto number = [&]() -> const std::string& { return random_.pick(dense.numbers); };
    const auto body = [&] { return denseBlock(dense, random_.between(1, 3)); };
    switch (random_.below(dense.depth > 3 ? 10 : 18)) {
        case 0:
        case 1:
        case 2: return simple(number() + " = " + denseNumber(dense, random_.between(1, 5)));
        case 3: {
            // One engine reads the variable before the value is computed, the other behind.
            const std::string value =
                isWild_ ? denseNumber(dense, 2)
                        : random_.pick<std::string>({"1", "0.5", number(), "-2", number()});
            return simple(number() + random_.pick<std::string>({" += ", " -= ", " *= "}) + value);
        }
        case 4: {
            std::string made = newName("n");
            Statement let = simple("let " + made + " = " + denseNumber(dense, 3));
            dense.numbers.push_back(std::move(made));
            return let;
        }
        case 5: {
            std::string changes = newName("g");
            const std::string& changed = number();
            Statement closure =
                simple("let " + changes + " = function()\n    " + changed + " = " + changed +
                       random_.pick<std::string>({" + 1", " * 2", " - 0.5", " + " + number()}) +
                       "\n    return " + (random_.chance(70) ? changed : number()) + "\nend");
            dense.functions.push_back(std::move(changes));
            return closure;
        }
        case 6: return simple("let " + newName("b") + " = " + denseCondition(dense, 3));
        case 7: return simple("print(" + denseCondition(dense, 3) + ", " + denseText(dense) + ")");
        case 8: {
            const std::string text = newName("t"), other = newName("t");
            const std::string part = random_.chance(50) ? "\"ab\"" : "[" + number() + "]";
            return simple("let " + text + " = " + part + "\nlet " + other + " = " + text + "\n" +
                          text + random_.pick<std::string>({" += ", " = " + text + " + "}) +
                          (random_.chance(50) ? text : part) + "\n" +
                          (random_.chance(50) ? other + " = " + text + " + " + other
                                              : other + " += " + text) +
                          "\nprint(" + text + ", " + other + ")");
        }
        case 9:
            return simple(std::string(globalCounter) + " = " + globalCounter + " + " +
                          denseNumber(dense, 1) + " * 0 + 1");
        case 10:
        case 11:
        case 12: {
            Statement choice;
            choice.sections.push_back({"if " + denseCondition(dense, 3) + " then", body()});
            if (random_.chance(40)) {
                choice.sections.push_back({"elif " + denseCondition(dense, 2) + " then", body()});
            }
            if (random_.chance(50)) choice.sections.push_back({"else", body()});
            choice.closing = "end";
            return choice;
        }
        case 13: {
            const std::string caught = newName("c");
            Block tried = body();
            if (random_.chance(50)) {
                tried.push_back(simple(number() + " = " + denseNumber(dense, 2) + " + [1][" +
                                       std::to_string(random_.between(0, 1)) + "]"));
            }
            return {
                {{"try", std::move(tried)}, {"catch " + caught, {simple("print(" + caught + ")")}}},
                "end"};
        }
        default: return denseLoop(dense);
    }
}

Statement Writer::denseLoop(Dense& dense) {
    const auto numbers = dense.numbers;
    const std::size_t functions = dense.functions.size();
    const std::string name = newName("i");
    std::string head;
    switch (random_.below(3)) {
        case 0: head = "for " + name + " = 1, " + std::to_string(random_.between(1, 5)); break;
        case 1:
            head = "for " + name + " in [" + random_.pick(numbers) + ", 2, " +
                   random_.pick(numbers) + "]";
            break;
        default: {
            head = "let " + name + " = 0\nwhile " + name + " < 4";
            if (random_.chance(60)) head += " and " + denseCondition(dense, 2);
            head += " do\n    " + name + " += 1\n" + iterationGuard;
        }
    }
    if (head[0] == 'f') head += std::string(" do\n") + iterationGuard;
    // A closure that keeps a loop's variable tells the engines apart, so it keeps a copy.
    std::string copy = newName("n");
    Block body = {simple("let " + copy + " = " + name)};
    dense.numbers.push_back(std::move(copy));
    for (Statement& more : denseBlock(dense, random_.between(1, 3)))
        body.push_back(std::move(more));
    if (random_.chance(40)) {
        body.push_back({{{"if " + denseCondition(dense, 2) + " then",
                          {simple(random_.chance(50) ? "break" : "continue")}}},
                        "end"});
        body.push_back(denseStatement(dense));
    }
    dense.numbers = numbers;
    dense.functions.resize(functions);
    return {{{std::move(head), std::move(body)}}, "end"};
}

std::string Writer::denseNumber(Dense& dense, int depth) {
    const auto number = [&]() -> const std::string& { return random_.pick(dense.numbers); };
    const auto more = [&] { return denseNumber(dense, depth - 1); };
    if (depth <= 0) {
        return random_.chance(70)   ? number()
               : random_.chance(80) ? literal(random_.chance(50) ? Type::Int : Type::Float)
                                    : globalCounter;
    }
    switch (random_.below(16)) {
        case 0:
        case 1:
        case 2:
        case 3:
        case 4: {
            const std::string op = random_.pick<std::string>({" + ", " - ", " * "});
            // Leaning to the right, an expression lets the stack grow.
            return random_.chance(60) ? "(" + number() + op + more() + ")"
                                      : "(" + more() + op + number() + ")";
        }
        case 5:
            return "(" + more() + random_.pick<std::string>({" // ", " % ", " / "}) +
                   random_.pick<std::string>({"3", "-2", "0.75", "7.0"}) + ")";
        case 6: return "-" + (random_.chance(50) ? number() : "(" + more() + ")");
        case 7:
            // The left operand is the one from before the call.
            if (dense.functions.empty()) return number();
            return "(" + number() + " + " + random_.pick(dense.functions) + "() - " + number() +
                   ")";
        case 8:
            return "[" + number() + ", " + more() + ", " + number() + "][" +
                   std::to_string(random_.between(-1, 2)) + "]";
        case 9: return "{a: " + number() + ", b: " + more() + "}.b";
        case 10: return "max(" + number() + ", " + more() + ", " + number() + ")";
        case 11: {
            const std::string condition = denseCondition(dense, depth - 1);
            return "(" + condition + " and " + number() + " or " + more() + ")";
        }
        case 12:
            return "(" + std::string(globalCounter) + " + bump() * 0 + " + globalCounter + " - " +
                   more() + ")";
        case 13: {
            const std::string& changed = number();
            if (random_.chance(50)) return "(" + changed + " ^ 2)";
            return "sum(map(function(e)\n    " + changed + " = " + changed + " + e\n    return " +
                   number() + "\nend, [1, " + number() + "]))";
        }
        case 14: return "(function(p) return p - " + number() + " end)(" + more() + ")";
        default: return "(" + more() + " + " + more() + ")";
    }
}

std::string Writer::denseCondition(Dense& dense, int depth) {
    const auto number = [&] { return denseNumber(dense, random_.below(2)); };
    const auto more = [&] { return denseCondition(dense, depth - 1); };
    if (depth <= 0 || random_.chance(25)) {
        switch (random_.below(8)) {
            case 0: return "not " + number();
            case 1: return random_.pick<std::string>({"true", "false", "nil"});
            case 2:
                return number() + random_.pick<std::string>({" == ", " != "}) +
                       random_.pick<std::string>({"nil", "\"a\"", "log(-1)", "0", "-0.0"});
            case 3: return "(" + number() + " == " + number() + ") == " + more();
            default:
                return number() +
                       random_.pick<std::string>({" < ", " <= ", " > ", " >= ", " == ", " != "}) +
                       number();
        }
    }
    switch (random_.below(5)) {
        case 0: return "not (" + more() + ")";
        case 1: return "(" + more() + " and " + more() + ")";
        case 2: return "(" + more() + " or " + more() + ")";
        case 3: return more() + " and " + more();
        default: return more() + " or " + more();
    }
}

std::string Writer::denseText(Dense& dense) {
    if (random_.chance(50)) return "\"${" + random_.pick(dense.numbers) + "}\"";
    return "type(" + random_.pick(dense.numbers) + ") + \"!\"";
}

}  // namespace pellum::test
