// Process-wide objects that live to the end: a host may leave without the last terminate, and the
// destructors of its own static objects may still come here.

#pragma once

namespace kivcore {

/// Holds a T and never destroys it. For static objects; constant-initialized where T can be.
template <class T>
class NeverDestroyed {
public:
    constexpr NeverDestroyed() : object() {}
    NeverDestroyed(const NeverDestroyed&) = delete;
    NeverDestroyed& operator=(const NeverDestroyed&) = delete;
    // Leaves the object as it is, on purpose.
    constexpr ~NeverDestroyed() {}

    T& operator*() noexcept { return object; }
    T* operator->() noexcept { return &object; }

private:
    union {
        T object;
    };
};

}  // namespace kivcore
