// libFuzzer's way to a target. PELLUM_FUZZ_TARGET is the name of one of them.
#include "fuzz/mutator.h"
#include "fuzz/targets.h"

#include <algorithm>
#include <cstring>

using namespace pellum;

namespace {

constexpr const fuzz::Target& target() {
    for (const fuzz::Target& candidate : fuzz::targets) {
        if (std::string_view(candidate.name) == PELLUM_FUZZ_TARGET) return candidate;
    }
    throw "no such target";
}

}  // namespace

extern "C" {

int LLVMFuzzerTestOneInput(const std::uint8_t*, std::size_t);
std::size_t LLVMFuzzerMutate(std::uint8_t*, std::size_t, std::size_t);
std::size_t LLVMFuzzerCustomMutator(std::uint8_t*, std::size_t, std::size_t, unsigned);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    target().run({data, size});
    return 0;
}

// Half of the time by tokens, where the input is code.
std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t limit,
                                    unsigned seed) {
    if (!target().takesCode || seed % 2 == 0) return LLVMFuzzerMutate(data, size, limit);
    const std::string text = fuzz::mutatedCode(fuzz::textOf({data, size}), limit, seed / 2);
    std::memcpy(data, text.data(), text.size());
    return text.size();
}

}  // extern "C"
