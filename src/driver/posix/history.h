// The inputs of earlier sessions at the prompt, in a file of the user's own. Several prompts may
// use it at once: each adds its inputs to what the others have written. The file has a line for
// each input, in which "\n" stands for a newline and "\\" for a backslash.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pellum {

class History {
public:
    // So many inputs, the latest, are kept from one session to the next, and together so many
    // bytes; a longer input is not kept at all.
    static constexpr std::size_t maxEntries = 1'000;
    static constexpr std::size_t maxBytes = std::size_t{1} << 20;
    static constexpr std::size_t maxEntryBytes = std::size_t{16} << 10;

    // The file "history" in `folder`, which is made when it is needed, for this user alone. An
    // empty name, and whatever goes wrong later, means that nothing is kept.
    explicit History(std::string folder) : folder_(std::move(folder)) {}

    // All inputs, oldest first. Cuts the file down if it has grown too large.
    std::vector<std::string> load() const;

    // Adds an input, unless it repeats the one that was added last.
    void add(std::string_view input);

private:
    std::string folder_;
    std::string last_;
};

// Where the environment says that programs keep such things: below XDG_STATE_HOME, or else
// ~/.local/state. Empty where it says nothing.
std::string stateFolder();

}  // namespace pellum
