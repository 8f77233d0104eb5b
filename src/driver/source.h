// Reading and running one source text.
#pragma once

#include "driver/run_main.h"
#include "driver/session.h"
#include "value/limits.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

namespace pellum {

// The engine that runs files and snippets.
enum class Engine { VirtualMachine, TreeWalker };

// A source text has at most this many bytes, so that what is made of it fits into memory.
inline constexpr std::size_t maxSourceLength = limit(1 << 26, 20'000);

// The bytes of a file, or none when it cannot be opened and read to its end. Stops reading behind
// maxSourceLength bytes, so that a longer result means that the file is too long.
std::optional<std::string> readSourceFile(const std::string& path);
std::optional<std::string> readSourceText(std::istream& stream);

// Reads a file; when that fails, or the file is too long, says so and yields none.
std::optional<std::string> readOrComplain(const std::string& path, Session& session);
// The second half of it, for what has been read already.
std::optional<std::string> acceptOrComplain(std::optional<std::string> text,
                                            const std::string& path, Session& session);

// Drives a source text through the whole pipeline and reports what it raises. `name` is the path as
// typed, or "<-c>".
ExitStatus runSource(std::string_view source, std::string_view name, Engine engine,
                     Session& session);

}  // namespace pellum
