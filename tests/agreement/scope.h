// The names that a generated program can use at the point where it is being written, with their
// types. The generator keeps every variable at one type, so that its programs run for a while.
#pragma once

#include "agreement/random.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pellum::test {

enum class Type {
    Int,
    Float,
    Bool,
    Text,
    Ints,      // a list of integers
    Texts,     // a list of strings
    Table,     // a map from strings to integers
    Func,      // a function from an integer to an integer
    Funcs,     // a list of such functions
    Declared,  // a declared function; its signature says more
    Message,   // what a `catch` receives: its wording may depend on the engine
};

struct Signature {
    std::vector<Type> parameters;
    Type result = Type::Int;
    std::string depthVariable;  // of a recursive function: its first parameter, which counts down
};

struct Variable {
    std::string name;
    Type type = Type::Int;
    bool isAssignable = true;
    bool isShared = false;        // may be assigned in a function other than its own
    bool isLoopVariable = false;  // closures that outlive the iteration must not see it
    std::shared_ptr<const Signature> signature = nullptr;
};

class Scope {
public:
    // In a scope without restrictions every visible variable may be captured and assigned to, also
    // where the engines differ about what that does.
    enum class Rules { Agreeing, None };
    explicit Scope(Rules rules = Rules::Agreeing) : rules_(rules), blocks_(1) {}

    void openBlock() { blocks_.emplace_back(); }
    void closeBlock() { blocks_.pop_back(); }
    void declare(Variable variable) { blocks_.back().push_back(std::move(variable)); }

    // What a function's body sees of its surroundings: a stored function outlives the statement
    // that makes it, an immediate one does not.
    enum class Lifetime { Stored, Immediate };
    void openFunction(Lifetime lifetime);
    void closeFunction();

    const std::vector<Variable>& globals() const { return blocks_.front(); }

    using Condition = std::function<bool(const Variable&)>;
    // A visible variable that meets the condition, if there is one.
    std::optional<Variable> pick(Random& random, const Condition& condition) const;
    std::optional<Variable> pick(Random& random, Type type) const;
    // One that may be assigned here.
    std::optional<Variable> pickAssignable(Random& random, const Condition& condition) const;

private:
    struct Function {
        std::size_t firstBlock;
        std::size_t firstLoopBlock;  // loop variables of earlier blocks are hidden
    };
    Rules rules_;
    std::vector<std::vector<Variable>> blocks_;
    std::vector<Function> functions_ = {{0, 0}};
};

}  // namespace pellum::test
