#include "agreement/writer.h"

namespace pellum::test {

namespace {

const std::vector<std::string> texts = {
    R"("")",     R"("a")",    R"("xyz")",  R"("B c")",    R"('single')",
    R"("a,b,")", R"("t\tb")", R"("q\"q")", R"("  pad ")", R"("0123456789abcdefghij")",
    R"("\$")",   R"("é")",
};

}  // namespace

std::string Writer::literal(Type type) {
    const auto number = [&] { return std::to_string(random_.below(12)); };
    switch (type) {
        case Type::Int:
            if (random_.chance(5)) return extremeInt();
            return number();
        case Type::Float:
            if (random_.chance(5)) return extremeFloat();
            return random_.pick<std::string>({"0.5", "2.0", "-0.0", "0.1", "3.25", "1e300", "1e-5",
                                              "7.0", "100000.0", "PI", "E"});
        case Type::Bool: return random_.chance(50) ? "true" : "false";
        case Type::Text: return random_.pick(texts);
        case Type::Ints:
            return random_.pick<std::string>(
                {"[]", "[" + number() + "]", "[3, 1, " + number() + ", 1]", "range(6)"});
        case Type::Texts:
            return random_.pick<std::string>({"[]", R"(["b", "a", "b"])", R"(["one"])"});
        case Type::Table:
            return random_.pick<std::string>(
                {"{}", "{a: " + number() + "}", "{b: 1, a: " + number() + R"(, "k 1": 3})"});
        case Type::Func: return "function(z) return z + " + number() + " end";
        case Type::Funcs:
            return random_.chance(5) ? "[]" : "[function(z) return z * " + number() + " end]";
        case Type::Declared:
        case Type::Message: break;
    }
    return "nil";
}

// At the edges of what integers hold, and of what doubles hold of them.
std::string Writer::extremeInt() {
    return random_.pick<std::string>({"9223372036854774784", "4611686018427387904",
                                      "9007199254740993", "1000000007", "-255", "(2 ^ 62 * 2)",
                                      "(2 ^ 62 - 1 + 2 ^ 62)", "(2 ^ 53)", "(2 ^ 53 + 1)",
                                      "(-(2 ^ 53) - 1)", "(2 ^ 31)", "(-(2 ^ 62) * 2 + 1)"});
}

std::string Writer::extremeFloat() {
    return random_.pick<std::string>({"log(-1)", "(1e308 * 10)", "(-1e308 * 10)", "5e-324",
                                      "9007199254740993.0", "9223372036854775808.0", "-1e19",
                                      "1.7976931348623157e308", "(0.0 * -1)"});
}

std::string Writer::leaf(Type type) {
    if (random_.chance(70)) {
        if (const auto variable = scope_.pick(random_, type)) return variable->name;
    }
    return literal(type);
}

std::string Writer::expression(Type type, Demand demand, int depth) {
    if (demand == Demand::Anything && random_.below(3000) == 0) return failingExpression();
    if (depth <= 0 || random_.chance(15)) return leaf(type);
    --depth;
    if (demand == Demand::Anything && random_.chance(15)) {
        const std::string called = call(type, depth);
        if (!called.empty()) return called;
    }
    if (random_.chance(6)) return conditional(type, demand, depth);
    switch (type) {
        case Type::Int: return intExpression(demand, depth);
        case Type::Float: return floatExpression(demand, depth);
        case Type::Bool: return boolExpression(demand, depth);
        case Type::Text: return textExpression(demand, depth);
        case Type::Ints: return intsExpression(demand, depth);
        case Type::Texts: return textsExpression(demand, depth);
        case Type::Table: return tableExpression(demand, depth);
        case Type::Func: return funcExpression(demand, depth);
        case Type::Funcs:
            return "[" + funcExpression(demand, depth) + ", " + leaf(Type::Func) + "]";
        case Type::Declared:
        case Type::Message: break;
    }
    return leaf(type);
}

// Picks one of two values of a type whose values all count as true, or of booleans.
std::string Writer::conditional(Type type, Demand demand, int depth) {
    return "(" + expression(Type::Bool, demand, depth) + " and " + expression(type, demand, depth) +
           " or " + expression(type, demand, depth) + ")";
}

