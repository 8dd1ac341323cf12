// What the system refuses.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "framework/kivcore/tests/ChildProcess_posix.h"
#include "framework/kivmetadata/tests/DefinitionsFixture.h"

#include <kivcore/Config.h>

namespace kivmetadata {

namespace {

using kivcore::testing::RunInChild;
using kivcore::testing::RunUnprivileged;

class DefinitionsSystemTest : public DefinitionsFixture {
protected:
    /// LoadAndTell() without an administrator's rights, while `name` may not be read.
    std::string LoadWithout(const std::string& name)
    {
        const std::string path = PathOf(name);
        struct stat before {};
        EXPECT_EQ(stat(path.c_str(), &before), 0);
        EXPECT_EQ(chmod(path.c_str(), 0), 0);
        const std::string text = RunUnprivileged([&]() -> std::string {
            return open(path.c_str(), O_RDONLY) == -1 ? LoadAndTell()
                                                      : "the system does not refuse";
        });
        EXPECT_EQ(chmod(path.c_str(), before.st_mode & 0777U), 0);
        return text;
    }
};

TEST_F(DefinitionsSystemTest, WhatMayNotBeReadIsLeftOut)
{
    PutBuiltIn();
    PutSet("prefs/Definitions/a", "org.a", "v");
    PutSet("prefs/Definitions/b", "org.b", "v");
    struct Row {
        const char* name;
        const char* want;
    };
    constexpr Row kRows[] = {
        {"prefs/Definitions/a/view/v.xml",
         "com.orvan.xmp/built-in\norg.b/v\n"
         "$PREFS/Definitions/a/view/v.xml: cannot be opened: permission denied\n"},
        // That a folder cannot be listed is traced on kivcore's channel.
        {"prefs/Definitions/a/view", "com.orvan.xmp/built-in\norg.b/v\n"},
        {"prefs/Definitions/a/manifest.xml",
         "com.orvan.xmp/built-in\norg.b/v\n"
         "$PREFS/Definitions/a/manifest.xml: cannot be opened: permission denied\n"
         "$PREFS/Definitions/a: left out, there is no manifest.xml that could be read\n"},
        {"prefs/Definitions/a",
         "com.orvan.xmp/built-in\norg.b/v\n"
         "$PREFS/Definitions/a: left out, there is no manifest.xml that could be read\n"},
        {"prefs/Definitions", "com.orvan.xmp/built-in\n"},
        {"app/Required/Metadata/view",
         "org.a/v\norg.b/v\n$APP/Required/Metadata: no built-in views there\n"},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(LoadWithout(row.name), row.want);
    }
}

// A user without a home, as services have: there is no preferences folder to look into.
TEST_F(DefinitionsSystemTest, AUserWithoutAHomeHasTheRest)
{
    PutBuiltIn();
    PutSet("app/Required/Definitions/z", "org.z", "r");
    const auto outcome = RunInChild([this](int out) {
        constexpr uid_t kNobodysNumber = 54321;
        if (setresuid(kNobodysNumber, kNobodysNumber, kNobodysNumber) != 0) {
            return 3;
        }
        const EnvironmentVariable noPreferences("KIV_PREF_DIR", std::nullopt);
        const EnvironmentVariable noConfig("XDG_CONFIG_HOME", std::nullopt);
        const EnvironmentVariable noHome("HOME", std::nullopt);
        kivcore::config::SetClientName(u"client");
        const std::string text = LoadAndTell();
        return write(out, text.data(), text.size()) == static_cast<ssize_t>(text.size()) ? 0 : 2;
    });
    if (geteuid() != 0) {
        EXPECT_EQ(WEXITSTATUS(outcome.status), 3);
        return;
    }
    EXPECT_TRUE(outcome.Succeeded()) << outcome.status;
    EXPECT_EQ(outcome.text,
              "com.orvan.xmp/built-in\norg.z/r\nthe user has no folder for preferences\n");
}

}  // namespace

}  // namespace kivmetadata
