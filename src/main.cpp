#include "driver/process.h"
#include "driver/run_main.h"

int main(int argc, char** argv) {
    pellum::prepareProcess();
    // Too large for a small stack.
    static pellum::StandardStreams streams;
    std::vector<std::string> args(argv + (argc > 0 ? 1 : 0), argv + argc);
    return pellum::runMain(std::move(args), streams.in, streams.out, streams.err);
}
