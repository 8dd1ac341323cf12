#include <kivcore/Dir.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include <kivcore/Config.h>
#include <kivcore/FileStream.h>
#include <kivcore/Resource.h>

#include "framework/kivcore/src/FileSystem.h"
#include "framework/kivcore/src/Path.h"
#include "framework/kivcore/src/SystemError.h"

namespace kivcore::filesupport {

namespace {

constexpr UStringView kForbidden = u"<>:\"/\\|?*\u007F";

// Names that Windows takes for devices, whatever the extension. They are avoided everywhere, so
// that one folder serves all systems.
constexpr UStringView kDeviceNames[] = {u"AUX", u"CON", u"NUL", u"PRN"};
constexpr UStringView kNumberedDeviceNames[] = {u"COM", u"LPT"};

bool IsForbidden(char16_t unit)
{
    return unit < 0x20 || kForbidden.find(unit) != UStringView::npos;
}

bool IsDeviceName(UStringView name)
{
    UString stem(name.substr(0, name.find(u'.')));
    std::transform(stem.begin(), stem.end(), stem.begin(), [](char16_t unit) {
        return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
    });
    const auto isIn = [](const auto& names, UStringView wanted) {
        return std::find(std::begin(names), std::end(names), wanted) != std::end(names);
    };
    if (stem.size() == 4 && stem[3] >= u'1' && stem[3] <= u'9') {
        return isIn(kNumberedDeviceNames, UStringView(stem).substr(0, 3));
    }
    return isIn(kDeviceNames, stem);
}

/// What lies in the program's folder, and in the data folder of an installation.
bool HoldsData(const Dir& folder)
{
    return !folder.IsEmpty() && (folder / u"Required").Exists();
}

constexpr char kModuleAnchor = 0;

}  // namespace

FileError::~FileError() = default;

Dir::Dir(UString path) : path_(AbsolutePath(std::move(path))) {}

Dir Dir::operator/(UStringView name) const
{
    UString path = path_;
    if (!path.empty() && !IsSeparator(path.back())) {
        path += kSeparator;
    }
    path += name;
    return Dir(std::move(path));
}

bool Dir::Exists() const
{
    return !IsEmpty() && IsFolder(path_);
}

void Dir::Create() const
{
    // From the deepest folder that is there, downwards.
    std::vector<UString> missing;
    UString path = path_;
    while (!path.empty() && !IsFolder(path)) {
        missing.push_back(path);
        if (path.size() <= RootLength(path)) {
            break;
        }
        path = UString(FolderPart(path));
    }
    for (auto folder = missing.rbegin(); folder != missing.rend(); ++folder) {
        MakeFolder(*folder);
    }
}

std::vector<UString> Dir::FileNames() const
{
    return NamesInFolder(path_, EntryKind::kFile);
}

std::vector<UString> Dir::FolderNames() const
{
    return NamesInFolder(path_, EntryKind::kFolder);
}

Dir Dir::FromEnvironment(const char* variable)
{
    return Dir(PathFromEnvironment(variable));
}

Dir Dir::AppDir()
{
    if (const UString configured = PathFromEnvironment("KIV_APP_DIR"); !configured.empty()) {
        return Dir(configured);
    }
    const UString program = ProgramPath();
    if (Dir folder{UString(FolderPart(program))}; HoldsData(folder)) {
        return folder;
    }
    Dir libraries = ModuleFolder(&kModuleAnchor);
    if (HoldsData(libraries)) {
        return libraries;
    }
    return Dir(JoinPath(libraries.FullPath(), PathFromUTF8(KIV_LIB_TO_DATA)));
}

Dir Dir::PrefDir()
{
    if (const UString configured = PathFromEnvironment("KIV_PREF_DIR"); !configured.empty()) {
        return Dir(configured);
    }
    if (!config::IsClientNameInitialized()) {
        throw std::logic_error("the folder for preferences needs a client name");
    }
    const Dir folder(UserConfigFolder());
    if (folder.IsEmpty()) {
        throw FileError(FileError::Kind::kNotFound, "the user has no folder for preferences");
    }
    return folder / SafeName(config::CompanyName()) / SafeName(config::ClientName());
}

UString Dir::SafeName(UStringView name)
{
    if (name.empty() || name == u"." || name == u"..") {
        return u"_";
    }
    UString safe(name);
    std::replace_if(safe.begin(), safe.end(), IsForbidden, u'_');
    // Windows drops dots and spaces at the end, so two names would be one.
    for (auto unit = safe.rbegin(); unit != safe.rend() && (*unit == u'.' || *unit == u' ');
         ++unit) {
        *unit = u'_';
    }
    return IsDeviceName(safe) ? u"_" + safe : safe;
}

File::File(const UString& path) : path_(AbsolutePath(path)) {}

File::File(const Dir& folder, UStringView name) : path_((folder / name).FullPath()) {}

UString File::Name() const
{
    return UString(NamePart(path_));
}

Dir File::Folder() const
{
    return Dir(UString(FolderPart(path_)));
}

bool File::Exists() const
{
    return !path_.empty() && IsFile(path_);
}

void File::Create(bool truncate) const
{
    if (!truncate && Exists()) {
        return;
    }
    Folder().Create();
    MakeEmptyFile(path_);
}

std::string File::ReadAll(std::size_t limitBytes) const
{
    InputFile file(path_);
    if (file.SizeBytes() > limitBytes) {
        throw FileError(FileError::Kind::kTooLarge, ErrorText(path_, "is too large"));
    }
    std::string content(static_cast<std::size_t>(file.SizeBytes()), '\0');
    content.resize(file.ReadAt(0, content.data(), content.size()));
    return content;
}

void File::Remove() const
{
    RemoveFile(path_);
}

}  // namespace kivcore::filesupport
