#include "lint/names.h"

#include "builtins/builtins.h"

#include <algorithm>
#include <utility>

namespace pellum::lint {

// Walks through a program with the scopes that are open at each place.
class Names::Resolver {
public:
    Resolver(Names& names, const Places& places) : names_(names), places_(places) {}

    void program(const Block& block);

private:
    // A name that an open scope has yet to declare, `left` times.
    struct Coming {
        std::size_t depth;
        std::size_t functionDepth;
        std::size_t left;
        const Stmt* last;
        std::size_t reads = 0;         // by functions further in
        std::size_t outer = noComing;  // the next one out that belongs to another function
        bool isBeingMade = false;      // its only declaration is being evaluated
    };
    static constexpr std::size_t noComing = static_cast<std::size_t>(-1);

    struct Meanings {
        std::vector<Variable*> variables;  // local ones in sight, innermost last
        std::vector<Coming> coming;
        Variable* global = nullptr;
    };

    void statement(const Stmt& stmt);
    void statements(const Block& block);
    void scoped(const Block& block);
    void let(const LetStmt& stmt);
    void assign(const AssignStmt& stmt);
    void numericFor(const NumericForStmt& stmt);
    void functionDeclaration(const FunctionDeclStmt& stmt);
    void function(const FunctionLiteral& literal, const Node& node);
    void expression(const Expr& expr);

    void openScope();
    void closeScope();
    void announce(const Block& block);
    Variable& declare(const Symbol& name, Variable::Kind kind, Position at);
    Variable& add(const Symbol& name, Variable::Kind kind, Position at);
    Variable& declareGlobal(const Symbol& name, Variable::Kind kind, Position at);
    Variable& declareLocal(const Symbol& name, Variable::Kind kind, Position at);
    void arrive(Meanings& meanings, Variable& variable);
    void use(const NameExpr& name, Use::Kind kind, std::size_t arguments = 0);
    void findRival(Use& use, Meanings& meanings);

    bool isGlobalScope() const noexcept { return scopes_.empty(); }
    Meanings& meaningsOf(const Symbol& name) { return meanings_[keyOf(name)]; }

