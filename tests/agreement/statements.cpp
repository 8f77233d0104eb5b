#include "agreement/generator.h"
#include "agreement/writer.h"

namespace pellum::test {

namespace {

std::string joinedBy(const char* separator, const std::vector<std::string>& pieces) {
    std::string text;
    for (const std::string& piece : pieces) text += (text.empty() ? "" : separator) + piece;
    return text;
}

}  // namespace

Ground groundOf(std::uint64_t seed) {
    return seed % 4 == 3 ? Ground::MachineAlone : Ground::BothEngines;
}

Block generateProgram(std::uint64_t seed) {
    return Writer(Random(seed), groundOf(seed)).program(60);
}

Block generateProgram(std::span<const std::uint8_t> choices) {
    return Writer(Random(choices), Ground::MachineAlone).program(12);
}

Block Writer::program(int size) {
    budget_ = size;
    Block program = {simple(fuelDeclaration), simple(counterDeclaration)};
    // Something of each kind to work with.
    for (const Type type : {Type::Int, Type::Int, Type::Float, Type::Bool, Type::Text, Type::Ints,
                            Type::Texts, Type::Table, Type::Funcs}) {
        program.push_back(declare(type, literal(type), random_.chance(40)));
    }
    for (const Type type : {Type::Int, Type::Float}) {
        if (random_.chance(30)) {
            program.push_back(
                declare(type, type == Type::Int ? extremeInt() : extremeFloat(), false));
        }
    }
    if (random_.chance(50)) {
        program.push_back(denseFunction());
        program.push_back(simple("fuel = 300"));
    }
    if (isWild_ && random_.chance(15)) program.push_back(depthProbe());
    const Place top;
    while (budget_ > 0) {
        // Most failures are caught, so that the program goes on.
        program.push_back(random_.chance(40) ? tryStatement(top) : statement(top));
    }
    for (const Variable& variable : scope_.globals()) {
        program.push_back(simple("print(\"" + variable.name + "\", " + variable.name + ")"));
    }
    return program;
}

Type Writer::dataType() {
    return random_.pick<Type>({Type::Int, Type::Int, Type::Int, Type::Float, Type::Bool, Type::Text,
                               Type::Text, Type::Ints, Type::Ints, Type::Texts, Type::Table,
                               Type::Func, Type::Funcs});
}

Block Writer::block(const Place& place, int count, Ending ending) {
    scope_.openBlock();
    Place inner = place;
    ++inner.depth;
    Block statements;
    if (random_.chance(12)) {
        // Before anything that could mean the outer variable.
        if (const auto outer = pickHidden()) {
            statements.push_back(simple("let " + outer->name + " = " + variationOf(*outer)));
            scope_.declare({outer->name, outer->type, true, random_.chance(30)});
        }
    }
    for (int i = 0; i < count; ++i) statements.push_back(statement(inner));
    if (ending == Ending::LeaveLoop) {
        statements.push_back(leaveLoop());
        statements.push_back(statement(inner));
    } else if (ending == Ending::Return) {
        statements.push_back(returnStatement(inner));
    } else if (ending == Ending::Failure) {
        statements.push_back(failingStatement());
    }
    scope_.closeBlock();
    return statements;
}

// A variable that an inner one of the same name may hide.
std::optional<Variable> Writer::pickHidden() {
    return scope_.pick(random_, [](const Variable& variable) {
        return variable.isAssignable && variable.type < Type::Declared;
    });
}

// A new value, most often one that comes from the old.
std::string Writer::variationOf(const Variable& variable) {
    if (random_.chance(30)) return literal(variable.type);
    switch (variable.type) {
        case Type::Int: return variable.name + " + 1";
        case Type::Float: return variable.name + " * 2";
        case Type::Bool: return "not " + variable.name;
        case Type::Ints:
        case Type::Texts: return "copy(" + variable.name + ")";
        default: return variable.name;
    }
}

Statement Writer::statement(const Place& place) {
    --budget_;
    const bool isDeep = place.depth >= 4 || budget_ <= 0;
    const int choice = random_.below(isDeep ? 48 : 100);
    if (choice < 12) return let();
    if (choice < 18) return assignment();
    if (choice < 25) return isWild_ && random_.chance(15) ? redeclaration() : compoundAssignment();
    if (choice < 30) return random_.chance(12) ? scratch() : elementAssignment();
    if (choice < 35) return listChange();
    if (choice < 42) return print();
    if (choice < 43)
        return random_.chance(place.depth == 0 ? 3 : 25) ? failingStatement() : print();
    if (choice < 44) return place.canLeaveLoop ? leaveLoop() : assignment();
    if (choice < 46) {
        const bool returns = place.isInFunction || random_.below(30) == 0;
        return returns ? returnStatement(place) : assignment();
    }
    if (choice < 48) {
        const auto declared = scope_.pick(random_, Type::Declared);
        return declared ? simple(callOf(*declared, 2)) : print();
    }
    if (choice < 59) return ifStatement(place);
    if (choice < 64) return whileLoop(place);
    if (choice < 70) return numericFor(place);
    if (choice < 75) return forIn(place);
    if (choice < 76) return pairs(place);
    if (choice < 84) return tryStatement(place);
    if (choice < 90) return function(place);
    if (choice < 95) return closure(place);
    if (choice < 98) return callback(place);
    return denseFunction();
}

Statement Writer::declare(Type type, const std::string& value, bool isShared) {
    const std::string name = newName("v");
    scope_.declare({name, type, true, isShared});
    return simple("let " + name + " = " + value);
}

// A second variable of the name, which both engines see in different ways.
Statement Writer::redeclaration() {
    const auto known = pickHidden();
    if (!known) return print();
    scope_.declare({known->name, known->type, true, random_.chance(30)});
    return simple("let " + known->name + " = " + variationOf(*known));
}

// Every compound assignment to every kind of target, on a container that nobody else uses, so that
// its elements may become floats.
Statement Writer::scratch() {
    const std::string op =
        random_.pick<std::string>({" += ", " -= ", " *= ", " /= ", " //= ", " %= ", " ^= "});
    const std::string value =
        expression(random_.chance(50) ? Type::Int : Type::Float, Demand::Harmless, 1);
    const bool isZeroRefused = op == " /= " || op == " //= " || op == " %= ";
    const std::string right = isZeroRefused ? std::to_string(random_.between(-3, -1)) : value;
    const std::string name = newName("s");
    const bool isList = random_.chance(40);
    const std::string target =
        isList ? name + "[" + std::to_string(random_.between(-2, 1)) + "]"
               : name + random_.pick<std::string>({".a", "[\"a\"]", "[\"k 1\"]", "[1.0]"});
    const std::string made = isList ? "[" + leaf(Type::Int) + ", " + leaf(Type::Float) + "]"
                                    : "{a: " + leaf(Type::Int) + ", \"k 1\": " + leaf(Type::Float) +
                                          ", [1]: " + literal(Type::Int) + "}";
    return {{{"if true then",
              {simple("let " + name + " = " + made), simple(target + op + right),
               simple("print(" + name + ", " + target + ")")}}},
            "end"};
}

// What holds pairs: the entries of a map, a list beside its indexes, two lists side by side.
Statement Writer::pairs(const Place& place) {
    const std::string name = newName("e");
    const std::string source =
        random_.pick<std::string>({"items(" + leaf(Type::Table) + ")",
                                   "enumerate(" + bounded(Type::Texts, Demand::Anything, 1) + ")",
                                   "zip(" + leaf(Type::Ints) + ", " + leaf(Type::Texts) + ")"});
    scope_.openBlock();
    Block body = loopBody(place);
    scope_.closeBlock();
    body.insert(body.begin(), simple("print(" + name + "[0], " + name + "[-1])"));
    return {{{"for " + name + " in " + source + " do\n" + iterationGuard, std::move(body)}}, "end"};
}

Statement Writer::let() {
    const Type type = dataType();
    return declare(type, bounded(type, Demand::Anything), random_.chance(40));
}

Statement Writer::assignment() {
    const auto target = scope_.pickAssignable(
        random_, [](const Variable& variable) { return variable.type < Type::Declared; });
    if (!target) return print();
    return simple(target->name + " = " + bounded(target->type, Demand::Anything));
}

Statement Writer::compoundAssignment() {
    const auto target = scope_.pickAssignable(random_, [](const Variable& variable) {
        return variable.type == Type::Int || variable.type == Type::Float ||
               variable.type == Type::Text || variable.type == Type::Ints;
    });
    if (!target) return print();
    // One engine reads the variable before the value is evaluated, the other afterwards.
    const Demand demand = target->isShared && !isWild_ ? Demand::Harmless : Demand::Anything;
    const auto value = [&](Type type) { return expression(type, demand, 2); };
    const std::string& name = target->name;
    switch (target->type) {
        case Type::Int:
            switch (random_.below(6)) {
                case 0: return simple(name + " *= " + value(Type::Int));
                case 1: return simple(name + " -= " + value(Type::Int));
                case 2: return simple(name + " //= " + leaf(Type::Int));
                case 3: return simple(name + " %= " + std::to_string(random_.between(1, 99)));
                case 4: return simple(name + " ^= " + std::to_string(random_.below(4)));
                default: return simple(name + " += " + value(Type::Int));
            }
        case Type::Float:
            return simple(name + random_.pick<std::string>({" += ", " -= ", " *= ", " /= "}) +
                          (random_.chance(70) ? value(Type::Float) : leaf(Type::Int)));
        case Type::Text:
            if (random_.chance(15)) {  // with itself
                return {{{"if len(" + name + ") < 20 then",
                          {simple(name + (random_.chance(50) ? " += " : " = " + name + " + ") +
                                  name)}}},
                        "end"};
            }
            if (random_.chance(30))
                return simple(name + " = " + name + " + " + literal(Type::Text));
            return simple(name + " += " +
                          (random_.chance(60) ? literal(Type::Text)
                                              : "slice(" + value(Type::Text) + ", 0, 3)"));
        default: {
            const std::string added = random_.chance(20) ? name : "[" + value(Type::Int) + "]";
            return {
                {{"if len(" + name + ") < 12 then",
                  {simple(name + (random_.chance(50) ? " += " : " = " + name + " + ") + added)}}},
                "end"};
        }
    }
}

Statement Writer::elementAssignment() {
    const bool isList = random_.chance(60);
    const auto target = scope_.pick(
        random_, [=](const Variable& v) { return v.type == (isList ? Type::Ints : Type::Table); });
    if (!target) return print();
    const Statement assignment = elementAssignmentTo(*target);
    if (!isList || random_.chance(15)) return assignment;
    return {{{"if len(" + target->name + ") > 2 then", {assignment}}}, "end"};
}

// Assigns to an element of a list or a map, in one of the ways in which the engines cannot differ.
Statement Writer::elementAssignmentTo(const Variable& target) {
    const bool isList = target.type == Type::Ints;
    const std::string near = "[" + std::to_string(random_.between(-2, 2)) + "]";
    const std::string field = random_.chance(50) ? ".a" : "[" + key() + "]";
    if (isWild_ && random_.chance(50)) {
        return simple(target.name + (isList ? near : field) +
                      random_.pick<std::string>({" = ", " += ", " -= ", " *= "}) +
                      expression(Type::Int, Demand::Anything));
    }
    if (random_.chance(40)) {  // a literal value leaves nothing to be ordered
        const std::string place =
            isList ? "[" + expression(Type::Int, Demand::Anything, 2) + " % 3]" : field;
        return simple(target.name + place +
                      random_.pick<std::string>({" = ", " += ", " -= ", " *= ", " %= "}) +
                      std::to_string(random_.between(1, 9)));
    }
    if (random_.chance(50)) {
        return simple(target.name + (isList ? near : field) +
                      random_.pick<std::string>({" = ", " = ", " += ", " -= "}) +
                      expression(Type::Int, Demand::Harmless));
    }
    // What the value does must not move the target.
    const Demand demand = target.isShared ? Demand::Harmless : Demand::Anything;
    return simple(target.name + (isList ? near : ".a") + " = " + expression(Type::Int, demand));
}

Statement Writer::listChange() {
    const auto list = scope_.pick(random_, [](const Variable& variable) {
        return variable.type == Type::Ints || variable.type == Type::Texts ||
               variable.type == Type::Funcs;
    });
    if (!list) return print();
    const Type element = list->type == Type::Ints    ? Type::Int
                         : list->type == Type::Texts ? Type::Text
                                                     : Type::Func;
    const std::string& name = list->name;
    switch (random_.below(7)) {
        case 0: return {{{"if len(" + name + ") > 1 then", {simple("pop(" + name + ")")}}}, "end"};
        case 6:
            return {{{"if len(" + name + ") > 2 then",
                      {simple("print(len([remove_at(" + name + ", " +
                              std::to_string(random_.between(-2, 2)) + "), pop(" + name + ")]), " +
                              "assert(is_list(" + name + ")))")}}},
                    "end"};
        case 1:
            if (element == Type::Func || random_.chance(80)) break;
            return simple("remove_at(" + name + ", " + index(Demand::Anything) + ")");
        case 2:
            if (const auto table = scope_.pick(random_, Type::Table)) {
                return simple("print(delete(" + table->name + ", " + key() + "))");
            }
            break;
        case 3:
            return {{{"if len(" + name + ") < 12 then",
                      {simple("insert(" + name + ", 0, " + bounded(element, Demand::Anything, 2) +
                              ")")}}},
                    "end"};
        default: break;
    }
    return {{{"if len(" + name + ") < 12 then",
              {simple("push(" + name + ", " + bounded(element, Demand::Anything, 2) + ")")}}},
            "end"};
}

Statement Writer::print() {
    std::vector<std::string> arguments;
    const int count = random_.between(1, 3);
    for (int i = 0; i < count; ++i) arguments.push_back(expression(dataType(), Demand::Anything));
    return simple("print(" + joinedBy(", ", arguments) + ")");
}

Statement Writer::ifStatement(const Place& place) {
    Statement statement;
    const auto condition = [&] { return expression(Type::Bool, Demand::Anything); };
    statement.sections.push_back(
        {"if " + condition() + " then", block(place, random_.between(1, 3))});
    while (random_.chance(25)) {
        statement.sections.push_back(
            {"elif " + condition() + " then", block(place, random_.between(0, 2))});
    }
    if (random_.chance(50)) {
        statement.sections.push_back({"else", block(place, random_.between(1, 2))});
    }
    statement.closing = "end";
    return statement;
}

Block Writer::loopBody(const Place& place) {
    Place inside = place;
    inside.canLeaveLoop = true;
    return block(inside, random_.between(1, 4),
                 random_.chance(35) ? Ending::LeaveLoop : Ending::Plain);
}

Statement Writer::whileLoop(const Place& place) {
    const std::string counter = newName("w");
    std::string condition = counter + " < " + std::to_string(random_.between(1, 5));
    if (random_.chance(60)) condition += " and " + expression(Type::Bool, Demand::Anything);
    return {{{"let " + counter + " = 0\nwhile " + condition + " do\n    " + counter + " += 1\n" +
                  iterationGuard,
              loopBody(place)}},
            "end"};
}

std::string Writer::innerName(const char* kind) {
    if (random_.chance(20)) {
        if (const auto hidden = pickHidden()) return hidden->name;
    }
    return newName(kind);
}

Statement Writer::numericFor(const Place& place) {
    const bool isInteger = random_.chance(75);
    const std::string name = innerName("i");
    const std::string sign = random_.chance(30) ? "-" : "";
    std::string bounds;
    if (name[0] != 'i') {  // the limit must not mention what the loop's variable hides
        bounds = isInteger ? "0, 3" : "0.5, 2";
    } else if (isInteger) {
        bounds = "clamp(" + expression(Type::Int, Demand::Anything, 2) + ", -2, 4), " +
                 (random_.chance(50)
                      ? std::to_string(random_.between(-2, 6))
                      : "clamp(" + expression(Type::Int, Demand::Anything, 2) + ", -2, 6)");
        if (random_.chance(40)) bounds += ", " + sign + std::to_string(random_.between(1, 3));
    } else if (isWild_ && random_.chance(50)) {
        bounds = expression(random_.chance(50) ? Type::Int : Type::Float, Demand::Anything, 1) +
                 ", " +
                 expression(random_.chance(50) ? Type::Int : Type::Float, Demand::Anything, 1);
        if (random_.chance(60)) bounds += ", " + expression(Type::Float, Demand::Anything, 1);
    } else {
        // With a float at the start the variable is a float on both engines; `max` keeps its
        // first argument where the other is NaN, which would tell the engines apart.
        bounds = "max(-2.0, clamp(" + expression(Type::Float, Demand::Anything, 2) +
                 ", -2.0, 4.0)), " + random_.pick<std::string>({"3", "2.5", "-1", "5.0"});
        if (random_.chance(60)) {
            bounds += ", " + sign + random_.pick<std::string>({"0.5", "1", "0.75", "2.0"});
        }
    }
    scope_.openBlock();
    scope_.declare({name, isInteger ? Type::Int : Type::Float, isWild_, false, true});
    Statement statement = {
        {{"for " + name + " = " + bounds + " do\n" + iterationGuard, loopBody(place)}}, "end"};
    scope_.closeBlock();
    return statement;
}

Statement Writer::forIn(const Place& place) {
    const Type type = random_.pick<Type>(
        {Type::Ints, Type::Ints, Type::Text, Type::Texts, Type::Table, Type::Funcs});
    const Type element = type == Type::Ints    ? Type::Int
                         : type == Type::Funcs ? Type::Func
                                               : Type::Text;
    const std::string name = innerName("e");
    const std::string iterable = bounded(type, Demand::Anything, 2);
    scope_.openBlock();
    scope_.declare({name, element, true, false, true});
    Statement statement = {
        {{"for " + name + " in " + iterable + " do\n" + iterationGuard, loopBody(place)}}, "end"};
    scope_.closeBlock();
    return statement;
}

Statement Writer::leaveLoop() {
    return {{{"if " + expression(Type::Bool, Demand::Anything, 2) + " then",
              {simple(random_.chance(50) ? "break" : "continue")}}},
            "end"};
}

Statement Writer::returnStatement(const Place& place) {
    const std::string value =
        place.isInFunction ? "return " + bounded(place.result, Demand::Anything) : "return";
    return {{{"if " + expression(Type::Bool, Demand::Anything, 2) + " then", {simple(value)}}},
            "end"};
}

Statement Writer::tryStatement(const Place& place) {
    Statement statement;
    Place inside = place;
    inside.canLeaveLoop = place.canLeaveLoop && isWild_;
    const Ending ending = inside.canLeaveLoop && random_.chance(40)  ? Ending::LeaveLoop
                          : random_.chance(55)                       ? Ending::Failure
                          : place.isInFunction && random_.chance(60) ? Ending::Return
                                                                     : Ending::Plain;
    Block body = block(inside, random_.between(0, 3), ending);
    const std::string name = newName("c");
    statement.sections.push_back({"try", std::move(body)});

    scope_.openBlock();
    scope_.declare({name, Type::Message, false});
    Block handler = {simple("print(\"caught\", " + name + ")")};
    if (random_.chance(8))
        handler = {simple("print(type(" + name + "))"), simple("error(" + name + ")")};
    for (Statement& more : block(place, random_.below(3))) handler.push_back(std::move(more));
    scope_.closeBlock();
    statement.sections.push_back({"catch " + name, std::move(handler)});
    statement.closing = "end";
    return statement;
}

}  // namespace pellum::test
