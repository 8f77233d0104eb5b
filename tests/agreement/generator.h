// Valid random programs, for running on both engines and comparing. They use every statement and
// operator and many builtins; every variable keeps one type, so most programs run for a while; a
// supply of fuel bounds their calls and iterations, so all of them end; and they stay clear of what
// docs/engines.md lists, so that both engines must say the same.
#pragma once

#include "agreement/program.h"

#include <cstdint>

namespace pellum::test {

// The same program for the same seed, as long as the same compiler has built the generator.
Block generateProgram(std::uint64_t seed);

}  // namespace pellum::test
