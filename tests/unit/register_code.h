// Register code for tests: what a machine that knows the builtins makes of functions.
#pragma once

#include "builtins/builtins.h"
#include "compiler/compiler.h"
#include "lexer/lexer.h"
#include "parser/parser.h"
#include "vm/register_listing.h"
#include "vm/translator.h"

#include <memory>
#include <string>

namespace pellum::test {

class Translation {
public:
    explicit Translation(const Ref<FunctionProto>& proto) {
        code.proto = proto;
        registerBuiltins(globals_);
        translate(code, globals_, nullptr);
    }

    RegisterCode code;

private:
    Globals globals_;
};

// Calls `visit` with the prototype and with every one inside it.
template <typename Visit>
void forEachFunction(const Ref<FunctionProto>& proto, const Visit& visit) {
    visit(proto);
    for (const Ref<FunctionProto>& inner : proto->functions) forEachFunction(inner, visit);
}

// The register code of every function in the source, each under its name, without the script's own.
inline std::string registerCodeOf(const std::string& source) {
    std::string text;
    const Ref<FunctionProto> script = compile(parse(tokenize(source)));
    forEachFunction(script, [&](const Ref<FunctionProto>& proto) {
        if (proto == script) return;
        const Translation translation(proto);
        text += "== " + proto->name + " ==\n" + listRegisterCode(translation.code);
    });
    return text;
}

}  // namespace pellum::test
