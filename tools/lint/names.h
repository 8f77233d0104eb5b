// What each name in a program stands for. The scoping rules are written here, once, for all rules
// of the linter that ask: which variables there are, who uses them, and where the two engines would
// not agree about it.
//
// The virtual machine decides by the text: a name is the latest variable declared before it, in the
// scopes around it. The tree-walker looks when it gets there, so that a function may also find what
// the scopes around it declare further down. Global variables are looked up late on both.
#pragma once

#include "builtins/native.h"
#include "lint/places.h"
#include "value/string.h"

#include <deque>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace pellum::lint {

struct Variable {
    enum class Kind : std::uint8_t { Let, Function, Parameter, NumericLoop, ForIn, Caught };

    Symbol name;
    Kind kind;
    Position at;                // of the name
    std::size_t depth;          // of its scope; 0 for global variables
    std::size_t statement = 0;  // of the program, in which it is made

    // The variable of the same name that was seen at this place, in a scope further out or, for
    // `previous`, in the same one. Global variables are listed once for each declaration, and those
    // behind the first are used by nobody.
    const Variable* hides = nullptr;
    const Variable* previous = nullptr;
    bool isRedeclared = false;  // it is the `previous` of another one
    bool copiesHidden = false;  // made by `let x = x`

    const FunctionLiteral* function = nullptr;  // that it is made with
    const FunctionLiteral* owner = nullptr;     // of a parameter

    std::size_t reads = 0;     // outside of its own body, calls among them
    std::size_t ownReads = 0;  // of a function, in its own body
    std::size_t writes = 0;    // plain and compound assignments
    bool isHandedOn = false;   // it is read otherwise than to be called

    bool isGlobal() const noexcept { return depth == 0; }
};

struct Use {
    enum class Kind : std::uint8_t { Read, Call, Write, Update };

    const NameExpr* node;
    Kind kind;
    std::size_t arguments = 0;  // of a call
    std::size_t statement = 0;  // of the program
    bool isInFunction = false;  // it may happen later than where it stands
    Variable* variable = nullptr;
    const Value* predefined = nullptr;  // a builtin or a constant, where there is no variable
    // Where the variable is declared that the tree-walker may find instead.
    std::optional<Position> rival = std::nullopt;
    bool isInLoopHead = false;  // it is the variable of the loop whose limit or step this is
};

class Names {
public:
    // All of them outlive the object. Throws ParseError for nesting that is too deep.
    Names(const Block& program, const Places& places);
    ~Names();

    const std::deque<Variable>& variables() const noexcept { return variables_; }
    const std::vector<Use>& uses() const noexcept { return uses_; }

    bool isPredefined(const Symbol& name) const { return predefined_.contains(keyOf(name)); }
    // The builtin that a name stands for, or null. A program that takes a builtin's name for a
    // global variable, or assigns to it, has lost that builtin.
    const NativeObj* builtin(const Expr& expr) const;

private:
    class Resolver;
    using Key = const StringObj*;
    static Key keyOf(const Symbol& name) noexcept { return &*name.string(); }

    std::deque<Variable> variables_;
    std::vector<Use> uses_;
    std::unordered_map<Key, Value> predefined_;
    std::unordered_set<Key> lost_;  // predefined names that the program gives to something else
    std::unordered_set<const Node*> predefinedUses_;
};

}  // namespace pellum::lint
