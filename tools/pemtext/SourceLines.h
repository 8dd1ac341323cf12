// The lines of a text dictionary with the numbers that an editor gives them, and where reading ends
// before the file does.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pemtext {

struct SourceLine {
    std::size_t number;
    std::u16string text;
};

struct SourceText {
    enum class End {
        kComplete,
        kBrokenUtf8,  // that line and all behind it are not read
        kNulUnit,     // a UTF-16 file ends there
        kHalfUnit,    // the last byte of a UTF-16 file counts for nothing
    };

    std::vector<SourceLine> lines;      // the empty ones left out
    std::vector<std::size_t> cutByNul;  // lines of UTF-8 whose rest behind a NUL is not read
    End end = End::kComplete;
    std::size_t endLine = 0;  // where that happened
    std::size_t lineCount = 0;
};

/// Splits a text as the loader does.
SourceText SplitText(const std::string& content);

/// True for what the loader takes for a binary image.
bool IsImage(std::string_view content);

}  // namespace pemtext
