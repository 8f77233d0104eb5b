#include "builtins/search.h"

#include "value/limits.h"

#include <algorithm>

namespace pellum {

namespace {

// A suffix of the needle and the period of that suffix.
struct Suffix {
    std::size_t start;
    std::size_t period;
};

// The suffix that comes last in the order of bytes, or in the reverse order.
Suffix maximalSuffix(std::string_view text, bool isReversed) noexcept {
    std::size_t best = 0;
    std::size_t candidate = 1;
    std::size_t alike = 0;  // bytes known to be equal behind both
    std::size_t period = 1;
    while (candidate + alike < text.size()) {
        const char ofBest = text[best + alike];
        const char ofCandidate = text[candidate + alike];
        if (ofCandidate == ofBest) {
            if (++alike == period) {
                candidate += period;
                alike = 0;
            }
        } else if ((ofCandidate < ofBest) != isReversed) {
            candidate += alike + 1;
            alike = 0;
            period = candidate - best;
        } else {
            best = candidate++;
            alike = 0;
            period = 1;
        }
    }
    return {best, period};
}

}  // namespace

std::size_t TextSearcher::find(std::string_view text, std::size_t from) noexcept {
    if (needle_.size() < 2) {
        return needle_.empty() ? from : text.find(needle_.front(), from);
    }
    // Looking for the first byte and comparing from there is fastest on ordinary text. Once the
    // comparisons cost more than the ground they win, the two-way search takes over, whose time is
    // linear at worst.
    constexpr std::size_t patience = limit(256, 2);
    std::size_t compared = 0;
    std::size_t at = from;
    while (text.size() - at >= needle_.size()) {
        const std::string_view starts = text.substr(at, text.size() - at - needle_.size() + 1);
        const std::size_t next = starts.find(needle_.front());
        if (next == npos) return npos;
        at += next;
        const auto differs = std::mismatch(needle_.begin(), needle_.end(), text.begin() + at).first;
        if (differs == needle_.end()) return at;
        compared += static_cast<std::size_t>(differs - needle_.begin());
        ++at;
        if (compared > 4 * (at - from) + patience) return findTwoWay(text, at);
    }
    return npos;
}

// The needle is cut where its maximal suffix starts, under that order of bytes which cuts later.
// Then a mismatch in the right part moves the needle past the byte that differs, and a mismatch in
// the left part moves it by the period of the whole, or what is certainly not more than that.
void TextSearcher::factorize() noexcept {
    const Suffix forward = maximalSuffix(needle_, false);
    const Suffix backward = maximalSuffix(needle_, true);
    const Suffix chosen = forward.start > backward.start ? forward : backward;
    cut_ = chosen.start;
    const bool isPeriodic =
        needle_.substr(chosen.period).starts_with(needle_.substr(0, chosen.start));
    period_ = isPeriodic ? chosen.period : std::max(cut_, needle_.size() - cut_) + 1;
}

std::size_t TextSearcher::findTwoWay(std::string_view text, std::size_t from) noexcept {
    if (period_ == 0) factorize();
    std::size_t at = from;
    while (text.size() - at >= needle_.size()) {
        std::size_t right = cut_;
        while (right < needle_.size() && needle_[right] == text[at + right]) ++right;
        if (right < needle_.size()) {
            at += right - cut_ + 1;
            continue;
        }
        std::size_t left = cut_;
        while (left > 0 && needle_[left - 1] == text[at + left - 1]) --left;
        if (left == 0) return at;
        at += period_;
    }
    return npos;
}

}  // namespace pellum
