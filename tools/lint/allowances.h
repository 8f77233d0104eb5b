// Comments that silence the linter:
//
//   let unused = 1  # lint: allow unused-name
//   # lint: allow unused-name, shadowed-name: and here may stand why
//   let unused = 2
//
// A comment behind code speaks of its line, one that stands alone of the next line with code.
#pragma once

#include "common/comments.h"
#include "lint/finding.h"

namespace pellum::lint {

// Takes away what the comments of a source allow, and adds what is wrong with the comments.
// The findings are in no order before and afterwards.
void applyAllowances(const tools::LexedSource& source, Findings& findings);

}  // namespace pellum::lint
