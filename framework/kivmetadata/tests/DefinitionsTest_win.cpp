// What the system refuses: here files and folders that another program holds for itself.

#include <filesystem>

#include <windows.h>

#include <gmock/gmock.h>

#include "framework/kivmetadata/tests/DefinitionsFixture.h"

namespace kivmetadata {

namespace {

class DefinitionsSystemTest : public DefinitionsFixture {
protected:
    /// LoadAndTell() while another program holds the file or folder `name` open, shared with
    /// nobody.
    std::string LoadWithout(const std::string& name)
    {
        const std::filesystem::path path = PathOf(name);
        const HANDLE held = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS, nullptr);
        EXPECT_NE(held, INVALID_HANDLE_VALUE) << GetLastError();
        const std::string text = LoadAndTell();
        CloseHandle(held);
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
         "$PREFS/Definitions/a/view/v.xml: cannot be opened: in use by another program\n"},
        {"prefs/Definitions/a/schema/s.xml",
         "com.orvan.xmp/built-in\norg.a/v\norg.b/v\n"
         "$PREFS/Definitions/a/schema/s.xml: cannot be opened: in use by another program\n"},
        {"prefs/Definitions/a/manifest.xml",
         "com.orvan.xmp/built-in\norg.b/v\n"
         "$PREFS/Definitions/a/manifest.xml: cannot be opened: in use by another program\n"
         "$PREFS/Definitions/a: left out, there is no manifest.xml that could be read\n"},
        // That a folder cannot be listed is traced on kivcore's channel.
        {"prefs/Definitions/a/view", "com.orvan.xmp/built-in\norg.b/v\n"},
        {"prefs/Definitions", "com.orvan.xmp/built-in\n"},
        {"app/Required/Metadata/view/v.xml",
         "org.a/v\norg.b/v\n"
         "$APP/Required/Metadata/view/v.xml: cannot be opened: in use by another program\n"
         "$APP/Required/Metadata: no built-in views there\n"},
        {"app/Required/Metadata/view",
         "org.a/v\norg.b/v\n$APP/Required/Metadata: no built-in views there\n"},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(LoadWithout(row.name), row.want);
    }
}

}  // namespace

}  // namespace kivmetadata