std::string Writer::index(Demand demand) {
    if (random_.chance(60)) return std::to_string(random_.between(-2, 2));
    return expression(Type::Int, demand, 1);
}

std::string Writer::key() {
    return random_.pick<std::string>({R"("a")", R"("b")", R"("k 1")", R"("missing")",
                                      R"("k" + str()" + leaf(Type::Int) + " % 4)"});
}

std::string Writer::lambda(const std::vector<Type>& parameters, Type result,
                           Scope::Lifetime lifetime, Demand demand, int depth) {
    scope_.openFunction(lifetime);
    ++insideLambdas_;
    std::string text = "function(";
    for (const Type type : parameters) {
        if (text.back() != '(') text += ", ";
        Variable parameter{newName("p"), type};
        text += parameter.name;
        scope_.declare(std::move(parameter));
    }
    text += ") return " + bounded(result, demand, depth) + " end";
    --insideLambdas_;
    scope_.closeFunction();
    return text;
}

// A call of a function of the program, or nothing where none has this result.
std::string Writer::call(Type result, int depth) {
    const auto declared = scope_.pick(random_, [&](const Variable& variable) {
        return variable.type == Type::Declared && variable.signature->result == result;
    });
    if (declared && (result != Type::Int || random_.chance(60))) return callOf(*declared, depth);
    if (result != Type::Int || insideLambdas_ > 0) return "";
    const auto value = scope_.pick(random_, [](const Variable& variable) {
        return variable.type == Type::Func || variable.type == Type::Funcs;
    });
    if (!value) return "";
    const std::string argument = "(" + expression(Type::Int, Demand::Anything, depth) + ")";
    if (value->type == Type::Func) return value->name + argument;
    return value->name + "[" + random_.pick<std::string>({"0", "-1"}) + "]" + argument;
}

std::string Writer::callOf(const Variable& function, int depth) {
    const Signature& signature = *function.signature;
    std::string text = function.name + "(";
    bool isFirst = true;
    for (const Type type : signature.parameters) {
        if (!isFirst) text += ", ";
        if (isFirst && !signature.depthVariable.empty()) {
            const bool isInside = scope_
                                      .pick(random_,
                                            [&](const Variable& variable) {
                                                return variable.name == signature.depthVariable;
                                            })
                                      .has_value();
            text += isInside ? signature.depthVariable + " - 1" : std::to_string(random_.below(5));
        } else {
            text += bounded(type, Demand::Anything, depth);
        }
        isFirst = false;
    }
    return text + ")";
}

std::string Writer::bounded(Type type, Demand demand, int depth) {
    std::string text = expression(type, demand, depth);
    const bool mayGrow = type == Type::Text || type == Type::Ints || type == Type::Texts;
    if (!mayGrow || text.find_first_of("(+") == text.npos) return text;
    return "slice(" + text + (type == Type::Text ? ", 0, 40)" : ", 0, 10)");
}

