// Keeps what is traced on "kivmetadata" while it lives.

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <kivcore/Trace.h>

namespace kivmetadata {

class TraceLog {
public:
    TraceLog()
    {
        kivcore::debug::SetTraceLevel("kivmetadata", 0);
        sink_ =
            kivcore::debug::AddTraceSink([this](int, const char* channel, std::string_view text) {
                if (std::string_view(channel) == "kivmetadata") {
                    lines_.emplace_back(text);
                }
            });
    }
    TraceLog(const TraceLog&) = delete;
    TraceLog& operator=(const TraceLog&) = delete;
    ~TraceLog()
    {
        kivcore::debug::RemoveTraceSink(sink_);
        kivcore::debug::SetTraceLevel("kivmetadata", -1);
    }

    const std::vector<std::string>& Lines() const { return lines_; }

private:
    int sink_ = 0;
    std::vector<std::string> lines_;
};

}  // namespace kivmetadata
