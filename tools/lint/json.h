// Texts as JSON has them.
#pragma once

#include <string>
#include <string_view>

namespace pellum::lint {

// `text` as a string of JSON, in quotes. JSON knows characters and no bytes: UTF-8 stays as it is,
// and each byte that belongs to no character of UTF-8 becomes U+FFFD.
void appendJson(std::string& out, std::string_view text);

}  // namespace pellum::lint
