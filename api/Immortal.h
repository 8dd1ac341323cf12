// Holds a process-wide object that no static destructor ends: a host that leaves without the last
// MetadataAPITerminate must not run into destruction order.

#pragma once

namespace kivmetadataapi {

template <class T>
class Immortal {
public:
    constexpr Immortal() : value_() {}
    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;
    // Leaves the object as it is, on purpose.
    constexpr ~Immortal() {}

    T& Get() noexcept { return value_; }

private:
    union {
        T value_;
    };
};

}  // namespace kivmetadataapi
