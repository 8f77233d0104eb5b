#include "interp/environment.h"

#include "value/limits.h"

namespace pellum {

namespace {

// Up to here comparing the few names one by one beats hashing.
constexpr std::size_t maxUnindexed = limit(8, 1);

}  // namespace

Value* Environment::findHere(const StringObj* name) noexcept {
    if (!index_.empty()) {
        const auto found = index_.find(name);
        return found == index_.end() ? nullptr : &bindings_[found->second].value;
    }
    for (Binding& binding : bindings_) {
        if (binding.name == name) return &binding.value;
    }
    return nullptr;
}

void Environment::define(const Symbol& name, Value value) {
    const StringObj* key = name.string().get();
    if (Value* existing = findHere(key)) {
        *existing = std::move(value);
        return;
    }
    bindings_.push_back({key, std::move(value)});
    if (bindings_.size() <= maxUnindexed) return;
    try {
        indexLast();
    } catch (...) {
        bindings_.pop_back();
        throw;
    }
}

void Environment::indexLast() {
    if (!index_.empty()) {
        index_.emplace(bindings_.back().name, bindings_.size() - 1);
        return;
    }
    std::unordered_map<const StringObj*, std::size_t> index;
    for (std::size_t position = 0; position < bindings_.size(); ++position) {
        index.emplace(bindings_[position].name, position);
    }
    index_ = std::move(index);
}

Value* Environment::lookup(const Symbol& name) noexcept {
    const StringObj* key = name.string().get();
    for (Environment* scope = this; scope; scope = scope->parent_.get()) {
        if (Value* found = scope->findHere(key)) return found;
    }
    return nullptr;
}

void Environment::clear() noexcept {
    // The values die after the bindings are gone, in case their end reaches this scope again.
    const std::vector<Binding> dying = std::exchange(bindings_, {});
    index_.clear();
}

}  // namespace pellum
