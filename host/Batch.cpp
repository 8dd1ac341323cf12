#include "host/Batch.h"

#include "host/Interruption.h"
#include "tools/common/Progress.h"

#include <exception>

namespace kivhost {

BatchResult RunBatch(const std::vector<std::string>& files, const Interruption& interruption,
                     const std::function<void(const std::string& file, tools::Progress&)>& work)
{
    BatchResult result;
    tools::Progress progress("kivhost", "files", files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (interruption.IsAskedFor()) {
            result.notReached = files.size() - i;
            break;
        }
        try {
            work(files[i], progress);
        } catch (const std::exception& error) {
            ++result.failed;
            progress.Tell(std::string("kivhost: ") + error.what());
        }
        progress.Step();
    }
    return result;
}

}  // namespace kivhost
