#include "driver/source.h"

#include "compiler/compiler.h"
#include "interp/interpreter.h"
#include "lexer/lexer.h"
#include "parser/parser.h"
#include "value/limits.h"
#include "vm/vm.h"

#include <array>
#include <fstream>

namespace pellum {

namespace {

void runOnTree(std::string_view source, Session& session) {
    const Block program = parse(tokenize(source));
    Interpreter interpreter(session.console);
    interpreter.run(program);
}

void runOnVM(std::string_view source, Session& session) {
    const Ref<FunctionProto> script = compile(parse(tokenize(source)));
    VM vm(session.console);
    vm.run(script);
}

}  // namespace

std::optional<std::string> readSourceFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return std::nullopt;
    return readSourceText(file);
}

std::optional<std::string> readSourceText(std::istream& stream) {
    std::string text;
    constexpr std::size_t chunkSize = limit(1 << 14, 5);
    std::array<char, chunkSize> chunk;
    do {
        stream.read(chunk.data(), chunk.size());
        text.append(chunk.data(), static_cast<std::size_t>(stream.gcount()));
    } while (stream && text.size() <= maxSourceLength);
    if (stream.bad()) return std::nullopt;
    return text;
}

std::optional<std::string> readOrComplain(const std::string& path, Session& session) {
    return acceptOrComplain(readSourceFile(path), path, session);
}

std::optional<std::string> acceptOrComplain(std::optional<std::string> text,
                                            const std::string& path, Session& session) {
    if (!text) {
        session.complain("cannot open " + path);
    } else if (text->size() > maxSourceLength) {
        session.complain(path + " is longer than " + std::to_string(maxSourceLength) + " bytes");
        return std::nullopt;
    }
    return text;
}

ExitStatus runSource(std::string_view source, std::string_view name, Engine engine,
                     Session& session) {
    try {
        if (engine == Engine::TreeWalker) {
            runOnTree(source, session);
        } else {
            runOnVM(source, session);
        }
        return exitSuccess;
    } catch (const PellumError& error) {
        session.diagnose(error, source, name);
    } catch (const ThrownValue& thrown) {
        session.diagnose(thrown);
    }
    return exitFailure;
}

}  // namespace pellum
