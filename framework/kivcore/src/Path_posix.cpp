#include "framework/kivcore/src/Path.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <dlfcn.h>
#include <link.h>
#include <pwd.h>
#include <unistd.h>

#include <kivcore/Dir.h>
#include <kivcore/StringConversion.h>

namespace kivcore::filesupport {

namespace {

// File names are bytes here. A byte that is no part of well-formed UTF-8 becomes a lone surrogate,
// 0x80 to 0xFF as U+DC80 to U+DCFF: none of them can come from well-formed text, so the way back is
// unambiguous.
constexpr char16_t kByteBase = 0xDC00;

bool IsHighSurrogate(char16_t unit)
{
    return (unit & 0xFC00U) == 0xD800U;
}

bool IsLowSurrogate(char16_t unit)
{
    return (unit & 0xFC00U) == 0xDC00U;
}

bool IsByteUnit(char16_t unit)
{
    return unit >= kByteBase + 0x80 && unit <= kByteBase + 0xFF;
}

/// Bytes of the character at the beginning of `text`; 0 if it is ill-formed.
std::size_t CharacterLength(std::string_view text)
{
    for (std::size_t length = 1; length <= 4 && length <= text.size(); ++length) {
        if (string::IsWellFormedUTF8(text.substr(0, length))) {
            return length;
        }
    }
    return 0;
}

}  // namespace

UString PathFromUTF8(const std::string& path)
{
    if (string::IsWellFormedUTF8(path)) {
        return string::UTF8to16(path);
    }
    UString result;
    std::string_view rest = path;
    while (!rest.empty()) {
        const std::size_t length = CharacterLength(rest);
        if (length == 0) {
            result += static_cast<char16_t>(kByteBase + static_cast<unsigned char>(rest.front()));
        } else {
            result += string::UTF8to16(rest.substr(0, length));
        }
        rest.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

std::string PathToUTF8(const UString& path)
{
    std::string result;
    std::size_t begin = 0;  // of the text that waits to be converted
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (IsHighSurrogate(path[i]) && i + 1 < path.size() && IsLowSurrogate(path[i + 1])) {
            ++i;
        } else if (IsByteUnit(path[i])) {
            result += string::UTF16to8(UStringView(path).substr(begin, i - begin));
            result += static_cast<char>(path[i] - kByteBase);
            begin = i + 1;
        }
    }
    return result + string::UTF16to8(UStringView(path).substr(begin));
}

const char16_t kSeparator = u'/';

bool IsSeparator(char16_t unit) noexcept
{
    return unit == u'/';
}

std::size_t RootLength(UStringView path) noexcept
{
    return !path.empty() && path.front() == u'/' ? 1 : 0;
}

UString AbsolutePath(UString path)
{
    if (RootLength(path) == 0 && !path.empty()) {
        const std::unique_ptr<char, decltype(&std::free)> current(getcwd(nullptr, 0), &std::free);
        if (current) {
            UString absolute = PathFromUTF8(current.get());
            if (!absolute.ends_with(u'/')) {
                absolute += u'/';
            }
            path.insert(0, absolute);
        }
    }
    while (path.size() > 1 && path.back() == u'/') {
        path.pop_back();
    }
    return path;
}

UString RealPath(const UString& path)
{
    const std::unique_ptr<char, decltype(&std::free)> real(
        realpath(PathToUTF8(path).c_str(), nullptr), &std::free);
    return real ? PathFromUTF8(real.get()) : path;
}

UString PathFromEnvironment(const char* variable)
{
    const char* value = std::getenv(variable);
    return value ? PathFromUTF8(value) : UString();
}

UString ProgramPath()
{
    std::vector<char> buffer(PATH_MAX);
    const ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length <= 0 || static_cast<std::size_t>(length) == buffer.size()) {
        return {};
    }
    return PathFromUTF8(std::string(buffer.data(), static_cast<std::size_t>(length)));
}

UString UserConfigFolder()
{
    // A relative XDG_CONFIG_HOME does not count; so says the standard that defines it.
    if (const UString configured = PathFromEnvironment("XDG_CONFIG_HOME");
        RootLength(configured) > 0) {
        return AbsolutePath(configured);
    }
    UString home = PathFromEnvironment("HOME");
    if (RootLength(home) == 0) {
        passwd entry{};
        passwd* found = nullptr;
        std::vector<char> buffer(16384);
        if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found ||
            !found->pw_dir) {
            return {};
        }
        home = PathFromUTF8(found->pw_dir);
    }
    return JoinPath(home, u".config");
}

UString ModulePath(const void* address)
{
    Dl_info info{};
    void* map = nullptr;
    if (dladdr1(address, &info, &map, RTLD_DL_LINKMAP) == 0 || !map) {
        return {};
    }
    // The running program has an empty name in the list, and dladdr then gives what the command
    // line said, which need not be a path.
    const char* name = static_cast<const link_map*>(map)->l_name;
    return name && *name ? RealPath(AbsolutePath(PathFromUTF8(name))) : ProgramPath();
}

}  // namespace kivcore::filesupport
