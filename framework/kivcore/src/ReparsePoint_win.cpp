// A symbolic link's data, little-endian: tag (4 bytes), length of what follows the head (2),
// reserved (2); then the offset and length in bytes of the substitute name and of the name for
// display (2 each), flags (4, bit 0: relative), and the text in which both names lie.

#include "framework/kivcore/src/ReparsePoint_win.h"

#include <utility>

#include <windows.h>

namespace kivcore::filesupport {

namespace {

constexpr std::size_t kHeadBytes = 4 + 2 + 2;
constexpr std::size_t kNamesAt = kHeadBytes + 2 + 2 + 2 + 2 + 4;
constexpr unsigned kRelativeFlag = 1;

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

}  // namespace kivcore::filesupport
