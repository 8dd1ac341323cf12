#include "framework/kivcore/src/Path_win.h"

#include <algorithm>
#include <string>

#include <windows.h>

#include <shlobj.h>

#include "framework/kivcore/src/Path.h"

namespace kivcore::filesupport {

namespace {

// Windows refuses files from MAX_PATH units on, and folders twelve units earlier, so that a short
// name fits in.
constexpr std::size_t kVerbatimFrom = MAX_PATH - 12;

constexpr UStringView kVerbatim = u"\\\\?\\";
constexpr UStringView kVerbatimShare = u"\\\\?\\UNC\\";
constexpr UStringView kDevice = u"\\\\.\\";

bool IsDriveLetter(char16_t unit)
{
    return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
}

/// Units up to the end of the component at `offset`, its separator included.
std::size_t BehindComponent(UStringView path, std::size_t offset) noexcept
{
    while (offset < path.size() && !IsSeparator(path[offset])) {
        ++offset;
    }
    return std::min(offset + 1, path.size());
}

std::size_t DriveLength(UStringView path, std::size_t offset) noexcept
{
    const bool isDrive = path.size() >= offset + 3 && IsDriveLetter(path[offset]) &&
                         path[offset + 1] == u':' && IsSeparator(path[offset + 2]);
    return isDrive ? offset + 3 : 0;
}

/// Asks with a growing buffer. `call` takes a buffer and its units, and answers with the units that
/// it wrote, with at least the buffer's units where it is too small, or with 0 where it fails.
template <class Call>
std::wstring AskGrowing(const Call& call)
{
    constexpr DWORD kMostUnits = 65536;  // Windows has no path beyond 32767 units
    for (DWORD units = 512; units <= kMostUnits; units *= 2) {
        std::wstring text(units, L'\0');
        const DWORD length = call(text.data(), units);
        if (length < units) {
            text.resize(length);
            return text;
        }
    }
    return {};
}

/// `path` made absolute by the system, which also takes "." and ".." back; empty where it fails.
UString FullPath(const UString& path)
{
    const std::wstring native(path.begin(), path.end());
    return FromNative(AskGrowing([&native](wchar_t* buffer, DWORD units) {
        return GetFullPathNameW(native.c_str(), units, buffer, nullptr);
    }));
}

UString FileOfModule(HMODULE module)
{
    return FromNative(AskGrowing([module](wchar_t* buffer, DWORD units) {
        return GetModuleFileNameW(module, buffer, units);
    }));
}

}  // namespace

UString FromNative(const std::wstring& text)
{
    static_assert(sizeof(wchar_t) == sizeof(char16_t));
    return {text.begin(), text.end()};
}

std::wstring NativePath(const UString& path)
{
    if (path.find(u'\0') != UString::npos) {
        return {};
    }
    UString native = path;
    if (path.size() >= kVerbatimFrom && !path.starts_with(kVerbatim) &&
        !path.starts_with(kDevice)) {
        // Behind the prefix the system takes the text as it is: no ".", no "/".
        if (const UString full = FullPath(path); full.starts_with(kVerbatim) || full.empty()) {
            native = full.empty() ? path : full;
        } else if (full.starts_with(u"\\\\")) {
            native = UString(kVerbatimShare) + full.substr(2);
        } else {
            native = UString(kVerbatim) + full;
        }
    }
    return {native.begin(), native.end()};
}

const char16_t kSeparator = u'\\';

bool IsSeparator(char16_t unit) noexcept
{
    return unit == u'\\' || unit == u'/';
}

std::size_t RootLength(UStringView path) noexcept
{
    if (path.starts_with(kVerbatimShare)) {
        return BehindComponent(path, BehindComponent(path, kVerbatimShare.size()));
    }
    if (path.starts_with(kVerbatim) || path.starts_with(kDevice)) {
        const std::size_t drive = DriveLength(path, kVerbatim.size());
        return drive > 0 ? drive : BehindComponent(path, kVerbatim.size());
    }
    if (path.size() > 2 && IsSeparator(path[0]) && IsSeparator(path[1])) {
        return BehindComponent(path, BehindComponent(path, 2));
    }
    return DriveLength(path, 0);
}

UString AbsolutePath(UString path)
{
    if (RootLength(path) == 0 && !path.empty()) {
        // Only what is missing is asked for, because the system would make another text of the rest
        // (it drops the dot of "name."). A path can also lack its drive alone ("\folder") or its
        // folder alone ("C:file").
        UString start = u".";
        if (IsSeparator(path.front())) {
            start = path.front();
            path.erase(0, 1);
        } else if (path.size() > 1 && path[1] == u':') {
            start.insert(0, path, 0, 2);
            path.erase(0, 2);
        }
        UString absolute = FullPath(start);
        if (!absolute.empty() && !IsSeparator(absolute.back())) {
            absolute += kSeparator;
        }
        path.insert(0, absolute);
    }
    while (path.size() > std::max<std::size_t>(RootLength(path), 1) && IsSeparator(path.back())) {
        path.pop_back();
    }
    return path;
}

UString PathFromEnvironment(const char* variable)
{
    const std::wstring name(variable, variable + std::char_traits<char>::length(variable));
    return FromNative(AskGrowing([&name](wchar_t* buffer, DWORD units) {
        return GetEnvironmentVariableW(name.c_str(), buffer, units);
    }));
}

UString ProgramPath()
{
    return FileOfModule(nullptr);
}

UString UserConfigFolder()
{
    wchar_t* folder = nullptr;
    UString path;
    if (SHGetKnownFolderPath(FOLDERID_RoamingAppData, KF_FLAG_DEFAULT, nullptr, &folder) == S_OK) {
        path = AbsolutePath(FromNative(folder));
    }
    CoTaskMemFree(folder);
    return path;
}

UString ModulePath(const void* address)
{
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(
            GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
            static_cast<const wchar_t*>(address), &module)) {
        return {};
    }
    return FileOfModule(module);
}

}  // namespace kivcore::filesupport
