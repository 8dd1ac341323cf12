// The same work on many files, one after the other.

#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace tools {
class Progress;
}

namespace kivhost {

class Interruption;

/// What became of the files.
struct BatchResult {
    std::size_t failed = 0;
    std::size_t notReached = 0;  ///< above 0: it was interrupted
};

/// Calls `work` with each file, tells on standard error how far it is, and why a file failed: the
/// text of what `work` threw, which names the file. The others are done nevertheless. Stops between
/// two files when it is asked to.
BatchResult RunBatch(const std::vector<std::string>& files, const Interruption& interruption,
                     const std::function<void(const std::string& file, tools::Progress&)>& work);

}  // namespace kivhost
