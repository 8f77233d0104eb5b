// Small verbs on texts that all runners need: taking lines apart, making bytes visible, and telling
// where two texts part.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

// The lines of `text` without their newlines. A text after the last newline is a line too, unless
// it is empty: "a\nb" and "a\nb\n" both have two lines.
std::vector<std::string> splitLines(std::string_view text);

// As splitLines, but each line keeps its newline, so that the pieces spell the whole text.
std::vector<std::string> splitKeepingNewlines(std::string_view text);

// `text` in quotes with every byte outside printable ASCII as an escape.
std::string visible(std::string_view text);

// The bytes that `text` stands for: \n, \r, \t, \0, \\, \", \' and \xHH. Throws std::runtime_error
// for any other escape.
std::string unescape(std::string_view text);

std::string_view trim(std::string_view text);

// The first line in which the texts differ, as a message of a few lines that begins with `what`;
// none where they are equal.
std::optional<std::string> firstDifference(std::string_view what, std::string_view wanted,
                                           std::string_view given);

}  // namespace pellum::test
