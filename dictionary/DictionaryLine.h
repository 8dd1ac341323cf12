// How one line of a text dictionary becomes a key and a value.

#pragma once

#include <string>
#include <string_view>

namespace morvish_private {

struct LineParts {
    bool valid = false;      // false for a line that begins with '$' but not with "$$$"
    bool hasPrefix = false;  // "$$$" stood there
    bool hasQuotes = false;  // an opening quote was found
    bool hasClosingQuote = false;
    bool hasEquals = false;
    std::u16string_view key;    // without the prefix
    std::u16string_view value;  // as it is written
};

/// Splits a line. The views point into it.
LineParts SplitLine(std::u16string_view line);

/// The bytes of a key. Only the low byte of each unit counts, unchecked: keys are meant to be
/// ASCII.
void NarrowKey(std::u16string_view key, std::string& bytes);

}  // namespace morvish_private
