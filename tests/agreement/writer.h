// The generator's inside: an object that writes one program. Expressions stand in expressions.cpp,
// mistakes in mistakes.cpp, statements in statements.cpp and functions.cpp, and functions that are
// hard on the machine's translator in dense.cpp.
#pragma once

#include "agreement/generator.h"
#include "agreement/program.h"
#include "agreement/random.h"
#include "agreement/scope.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pellum::test {

// What an expression may do. The engines order the steps of an assignment differently, so that
// where more than one step could do something, the value has to be harmless.
enum class Demand {
    Anything,  // may call functions of the program, and may fail
    Harmless,  // does neither
};

class Writer {
public:
    Writer(Random random, Ground ground)
        : random_(random),
          isWild_(ground == Ground::MachineAlone),
          scope_(isWild_ ? Scope::Rules::None : Scope::Rules::Agreeing) {}
    // With about so many statements.
    Block program(int size);

private:
    // Where a statement stands.
    struct Place {
        bool isInFunction = false;
        Type result = Type::Int;    // of that function
        bool canLeaveLoop = false;  // in a loop, with no `try` between here and there
        int depth = 0;
    };

    // Expressions: of a type, with `depth` more levels of nesting at most.
    std::string expression(Type type, Demand demand, int depth = 3);
    std::string leaf(Type type);
    std::string literal(Type type);
    std::string intExpression(Demand demand, int depth);
    std::string floatExpression(Demand demand, int depth);
    std::string boolExpression(Demand demand, int depth);
    std::string textExpression(Demand demand, int depth);
    std::string interpolation(Demand demand);
    std::string intsExpression(Demand demand, int depth);
    std::string textsExpression(Demand demand, int depth);
    std::string tableExpression(Demand demand, int depth);
    std::string funcExpression(Demand demand, int depth);
    std::string conditional(Type type, Demand demand, int depth);
    std::string lambda(const std::vector<Type>& parameters, Type result, Scope::Lifetime lifetime,
                       Demand demand, int depth);
    std::string call(Type result, int depth);
    std::string callOf(const Variable& function, int depth);
    // As `expression`, but no longer than what one variable should hold.
    std::string bounded(Type type, Demand demand, int depth = 3);
    std::string index(Demand demand);
    std::string extremeInt();
    std::string extremeFloat();
    std::string rareInt(Demand demand, int depth);
    std::string rareBool(Demand demand, int depth);
    std::string rareText(Demand demand, int depth);
    std::string rareInts(Demand demand, int depth);
    std::string key();

    // Something that fails, whatever is wanted of it.
    std::string failingExpression();
    Statement failingStatement();

    // Statements.
    enum class Ending { Plain, LeaveLoop, Return, Failure };
    Block block(const Place& place, int count, Ending ending = Ending::Plain);
    Statement statement(const Place& place);
    Statement let();
    Statement assignment();
    Statement compoundAssignment();
    Statement elementAssignment();
    Statement elementAssignmentTo(const Variable& target);
    Statement listChange();
    Statement print();
    Statement ifStatement(const Place& place);
    Statement whileLoop(const Place& place);
    Statement numericFor(const Place& place);
    Statement forIn(const Place& place);
    Statement leaveLoop();
    Statement returnStatement(const Place& place);
    Statement tryStatement(const Place& place);
    Statement function(const Place& place);
    Statement closure(const Place& place);
    Statement callback(const Place& place);
    Statement depthProbe();
    Statement functionBody(std::string head, std::string closing, const Signature& signature,
                           const Place& place);
    Block loopBody(const Place& place);
    Statement declare(Type type, const std::string& value, bool isShared);
    Statement scratch();
    Statement redeclaration();
    Statement pairs(const Place& place);

    // Functions with many locals, of which all are numbers.
    struct Dense {
        std::vector<std::string> numbers;    // variables
        std::vector<std::string> functions;  // without parameters, that change some of those
        int depth = 0;                       // of the statements around
    };
    Statement denseFunction();
    Block denseBlock(Dense& dense, int count);
    Statement denseStatement(Dense& dense);
    Statement denseLoop(Dense& dense);
    std::string denseNumber(Dense& dense, int depth);
    std::string denseCondition(Dense& dense, int depth);
    std::string denseText(Dense& dense);

    Type dataType();
    std::string newName(const char* kind) { return kind + std::to_string(++names_); }
    // A name for a new block's variable: a new one or, now and then, one that it hides.
    std::string innerName(const char* kind);
    std::optional<Variable> pickHidden();
    std::string variationOf(const Variable& variable);

    Random random_;
    bool isWild_;  // differences between the engines do not matter
    Scope scope_;
    int names_ = 0;
    int budget_ = 0;  // statements still to be written
    bool insideInterpolation_ = false;
    int insideLambdas_ = 0;  // whose bodies burn no fuel, so must not call values
};

// What bounds a run: the iterations and calls that a program may make.
inline constexpr const char* fuelDeclaration = "let fuel = 300";
// What functions with many locals read and change from outside.
inline constexpr const char* counterDeclaration =
    "let counter = 1\nfunction bump()\n    counter = counter + 1\n    return counter\nend";
inline constexpr const char* iterationGuard = "    fuel -= 1\n    if fuel < 0 then break end";

}  // namespace pellum::test
