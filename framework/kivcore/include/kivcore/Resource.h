// Documents that a module carries with it: on Windows its resources, elsewhere files in the folder
// "<module>.res" beside it ("libkivmetadataapi.res/KIVCOLORTHEMESV5.xml" beside
// "libkivmetadataapi.so.0").

#pragma once

#include <optional>
#include <string>

#include <kivcore/Dir.h>
#include <kivcore/Export.h>

namespace kivcore {

/// The resource of type XML and that name of the module that holds `address` (of a function or
/// constant); empty where there is none. At most 16 MiB.
KIVCORE_API std::optional<std::string> LoadXmlResource(const void* address,
                                                       const std::string& name);

/// The folder of the module that holds `address`; an empty Dir where it cannot be told.
KIVCORE_API filesupport::Dir ModuleFolder(const void* address);

}  // namespace kivcore
