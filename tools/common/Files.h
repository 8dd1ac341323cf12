// What the commands read and write: files by UTF-8 names, "-" for the standard streams.

#pragma once

#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace tools {

/// The name of standard input and output.
inline constexpr std::string_view kStandard = "-";

/// An input file's name for people.
std::string NameOf(const std::string& name);

/// The whole content. Throws Failure, which names the file.
std::string ReadInput(const std::string& name);

/// Writes a file in one step: until everything stands on the disk, what was there stays. Throws
/// Failure, which names the file, and what `write` throws.
void WriteOutput(const std::string& name, const std::function<void(std::ostream& out)>& write);

/// Writes a file that can be made again at any time, as one of many: quickly, over what was there.
/// A file that could not be written whole is removed. Throws Failure, which names the file.
void WriteQuickly(const std::string& name, std::string_view content);

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

/// Writes to standard error.
void Tell(std::string_view text);

}  // namespace tools
