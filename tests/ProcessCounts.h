// What a process holds: for tests that nothing grows over many rounds.

#pragma once

#include <cstddef>
#include <string>

namespace kivtests {

/// Open files, or handles.
std::size_t OpenHandles();

/// Bytes in use on the heap.
std::size_t HeapInUse();

/// True if a module whose path contains `part` is loaded.
bool IsModuleLoaded(const std::string& part);

/// In a sanitizer build: what is allocated from here on is not counted as a leak.
void AllowLeaksFromHere();
/// Ends that again.
void CountLeaksAgain();

}  // namespace kivtests
