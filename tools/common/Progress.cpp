#include "tools/common/Progress.h"

#include "tools/common/Files.h"
#include "tools/common/Terminal.h"

namespace tools {

namespace {

using namespace std::chrono_literals;

// A run that is over soon tells nothing.
constexpr auto kFirst = 500ms;
constexpr auto kEach = 100ms;
constexpr auto kFirstElsewhere = 5s;
constexpr auto kEachElsewhere = 5s;

}  // namespace

Progress::Progress(std::string_view program, std::string_view what, std::size_t total)
    : program_(program),
      what_(what),
      total_(total),
      isTerminal_(IsStandardErrorATerminal()),
      next_(Clock::now() + (isTerminal_ ? Clock::duration(kFirst) : kFirstElsewhere))
{
}

Progress::~Progress()
{
    Wipe();
}

void Progress::Step()
{
    ++done_;
    const Clock::time_point now = Clock::now();
    if (total_ < 2 || done_ == total_ || now < next_)
        return;
    next_ = now + (isTerminal_ ? Clock::duration(kEach) : kEachElsewhere);
    const std::string line = program_ + ": " + std::to_string(done_) + " of " +
                             std::to_string(total_) + " " + what_ + " (" +
                             std::to_string(done_ * 100 / total_) + "%)";
    if (!isTerminal_) {
        tools::Tell(line + "\n");
        return;
    }
    Wipe();
    tools::Tell(line);
    shownUnits_ = line.size();
}

void Progress::Tell(std::string_view line)
{
    Wipe();
    tools::Tell(std::string(line) + "\n");
}

void Progress::Wipe()
{
    if (shownUnits_ > 0)
        tools::Tell("\r" + std::string(shownUnits_, ' ') + "\r");
    shownUnits_ = 0;
}

}  // namespace tools
