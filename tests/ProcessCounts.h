// What a process holds: for tests that nothing grows over many rounds.

#pragma once

#include <cstddef>
#include <string>

namespace kivtests {

/// Open files, or handles.
std::size_t OpenHandles();

/// Bytes in use on the heap.
std::size_t HeapInUse();
/// By so much it may grow in the second half of many rounds.
inline constexpr std::size_t kAllowedGrowthBytes = std::size_t{256} * 1024;

/// True if a shared library is loaded whose file name, behind the system's prefix, begins with
/// `name` (ASCII).
bool IsLibraryLoaded(const std::string& name);

/// In a sanitizer build: what is allocated from here on is not counted as a leak.
void AllowLeaksFromHere();
/// Ends that again.
void CountLeaksAgain();
/// In a sanitizer build: keeps the loaded libraries that are not ours until the process ends. There
/// some kilobytes stay behind with each load of Exiv2, and in no other build.
void KeepForeignLibraries();

}  // namespace kivtests
