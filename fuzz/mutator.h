// Changes source text by tokens and lines, so that more of what a fuzzer tries gets past the parser
// than when bytes change alone.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace pellum::fuzz {

// A text that is no longer than `limit`, made from `source` with the dice of `seed`.
std::string mutatedCode(std::string_view source, std::size_t limit, std::uint32_t seed);

}  // namespace pellum::fuzz
