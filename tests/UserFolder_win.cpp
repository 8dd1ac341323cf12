#include "tests/UserFolder.h"

#include <stdexcept>

#include <windows.h>

#include <knownfolders.h>
#include <objbase.h>
#include <shlobj.h>

namespace kivtests {

UserFolder::UserFolder(const std::filesystem::path& /*wanted*/)
    : noFolder_("KIV_PREF_DIR", std::nullopt)
{
    wchar_t* text = nullptr;
    if (SHGetKnownFolderPath(FOLDERID_RoamingAppData, 0, nullptr, &text) != S_OK) {
        throw std::runtime_error("Windows does not know the user's folder");
    }
    folder_ = text;
    CoTaskMemFree(text);
}

UserFolder::~UserFolder() = default;

}  // namespace kivtests
