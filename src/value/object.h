// The base of everything that lives on the heap and is shared between values: an intrusive,
// non-atomic reference count (one program runs on one thread) and the smart pointer `Ref` that
// keeps it. Releasing never recurses: an object whose count reaches zero joins a list of dead
// objects that one loop empties, so a linked list of a million maps is dropped in constant stack.
#pragma once

#include "value/pool.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace pellum {

class Object {
public:
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    static void* operator new(std::size_t size) { return allocateCell(size); }
    static void operator delete(void* memory, std::size_t size) noexcept {
        releaseCell(memory, size);
    }

    void retain() noexcept { ++references_; }
    void release() noexcept {
        if (--references_ == 0) reclaim();
    }

    // True when the caller holds the only reference, so that a change is seen by nobody else.
    bool isUnshared() const noexcept { return references_ == 1; }

    // A mark that a walk over containers may leave to recognise a container it is already inside.
    // REQUIRES: the walk keeps the object alive and removes the mark before it ends.
    void mark() noexcept { references_ += markBit; }
    void unmark() noexcept { references_ -= markBit; }
    bool isMarked() const noexcept { return references_ >= markBit; }

protected:
    Object() = default;
    virtual ~Object() = default;

private:
    static constexpr std::uint64_t markBit = std::uint64_t{1} << 62;

    // Deletes this object and whatever dies with it.
    void reclaim() noexcept;

    union {
        std::uint64_t references_ = 0;
        Object* nextDead_;  // in place of the count once it has reached zero
    };
};

// A counted pointer to an Object of type T, or null.
template <typename T>
class Ref {
public:
    Ref() noexcept = default;
    Ref(std::nullptr_t) noexcept {}
    explicit Ref(T* object) noexcept : object_(object) {
        if (object_) object_->retain();
    }
    Ref(const Ref& other) noexcept : Ref(other.object_) {}
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    template <typename U>
    requires std::is_convertible_v<U*, T*> Ref(Ref<U> other)
    noexcept : object_(other.leak()) {}
    Ref& operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Ref() {
        if (object_) object_->release();
    }

    T* get() const noexcept { return object_; }
    T& operator*() const noexcept { return *object_; }
    T* operator->() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }
    friend bool operator==(const Ref& a, const Ref& b) noexcept { return a.object_ == b.object_; }

    // Gives up the pointer together with the reference it stands for.
    T* leak() noexcept { return std::exchange(object_, nullptr); }

private:
    T* object_ = nullptr;
};

template <typename T, typename... Args>
Ref<T> makeRef(Args&&... args) {
    return Ref<T>(new T(std::forward<Args>(args)...));
}

}  // namespace pellum
