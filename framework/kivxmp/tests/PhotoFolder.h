// What the tests of opening and saving photos share.

#pragma once

#include <gtest/gtest.h>

#include <kivcore/FileStream.h>
#include <kivxmp/PhotoFile.h>
#include <kivxmp/XMPAccess.h>

#include <functional>
#include <memory>
#include <string>

#include "framework/kivcore/tests/TestFolder.h"

namespace kivxmp::test {

inline constexpr char kTitle[] = "dc:title[@x-default]";

/// Photos in a folder of their own.
class PhotoFolderTest : public ::testing::Test {
protected:
    ~PhotoFolderTest() override
    {
        kivcore::filesupport::SetFileFault(kivcore::filesupport::FileStep::kOpen, 0, 0);
    }

    std::unique_ptr<__XMPMeta__> Open(const std::string& name, const OpenOptions& options = {})
    {
        return OpenPhoto(folder_.Path(name), options);
    }

    /// "code: message" of what `work` threw, without the folder; "" if it threw nothing.
    std::string Failure(const std::function<void()>& work)
    {
        try {
            work();
        } catch (const XMP_Error& error) {
            std::string text = error.Text();
            const std::string folder = folder_.Of("").string();
            for (std::size_t at; (at = text.find(folder)) != std::string::npos;) {
                text.erase(at, folder.size());
            }
            return std::to_string(error.Code()) + " " + text;
        }
        return "";
    }

    std::string Title(const std::string& name)
    {
        return TextOf(Open(name)->Find("dc:title")).value_or("-");
    }

    /// Opens, sets the title, saves.
    void Retitle(const std::string& name, const std::string& title)
    {
        const std::unique_ptr<__XMPMeta__> meta = Open(name);
        meta->SetText(kTitle, title);
        EXPECT_EQ(SavePhoto(*meta), SaveResult::kSaved);
    }

    kivcore::testing::TestFolder folder_;
};

}  // namespace kivxmp::test
