#include "agreement/scope.h"

#include <algorithm>
#include <set>
#include <string_view>

namespace pellum::test {

void Scope::openFunction(Lifetime lifetime) {
    const std::size_t first = blocks_.size();
    functions_.push_back(
        {first, lifetime == Lifetime::Stored ? first : functions_.back().firstLoopBlock});
    openBlock();
}

void Scope::closeFunction() {
    closeBlock();
    functions_.pop_back();
}

std::optional<Variable> Scope::pick(Random& random, const Condition& condition) const {
    std::vector<const Variable*> choices;
    std::set<std::string_view> seen;
    for (std::size_t block = blocks_.size(); block-- > 0;) {
        for (std::size_t i = blocks_[block].size(); i-- > 0;) {
            const Variable& variable = blocks_[block][i];
            if (!seen.insert(variable.name).second) continue;  // hidden by an inner one
            const bool isLost = variable.isLoopVariable && block < functions_.back().firstLoopBlock;
            if (isLost && rules_ == Rules::Agreeing) continue;
            if (condition(variable)) choices.push_back(&variable);
        }
    }
    if (choices.empty()) return std::nullopt;
    // The nearest come first, and are preferred: most of what goes on should concern locals.
    const int count = static_cast<int>(choices.size());
    const int at = random.below(count);
    return *choices[static_cast<std::size_t>(random.chance(50) ? std::min(at, random.below(count))
                                                               : at)];
}

std::optional<Variable> Scope::pick(Random& random, Type type) const {
    return pick(random, [=](const Variable& variable) { return variable.type == type; });
}

std::optional<Variable> Scope::pickAssignable(Random& random, const Condition& condition) const {
    const auto isOwn = [this](const Variable& wanted) {
        for (std::size_t block = functions_.back().firstBlock; block < blocks_.size(); ++block) {
            for (const Variable& variable : blocks_[block]) {
                if (&variable == &wanted) return true;
            }
        }
        return false;
    };
    return pick(random, [&](const Variable& variable) {
        const bool isFree = rules_ == Rules::None || variable.isShared || isOwn(variable);
        return variable.isAssignable && isFree && condition(variable);
    });
}

}  // namespace pellum::test
