#include "framework/kivcore/src/FileFault.h"

#include <atomic>
#include <charconv>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "framework/kivcore/src/EnvironmentText.h"
#include "framework/kivcore/src/SystemError.h"

namespace kivcore::filesupport {

namespace {

struct StepRow {
    FileStep step;
    std::string_view name;
    std::string_view text;
};

constexpr StepRow kStepRows[] = {
    {FileStep::kOpen, "open", "cannot be opened"},
    {FileStep::kRead, "read", "cannot be read"},
    {FileStep::kCreate, "create", "cannot be made"},
    {FileStep::kWrite, "write", "cannot be written"},
    {FileStep::kFlush, "flush", "cannot be flushed to the disk"},
    {FileStep::kVerify, "verify", "what was written cannot be read back"},
    {FileStep::kRename, "rename", "the new file cannot take its place"},
    {FileStep::kFlushFolder, "flushfolder", "its folder cannot be flushed to the disk"},
    {FileStep::kRemove, "remove", "cannot be removed"},
};

constexpr bool RowsStandByStep()
{
    for (std::size_t i = 0; i < std::size(kStepRows); ++i) {
        if (kStepRows[i].step != static_cast<FileStep>(i)) {
            return false;
        }
    }
    return true;
}
static_assert(RowsStandByStep());

// The switch is off while the countdown is 0.
std::atomic<FileStep> faultStep{};
std::atomic<int> faultError{0};
std::atomic<int> faultCountdown{0};
std::atomic<bool> environmentRead{false};

std::optional<FileStep> StepByName(std::string_view name)
{
    for (const StepRow& row : kStepRows) {
        if (row.name == name) {
            return row.step;
        }
    }
    return std::nullopt;
}

void ReadEnvironment()
{
    const std::optional<std::string> value = EnvironmentText("KIV_FILE_FAULT");
    const std::string_view text = value ? std::string_view(*value) : std::string_view();
    const std::size_t first = text.find(':');
    const std::size_t second = text.rfind(':');
    if (first == std::string_view::npos || first == second) {
        return;
    }
    const std::optional<FileStep> step = StepByName(text.substr(0, first));
    const std::string_view errorName = text.substr(first + 1, second - first - 1);
    const int error = errorName == "KILL" ? kKillProcess : SystemErrorByName(errorName);
    int countdown = 0;
    std::from_chars(text.data() + second + 1, text.data() + text.size(), countdown);
    if (step && error != 0 && countdown > 0) {
        faultStep = *step;
        faultError = error;
        faultCountdown = countdown;
    }
}

}  // namespace

void SetFileFault(FileStep step, int systemError, int countdown)
{
    environmentRead = true;
    faultStep = step;
    faultError = systemError == kKillProcess ? kKillProcess : SystemErrorByErrno(systemError);
    faultCountdown = systemError != 0 && countdown > 0 ? countdown : 0;
}

int TakeFault(FileStep step) noexcept
{
    try {
        if (!environmentRead.exchange(true)) {
            ReadEnvironment();
        }
    } catch (const std::exception&) {
        return 0;  // no memory: the switch stays off
    }
    if (faultCountdown == 0 || faultStep != step || --faultCountdown > 0) {
        return 0;
    }
    return faultError;
}

std::string_view StepText(FileStep step) noexcept
{
    return kStepRows[static_cast<std::size_t>(step)].text;
}

}  // namespace kivcore::filesupport
