#include "driver/descriptors.h"
#include "driver/plain_prompt.h"
#include "driver/process.h"
#include "driver/run_main.h"
#if defined(PELLUM_LIBEDIT)
#include "driver/posix/edited_prompt.h"
#endif

#include <memory>

namespace {

// Null where nobody sits at a terminal.
std::unique_ptr<pellum::PromptReader> promptAtTerminal() {
    if (!pellum::isTerminal(pellum::inDescriptor) || !pellum::isTerminal(pellum::outDescriptor))
        return nullptr;
    static pellum::TerminalInput input;
#if defined(PELLUM_LIBEDIT)
    if (pellum::terminalIsCapable()) return pellum::makeEditedPrompt(input);
#endif
    return std::make_unique<pellum::PlainPrompt>(input);
}

}  // namespace

int main(int argc, char** argv) {
    pellum::prepareProcess();
    // Too large for a small stack.
    static pellum::StandardStreams streams;
    const auto prompt = promptAtTerminal();
    std::vector<std::string> args(argv + (argc > 0 ? 1 : 0), argv + argc);
    return pellum::runMain(std::move(args), streams.in, streams.out, streams.err,
                           {prompt.get(), pellum::lookOfStandardError()});
}
