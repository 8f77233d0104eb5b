// What the structure tests read in the project's own C++ sources.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

struct CppLiteral {
    std::string text;      // decoded; neighbouring literals are one
    std::size_t line = 0;  // where it begins, from 1
};

// The string literals of a source, apart from those in comments and in #include lines.
std::vector<CppLiteral> stringLiterals(std::string_view source);

struct CppInclude {
    std::string path;  // as written, for the form with quotes only
    std::size_t line = 0;
};

std::vector<CppInclude> quotedIncludes(std::string_view source);

}  // namespace pellum::test
