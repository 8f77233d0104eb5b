// Replacing what a file holds, all at once.
#pragma once

#include <string>
#include <string_view>

namespace pellum::tools {

// Puts `contents` into the file at `path`, or into the one that a symbolic link there leads to,
// such that whoever looks sees the old or the new contents, whatever happens meanwhile: a new file
// is written beside it and takes its name. Permissions stay, and so does the owner where the system
// allows it. Throws std::system_error when it cannot be done; then nothing has changed.
void replaceFile(const std::string& path, std::string_view contents);

}  // namespace pellum::tools
