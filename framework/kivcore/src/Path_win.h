// The one border where paths become what Windows takes.

#pragma once

#include <string>

#include <kivcore/UString.h>

namespace kivcore::filesupport {

/// `path` as the wide calls take it. A path that is too long for them as it is goes absolute, in
/// the verbatim form (`\\?\`), which has no limit; a name that the system reads in its own way
/// (`\\?\`, `\\.\`) stays as it is. A path with a NUL in it would be cut by the system and name
/// another file, so it becomes the empty path, which no file has.
std::wstring NativePath(const UString& path);

/// A text of the system's, as it is: lone surrogates stay.
UString FromNative(const std::wstring& text);

}  // namespace kivcore::filesupport
