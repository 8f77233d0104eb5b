// The rules about names: which are used, hidden, declared again, taken from the library, or stand
// for nothing.
#pragma once

#include "lint/finding.h"
#include "lint/names.h"

namespace pellum::lint {

void checkNames(const Names& names, const Places& places, Findings& findings);

}  // namespace pellum::lint
