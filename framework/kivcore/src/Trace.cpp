// The channels and sinks form one state that is never changed once it stands: whoever changes
// something publishes a new one. So a sink may trace, add or remove sinks while it is called.

#include <kivcore/Trace.h>

#include <kivcore/NeverDestroyed.h>

#include <charconv>
#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "framework/kivcore/src/Debugger.h"
#include "framework/kivcore/src/EnvironmentText.h"
#include "framework/kivcore/src/StaticMutex.h"

namespace kivcore::debug {

namespace {

using Levels = std::map<std::string, int, std::less<>>;

constexpr int kOff = -1;
constexpr std::string_view kAllChannels = "*";

// Functions are held by reference, so that a copy of the state runs no code of theirs.
struct State {
    bool environmentRead = false;
    Levels environment;  // what KIV_TRACE named
    Levels levels;       // what is in force: the environment, then SetTraceLevel
    std::map<int, std::shared_ptr<const TraceSink>> sinks;
    int nextSink = 1;
    std::shared_ptr<const AssertHandler> assertHandler;
};

constinit StaticMutex stateMutex;
constinit std::atomic<std::uint32_t> changeCount{1};
thread_local bool isInSink = false;

/// Under the lock only.
std::shared_ptr<const State>& StateSlot()
{
    static NeverDestroyed<std::shared_ptr<const State>> slot;
    if (*slot == nullptr) {
        *slot = std::make_shared<const State>();
    }
    return *slot;
}

std::shared_ptr<const State> CurrentState()
{
    const std::lock_guard lock(stateMutex);
    return StateSlot();
}

void CountChange()
{
    // 0 is what a trace site holds that never asked.
    if (changeCount.fetch_add(1) + 1 == 0) {
        changeCount.fetch_add(1);
    }
}

/// Replaces the state by a copy that `edit` has changed.
template <class Edit>
void ChangeState(const Edit& edit)
{
    std::shared_ptr<const State> old;  // released behind the lock: sinks may do anything
    const std::lock_guard lock(stateMutex);
    auto changed = std::make_shared<State>(*StateSlot());
    edit(*changed);
    old = std::exchange(StateSlot(), std::move(changed));
}

std::string_view Trimmed(std::string_view text)
{
    constexpr std::string_view kSpace = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

/// Reads "channel" or "channel:level" into `levels`; anything else is left out.
void ReadEntry(std::string_view entry, Levels& levels)
{
    int level = 0;
    std::string_view channel = entry;
    const std::size_t colon = entry.rfind(':');
    if (colon != std::string_view::npos) {
        channel = Trimmed(entry.substr(0, colon));
        const std::string_view digits = Trimmed(entry.substr(colon + 1));
        const char* const end = digits.data() + digits.size();
        const auto [stopped, error] = std::from_chars(digits.data(), end, level);
        if (error != std::errc() || stopped != end) {
            return;
        }
    }
    if (!channel.empty()) {
        levels.insert_or_assign(std::string(channel), level < 0 ? kOff : level);
    }
}

Levels ReadLevels(std::string_view text)
{
    Levels levels;
    while (!text.empty()) {
        const std::size_t comma = text.find(',');
        ReadEntry(Trimmed(text.substr(0, comma)), levels);
        text.remove_prefix(comma == std::string_view::npos ? text.size() : comma + 1);
    }
    return levels;
}

/// A channel's own entry counts before that of "*".
int LevelOf(const Levels& levels, std::string_view channel)
{
    auto found = levels.find(channel);
    if (found == levels.end()) {
        found = levels.find(kAllChannels);
    }
    return found != levels.end() ? found->second : kOff;
}

bool IsOn(const Levels& levels, std::string_view channel, int level)
{
    return LevelOf(levels, channel) >= (level < 0 ? 0 : level);
}

std::shared_ptr<const State> StateWithEnvironment()
{
    std::shared_ptr<const State> state = CurrentState();
    if (state->environmentRead) {
        return state;
    }
    const Levels named = ReadLevels(EnvironmentText("KIV_TRACE").value_or(""));
    ChangeState([&named](State& changed) {
        if (!changed.environmentRead) {
            changed.environmentRead = true;
            changed.environment = named;
            changed.levels.insert(named.begin(), named.end());  // what was set by call stands
        }
    });
    if (!named.empty()) {
        CountChange();
    }
    return CurrentState();
}

void WriteToStandardError(int level, const char* channel, std::string_view text)
{
    std::string line = "[";
    line.append(channel).append(" ").append(std::to_string(level)).append("] ").append(text);
    if (!line.ends_with('\n')) {
        line += '\n';
    }
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void Deliver(int level, const char* channel, std::string_view text)
{
    const std::shared_ptr<const State> state = StateWithEnvironment();
    if (!IsOn(state->levels, channel, level)) {
        return;
    }
    if (state->sinks.empty()) {
        // Nobody asked for output unless the environment did: a host's error stream is its own.
        if (IsOn(state->environment, channel, level)) {
            WriteToStandardError(level, channel, text);
        }
        return;
    }
    for (const auto& [number, sink] : state->sinks) {
        try {
            (*sink)(level, channel, text);
        } catch (...) {
            continue;  // the other sinks get the message all the same
        }
    }
}

}  // namespace

bool TraceEnabled(const char* channel, int level, bool readEnvironment)
{
    try {
        const std::shared_ptr<const State> state =
            readEnvironment ? StateWithEnvironment() : CurrentState();
        return channel != nullptr && IsOn(state->levels, channel, level);
    } catch (...) {
        return false;
    }
}

void Trace(int level, const char* channel, std::string_view text) noexcept
{
    // A sink that traces would call itself without end.
    if (channel == nullptr || isInSink) {
        return;
    }
    isInSink = true;
    try {
        Deliver(level, channel, text);
    } catch (...) {
        isInSink = false;
        return;
    }
    isInSink = false;
}

std::uint32_t TraceChangeCount() noexcept
{
    return changeCount.load();
}

void SetTraceLevel(const char* channel, int level)
{
    if (channel == nullptr) {
        return;
    }
    ChangeState([channel, level](State& state) {
        state.levels.insert_or_assign(channel, level < 0 ? kOff : level);
    });
    CountChange();
}

int AddTraceSink(TraceSink sink)
{
    const auto shared = std::make_shared<const TraceSink>(std::move(sink));
    int number = 0;
    ChangeState([&number, &shared](State& state) {
        number = state.nextSink++;
        state.sinks.emplace(number, shared);
    });
    CountChange();
    return number;
}

void RemoveTraceSink(int number)
{
    ChangeState([number](State& state) { state.sinks.erase(number); });
    CountChange();
}

void SetAssertHandler(AssertHandler handler)
{
    std::shared_ptr<const AssertHandler> shared;
    if (handler) {
        shared = std::make_shared<const AssertHandler>(std::move(handler));
    }
    ChangeState([&shared](State& state) { state.assertHandler = shared; });
}

namespace {

/// True if a handler took the failure, false if it was traced.
bool HandOverFailure(const char* file, int line, const char* text)
{
    const std::shared_ptr<const State> state = CurrentState();
    if (state->assertHandler != nullptr) {
        (*state->assertHandler)(file, line, text);
        return true;
    }
    Trace(0, "kivcore",
          std::string(file != nullptr ? file : "") + ":" + std::to_string(line) +
              ": assertion failed: " + (text != nullptr ? text : ""));
    return false;
}

}  // namespace

void AssertionFailed(const char* file, int line, const char* text) noexcept
{
    try {
        if (!HandOverFailure(file, line, text) && IsDebuggerAttached()) {
            StopInDebugger();
        }
    } catch (...) {
        return;
    }
}

bool DoSimpleAssert(const char* file, int line, const char* function, const char* condition,
                    const char* message) noexcept
{
    try {
        std::string text = function != nullptr ? function : "";
        text.append(": ").append(condition != nullptr ? condition : "");
        text.append(": ").append(message != nullptr ? message : "");
        return !HandOverFailure(file, line, text.c_str());
    } catch (...) {
        return false;
    }
}

}  // namespace kivcore::debug
