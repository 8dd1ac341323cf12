// What the system finds in our modules: the theme documents, byte by byte, and version records.

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <windows.h>

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

// A module as a file of data: nothing of it runs, and it needs none of the libraries that it
// imports.
class Module {
public:
    explicit Module(const std::wstring& name)
        : handle_(LoadLibraryExW((std::filesystem::path(KIV_MODULE_FOLDER) / name).c_str(), nullptr,
                                 LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE))
    {
        EXPECT_NE(handle_, nullptr) << GetLastError();
    }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;
    ~Module() { FreeLibrary(handle_); }

    std::string Content(const wchar_t* type, const wchar_t* name) const
    {
        HRSRC const found = FindResourceW(handle_, name, type);
        if (found == nullptr) {
            return "not found";
        }
        const void* const bytes = LockResource(LoadResource(handle_, found));
        return {static_cast<const char*>(bytes), SizeofResource(handle_, found)};
    }

    /// "type/name" of all resources.
    std::vector<std::wstring> Names() const
    {
        std::vector<std::wstring> names;
        EXPECT_TRUE(EnumResourceTypesW(handle_, CollectType, reinterpret_cast<LONG_PTR>(&names)));
        return names;
    }

private:
    static std::wstring TextOf(const wchar_t* name)
    {
        return IS_INTRESOURCE(name) ? std::to_wstring(reinterpret_cast<ULONG_PTR>(name)) : name;
    }
    static BOOL CALLBACK CollectType(HMODULE module, wchar_t* type, LONG_PTR names)
    {
        return EnumResourceNamesW(module, type, CollectName, names);
    }
    static BOOL CALLBACK CollectName(HMODULE, const wchar_t* type, wchar_t* name, LONG_PTR names)
    {
        reinterpret_cast<std::vector<std::wstring>*>(names)->push_back(TextOf(type) + L"/" +
                                                                       TextOf(name));
        return TRUE;
    }

    HMODULE handle_;
};

std::string ContentOfFile(const std::wstring& name)
{
    std::ostringstream text;
    text
        << std::ifstream(std::filesystem::path(KIV_THEMES_FOLDER) / name, std::ios::binary).rdbuf();
    return text.str();
}

TEST(ModuleResources, TheLibraryCarriesFourThemesAndItsVersion)
{
    const Module library(L"kivmetadataapi.dll");
    EXPECT_THAT(library.Names(), testing::UnorderedElementsAre(
                                     L"XML/KIVCOLORTHEMESV2", L"XML/KIVCOLORTHEMESV3",
                                     L"XML/KIVCOLORTHEMESV4", L"XML/KIVCOLORTHEMESV5", L"16/1"));
    for (const wchar_t* const name :
         {L"KIVCOLORTHEMESV2", L"KIVCOLORTHEMESV3", L"KIVCOLORTHEMESV4", L"KIVCOLORTHEMESV5"}) {
        const std::string file = ContentOfFile(std::wstring(name) + L".xml");
        ASSERT_GT(file.size(), 10000u) << testing::PrintToString(name);
        EXPECT_EQ(library.Content(L"XML", name), file) << testing::PrintToString(name);
    }
    EXPECT_EQ(library.Content(L"XML", L"KIVCOLORTHEMESV1"), "not found");
    EXPECT_EQ(library.Content(L"XML", L"KIVCOLORTHEMESV6"), "not found");
}

struct VersionText {
    const wchar_t* name;
    std::wstring want;
};

TEST(ModuleResources, EveryLibraryTellsItsVersion)
{
    // KIV_VERSION is "major.minor.patch".
    std::istringstream text(KIV_VERSION);
    std::array<std::uint16_t, 4> numbers{};
    for (std::size_t i = 0; i < 3; ++i) {
        text >> numbers[i];
        text.ignore(1);
    }
    const std::string version = KIV_VERSION;
    for (const std::wstring name : {L"kivmetadataapi", L"kivcore", L"kivui", L"kivxmp",
                                    L"kivmetadata", L"kivmetadataui", L"kivtoolkit"}) {
        SCOPED_TRACE(testing::PrintToString(name));
        const std::wstring path =
            (std::filesystem::path(KIV_MODULE_FOLDER) / (name + L".dll")).wstring();
        DWORD ignored = 0;
        std::vector<std::byte> record(GetFileVersionInfoSizeW(path.c_str(), &ignored));
        ASSERT_GT(record.size(), 0u) << GetLastError();
        ASSERT_TRUE(
            GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(record.size()), record.data()));
        void* found = nullptr;
        UINT size = 0;
        ASSERT_TRUE(VerQueryValueW(record.data(), L"\\", &found, &size));
        ASSERT_EQ(size, sizeof(VS_FIXEDFILEINFO));
        const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(found);
        for (const auto& [high, low] :
             {std::pair(fixed.dwFileVersionMS, fixed.dwFileVersionLS),
              std::pair(fixed.dwProductVersionMS, fixed.dwProductVersionLS)}) {
            EXPECT_THAT((std::array{HIWORD(high), LOWORD(high), HIWORD(low), LOWORD(low)}),
                        ElementsAre(numbers[0], numbers[1], numbers[2], numbers[3]));
        }
        EXPECT_EQ(fixed.dwFileType, DWORD{VFT_DLL});
        const VersionText texts[] = {
            {L"FileVersion", std::wstring(version.begin(), version.end())},
            {L"ProductVersion", std::wstring(version.begin(), version.end())},
            {L"InternalName", name},
            {L"OriginalFilename", name + L".dll"},
            {L"ProductName", L"kivmetadataapi"},
        };
        for (const VersionText& row : texts) {
            const std::wstring place = L"\\StringFileInfo\\040904b0\\" + std::wstring(row.name);
            ASSERT_TRUE(VerQueryValueW(record.data(), place.c_str(), &found, &size))
                << testing::PrintToString(row.name);
            EXPECT_EQ(std::wstring(static_cast<const wchar_t*>(found)), row.want)
                << testing::PrintToString(row.name);
        }
    }
}

}  // namespace
