// Switches a trace channel on and keeps its messages, for as long as the object lives.

#pragma once

#include <kivcore/Trace.h>

#include <string>
#include <string_view>
#include <vector>

namespace SVGLoom::testing_support {

class TraceListener {
public:
    TraceListener(const char* channel, int level) : channel_(channel)
    {
        sink_ = kivcore::debug::AddTraceSink(
            [this](int messageLevel, const char* messageChannel, std::string_view text) {
                if (std::string_view(messageChannel) == channel_) {
                    messages.push_back(std::to_string(messageLevel) + " " + std::string(text));
                }
            });
        kivcore::debug::SetTraceLevel(channel, level);
    }
    ~TraceListener()
    {
        kivcore::debug::SetTraceLevel(channel_, -1);
        kivcore::debug::RemoveTraceSink(sink_);
    }
    TraceListener(const TraceListener&) = delete;
    TraceListener& operator=(const TraceListener&) = delete;

    std::vector<std::string> messages;  // "level text"

private:
    const char* channel_;
    int sink_ = 0;
};

}  // namespace SVGLoom::testing_support
