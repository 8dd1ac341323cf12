#include <kivcore/FileReplacement.h>

#include <cerrno>
#include <stdexcept>

#include <gmock/gmock.h>

#include "framework/kivcore/src/ReplacementChecks.h"
#include "framework/kivcore/tests/TestFolder.h"

namespace kivcore::filesupport {
namespace {

using kivcore::testing::TestFolder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr std::size_t kMiB = std::size_t{1024} * 1024;

std::function<void(OutputFile&)> Writes(const std::string& content)
{
    return [content](OutputFile& out) { out.Write(content.data(), content.size()); };
}

class FileReplacementTest : public ::testing::Test {
protected:
    ~FileReplacementTest() override { SetFileFault(FileStep::kOpen, 0, 0); }

    FileError::Kind KindOfFailure(const std::function<void(OutputFile&)>& write,
                                  const ReplaceOptions& options)
    {
        try {
            ReplaceWholeFile(folder_.Path("photo.jpg"), write, options);
        } catch (const FileError& error) {
            message_ = error.what();
            return error.GetKind();
        }
        ADD_FAILURE() << "replaced";
        return FileError::Kind::kOther;
    }

    TestFolder folder_;
    std::string message_;
};

TEST_F(FileReplacementTest, MakesAMissingFile)
{
    const FileIdentity made = ReplaceWholeFile(folder_.Path("photo.jpg"), Writes("new"), {});
    EXPECT_EQ(folder_.Read("photo.jpg"), "new");
    EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
    EXPECT_EQ(InputFile(folder_.Path("photo.jpg")).Identity(), made);
}

TEST_F(FileReplacementTest, ReplacesAndReturnsTheNewIdentity)
{
    folder_.Write("photo.jpg", "old content");
    ReplaceOptions options;
    options.expected = InputFile(folder_.Path("photo.jpg")).Identity();
    options.expected = ReplaceWholeFile(folder_.Path("photo.jpg"), Writes("first"), options);
    // What was returned is what the next replacement expects.
    ReplaceWholeFile(folder_.Path("photo.jpg"), Writes("second"), options);
    EXPECT_EQ(folder_.Read("photo.jpg"), "second");
    EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
}

TEST_F(FileReplacementTest, TakesPiecesOfAnySize)
{
    std::string want;
    std::string source;
    for (std::size_t i = 0; i < 2 * kMiB; ++i) {
        source += static_cast<char>(i * 7 + i / 251);
    }
    folder_.Write("source", source);
    InputFile input(folder_.Path("source"));
    ReplaceWholeFile(
        folder_.Path("photo.jpg"),
        [&](OutputFile& out) {
            for (const std::size_t bytes : {std::size_t{1}, std::size_t{0}, std::size_t{262143},
                                            std::size_t{262144}, std::size_t{262145}, kMiB}) {
                out.Write(source.data(), bytes);
                want.append(source, 0, bytes);
                EXPECT_EQ(out.SizeBytes(), want.size());
                out.CopyFrom(input, bytes / 2, bytes);
                want.append(source, bytes / 2, bytes);
                EXPECT_EQ(out.SizeBytes(), want.size());
            }
        },
        {});
    EXPECT_TRUE(folder_.Read("photo.jpg") == want);
}

TEST_F(FileReplacementTest, CopyingBehindTheEndIsAChange)
{
    folder_.Write("photo.jpg", "old");
    InputFile input(folder_.Path("photo.jpg"));
    EXPECT_EQ(KindOfFailure([&](OutputFile& out) { out.CopyFrom(input, 1, 3); }, {}),
              FileError::Kind::kChanged);
    EXPECT_EQ(folder_.Read("photo.jpg"), "old");
    EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
}

TEST_F(FileReplacementTest, RefusesAFileThatChanged)
{
    folder_.Write("photo.jpg", "old");
    ReplaceOptions options;
    options.expected = InputFile(folder_.Path("photo.jpg")).Identity();
    folder_.Write("photo.jpg", "another program's");
    bool called = false;
    EXPECT_EQ(KindOfFailure([&](OutputFile&) { called = true; }, options),
              FileError::Kind::kChanged);
    EXPECT_FALSE(called);
    EXPECT_EQ(message_, folder_.Of("photo.jpg").string() +
                            ": was changed since it was read; nothing was written");
    EXPECT_EQ(folder_.Read("photo.jpg"), "another program's");
}

TEST_F(FileReplacementTest, RefusesAFileThatChangesWhileItIsWritten)
{
    folder_.Write("photo.jpg", "old");
    ReplaceOptions options;
    options.expected = InputFile(folder_.Path("photo.jpg")).Identity();
    // The very last moment at which we know of it.
    options.compare = [&](InputFile&) { folder_.Write("photo.jpg", "another program's"); };
    EXPECT_EQ(KindOfFailure(Writes("new"), options), FileError::Kind::kChanged);
    EXPECT_EQ(folder_.Read("photo.jpg"), "another program's");
    EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
}

TEST_F(FileReplacementTest, RefusesAFileThatIsGone)
{
    folder_.Write("photo.jpg", "old");
    ReplaceOptions options;
    options.expected = InputFile(folder_.Path("photo.jpg")).Identity();
    std::filesystem::remove(folder_.Of("photo.jpg"));
    EXPECT_EQ(KindOfFailure(Writes("new"), options), FileError::Kind::kChanged);
    EXPECT_THAT(folder_.Names(), IsEmpty());
}

TEST_F(FileReplacementTest, AComparisonSeesWhatWasWritten)
{
    folder_.Write("photo.jpg", "old");
    ReplaceOptions options;
    std::string seen;
    options.compare = [&seen](InputFile& written) {
        seen.resize(static_cast<std::size_t>(written.SizeBytes()));
        written.ReadAt(0, seen.data(), seen.size());
    };
    ReplaceWholeFile(folder_.Path("photo.jpg"), Writes("new content"), options);
    EXPECT_EQ(seen, "new content");

    SetFileFault(FileStep::kVerify, EIO, 1);
    EXPECT_EQ(KindOfFailure(Writes("newer"), options), FileError::Kind::kOther);
    EXPECT_THAT(message_, HasSubstr("what was written cannot be read back"));
    EXPECT_EQ(folder_.Read("photo.jpg"), "new content");
}

TEST_F(FileReplacementTest, ABenchmarkCanDoWithoutChecks)
{
    ReplaceOptions options;
    int compared = 0;
    options.compare = [&compared](InputFile&) { ++compared; };
    SetReplacementChecks(false);
    ReplaceWholeFile(folder_.Path("photo.jpg"), Writes("new"), options);
    SetReplacementChecks(true);
    EXPECT_EQ(compared, 0);
    EXPECT_EQ(folder_.Read("photo.jpg"), "new");
    ReplaceWholeFile(folder_.Path("photo.jpg"), Writes("newer"), options);
    EXPECT_EQ(compared, 1);
}

TEST_F(FileReplacementTest, WhatCallbacksThrowLeavesEverythingAsItWas)
{
    folder_.Write("photo.jpg", "old");
    const auto refuse = [](auto&) { throw std::domain_error("not like this"); };
    ReplaceOptions options;
    EXPECT_THROW(ReplaceWholeFile(folder_.Path("photo.jpg"), refuse, options), std::domain_error);
    options.compare = refuse;
    EXPECT_THROW(ReplaceWholeFile(folder_.Path("photo.jpg"), Writes("new"), options),
                 std::domain_error);
    EXPECT_EQ(folder_.Read("photo.jpg"), "old");
    EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
}

TEST_F(FileReplacementTest, RefusesWhatIsNoFile)
{
    std::filesystem::create_directory(folder_.Of("photo.jpg"));
    EXPECT_EQ(KindOfFailure(Writes("new"), {}), FileError::Kind::kRefused);
    EXPECT_THAT(message_, HasSubstr("it is a folder"));
    std::filesystem::remove(folder_.Of("photo.jpg"));

    try {
        ReplaceWholeFile(folder_.Path("missing/photo.jpg"), Writes("new"), {});
        FAIL() << "replaced";
    } catch (const FileError& error) {
        EXPECT_EQ(error.GetKind(), FileError::Kind::kNotFound);
    }
}

TEST_F(FileReplacementTest, RefusesAReadOnlyFileAlsoForAnAdministrator)
{
    folder_.Write("photo.jpg", "old");
    std::filesystem::permissions(folder_.Of("photo.jpg"), std::filesystem::perms(0444));
    EXPECT_EQ(KindOfFailure(Writes("new"), {}), FileError::Kind::kRefused);
    EXPECT_EQ(message_, folder_.Of("photo.jpg").string() + ": is read-only");
    EXPECT_EQ(folder_.Read("photo.jpg"), "old");
}

struct FaultCase {
    FileStep step;
    const char* what;
};

constexpr FaultCase kFaultCases[] = {
    {FileStep::kOpen, "cannot be opened"},
    {FileStep::kRead, "cannot be read"},
    {FileStep::kCreate, "no new file can be made beside it"},
    {FileStep::kWrite, "cannot be written"},
    {FileStep::kFlush, "cannot be flushed to the disk"},
    {FileStep::kVerify, "what was written cannot be read back"},
    {FileStep::kRename, "the new file cannot take its place"},
    {FileStep::kFlushFolder, "its folder cannot be flushed to the disk"},
};

TEST_F(FileReplacementTest, EveryStepThatFailsLeavesTheOldFile)
{
    const std::string old(700'000, 'o');
    for (const bool exists : {true, false}) {
        for (const FaultCase& row : kFaultCases) {
            SCOPED_TRACE(row.what);
            folder_.Write("source", old);
            if (exists) {
                folder_.Write("photo.jpg", old);
            }
            const auto write = [this](OutputFile& out) {
                InputFile source(folder_.Path("source"));
                out.CopyFrom(source, 0, source.SizeBytes());
                out.Write("new", 3);
            };
            // Each occurrence of the step in turn, until one replacement gets by.
            int failures = 0;
            for (int countdown = 1; countdown < 100; ++countdown) {
                SetFileFault(row.step, ENOSPC, countdown);
                try {
                    ReplaceWholeFile(folder_.Path("photo.jpg"), write, {});
                    break;
                } catch (const FileError& error) {
                    ++failures;
                    EXPECT_EQ(error.GetKind(), FileError::Kind::kNoSpace);
                    EXPECT_THAT(error.what(), StartsWith(folder_.Folder().string()));
                    EXPECT_THAT(error.what(), HasSubstr(std::string(": ") + row.what +
                                                        ": no space left on the disk"));
                }
                if (exists) {
                    ASSERT_TRUE(folder_.Read("photo.jpg") == old);
                    ASSERT_THAT(folder_.Names(), ElementsAre("photo.jpg", "source"));
                } else {
                    ASSERT_THAT(folder_.Names(), ElementsAre("source"));
                }
            }
            EXPECT_GT(failures, 0);
            EXPECT_TRUE(folder_.Read("photo.jpg") == old + "new");
            ASSERT_THAT(folder_.Names(), ElementsAre("photo.jpg", "source"));
            std::filesystem::remove(folder_.Of("photo.jpg"));
        }
    }
}

TEST_F(FileReplacementTest, AFailureToFlushTheFolderBringsTheVeryFileBack)
{
    folder_.Write("photo.jpg", "old");
    const FileIdentity before = InputFile(folder_.Path("photo.jpg")).Identity();
    SetFileFault(FileStep::kFlushFolder, EIO, 1);
    EXPECT_EQ(KindOfFailure(Writes("new"), {}), FileError::Kind::kOther);
    EXPECT_EQ(InputFile(folder_.Path("photo.jpg")).Identity(), before);
}

TEST_F(FileReplacementTest, WhatCannotBeRemovedIsLeftToTheNextOne)
{
    folder_.Write("photo.jpg", "old");
    SetFileFault(FileStep::kRemove, EIO, 1);
    ReplaceWholeFile(folder_.Path("photo.jpg"), Writes("new"), {});
    EXPECT_EQ(folder_.Read("photo.jpg"), "new");
    EXPECT_EQ(folder_.Names().size(), 2U);
    ReplaceWholeFile(folder_.Path("other.jpg"), Writes("new"), {});
    EXPECT_THAT(folder_.Names(), ElementsAre("other.jpg", "photo.jpg"));
}

TEST_F(FileReplacementTest, FilesOfSimilarNamesAreNotTouched)
{
    const std::string names[] = {".kivsave-",
                                 ".kivsave-0123456789abcdef",
                                 ".kivsave-0123456789abcdef-",
                                 ".kivsave-0123456789abcdef-0x",
                                 ".kivsave-0123456789abcdef-123",
                                 ".kivsave-0123456789ABCDEF-0",
                                 "kivsave-0123456789abcdef-0"};
    for (const std::string& name : names) {
        folder_.Write(name, "the user's");
    }
    ReplaceWholeFile(folder_.Path("photo.jpg"), Writes("new"), {});
    for (const std::string& name : names) {
        EXPECT_EQ(folder_.Read(name), "the user's") << name;
    }
}

TEST_F(FileReplacementTest, RecoveringIsSilentWhereThereIsNothing)
{
    RecoverReplacedFile(folder_.Path("photo.jpg"));
    RecoverReplacedFile(folder_.Path("missing/photo.jpg"));
    RecoverReplacedFile(UString());
    folder_.Write("photo.jpg", "old");
    RecoverReplacedFile(folder_.Path("photo.jpg"));
    EXPECT_THAT(folder_.Names(), ElementsAre("photo.jpg"));
}

TEST_F(FileReplacementTest, AReplacementWithinAnotherOneLeavesItAlone)
{
    folder_.Write("other.jpg", "old");
    ReplaceWholeFile(folder_.Path("photo.jpg"),
                     [&](OutputFile& out) {
                         out.Write("outer", 5);
                         ReplaceWholeFile(folder_.Path("photo.jpg"), Writes("inner"), {});
                         ReplaceWholeFile(folder_.Path("other.jpg"), Writes("new"), {});
                         EXPECT_EQ(folder_.Read("photo.jpg"), "inner");
                     },
                     {});
    EXPECT_EQ(folder_.Read("photo.jpg"), "outer");
    EXPECT_EQ(folder_.Read("other.jpg"), "new");
    EXPECT_THAT(folder_.Names(), ElementsAre("other.jpg", "photo.jpg"));
}

}  // namespace
}  // namespace kivcore::filesupport
