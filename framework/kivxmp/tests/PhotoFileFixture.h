// What the tests of saving photos against the system share; each system has a file of them.

#pragma once

#include <kivxmp/PhotoFile.h>

#include <gmock/gmock.h>

#include <kivcore/FileStream.h>
#include <kivxmp/XMPAccess.h>

#include <memory>
#include <string>

#include "framework/kivcore/tests/ChildProcess.h"
#include "framework/kivcore/tests/TestFolder.h"
#include "framework/kivxmp/tests/JpegBuilder.h"

namespace kivxmp {

class PhotoFileSystemTest : public ::testing::Test {
protected:
    static constexpr char kTitle[] = "dc:title[@x-default]";

    ~PhotoFileSystemTest() override
    {
        kivcore::filesupport::SetFileFault(kivcore::filesupport::FileStep::kOpen, 0, 0);
    }

    /// 0 if a new title was saved, else the code of the failure; its text is message_.
    int Retitle(const std::string& name)
    {
        try {
            const std::unique_ptr<__XMPMeta__> meta = OpenPhoto(folder_.Path(name));
            meta->SetText(kTitle, "edited");
            return SavePhoto(*meta) == SaveResult::kSaved ? 0 : 96;
        } catch (const XMP_Error& error) {
            message_ = error.Text();
            return error.Code();
        }
    }

    /// The same by another program, with KIV_FILE_FAULT set to `fault`.
    kivcore::testing::ChildOutcome RetitleElsewhere(const std::string& name,
                                                    const std::string& fault) const
    {
        return kivcore::testing::RunProgram(
            KIV_PHOTO_EDITOR, {folder_.Of(name).string(), std::string(kTitle) + "=edited"},
            {"KIV_FILE_FAULT=" + fault});
    }

    std::string Title(const std::string& name)
    {
        return TextOf(OpenPhoto(folder_.Path(name))->Find("dc:title")).value_or("-");
    }

    const std::string photo_ =
        test::Jpeg().App0().Exif().Xmp(test::SmallPacket("t")).Scan().Bytes();
    kivcore::testing::TestFolder folder_;
    std::string message_;
};

}  // namespace kivxmp
