#include "tests/UserFolder.h"

namespace kivtests {

UserFolder::UserFolder(const std::filesystem::path& wanted)
    : noFolder_("KIV_PREF_DIR", std::nullopt), folder_(wanted)
{
    redirected_.emplace("XDG_CONFIG_HOME", wanted.string());
}

UserFolder::~UserFolder() = default;

}  // namespace kivtests
