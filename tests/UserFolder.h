// Where the system keeps the settings of a user's programs, for tests of that place.

#pragma once

#include <filesystem>
#include <optional>

#include "framework/kivcore/tests/Environment.h"

namespace kivtests {

/// While it lives, settings lie below Folder(): below `wanted` where the system lets itself be told
/// so, else where they always lie. KIV_PREF_DIR, which would win, is not set meanwhile.
class UserFolder {
public:
    explicit UserFolder(const std::filesystem::path& wanted);
    UserFolder(const UserFolder&) = delete;
    UserFolder& operator=(const UserFolder&) = delete;
    ~UserFolder();

    const std::filesystem::path& Folder() const { return folder_; }

private:
    kivcore::testing::EnvironmentVariable noFolder_;
    std::optional<kivcore::testing::EnvironmentVariable> redirected_;
    std::filesystem::path folder_;
};

}  // namespace kivtests