    Names& names_;
    const Places& places_;
    std::unordered_map<Key, Meanings> meanings_;
    std::vector<std::vector<Variable*>> scopes_;  // local ones; the variables of each
    std::size_t functionDepth_ = 0;
    std::size_t statement_ = 0;                      // of the program
    std::unordered_set<const Variable*> ownBodies_;  // functions whose body is being walked through
    std::unordered_set<const Variable*> ownHeads_;   // variables of loops, likewise
};

namespace {

// What a statement declares in the scope in which it stands, or null.
const Symbol* declaredBy(const Stmt& stmt) noexcept {
    switch (stmt.stmtKind()) {
        case StmtKind::Let: return &as<LetStmt>(stmt).name;
        case StmtKind::FunctionDecl: return &as<FunctionDeclStmt>(stmt).function.name;
        default: return nullptr;
    }
}

// The function that a declaration makes its variable with, or null.
const FunctionLiteral* functionOf(const Stmt& stmt) noexcept {
    if (stmt.stmtKind() == StmtKind::FunctionDecl) return &as<FunctionDeclStmt>(stmt).function;
    const Expr& init = *as<LetStmt>(stmt).init;
    return init.exprKind() == ExprKind::Function ? &as<FunctionExpr>(init).function : nullptr;
}

bool isName(const Expr& expr, const Symbol& name) noexcept {
    return expr.exprKind() == ExprKind::Name && as<NameExpr>(expr).name == name;
}

}  // namespace

// Global variables are known before anything is looked at, since functions may use later ones.
void Names::Resolver::program(const Block& block) {
    for (const StmtPtr& stmt : block) {
        if (const Symbol* const name = declaredBy(*stmt)) {
            const bool isLet = stmt->stmtKind() == StmtKind::Let;
            declareGlobal(*name, isLet ? Variable::Kind::Let : Variable::Kind::Function,
                          places_.declaredName(*stmt))
                .function = functionOf(*stmt);
        }
        ++statement_;
    }
    statement_ = 0;
    for (const StmtPtr& stmt : block) {
        statement(*stmt);
        ++statement_;
    }
}

void Names::Resolver::statements(const Block& block) {
    for (const StmtPtr& stmt : block) statement(*stmt);
}

void Names::Resolver::scoped(const Block& block) {
    openScope();
    announce(block);
    statements(block);
    closeScope();
}

void Names::Resolver::statement(const Stmt& stmt) {
    checkNesting(stmt);
    switch (stmt.stmtKind()) {
        case StmtKind::Let: return let(as<LetStmt>(stmt));
        case StmtKind::Assign: return assign(as<AssignStmt>(stmt));
        case StmtKind::If:
            for (const IfStmt::Branch& branch : as<IfStmt>(stmt).branches) {
                if (branch.cond) expression(*branch.cond);
                scoped(branch.body);
            }
            return;
        case StmtKind::While:
            expression(*as<WhileStmt>(stmt).cond);
            return scoped(as<WhileStmt>(stmt).body);
        case StmtKind::NumericFor: return numericFor(as<NumericForStmt>(stmt));
        case StmtKind::ForIn: {
            const auto& loop = as<ForInStmt>(stmt);
            expression(*loop.iterable);
            openScope();
            declare(loop.var, Variable::Kind::ForIn, places_.declaredName(stmt));
            announce(loop.body);
            statements(loop.body);
            return closeScope();
        }
        case StmtKind::FunctionDecl: return functionDeclaration(as<FunctionDeclStmt>(stmt));
        case StmtKind::Try: {
            const auto& attempt = as<TryStmt>(stmt);
            scoped(attempt.body);
            openScope();
            declare(attempt.catchVar, Variable::Kind::Caught, places_.declaredName(stmt));
            announce(attempt.handler);
            statements(attempt.handler);
            return closeScope();
        }
        case StmtKind::Expr:
        case StmtKind::Return:
            return forEachExpression(stmt, [&](const Expr& expr) { expression(expr); });
        case StmtKind::Break:
        case StmtKind::Continue: return;
    }
}

// The initializer does not see the variable, unless it is global and a function looks later.
void Names::Resolver::let(const LetStmt& stmt) {
    const FunctionLiteral* const function = functionOf(stmt);
    if (isGlobalScope()) {
        const Variable* const variable = meaningsOf(stmt.name).global;
        if (function) ownBodies_.insert(variable);
        expression(*stmt.init);
        ownBodies_.erase(variable);
        return;
    }
    Coming& coming = meaningsOf(stmt.name).coming.back();
    coming.isBeingMade = !function && coming.left == 1;
    expression(*stmt.init);
    Variable& variable = declare(stmt.name, Variable::Kind::Let, places_.declaredName(stmt));
    variable.function = function;
    variable.copiesHidden = isName(*stmt.init, stmt.name);
}

void Names::Resolver::assign(const AssignStmt& stmt) {
    if (stmt.target->exprKind() == ExprKind::Name) {
        expression(*stmt.value);
        use(as<NameExpr>(*stmt.target), stmt.isCompound() ? Use::Kind::Update : Use::Kind::Write);
    } else {
        expression(*stmt.target);
        expression(*stmt.value);
    }
}

// The machine has made the variable when it comes to the limit and the step, the tree-walker not.
void Names::Resolver::numericFor(const NumericForStmt& stmt) {
    expression(*stmt.start);
    openScope();
    const Variable& variable =
        declare(stmt.var, Variable::Kind::NumericLoop, places_.declaredName(stmt));
    ownHeads_.insert(&variable);
    expression(*stmt.end);
    if (stmt.step) expression(*stmt.step);
    ownHeads_.erase(&variable);
    announce(stmt.body);
    statements(stmt.body);
    closeScope();
}

void Names::Resolver::functionDeclaration(const FunctionDeclStmt& stmt) {
    const Symbol& name = stmt.function.name;
    Variable& variable = isGlobalScope()
                             ? *meaningsOf(name).global
                             : declare(name, Variable::Kind::Function, places_.declaredName(stmt));
    if (!variable.isGlobal()) variable.function = &stmt.function;
    ownBodies_.insert(&variable);
    function(stmt.function, stmt);
    ownBodies_.erase(&variable);
}

// Parameters live in the scope of the body.
void Names::Resolver::function(const FunctionLiteral& literal, const Node& node) {
    ++functionDepth_;
    openScope();
    for (std::size_t i = 0; i < literal.params.size(); ++i) {
        declare(literal.params[i], Variable::Kind::Parameter, places_.parameter(node, i)).owner =
            &literal;
    }
    announce(literal.body);
    statements(literal.body);
    closeScope();
    --functionDepth_;
}

void Names::Resolver::expression(const Expr& expr) {
    checkNesting(expr);
    const std::vector<const Expr*> spine = spineOf(expr);
    for (std::size_t i = 0; i < spine.size(); ++i) {
        const Expr& part = *spine[i];
        if (part.exprKind() == ExprKind::Name) {
            const bool isCallee =
                i + 1 < spine.size() && spine[i + 1]->exprKind() == ExprKind::Call;
            use(as<NameExpr>(part), isCallee ? Use::Kind::Call : Use::Kind::Read,
                isCallee ? as<CallExpr>(*spine[i + 1]).args.size() : 0);
        } else if (part.exprKind() == ExprKind::Function) {
            function(as<FunctionExpr>(part).function, part);
        } else {
            forEachFurtherOperand(part, [&](const Expr& operand) { expression(operand); });
        }
    }
}

void Names::Resolver::openScope() { scopes_.emplace_back(); }

void Names::Resolver::closeScope() {
    for (const Variable* const variable : scopes_.back()) {
        meaningsOf(variable->name).variables.pop_back();
    }
    scopes_.pop_back();
}

// Tells what the statements of the innermost scope are going to declare.
void Names::Resolver::announce(const Block& block) {
    for (const StmtPtr& stmt : block) {
        const Symbol* const name = declaredBy(*stmt);
        if (!name) continue;
        std::vector<Coming>& coming = meaningsOf(*name).coming;
        if (coming.empty() || coming.back().depth != scopes_.size()) {
            std::size_t outer = noComing;
            if (!coming.empty()) {
                const bool isOther = coming.back().functionDepth != functionDepth_;
                outer = isOther ? coming.size() - 1 : coming.back().outer;
            }
            coming.push_back({scopes_.size(), functionDepth_, 0, nullptr, 0, outer});
        }
        ++coming.back().left;
        coming.back().last = stmt.get();
    }
}

Variable& Names::Resolver::declare(const Symbol& name, Variable::Kind kind, Position at) {
    Variable& variable = declareLocal(name, kind, at);
    if (kind == Variable::Kind::Let || kind == Variable::Kind::Function) {
        arrive(meaningsOf(name), variable);
    }
    return variable;
}

// Global variables stand in no scope, so their depth is 0.
Variable& Names::Resolver::add(const Symbol& name, Variable::Kind kind, Position at) {
    names_.variables_.push_back(Variable{name, kind, at, scopes_.size(), statement_});
    return names_.variables_.back();
}

Variable& Names::Resolver::declareGlobal(const Symbol& name, Variable::Kind kind, Position at) {
    Variable& variable = add(name, kind, at);
    Variable*& global = meaningsOf(name).global;
    if (global) {
        variable.previous = global;
        global->isRedeclared = true;
    } else {
        global = &variable;
    }
    if (names_.isPredefined(name)) names_.lost_.insert(keyOf(name));
    return variable;
}

Variable& Names::Resolver::declareLocal(const Symbol& name, Variable::Kind kind, Position at) {
    Variable& variable = add(name, kind, at);
    Meanings& meanings = meaningsOf(name);
    if (!meanings.variables.empty()) {
        Variable& latest = *meanings.variables.back();
        if (latest.depth == variable.depth) {
            variable.previous = &latest;
            latest.isRedeclared = true;
        } else {
            variable.hides = &latest;
        }
    } else {
        variable.hides = meanings.global;
    }
    meanings.variables.push_back(&variable);
    scopes_.back().push_back(&variable);
    return variable;
}

// Any of the declarations of one scope may be the one that was read.
void Names::Resolver::arrive(Meanings& meanings, Variable& variable) {
    Coming& coming = meanings.coming.back();
    variable.reads += coming.reads;
    variable.isHandedOn |= coming.reads > 0;
    if (--coming.left == 0) meanings.coming.pop_back();
}

void Names::Resolver::use(const NameExpr& name, Use::Kind kind, std::size_t arguments) {
    Use& use =
        names_.uses_.emplace_back(Use{&name, kind, arguments, statement_, functionDepth_ > 0});
    Meanings& meanings = meaningsOf(name.name);
    use.variable = meanings.variables.empty() ? meanings.global : meanings.variables.back();
    const auto predefined = names_.predefined_.find(keyOf(name.name));
    const bool isWrite = kind == Use::Kind::Write || kind == Use::Kind::Update;
    if (!use.variable && predefined != names_.predefined_.end()) {
        use.predefined = &predefined->second;
        if (isWrite) names_.lost_.insert(predefined->first);
        names_.predefinedUses_.insert(&name);
    }
    findRival(use, meanings);
    if (!use.variable) return;
    use.isInLoopHead = ownHeads_.contains(use.variable);
    use.variable->isHandedOn |= kind == Use::Kind::Read;
    if (isWrite) {
        ++use.variable->writes;
    } else if (ownBodies_.contains(use.variable)) {
        ++use.variable->ownReads;
    } else {
        ++use.variable->reads;
    }
}

// The innermost scope of a function further out that has yet to declare the name, if no variable
// further in comes before it.
void Names::Resolver::findRival(Use& use, Meanings& meanings) {
    std::vector<Coming>& coming = meanings.coming;
    if (coming.empty()) return;
    std::size_t index = coming.size() - 1;
    if (coming[index].functionDepth == functionDepth_) index = coming[index].outer;
    if (index == noComing) return;
    Coming& found = coming[index];
    if (use.variable && use.variable->depth > found.depth) return;
    if (found.isBeingMade && (use.variable || use.predefined)) return;
    use.rival = places_.declaredName(*found.last);
    ++found.reads;
}

Names::Names(const Block& program, const Places& places) {
    struct Collector {
        std::unordered_map<Key, Value>& names;
        void define(const Symbol& name, Value value) {
            names.emplace(keyOf(name), std::move(value));
        }
    } collector{predefined_};
    registerBuiltins(collector);
    Resolver(*this, places).program(program);
}

Names::~Names() = default;

const NativeObj* Names::builtin(const Expr& expr) const {
    if (!predefinedUses_.contains(&expr)) return nullptr;
    const Key name = keyOf(as<NameExpr>(expr).name);
    if (lost_.contains(name)) return nullptr;
    const Value& value = predefined_.at(name);
    return value.kind() == ValueKind::Native ? &static_cast<const NativeObj&>(value.asFunction())
                                             : nullptr;
}

}  // namespace pellum::lint
