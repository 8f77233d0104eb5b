#include "lint/name_rules.h"

#include <string>
#include <unordered_map>
#include <utility>

namespace pellum::lint {

namespace {

std::string quoted(const Symbol& name) { return "'" + std::string(name.text()) + "'"; }

std::string inLine(Position at) { return "in line " + std::to_string(at.line); }

// What a name that begins so is there for is its place alone.
bool isPlaceholder(const Symbol& name) noexcept { return name.text().starts_with('_'); }

const char* wordFor(Variable::Kind kind) noexcept {
    switch (kind) {
        case Variable::Kind::Let: return "variable";
        case Variable::Kind::Function: return "function";
        case Variable::Kind::Parameter: return "parameter";
        case Variable::Kind::NumericLoop:
        case Variable::Kind::ForIn: return "loop variable";
        case Variable::Kind::Caught: return "caught value";
    }
    return "";
}

class NameRules {
public:
    NameRules(const Names& names, const Places& places, Findings& findings)
        : names_(names), places_(places), findings_(findings) {
        for (const Variable& variable : names.variables()) {
            if (variable.function) holders_.emplace(variable.function, &variable);
        }
    }

    void run() {
        for (const Variable& variable : names_.variables()) {
            checkUse(variable);
            checkHiding(variable);
            checkRedeclaration(variable);
            checkBuiltinName(variable);
        }
        for (const Use& use : names_.uses()) {
            checkDefinition(use);
            checkEngines(use);
            checkLoopVariable(use);
            checkArity(use);
            checkBuiltinAssignment(use);
        }
    }

private:
    void checkUse(const Variable& variable);
    void checkHiding(const Variable& variable);
    void checkRedeclaration(const Variable& variable);
    void checkBuiltinName(const Variable& variable);
    void checkDefinition(const Use& use);
    void checkEngines(const Use& use);
    void checkLoopVariable(const Use& use);
    void checkArity(const Use& use);
    void checkBuiltinAssignment(const Use& use);

    // A function that is handed around gets the arguments that others have for it, and must have
    // parameters for all of them.
    bool isCalledByNameAlone(const FunctionLiteral& function) const {
        const auto holder = holders_.find(&function);
        return holder != holders_.end() && !holder->second->isHandedOn;
    }
    static bool isWrite(const Use& use) noexcept {
        return use.kind == Use::Kind::Write || use.kind == Use::Kind::Update;
    }
    void report(Position at, Rule rule, std::string text) {
        findings_.push_back({at, rule, std::move(text)});
    }
    void report(const Use& use, Rule rule, std::string text) {
        report(places_.of(*use.node), rule, std::move(text));
    }

    const Names& names_;
    const Places& places_;
    Findings& findings_;
    // The variables that functions are made for.
    std::unordered_map<const FunctionLiteral*, const Variable*> holders_;
};

void NameRules::checkUse(const Variable& variable) {
    if (variable.reads > 0 || isPlaceholder(variable.name)) return;
    if (variable.isGlobal() && variable.previous) return;
    if (variable.kind == Variable::Kind::Parameter &&
        (variable.isRedeclared || !isCalledByNameAlone(*variable.owner))) {
        return;
    }
    std::string text = std::string(wordFor(variable.kind)) + " " + quoted(variable.name);
    if (variable.ownReads > 0) {
        text += " is used by nothing but itself";
    } else if (variable.writes > 0) {
        text += " is assigned to and never read";
    } else {
        text += " is never used";
    }
    report(variable.at, Rule::UnusedName, std::move(text));
}

// A global variable that is made further down does not take its name away from what stands above.
void NameRules::checkHiding(const Variable& variable) {
    if (!variable.hides || variable.copiesHidden || isPlaceholder(variable.name)) return;
    const Variable& hidden = *variable.hides;
    if (hidden.isGlobal() && hidden.statement >= variable.statement) return;
    report(variable.at, Rule::ShadowedName,
           std::string(wordFor(variable.kind)) + " " + quoted(variable.name) + " hides the " +
               wordFor(hidden.kind) + " " + inLine(hidden.at));
}

void NameRules::checkRedeclaration(const Variable& variable) {
    if (!variable.previous || isPlaceholder(variable.name)) return;
    const bool isParameter = variable.kind == Variable::Kind::Parameter;
    report(variable.at, isParameter ? Rule::DuplicateParameter : Rule::RedeclaredName,
           isParameter ? "there is a parameter " + quoted(variable.name) + " before this one"
                       : quoted(variable.name) + " is declared " + inLine(variable.previous->at) +
                             " of the same scope");
}

// A local variable takes the name away from few lines, which seldom want the builtin, and so does
// the parameter of a function without a name.
void NameRules::checkBuiltinName(const Variable& variable) {
    if (!names_.isPredefined(variable.name)) return;
    const bool isFarReaching =
        variable.isGlobal() || variable.kind == Variable::Kind::Function ||
        (variable.kind == Variable::Kind::Parameter && holders_.contains(variable.owner));
    if (!isFarReaching) return;
    report(variable.at, Rule::BuiltinName,
           std::string(wordFor(variable.kind)) + " " + quoted(variable.name) +
               " takes the name of a builtin");
}

void NameRules::checkBuiltinAssignment(const Use& use) {
    if (!use.predefined || !isWrite(use)) return;
    report(use, Rule::BuiltinName, "the builtin " + quoted(use.node->name) + " is assigned to");
}

// A statement of the program is executed once, so what it uses itself must have been made before.
void NameRules::checkDefinition(const Use& use) {
    if (use.predefined || use.rival) return;
    if (!use.variable) {
        report(use, Rule::UndefinedName, "nothing defines " + quoted(use.node->name));
    } else if (use.variable->isGlobal() && !use.isInFunction &&
               use.statement <= use.variable->statement && !names_.isPredefined(use.node->name)) {
        report(use, Rule::EarlyUse,
               quoted(use.node->name) + " is made later, " + inLine(use.variable->at));
    }
}

void NameRules::checkEngines(const Use& use) {
    const std::string name = quoted(use.node->name);
    if (use.rival) {
        report(use, Rule::EnginesDiffer,
               name + " is declared later, " + inLine(*use.rival) +
                   ", and only the tree-walker looks there");
    } else if (use.isInLoopHead) {
        report(use, Rule::EnginesDiffer,
               name + " is the loop's own variable on the virtual machine alone");
    }
}

void NameRules::checkLoopVariable(const Use& use) {
    if (!isWrite(use) || !use.variable || use.variable->kind != Variable::Kind::NumericLoop) return;
    report(use, Rule::LoopVariable,
           "assigning to the loop variable " + quoted(use.node->name) +
               " changes the count on the virtual machine alone");
}

// Only where there is no doubt about which function is called.
void NameRules::checkArity(const Use& use) {
    if (use.kind != Use::Kind::Call) return;
    if (const NativeObj* const native = names_.builtin(*use.node)) {
        if (native->accepts(use.arguments)) return;
        report(use, Rule::WrongArity, arityError(*native, use.arguments, {}).message);
    } else if (use.variable && use.variable->function && use.variable->writes == 0 &&
               !use.variable->isRedeclared && !use.variable->previous && !use.rival &&
               !names_.isPredefined(use.node->name)) {
        const std::size_t wanted = use.variable->function->params.size();
        if (wanted == use.arguments) return;
        report(
            use, Rule::WrongArity,
            arityError(use.node->name.text(), std::to_string(wanted), use.arguments, {}).message);
    }
}

}  // namespace

void checkNames(const Names& names, const Places& places, Findings& findings) {
    NameRules(names, places, findings).run();
}

}  // namespace pellum::lint
