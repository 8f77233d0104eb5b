// Everything in the repository explains the system itself: nothing refers to a document that its
// reader does not have, neither by what such a document is called nor by the number of a section.
#include "support/files.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

namespace pellum::test {

namespace {

bool isWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

// Both words in two pieces, so that this file does not find itself.
const std::string document = std::string("sp") + "ec";
const std::string section = std::string("pa") + "rt";

// REQUIRES: word is in lower case. `rest` is what follows it.
bool isReference(std::string_view word, std::string_view rest) {
    if (word == section) {
        return rest.size() > 1 && rest[0] == ' ' &&
               std::isdigit(static_cast<unsigned char>(rest[1]));
    }
    if (!word.starts_with(document)) return false;
    const std::string_view ending = word.substr(document.size());
    return ending.empty() || ending == "s" || ending == "ification" || ending == "ifications";
}

bool hasReference(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        std::string word;
        for (; at < text.size() && isWordCharacter(text[at]); ++at) {
            word += static_cast<char>(std::tolower(static_cast<unsigned char>(text[at])));
        }
        if (isReference(word, text.substr(at))) return true;
        if (word.empty()) ++at;
    }
    return false;
}

TEST(Structure, NoFileRefersToAnOutsideDocument) {
    for (const auto& file : repositoryFiles()) {
        EXPECT_FALSE(hasReference(file.generic_string())) << file;
        std::size_t number = 0;
        for (const std::string& line : splitLines(readFile(file))) {
            ++number;
            if (!hasReference(line)) continue;
            ADD_FAILURE_AT(file.c_str(), static_cast<int>(number)) << line;
        }
    }
}

}  // namespace

}  // namespace pellum::test
