#include <kivcore/FileStream.h>

#include <cerrno>
#include <cstdint>
#include <limits>

#include <gmock/gmock.h>

#include "framework/kivcore/tests/TestFolder.h"

namespace kivcore::filesupport {
namespace {

using kivcore::testing::TestFolder;
using kivcore::testing::TextOf;

std::string ReadAt(InputFile& file, std::uint64_t offset, std::size_t bytes)
{
    std::string buffer(bytes, '?');
    buffer.resize(file.ReadAt(offset, buffer.data(), bytes));
    return buffer;
}

TEST(InputFile, ReadsRanges)
{
    const TestFolder folder;
    folder.Write("x", "0123456789");
    InputFile file(folder.Path("x"));
    EXPECT_EQ(file.SizeBytes(), 10U);
    EXPECT_EQ(ReadAt(file, 0, 10), "0123456789");
    EXPECT_EQ(ReadAt(file, 3, 4), "3456");
    EXPECT_EQ(ReadAt(file, 8, 100), "89");
    EXPECT_EQ(ReadAt(file, 10, 1), "");
    EXPECT_EQ(ReadAt(file, 5, 0), "");
    // Offsets that the system cannot even spell.
    EXPECT_EQ(ReadAt(file, std::numeric_limits<std::int64_t>::max(), 4), "");
    EXPECT_EQ(ReadAt(file, std::numeric_limits<std::uint64_t>::max(), 4), "");
}

TEST(InputFile, IdentityTellsStatesApart)
{
    const TestFolder folder;
    folder.Write("x", "same size");
    folder.Write("y", "same size");
    const auto time = std::filesystem::last_write_time(folder.Of("x"));
    std::filesystem::last_write_time(folder.Of("x"),
                                     time);  // some libraries set whole seconds only
    const FileIdentity before = InputFile(folder.Path("x")).Identity();
    EXPECT_EQ(InputFile(folder.Path("x")).Identity(), before);
    EXPECT_NE(InputFile(folder.Path("y")).Identity(), before);

    std::filesystem::last_write_time(folder.Of("x"), time + std::chrono::seconds(1));
    const FileIdentity touched = InputFile(folder.Path("x")).Identity();
    EXPECT_EQ(touched.number, before.number);
    EXPECT_EQ(touched.modifiedNs - before.modifiedNs, 1'000'000'000);

    folder.Write("x", "another size");
    EXPECT_EQ(InputFile(folder.Path("x")).Identity().sizeBytes, 12U);
}

TEST(FileFault, CountsDownToOneFailure)
{
    const TestFolder folder;
    folder.Write("x", "content");
    InputFile file(folder.Path("x"));
    SetFileFault(FileStep::kRead, EIO, 2);
    EXPECT_EQ(ReadAt(file, 0, 4), "cont");
    EXPECT_EQ(TextOf<FileError>([&] { ReadAt(file, 0, 4); }),
              folder.Of("x").string() + ": cannot be read: the disk reports an error");
    EXPECT_EQ(ReadAt(file, 0, 4), "cont");
}

TEST(FileFault, CanBeTakenAway)
{
    const TestFolder folder;
    folder.Write("x", "content");
    SetFileFault(FileStep::kOpen, EACCES, 1);
    SetFileFault(FileStep::kOpen, 0, 1);
    EXPECT_NO_THROW(InputFile{folder.Path("x")});
    SetFileFault(FileStep::kOpen, EACCES, 1);
    EXPECT_THROW(InputFile{folder.Path("x")}, FileError);
}

struct KindCase {
    int systemError;
    FileError::Kind kind;
    const char* reason;
};

constexpr KindCase kKindCases[] = {
    {ENOENT, FileError::Kind::kNotFound, "no such file or folder"},
    {EACCES, FileError::Kind::kRefused, "permission denied"},
    {EROFS, FileError::Kind::kRefused, "the file system is read-only"},
    {ENOSPC, FileError::Kind::kNoSpace, "no space left on the disk"},
    {EFBIG, FileError::Kind::kTooLarge, "the file would be too large"},
    {EIO, FileError::Kind::kOther, "the disk reports an error"},
    {4242, FileError::Kind::kOther, "system error 4242"},
};

TEST(FileError, KindAndReason)
{
    const TestFolder folder;
    folder.Write("x", "content");
    for (const KindCase& row : kKindCases) {
        SetFileFault(FileStep::kOpen, row.systemError, 1);
        try {
            const InputFile file(folder.Path("x"));
            ADD_FAILURE() << "opened in spite of " << row.reason;
        } catch (const FileError& error) {
            EXPECT_EQ(error.GetKind(), row.kind);
            EXPECT_EQ(error.what(), folder.Of("x").string() + ": cannot be opened: " + row.reason);
        }
    }
}

}  // namespace
}  // namespace kivcore::filesupport
