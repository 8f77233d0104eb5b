// The benchmark mode: times one program on both engines.
#pragma once

#include "driver/run_main.h"
#include "driver/session.h"

namespace pellum {

ExitStatus runBench(const std::string& path, Session& session);

}  // namespace pellum
