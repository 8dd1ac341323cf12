// Paths as the system spells them: separators, absolute paths, and the folders that the system
// itself knows.

#pragma once

#include <string>

#include <kivcore/UString.h>

namespace kivcore::filesupport {

/// What stands between two components of a path that we put together.
extern const char16_t kSeparator;

/// True for every unit that the system takes as a separator.
bool IsSeparator(char16_t unit) noexcept;

/// Units of `path` that name its root ("/" is 1); 0 for a relative path.
std::size_t RootLength(UStringView path) noexcept;

/// `path` against the working folder where it is relative, without separators at its end.
UString AbsolutePath(UString path);

/// `relative` from `folder`, with ".." taken back by its text alone; `folder` is absolute.
UString JoinPath(UStringView folder, UStringView relative);

/// The part in front of the last separator, and the part behind it.
UStringView FolderPart(UStringView path) noexcept;
UStringView NamePart(UStringView path) noexcept;

/// `path` with all links followed; `path` itself where that fails.
UString RealPath(const UString& path);

/// The value of an environment variable as a path; empty where it is not set.
UString PathFromEnvironment(const char* variable);

/// The running program's file; empty where it cannot be told.
UString ProgramPath();

/// The folder for the user's configuration files; empty where it cannot be told.
UString UserConfigFolder();

/// The module file that holds `address`; empty where it cannot be told.
UString ModulePath(const void* address);

}  // namespace kivcore::filesupport
