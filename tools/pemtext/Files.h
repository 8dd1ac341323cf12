// Dictionary files by UTF-8 names, "-" for standard input.

#pragma once

#include "dictionary/Dictionary.h"
#include "tools/pemtext/Common.h"

#include <string>

namespace pemtext {

enum class Loader { kStream, kMemory };

/// Loads a dictionary file. Throws Failure if there is no such file.
void LoadInto(morvish::Dictionary& dictionary, const std::string& name,
              Loader loader = Loader::kStream);

/// The same; throws Failure, which names file and line, if the dictionary is not valid afterwards.
/// What ends the reading of a text without making it invalid is told on standard error.
void LoadCleanly(morvish::Dictionary& dictionary, const std::string& name);

}  // namespace pemtext
