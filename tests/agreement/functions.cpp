#include "agreement/writer.h"

#include <utility>

namespace pellum::test {

// A function of which `head` is the line, with its parameters declared.
Statement Writer::functionBody(std::string head, std::string closing, const Signature& signature,
                               const Place& place) {
    Place inside;
    inside.isInFunction = true;
    inside.result = signature.result;
    inside.depth = place.depth + 1;
    head += "\n    fuel -= 1\n    if fuel < 0";
    if (!signature.depthVariable.empty()) head += " or " + signature.depthVariable + " <= 0";
    head += " then return " + literal(signature.result) + " end";

    const int lambdas = std::exchange(insideLambdas_, 0);  // this body burns fuel
    Block body;
    const int count = random_.between(1, 4);
    for (int i = 0; i < count; ++i) body.push_back(statement(inside));
    body.push_back(simple("return " + bounded(signature.result, Demand::Anything)));
    insideLambdas_ = lambdas;
    return {{{std::move(head), std::move(body)}}, std::move(closing)};
}

Statement Writer::function(const Place& place) {
    auto signature = std::make_shared<Signature>();
    signature->result = dataType();
    const std::string name = newName("f");
    std::vector<Variable> parameters;
    if (random_.chance(35)) {
        signature->depthVariable = newName("d");
        signature->parameters.push_back(Type::Int);
        parameters.push_back({signature->depthVariable, Type::Int, false});
    }
    const int count = random_.below(3);
    for (int i = 0; i < count; ++i) {
        const Type type = dataType();
        std::string parameter = innerName("a");
        for (const Variable& other : parameters) {
            if (other.name == parameter) parameter = newName("a");
        }
        signature->parameters.push_back(type);
        parameters.push_back({parameter, type, true, random_.chance(30)});
    }
    std::string head = "function " + name + "(";
    for (const Variable& parameter : parameters) {
        head += (head.back() == '(' ? "" : ", ") + parameter.name;
    }
    // Its own name is known inside where it counts down; elsewhere only behind it.
    const Variable itself{name, Type::Declared, false, false, false, signature};
    const bool isRecursive = !signature->depthVariable.empty();
    if (isRecursive) scope_.declare(itself);
    scope_.openFunction(Scope::Lifetime::Stored);
    for (Variable& parameter : parameters) scope_.declare(std::move(parameter));
    Statement statement = functionBody(head + ")", "end", *signature, place);
    scope_.closeFunction();
    if (!isRecursive) scope_.declare(itself);
    return statement;
}

// A function value of several lines. Most of them outlive the block that they are made in.
Statement Writer::closure(const Place& place) {
    const Signature signature{{Type::Int}, Type::Int, ""};
    const std::string name = newName("v");
    std::string closing = "end";
    if (const auto list = scope_.pick(random_, Type::Funcs); list && random_.chance(75)) {
        closing +=
            "\nif len(" + list->name + ") < 12 then push(" + list->name + ", " + name + ") end";
    }
    const std::string parameter = newName("a");
    scope_.openFunction(Scope::Lifetime::Stored);
    scope_.declare({parameter, Type::Int, true, random_.chance(30)});
    Statement statement =
        functionBody("let " + name + " = function(" + parameter + ")", closing, signature, place);
    scope_.closeFunction();
    scope_.declare({name, Type::Func, true, random_.chance(30)});
    return statement;
}

// A builtin that calls a function of several lines.
Statement Writer::callback(const Place& place) {
    const std::string list = bounded(Type::Ints, Demand::Anything, 2);
    struct Form {
        std::string builtin;
        Signature signature;
        std::string closing;
        Type result;
    };
    const Form form = random_.pick<Form>({
        {"map(", {{Type::Int}, Type::Int, ""}, "end, " + list + ")", Type::Ints},
        {"filter(", {{Type::Int}, Type::Bool, ""}, "end, " + list + ")", Type::Ints},
        {"sort(" + list + ", ", {{Type::Int, Type::Int}, Type::Bool, ""}, "end)", Type::Ints},
        {"reduce(", {{Type::Int, Type::Int}, Type::Int, ""}, "end, " + list + ", 0)", Type::Int},
    });
    scope_.openFunction(Scope::Lifetime::Immediate);
    std::string parameters;
    for (const Type type : form.signature.parameters) {
        const std::string parameter = newName("a");
        parameters += (parameters.empty() ? "" : ", ") + parameter;
        scope_.declare({parameter, type});
    }
    const std::string name = newName("v");
    Statement statement =
        functionBody("let " + name + " = " + form.builtin + "function(" + parameters + ")",
                     form.closing, form.signature, place);
    scope_.closeFunction();
    scope_.declare({name, form.result, true, random_.chance(30)});
    return statement;
}

// A recursion without end, which has to end at the same depth with either code of the machine:
// after so many calls or so many values on the stack.
Statement Writer::depthProbe() {
    const std::string reached = newName("v"), name = newName("f"), caught = newName("c");
    const std::string deeper = name + "(n + 1)";
    std::string waiting = "n";
    for (int i = random_.below(40); i > 0; --i) waiting += ", n";
    Block body = {simple(reached + " = n")};
    for (int i = random_.below(4); i > 0; --i) {
        body.push_back(simple("let " + newName("v") + " = n * 0.5"));
    }
    const std::string result = random_.pick<std::string>(
        {deeper, "1 + " + deeper, "[" + waiting + ", " + deeper + "]",
         "max(" + waiting + ", " + deeper + ")", "{a: [" + waiting + "], b: " + deeper + "}",
         "\"${n}${" + deeper + "}\"", "n > 0 and " + deeper + " or " + deeper});
    if (random_.chance(30)) {
        body.push_back({{{"try", {simple("return " + result)}},
                         {"catch " + caught, {simple("error(" + caught + " + \"!\")")}}},
                        "end"});
    } else {
        body.push_back(simple("return " + result));
    }
    return {{{"let " + reached + " = 0\nfunction " + name + "(n)", std::move(body)}},
            "end\ntry\n    " + name + "(1)\ncatch " + caught + "\n    print(len(" + caught +
                "), slice(" + caught + ", 0, 40), " + reached + ")\nend"};
}

}  // namespace pellum::test
