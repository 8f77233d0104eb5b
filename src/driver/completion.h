// What Tab offers at the prompt: keywords and globals, builtins among them, and behind a dot the
// keys of the map that stands before it. Nothing of the program runs for that.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pellum {

class Environment;

struct Completion {
    std::size_t wordLength = 0;           // bytes before the cursor that the candidates begin with
    std::vector<std::string> candidates;  // whole words, sorted, each once

    // What all candidates have in common behind the word.
    std::string_view commonRest() const;
};

// For a cursor behind `before`, which is what the input has up to there.
Completion completionOf(std::string_view before, const Environment& globals);

}  // namespace pellum
