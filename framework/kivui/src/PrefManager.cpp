#include <kivui/PrefManager.h>

#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

#include <kivcore/Dir.h>
#include <kivcore/FileReplacement.h>

#include "framework/kivui/src/Tracing.h"

namespace kivui::ui {

namespace {

using kivcore::filesupport::Dir;
using kivcore::filesupport::File;
using kivcore::proplist::PropList;

constexpr kivcore::UStringView kFileName = u"UIPrefs.xml";

struct State {
    File file;
    PropList preferences;
    PropList asOnDisk;
};

// A plain pointer: a host that leaves without Finalize leaks the state.
constinit State* state = nullptr;

void Read(State& into)
{
    try {
        // On Windows a killed writer can have left nothing but the backup.
        kivcore::filesupport::RecoverReplacedFile(into.file.FullPath());
        if (into.file.Exists()) {
            kivcore::proplist::utils::LoadPropList(into.file.FullPath(), into.asOnDisk, false);
        }
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        TraceFailure("Preferences were not read", error.what());
    }
}

}  // namespace

void PrefManager::Initialize(const kivcore::UString& folder, bool reset)
{
    auto fresh = std::make_unique<State>();
    fresh->file = File(Dir(folder), kFileName);
    Read(*fresh);
    if (!reset) {
        fresh->preferences = fresh->asOnDisk;
    }
    delete state;
    state = fresh.release();
}

bool PrefManager::IsInitialized() noexcept
{
    return state != nullptr;
}

void PrefManager::Finalize() noexcept
{
    const std::unique_ptr<State> last(std::exchange(state, nullptr));
    if (!last || last->preferences == last->asOnDisk) {
        return;
    }
    try {
        last->file.Folder().Create();
        kivcore::proplist::utils::SavePropList(last->file, last->preferences);
    } catch (const std::exception& error) {
        TraceFailure("Preferences were not written", error.what());
    }
}

PropList& PrefManager::Preferences()
{
    if (state == nullptr) {
        throw std::logic_error("Preferences are not initialized");
    }
    return state->preferences;
}

}  // namespace kivui::ui
