// What the commands read and write: files by UTF-8 names, "-" for the standard streams.

#pragma once

#include "dictionary/Dictionary.h"

#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace pemtext {

/// The whole content. Throws Failure, which names the file.
std::string ReadInput(const std::string& name);

enum class Loader { kStream, kMemory };

/// Loads a dictionary file. Throws Failure if there is no such file.
void LoadInto(morvish::Dictionary& dictionary, const std::string& name,
              Loader loader = Loader::kStream);

/// The same; throws Failure as well if the dictionary is not valid afterwards.
void LoadCleanly(morvish::Dictionary& dictionary, const std::string& name);

/// Writes a file in one step: until everything stands on the disk, what was there stays. Throws
/// Failure, which names the file, and what `write` throws.
void WriteOutput(const std::string& name, const std::function<void(std::ostream& out)>& write);

/// A line of a file of JSON strings.
struct JsonLine {
    std::u16string text;
    std::size_t number;
};

/// Reads a file of JSON strings, one a line; blank lines are skipped. Throws Failure, which names
/// file and line.
std::vector<JsonLine> ReadJsonLines(const std::string& name);

/// Collects what goes to standard output.
void Print(std::string_view text);

/// Writes it. Throws Failure if that cannot be done.
void FlushOutput();

}  // namespace pemtext
