// What the embedding interface costs: script/embed --costs BUILD
#include <pellum/pellum.hpp>

#include <cstdio>
#include <ctime>
#include <string>

namespace {

// The CPU time of one of `count`, the least of several rounds.
template <typename Work>
double nanoseconds(int count, const Work& work) {
    double least = 0;
    for (int round = 0; round < 9; ++round) {
        const std::clock_t start = std::clock();
        for (int i = 0; i < count; ++i) work();
        const double taken = static_cast<double>(std::clock() - start) * 1e9 / CLOCKS_PER_SEC;
        if (round == 0 || taken / count < least) least = taken / count;
    }
    return least;
}

void row(const char* what, double time) { std::printf("| %s | %.0f ns |\n", what, time); }

pellum::Value same(pellum::Engine&, const pellum::Values& args) { return args[0]; }

double loopTime(pellum::Options options, const char* body) {
    pellum::Engine engine(std::move(options));
    engine.define("same", same, 1, 1);
    engine.run(std::string("function empty(x) return x end\n"
                           "function loop()\n    for i = 1, 1000000 do ") +
               body + " end\nend");
    const pellum::Value loop = engine.get("loop");
    return nanoseconds(1, [&] { engine.call(loop); }) / 1e6;
}

}  // namespace

int main() {
    pellum::Options limits;
    limits.maxSteps = 1'000'000'000'000;
    limits.maxMemory = 1 << 30;
    pellum::Engine engine;
    engine.run("function empty(x) return x end\nlet list = [1]");
    const pellum::Value function = engine.get("empty");
    const pellum::Value list = engine.get("list");

    std::printf("| what | time |\n|---|---:|\n");
    row("an engine, made and ended", nanoseconds(200, [] { pellum::Engine other; }));
    row("`engine.run(\"return 1\")`", nanoseconds(5'000, [&] { engine.run("return 1"); }));
    row("`engine.call(function, {1})`", nanoseconds(50'000, [&] { engine.call(function, {1}); }));
    row("a call of a function of the host", loopTime({}, "same(i)"));
    row("`engine.get(\"list\")`", nanoseconds(50'000, [&] { engine.get("list"); }));
    row("`list.get(0)`", nanoseconds(50'000, [&] { list.get(0); }));
    std::printf("\nA round of a loop, %.2f ns, with limits %.2f ns; ", loopTime({}, ""),
                loopTime(limits, ""));
    std::printf("with a call in it, %.2f ns, with limits %.2f ns; ", loopTime({}, "empty(i)"),
                loopTime(limits, "empty(i)"));
    std::printf("with a list in it, %.2f ns, with limits %.2f ns.\n", loopTime({}, "empty([i])"),
                loopTime(limits, "empty([i])"));
}