std::string Writer::intExpression(Demand demand, int depth) {
    const auto of = [&](Type type) { return expression(type, demand, depth); };
    const auto operation = [&](const char* op, const std::string& right) {
        const std::string text = of(Type::Int) + op + right;
        return random_.chance(60) ? "(" + text + ")" : text;
    };
    const auto nonZero = [&] { return std::to_string(random_.between(1, 9)); };
    const bool mayFail = demand == Demand::Anything && random_.chance(25);
    switch (random_.below(34)) {
        case 32:
        case 33: return rareInt(demand, depth);
        case 0:
        case 1:
        case 2:
        case 3: return operation(" + ", of(Type::Int));
        case 4:
        case 5:
        case 6: return operation(" - ", of(Type::Int));
        case 7:
        case 8: return "(" + of(Type::Int) + " * " + of(Type::Int) + ")";
        case 9: return "(" + of(Type::Int) + " // " + nonZero() + ")";
        case 10: return "(" + of(Type::Int) + " % " + nonZero() + ")";
        case 11: return "(" + of(Type::Int) + " // -" + nonZero() + ")";
        case 12: return "(" + of(Type::Int) + " ^ " + std::to_string(random_.below(5)) + ")";
        case 13: return "-" + leaf(Type::Int);
        case 14:
            return "len(" +
                   of(random_.pick<Type>(
                       {Type::Text, Type::Ints, Type::Texts, Type::Table, Type::Funcs})) +
                   ")";
        case 15: return "abs(" + of(Type::Int) + ")";
        case 16:
            return mayFail ? leaf(Type::Ints) + "[" + index(demand) + "]"
                           : "get(" + of(Type::Ints) + ", " + index(demand) + ", 7)";
        case 17: return "get(" + of(Type::Ints) + ", " + index(demand) + ", -1)";
        case 18: return "get(" + of(Type::Table) + ", " + key() + ", " + of(Type::Int) + ")";
        case 19: {
            const std::string table = leaf(Type::Table);
            return "(" + table + (random_.chance(50) ? ".a" : "[" + key() + "]") + " or " +
                   of(Type::Int) + ")";
        }
        case 20: return "sum(" + of(Type::Ints) + ")";
        case 21:
            return (random_.chance(50) ? "min(" : "max(") + of(Type::Int) + ", " + of(Type::Int) +
                   ")";
        case 22: return "count(" + of(Type::Ints) + ", " + of(Type::Int) + ")";
        case 23:
            return random_.chance(50) ? "find(" + of(Type::Ints) + ", " + of(Type::Int) + ")"
                                      : "find(" + of(Type::Text) + ", " + literal(Type::Text) + ")";
        case 24:
            return random_.pick<std::string>({"floor(", "ceil(", "round(", "int(", "sign("}) +
                   of(Type::Float) + ")";
        case 25: return "clamp(" + of(Type::Int) + ", -3, 8)";
        case 26: return "ord(" + of(Type::Text) + R"( + "q"))";
        case 27:
            return "reduce(" +
                   lambda({Type::Int, Type::Int}, Type::Int, Scope::Lifetime::Immediate, demand,
                          depth) +
                   ", " + of(Type::Ints) + ", " + of(Type::Int) + ")";
        case 28:
            return random_.chance(50) ? "num(str(" + leaf(Type::Int) + "))"
                                      : "parse_int(\"ff\", 16)";
        case 29:
            return "(" + lambda({Type::Int}, Type::Int, Scope::Lifetime::Immediate, demand, depth) +
                   ")(" + of(Type::Int) + ")";
        case 30:
            if (mayFail) return operation(random_.chance(50) ? " // " : " % ", leaf(Type::Int));
            return operation(" + ", "1");
        default: return mayFail ? "reduce(max, " + of(Type::Ints) + ")" : leaf(Type::Int);
    }
}

std::string Writer::floatExpression(Demand demand, int depth) {
    const auto of = [&](Type type) { return expression(type, demand, depth); };
    const auto number = [&] { return of(random_.chance(50) ? Type::Int : Type::Float); };
    switch (random_.below(19)) {
        case 0: return "(" + of(Type::Float) + " + " + number() + ")";
        case 1: return "(" + number() + " + " + of(Type::Float) + ")";
        case 2: return "(" + of(Type::Float) + " - " + number() + ")";
        case 3: return "(" + number() + " * " + of(Type::Float) + ")";
        case 4: return "(" + number() + " / " + random_.pick<std::string>({"2", "-4", "0.5"}) + ")";
        case 5:
            return demand == Demand::Anything && random_.chance(25)
                       ? "(" + of(Type::Int) + " / " + leaf(Type::Int) + ")"
                       : "(" + of(Type::Int) + " / 8)";
        case 6: return "(" + of(Type::Float) + " // 0.75)";
        case 7: return "(" + of(Type::Float) + " % 2.5)";
        case 8: return "(" + number() + " ^ 0.5)";
        case 9: return "(" + of(Type::Int) + " ^ -" + std::to_string(random_.between(1, 2)) + ")";
        case 10: return "-" + leaf(Type::Float);
        case 11: return "sqrt(" + number() + ")";
        case 12:
            return random_.pick<std::string>({"sin(", "cos(", "tan(", "float(", "log(", "exp("}) +
                   number() + ")";
        case 13: return "round(" + of(Type::Float) + ", 2)";
        case 14:
            return random_.chance(50) ? "pow(" + number() + ", " + literal(Type::Float) + ")"
                                      : "log(" + number() + ", 2)";
        case 15: return (random_.chance(50) ? "min(" : "max(") + of(Type::Float) + ", 1.5)";
        case 16: return "clamp(" + of(Type::Float) + ", -1.5, 1000)";
        case 17: return "sum([" + of(Type::Int) + ", " + of(Type::Float) + "])";
        default: return "(" + number() + " - 0.25)";
    }
}

