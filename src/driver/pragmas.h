// The header of a source file: "#pragma" lines before the first line of code. To the language they
// are comments; the driver warns about those it does not know and refuses a file that requires a
// newer version.
#pragma once

#include "driver/session.h"

#include <string>
#include <string_view>
#include <vector>

namespace pellum {

struct Pragma {
    std::string name;
    std::string value;
    std::int32_t line;  // of the file, from 1
};

struct PragmaInfo {
    std::string requiredVersion;  // of the last version pragma; empty for none
    std::vector<Pragma> pragmas;  // all, in order
    std::vector<Pragma> unknown;  // those that are not the version
};

// Whether a comment, from its "#" on, has the form of a pragma.
bool isPragma(std::string_view comment) noexcept;

PragmaInfo scanPragmas(std::string_view source);

// Prints the warnings and, where it comes to that, the refusal. True means: run the file.
bool checkPragmas(const PragmaInfo& info, std::string_view fileName, Session& session);

// Compares versions component by component, as many as `required` has; a component counts as the
// integer it begins with, or 0, and is cut at the greatest that 32 bits hold.
bool versionAtLeast(std::string_view current, std::string_view required) noexcept;

}  // namespace pellum
