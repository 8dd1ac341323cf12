// A lock for process-wide objects: there from the beginning, never destroyed. It has the calls that
// std::lock_guard needs.

#pragma once

#ifdef _WIN32

namespace kivcore {

/// std::mutex is made and destroyed at run time by some C++ libraries for Windows.
class StaticMutex {
public:
    void lock() noexcept;    // NOLINT(readability-identifier-naming): the standard's names
    void unlock() noexcept;  // NOLINT(readability-identifier-naming)

private:
    void* state_ = nullptr;  // a slim lock of the system's
};

}  // namespace kivcore

#else

#include <mutex>

namespace kivcore {

using StaticMutex = std::mutex;

}  // namespace kivcore

#endif
