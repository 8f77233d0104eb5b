// The rules about what code does: operations that always fail or always give the same, conditions
// that decide nothing, statements that are never reached or have no effect.
#pragma once

#include "lint/finding.h"
#include "lint/names.h"
#include "lint/places.h"

#include <span>
#include <string_view>

namespace pellum::lint {

// Throws ParseError for nesting that is too deep.
void checkCode(const Block& program, const Names& names, const Places& places, Findings& findings);

// The builtins whose calls do nothing but give a value, apart from conversions, which are called
// for their errors too.
std::span<const std::string_view> builtinsWithoutEffects() noexcept;

}  // namespace pellum::lint
