#include <kivcore/RefCounted.h>

#include <kivcore/Trace.h>

namespace kivcore::utility {

// Defined here so that each virtual table exists once, in this library.
RefCountedInterface::~RefCountedInterface() = default;
RefCountedObject::~RefCountedObject() = default;

void RefCountedObject::AddReference() const noexcept
{
    count_.fetch_add(1, std::memory_order_relaxed);
}

void RefCountedObject::Release() const noexcept
{
    // Whoever destroys the object must see what the other holders did to it.
    const long before = count_.fetch_sub(1, std::memory_order_acq_rel);
    KIV_ASSERT(before > 0);
    if (before == 1) {
        delete this;
    }
}

}  // namespace kivcore::utility
