// Valid random programs, for running on both engines and comparing. They use every statement,
// operator and builtin; every variable keeps one type, so most programs run for a while; a supply
// of fuel bounds their calls and iterations, so all of them end.
#pragma once

#include "agreement/program.h"

#include <cstdint>
#include <span>

namespace pellum::test {

// What a program may do. Most stay clear of what docs/engines.md lists, so that both engines must
// say the same. Every fourth goes there too: it leaves `try`s by `break`, keeps and changes the
// variables of loops, declares names again; about it only the machine's two codes must agree.
enum class Ground { BothEngines, MachineAlone };
Ground groundOf(std::uint64_t seed);

// The same program for the same seed, as long as the same compiler has built the generator.
Block generateProgram(std::uint64_t seed);

// A smaller program that bytes decide about, for fuzzers. It goes where the engines differ.
Block generateProgram(std::span<const std::uint8_t> choices);

}  // namespace pellum::test
