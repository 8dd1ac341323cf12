// Intrusive reference counts for objects that cross library borders.

#pragma once

#include <atomic>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <kivcore/Export.h>

namespace kivcore::utility {

/// What can be held by reference. The order of the operations is fixed.
class KIVCORE_API RefCountedInterface {
public:
    virtual ~RefCountedInterface();
    /// Adds one reference. May be called from any thread.
    virtual void AddReference() const noexcept = 0;
    /// Drops one reference; the last one destroys the object.
    virtual void Release() const noexcept = 0;
};

/// Counts references, beginning with none: the first holder adds the first one.
class KIVCORE_API RefCountedObject : public virtual RefCountedInterface {
public:
    RefCountedObject() = default;
    RefCountedObject(const RefCountedObject&) = delete;
    RefCountedObject& operator=(const RefCountedObject&) = delete;
    ~RefCountedObject() override;

    void AddReference() const noexcept override;
    void Release() const noexcept override;

    /// The references held now; for tests.
    long ReferenceCount() const noexcept { return count_.load(std::memory_order_relaxed); }

private:
    mutable std::atomic<long> count_{0};
};

inline void intrusive_ptr_add_ref(const RefCountedInterface* object) noexcept
{
    object->AddReference();
}

inline void intrusive_ptr_release(const RefCountedInterface* object) noexcept
{
    object->Release();
}

}  // namespace kivcore::utility
