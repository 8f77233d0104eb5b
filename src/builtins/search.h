// Finding text in text, for the builtins that search strings. The time is proportional to the
// lengths of both texts, however much alike their parts are.
#pragma once

#include <cstddef>
#include <string_view>

namespace pellum {

// Searches for one needle, in as many texts as wanted. REQUIRES: the needle outlives the searcher.
class TextSearcher {
public:
    static constexpr std::size_t npos = std::string_view::npos;

    explicit TextSearcher(std::string_view needle) noexcept : needle_(needle) {}

    // Where the needle first occurs in `text` at or after `from`, or npos. An empty needle occurs
    // everywhere. REQUIRES: from <= text.size().
    std::size_t find(std::string_view text, std::size_t from = 0) noexcept;

private:
    void factorize() noexcept;
    std::size_t findTwoWay(std::string_view text, std::size_t from) noexcept;

    std::string_view needle_;
    // Of the two-way search, once it has been needed: where the needle is cut in two, and how far
    // it moves when its right part matches and its left part does not.
    std::size_t cut_ = 0;
    std::size_t period_ = 0;
};

}  // namespace pellum
