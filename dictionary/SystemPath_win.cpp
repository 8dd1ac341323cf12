#include "dictionary/SystemPath_win.h"

#include "dictionary/Utf8.h"

#include <windows.h>

namespace morvish_private {

namespace {

constexpr std::wstring_view kVerbatim = L"\\\\?\\";
constexpr std::wstring_view kVerbatimShare = L"\\\\?\\UNC\\";
constexpr std::wstring_view kDevice = L"\\\\.\\";
constexpr std::wstring_view kShare = L"\\\\";

// @return empty if the system cannot tell
std::wstring FullPath(const std::wstring& path)
{
    std::wstring full;
    DWORD needed = MAX_PATH;
    // The working folder may change between two calls, and the length with it.
    while (needed > full.size()) {
        full.resize(needed);
        needed =
            GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    }
    full.resize(needed);
    return full;
}

}  // namespace

std::wstring SystemPath(std::u16string_view path)
{
    std::string utf8;
    if (path.empty() || path.find(u'\0') != std::u16string_view::npos || !ConvertUtf16(path, utf8))
        return {};
    std::wstring given(path.begin(), path.end());
    // The system takes these as they are: there is nothing left to make full.
    if (given.starts_with(kVerbatim))
        return given;
    const std::wstring full = FullPath(given);
    if (full.empty() || full.size() < MAX_PATH || full.starts_with(kDevice))
        return full.empty() ? full : given;
    if (full.starts_with(kShare))
        return std::wstring(kVerbatimShare).append(full, kShare.size());
    return std::wstring(kVerbatim).append(full);
}

}  // namespace morvish_private