std::string Writer::boolExpression(Demand demand, int depth) {
    const auto of = [&](Type type) { return expression(type, demand, depth); };
    const auto number = [&] { return of(random_.chance(70) ? Type::Int : Type::Float); };
    const std::string order = random_.pick<std::string>({" < ", " <= ", " > ", " >= "});
    const std::string equality = random_.pick<std::string>({" == ", " != "});
    switch (random_.below(18)) {
        case 17: return rareBool(demand, depth);
        case 0:
        case 1:
        case 2: return "(" + number() + order + number() + ")";
        case 3: return "(" + of(Type::Text) + order + of(Type::Text) + ")";
        case 4: return "(" + number() + equality + number() + ")";
        case 5: return "(" + of(dataType()) + equality + of(dataType()) + ")";
        case 6: return "(not " + of(Type::Bool) + ")";
        case 7:
        case 8: return "(" + of(Type::Bool) + " and " + of(Type::Bool) + ")";
        case 9:
        case 10: return "(" + of(Type::Bool) + " or " + of(Type::Bool) + ")";
        case 11: return "has(" + of(Type::Ints) + ", " + of(Type::Int) + ")";
        case 12: return "contains(" + of(Type::Text) + ", " + literal(Type::Text) + ")";
        case 13: return "has(" + of(Type::Table) + ", " + key() + ")";
        case 14: return "(" + leaf(Type::Table) + "[" + key() + "]" + equality + "nil)";
        case 15:
            return random_.pick<std::string>({"is_number(", "is_string(", "is_list(", "is_nil(",
                                              "is_function(", "bool("}) +
                   of(dataType()) + ")";
        default: return "(" + number() + order + number() + equality + of(Type::Bool) + ")";
    }
}

std::string Writer::textExpression(Demand demand, int depth) {
    const auto of = [&](Type type) { return expression(type, demand, depth); };
    const auto call = [&](const char* name, Type type) { return name + of(type) + ")"; };
    switch (random_.below(20)) {
        case 18: return rareText(demand, depth);
        case 0:
        case 1:
        case 2: return "(" + of(Type::Text) + " + " + of(Type::Text) + ")";
        case 3:
        case 4: return call("str(", dataType());
        case 5: return call("repr(", dataType());
        case 6: return call("upper(", Type::Text);
        case 7:
            return random_.pick<std::string>({"lower(", "trim(", "capitalize(", "reverse("}) +
                   of(Type::Text) + ")";
        case 8: return "replace(" + of(Type::Text) + R"(, "a", )" + literal(Type::Text) + ")";
        case 9: return "join(" + of(random_.chance(50) ? Type::Texts : Type::Ints) + R"(, "-"))";
        case 10:
            return "slice(" + of(Type::Text) + ", " + index(demand) + ", " + index(demand) + ")";
        case 11:
            return demand == Demand::Anything && random_.chance(25)
                       ? leaf(Type::Text) + "[" + index(demand) + "]"
                       : "slice(" + of(Type::Text) + ", 1)";
        case 12: return "repeat(" + of(Type::Text) + ", " + std::to_string(random_.below(3)) + ")";
        case 13: return "char(70 + " + leaf(Type::Int) + " % 20)";
        case 14:
        case 15: return interpolation(demand);
        case 16: return call("type(", dataType());
        default: return random_.chance(50) ? "hex(" + leaf(Type::Int) + ")" : leaf(Type::Text);
    }
}

