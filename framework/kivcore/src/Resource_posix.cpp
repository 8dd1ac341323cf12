#include <kivcore/Resource.h>

#include <kivcore/Trace.h>

#include "framework/kivcore/src/Path.h"

namespace kivcore {

namespace {

constexpr std::size_t kMaxResourceBytes = std::size_t{16} * 1024 * 1024;

}  // namespace

std::optional<std::string> LoadXmlResource(const void* address, const std::string& name)
{
    const UString module = filesupport::ModulePath(address);
    if (module.empty() || name.empty() || name.find('/') != std::string::npos) {
        return std::nullopt;
    }
    // "libkivui.so.0.1.0" has its files in "libkivui.res", whatever its version; a program has no
    // ".so" in its name.
    UString folder(filesupport::NamePart(module));
    folder.resize(std::min(folder.find(u".so"), folder.size()));
    folder += u".res";
    const filesupport::File file(ModuleFolder(address) / folder,
                                 filesupport::PathFromUTF8(name + ".xml"));
    if (!file.Exists()) {
        return std::nullopt;
    }
    try {
        return file.ReadAll(kMaxResourceBytes);
    } catch (const filesupport::FileError& error) {
        debug::Trace(0, "kivcore", error.what());
        return std::nullopt;
    }
}

filesupport::Dir ModuleFolder(const void* address)
{
    return filesupport::Dir(UString(filesupport::FolderPart(filesupport::ModulePath(address))));
}

}  // namespace kivcore
