#include "value/object.h"

namespace pellum {

namespace {

thread_local Object* deadObjects = nullptr;
thread_local bool isReclaiming = false;

}  // namespace

void Object::reclaim() noexcept {
    nextDead_ = deadObjects;
    deadObjects = this;
    if (isReclaiming) return;  // the loop below is already running further up the stack

    isReclaiming = true;
    while (deadObjects) {
        Object* object = deadObjects;
        deadObjects = object->nextDead_;
        delete object;
    }
    isReclaiming = false;
}

}  // namespace pellum
