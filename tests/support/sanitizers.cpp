#include "support/sanitizers.h"

#include <stdlib.h>

// Called by the sanitizer, if there is one, before `main`.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() { return "detect_leaks=0"; }

namespace pellum::test {

void allowCycles() { setenv("ASAN_OPTIONS", __asan_default_options(), 0); }

}  // namespace pellum::test