// The builtins that give the same only within bounds, or that few programs would use so often.
std::string Writer::rareInt(Demand demand, int depth) {
    const auto of = [&](Type type) { return expression(type, demand, depth); };
    switch (random_.below(11)) {
        case 0: return "(randint(-1, " + std::to_string(random_.below(4)) + ") * 0)";
        case 1: return "int(random())";
        case 2: return "sign(clock())";
        case 3: return "parse_int(hex(abs(" + of(Type::Int) + ") % 4096), 16)";
        case 4: return "parse_int(slice(oct(" + std::to_string(random_.below(64)) + "), 2), 8)";
        case 5: return "parse_int(slice(bin(" + std::to_string(random_.below(64)) + "), 2), 2)";
        case 6: return "int(" + of(Type::Bool) + ")";
        case 7: return (random_.chance(50) ? "min([" : "max([") + of(Type::Int) + ", 3])";
        case 8: return "pop([" + of(Type::Int) + "])";
        case 9: return "len(push([], " + of(Type::Int) + ", " + of(Type::Text) + "))";
        default:
            return "remove_at([" + of(Type::Int) + ", 1, 2], (" + index(Demand::Harmless) +
                   ") % 3)";
    }
}

std::string Writer::rareBool(Demand demand, int depth) {
    const auto of = [&](Type type) { return expression(type, demand, depth); };
    switch (random_.below(6)) {
        case 0:
            return random_.pick<std::string>({"is_map(", "is_bool(", "is_list("}) + of(dataType()) +
                   ")";
        case 1:
            return random_.pick<std::string>({"starts_with(", "ends_with("}) + of(Type::Text) +
                   ", " + of(dataType()) + ")";
        case 2: return "delete(copy(" + leaf(Type::Table) + "), " + key() + ")";
        case 3: return "assert(" + of(Type::Text) + R"( != "no", "never"))";
        case 4: return "(clock() >= " + literal(Type::Float) + " or true)";
        default: return "contains(" + of(Type::Ints) + ", " + of(Type::Float) + ")";
    }
}

std::string Writer::rareText(Demand demand, int depth) {
    const auto of = [&](Type type) { return expression(type, demand, depth); };
    switch (random_.below(7)) {
        case 0: return "oct(" + of(Type::Int) + ")";
        case 1: return "bin(" + of(Type::Float) + ")";
        case 2: return "str(zip(" + of(Type::Ints) + ", " + of(Type::Texts) + "))";
        case 3: return "str(enumerate(" + of(Type::Ints) + "))";
        case 4: return "str(items(" + of(Type::Table) + "))";
        case 5:
            return demand == Demand::Anything ? R"((input("ask") or "nothing"))"
                                              : "chars(\"q\")[0]";
        default: return "join(split(" + of(Type::Text) + "), " + leaf(Type::Text) + ")";
    }
}

std::string Writer::rareInts(Demand demand, int depth) {
    const auto of = [&](Type type) { return expression(type, demand, depth); };
    const auto second = [&](const std::string& list) {
        return "map(function(p) return p[" + std::to_string(random_.between(-1, 1)) + "] end, " +
               list + ")";
    };
    switch (random_.below(5)) {
        case 0:
            return second("items({[" + std::to_string(random_.below(4)) + "]: " + of(Type::Int) +
                          "})");
        case 1: return second("enumerate(" + of(Type::Ints) + ")");
        case 2: return second("zip(" + of(Type::Ints) + ", " + of(Type::Ints) + ")");
        case 3:
            return "insert(push(copy(" + of(Type::Ints) + "), " + of(Type::Int) + "), 0, " +
                   of(Type::Int) + ")";
        default:
            return "range(" + std::to_string(random_.below(10)) + ", 0, -" +
                   std::to_string(random_.between(1, 4)) + ")";
    }
}

std::string Writer::interpolation(Demand demand) {
    if (insideInterpolation_) return leaf(Type::Text);  // they do not nest
    insideInterpolation_ = true;
    const std::string text =
        "\"<${" + expression(dataType(), demand, 1) + "}|${" + leaf(dataType()) + "}>\"";
    insideInterpolation_ = false;
    return text;
}

