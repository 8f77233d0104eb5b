// The global variables of a machine. Each name has one cell that never moves, so that code may
// point at it; a name that code mentions has a cell even before it is defined.
#pragma once

#include "value/string.h"
#include "value/value.h"

#include <deque>
#include <unordered_map>
#include <vector>

namespace pellum {

struct GlobalCell {
    Value value;
    bool isDefined = false;
    Ref<StringObj> name;
};

class Globals {
public:
    // REQUIRES: the name is interned.
    GlobalCell& cell(const StringObj& name) {
        GlobalCell*& cell = byName_[&name];
        if (!cell) {
            cell = &cells_.emplace_back();
            cell->name = Ref<StringObj>(const_cast<StringObj*>(&name));
        }
        return *cell;
    }

    // The value of a global that is defined, or null.
    const Value* find(const Symbol& name) const {
        const auto found = byName_.find(name.string().get());
        return found != byName_.end() && found->second->isDefined ? &found->second->value : nullptr;
    }

    void define(const Symbol& name, Value value) {
        GlobalCell& defined = cell(*name.string());
        defined.value = std::move(value);
        defined.isDefined = true;
        if (defined.value.kind() == ValueKind::Native) natives_.push_back(defined.value);
    }

private:
    std::deque<GlobalCell> cells_;
    std::unordered_map<const StringObj*, GlobalCell*> byName_;
    Values natives_;  // kept, since one may be forgotten while it runs
};

}  // namespace pellum
