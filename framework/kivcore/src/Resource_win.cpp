#include <kivcore/Resource.h>

#include <windows.h>

#include "framework/kivcore/src/Path.h"

namespace kivcore {

namespace {

constexpr DWORD kMaxResourceBytes = DWORD{16} * 1024 * 1024;

}  // namespace

std::optional<std::string> LoadXmlResource(const void* address, const std::string& name)
{
    // A name that begins with "#" would be read as a number.
    if (name.empty() || name.front() == '#' || name.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(
            GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
            static_cast<const wchar_t*>(address), &module)) {
        return std::nullopt;
    }
    const UString units = filesupport::PathFromUTF8(name);
    const std::wstring native(units.begin(), units.end());
    HRSRC const found = FindResourceW(module, native.c_str(), L"XML");
    if (found == nullptr) {
        return std::nullopt;
    }
    const DWORD bytes = SizeofResource(module, found);
    HGLOBAL const loaded = LoadResource(module, found);
    const void* const data = loaded != nullptr ? LockResource(loaded) : nullptr;
    if (data == nullptr || bytes > kMaxResourceBytes) {
        return std::nullopt;
    }
    return std::string(static_cast<const char*>(data), bytes);
}

filesupport::Dir ModuleFolder(const void* address)
{
    return filesupport::Dir(UString(filesupport::FolderPart(filesupport::ModulePath(address))));
}

}  // namespace kivcore