std::string Writer::intsExpression(Demand demand, int depth) {
    const auto of = [&](Type type) { return expression(type, demand, depth); };
    const auto made = [&](const std::vector<Type>& parameters, Type result) {
        return lambda(parameters, result, Scope::Lifetime::Immediate, demand, depth);
    };
    switch (random_.below(17)) {
        case 16: return rareInts(demand, depth);
        case 0:
        case 1:
        case 2: return "[" + of(Type::Int) + ", " + of(Type::Int) + "]";
        case 3:
        case 4: return "(" + of(Type::Ints) + " + " + of(Type::Ints) + ")";
        case 5:
            return "slice(" + of(Type::Ints) + ", " + index(demand) + ", " + index(demand) + ")";
        case 6: return "sort(" + of(Type::Ints) + ")";
        case 7:
            return "sort(" + of(Type::Ints) + ", " + made({Type::Int, Type::Int}, Type::Bool) + ")";
        case 8: return "reverse(" + of(Type::Ints) + ")";
        case 9:
        case 10: return "map(" + made({Type::Int}, Type::Int) + ", " + of(Type::Ints) + ")";
        case 11: return "filter(" + made({Type::Int}, Type::Bool) + ", " + of(Type::Ints) + ")";
        case 12:
            return "range(" + std::to_string(random_.below(3)) + ", clamp(" + of(Type::Int) +
                   ", -3, 8))";
        case 13: return "values(" + of(Type::Table) + ")";
        case 14:
            return random_.chance(50) ? "map(len, " + of(Type::Texts) + ")"
                                      : "copy(" + of(Type::Ints) + ")";
        default:
            return demand == Demand::Anything && insideLambdas_ == 0
                       ? "map(" + leaf(Type::Func) + ", " + of(Type::Ints) + ")"
                       : "repeat(" + leaf(Type::Ints) + ", 2)";
    }
}

std::string Writer::textsExpression(Demand demand, int depth) {
    const auto of = [&](Type type) { return expression(type, demand, depth); };
    // No longer than a variable's, or a list of texts made from the last list would grow for ever.
    const auto text = [&] { return bounded(Type::Text, demand, depth); };
    switch (random_.below(8)) {
        case 0: return "[" + text() + ", " + text() + "]";
        case 1: return "split(" + text() + R"(, ","))";
        case 2: return "keys(" + of(Type::Table) + ")";
        case 3: return "chars(" + of(Type::Text) + ")";
        case 4:
            return "map(" +
                   lambda({Type::Int}, Type::Text, Scope::Lifetime::Immediate, demand, depth) +
                   ", " + of(Type::Ints) + ")";
        case 5: return "sort(" + of(Type::Texts) + ")";
        case 6: return "(" + of(Type::Texts) + " + " + of(Type::Texts) + ")";
        default: return "map(str, " + of(Type::Ints) + ")";
    }
}

std::string Writer::tableExpression(Demand demand, int depth) {
    const auto value = [&] { return expression(Type::Int, demand, depth); };
    switch (random_.below(4)) {
        case 0: return "{a: " + value() + ", c: " + value() + "}";
        case 1: return "{[" + key() + "]: " + value() + R"(, "k1": )" + value() + "}";
        case 2: return "copy(" + leaf(Type::Table) + ")";
        default: return "{a: " + value() + ", a: " + value() + "}";
    }
}

std::string Writer::funcExpression(Demand demand, int depth) {
    if (random_.chance(25)) return leaf(Type::Func);
    const auto declared = scope_.pick(random_, [](const Variable& variable) {
        return variable.type == Type::Declared && variable.signature->result == Type::Int &&
               variable.signature->parameters == std::vector{Type::Int};
    });
    if (declared && random_.chance(40)) return declared->name;
    // Making a function is harmless whatever it does when called, but it may be called by what
    // wants a harmless one.
    return lambda({Type::Int}, Type::Int, Scope::Lifetime::Stored, demand, depth);
}

}  // namespace pellum::test
