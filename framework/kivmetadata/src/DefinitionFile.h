// Reading one file of definitions without letting it break the others.

#pragma once

#include <functional>
#include <string>
#include <string_view>

#include <kivcore/Dir.h>

namespace kivmetadata {

/// Hands the content of `file` to `read`. What it throws, and what the system refuses, is traced; a
/// missing file is none. False if nothing was read. Throws only std::bad_alloc.
bool ReadDefinitionFile(
    const kivcore::filesupport::File& file,
    const std::function<void(std::string_view text, const std::string& sourceName)>& read);

}  // namespace kivmetadata
