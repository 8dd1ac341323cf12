// From a value as it is written in a dictionary (or behind the '=' of a key) to the text that is
// shown: first escapes and caret codes, then #{name} markers.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace morvish_private {

/// Both passes over `lengthUnits` units.
std::u16string EscapeValue(const char16_t* text, std::size_t lengthUnits);

/// The second pass alone.
std::u16string SubstituteMarkers(const char16_t* text, std::size_t lengthUnits);

/// Both passes for many values in a row, with buffers that are used again.
class ValueProcessor {
public:
    /// @return the processed text: `raw` itself where nothing is to do, else a buffer of this
    /// object
    ///         that stands until the next call
    std::u16string_view Process(std::u16string_view raw);

private:
    std::u16string escaped_;
    std::u16string substituted_;
};

}  // namespace morvish_private
