// A symbolic link's data, little-endian: tag (4 bytes), length of what follows the head (2),
// reserved (2); then the offset and length in bytes of the substitute name and of the name for
// display (2 each), flags (4, bit 0: relative), and the text in which both names lie.

#include "framework/kivcore/src/ReparsePoint_win.h"

#include <windows.h>

#include "framework/kivcore/src/FileSystem.h"
#include "framework/kivcore/src/Path.h"
#include "framework/kivcore/src/Path_win.h"
#include "framework/kivcore/src/SystemCall_win.h"

#include <winioctl.h>

namespace kivcore::filesupport {

namespace {

constexpr std::size_t kHeadBytes = 4 + 2 + 2;
constexpr std::size_t kNamesAt = kHeadBytes + 2 + 2 + 2 + 2 + 4;
constexpr unsigned kRelativeFlag = 1;
constexpr int kMaxLinks = 40;

// How the object manager spells what programs know as `C:\` and `\\`.
constexpr UStringView kObjectPrefix = u"\\??\\";
constexpr UStringView kObjectShare = u"\\??\\UNC\\";

unsigned Read16(const unsigned char* at)
{
    return at[0] | static_cast<unsigned>(at[1]) << 8U;
}

UString ProgramSpelling(UString path)
{
    if (path.starts_with(kObjectShare)) {
        return u"\\\\" + path.substr(kObjectShare.size());
    }
    if (path.starts_with(kObjectPrefix)) {
        path.erase(0, kObjectPrefix.size());
    }
    return path;
}

std::optional<LinkTarget> ReadLink(const UString& path)
{
    const std::wstring native = NativePath(path);
    const DWORD attributes = GetFileAttributesW(native.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
        return std::nullopt;
    }
    const Handle link(
        CreateFileW(native.c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr, OPEN_EXISTING,
                    FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    unsigned char data[MAXIMUM_REPARSE_DATA_BUFFER_SIZE];
    DWORD bytes = 0;
    if (!link.IsOpen() || !DeviceIoControl(link.Get(), FSCTL_GET_REPARSE_POINT, nullptr, 0, data,
                                           sizeof data, &bytes, nullptr)) {
        return std::nullopt;
    }
    return ReadLinkTarget(data, bytes);
}

}  // namespace

std::optional<LinkTarget> ReadLinkTarget(const unsigned char* data, std::size_t bytes)
{
    if (bytes < kNamesAt ||
        (Read16(data) | static_cast<DWORD>(Read16(data + 2)) << 16U) != IO_REPARSE_TAG_SYMLINK) {
        return std::nullopt;
    }
    const std::size_t offset = Read16(data + kHeadBytes);
    const std::size_t length = Read16(data + kHeadBytes + 2);
    if (length == 0 || length % 2 != 0 || offset > bytes - kNamesAt ||
        length > bytes - kNamesAt - offset) {
        return std::nullopt;
    }
    LinkTarget target;
    for (std::size_t i = 0; i < length; i += 2) {
        target.path += static_cast<char16_t>(Read16(data + kNamesAt + offset + i));
    }
    target.isRelative = (data[kNamesAt - 4] & kRelativeFlag) != 0;
    if (!target.isRelative) {
        target.path = ProgramSpelling(std::move(target.path));
    }
    return target;
}

UString FollowLinks(const UString& path)
{
    UString target = path;
    for (int links = 0; links < kMaxLinks; ++links) {
        const std::optional<LinkTarget> next = ReadLink(target);
        if (!next) {
            return target;
        }
        // ".." is taken back by the text alone on Windows, for links as for all paths; one that
        // begins with a separator is meant from the root of the link's drive.
        const bool fromRoot = next->isRelative && IsSeparator(next->path.front());
        const UString folder(fromRoot ? UStringView(target).substr(0, RootLength(target))
                                      : FolderPart(target));
        target = next->isRelative ? JoinPath(folder, next->path) : AbsolutePath(next->path);
    }
    ThrowSystemError(path, StepText(FileStep::kOpen), ERROR_CANT_RESOLVE_FILENAME);
}

}  // namespace kivcore::filesupport
