// The recording kivcore: folders, files and property lists.

#include "api/tests/RecordingFramework.h"

#include <kivcore/Dir.h>
#include <kivcore/PropList.h>
#include <kivcore/StringConversion.h>

#include <utility>

using kivcore::string::UTF16to8;
using recording::Call;
using recording::Get;

namespace kivcore::filesupport {

Dir::Dir(UString path) : path_(std::move(path)) {}

Dir Dir::operator/(UStringView name) const
{
    return Dir(path_ + u"/" + UString(name));
}

Dir Dir::AppDir()
{
    Call("Dir::AppDir");
    return Dir(u"/app");
}

Dir Dir::PrefDir()
{
    Call("Dir::PrefDir");
    return Dir(u"/prefs");
}

File::File(const Dir& folder, UStringView name) : path_((folder / name).FullPath()) {}

bool File::Exists() const
{
    Call("File::Exists", UTF16to8(path_));
    return Get().hasPreferencesFile;
}

void File::Create(bool truncate) const
{
    Call("File::Create", UTF16to8(path_) + (truncate ? " true" : " false"));
}

}  // namespace kivcore::filesupport

namespace kivcore::proplist {

void PropList::Set(const std::string& name, PropValue value)
{
    values_.insert_or_assign(name, std::move(value));
}

bool PropList::GetBool(std::string_view name, bool otherwise) const
{
    const auto found = values_.find(name);
    const bool* const value =
        found == values_.end() ? nullptr : std::get_if<bool>(&found->second.Get());
    return value == nullptr ? otherwise : *value;
}

namespace utils {

void LoadPropList(const UString& path, PropList& list, bool merge)
{
    Call("LoadPropList", UTF16to8(path) + (merge ? " true" : " false"));
    list = Get().storedPreferences;
}

void SavePropList(const filesupport::File& file, const PropList& list)
{
    Call("SavePropList", UTF16to8(file.FullPath()));
    Get().storedPreferences = list;
}

}  // namespace utils

}  // namespace kivcore::proplist
