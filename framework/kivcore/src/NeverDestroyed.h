// Process-wide objects that live to the end: a host may leave without the last terminate, and the
// destructors of its own static objects may still come here.

#pragma once

#include <new>

namespace kivcore {

/// Holds a T in its own storage and never destroys it. For static objects.
template <class T>
class NeverDestroyed {
public:
    NeverDestroyed() : object_(::new (static_cast<void*>(storage_)) T()) {}
    NeverDestroyed(const NeverDestroyed&) = delete;
    NeverDestroyed& operator=(const NeverDestroyed&) = delete;

    T& operator*() const noexcept { return *object_; }

private:
    alignas(T) unsigned char storage_[sizeof(T)];
    T* object_;
};

}  // namespace kivcore
