#include "compiler/function_state.h"

#include <algorithm>

namespace pellum {

void FunctionState::endScope(const Node& node) {
    --depth_;
    while (!locals_.empty() && locals_.back().depth > depth_) {
        emitRemoval(locals_.back(), node);
        locals_.pop_back();
    }
}

void FunctionState::emitLeaveScopes(std::int32_t depth, const Node& node) {
    for (auto local = locals_.rbegin(); local != locals_.rend() && local->depth > depth; ++local) {
        emitRemoval(*local, node);
    }
}

void FunctionState::emitRemoval(const Local& local, const Node& node) {
    code.emit(local.isCaptured ? OpCode::CLOSE_UPVALUE : OpCode::POP, node);
}

std::size_t FunctionState::declareLocal(const Symbol& name) {
    locals_.push_back({name, depth_});
    return locals_.size() - 1;
}

std::optional<std::size_t> FunctionState::resolveLocal(const Symbol& name) const noexcept {
    for (std::size_t slot = locals_.size(); slot-- > 0;) {
        if (locals_[slot].name == name) return slot;
    }
    return std::nullopt;
}

std::optional<std::size_t> FunctionState::resolveUpvalue(const Symbol& name) {
    if (!enclosing_) return std::nullopt;
    if (const auto slot = enclosing_->resolveLocal(name)) {
        enclosing_->locals_[*slot].isCaptured = true;
        return addUpvalue({true, static_cast<std::int32_t>(*slot)});
    }
    if (const auto upvalue = enclosing_->resolveUpvalue(name)) {
        return addUpvalue({false, static_cast<std::int32_t>(*upvalue)});
    }
    return std::nullopt;
}

std::size_t FunctionState::addUpvalue(UpvalueDescriptor descriptor) {
    auto& upvalues = proto->upvalues;
    const auto found = std::ranges::find(upvalues, descriptor);
    if (found != upvalues.end()) return static_cast<std::size_t>(found - upvalues.begin());
    upvalues.push_back(descriptor);
    return upvalues.size() - 1;
}

}  // namespace pellum
