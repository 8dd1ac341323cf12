// What is looked at before the XML library sees a text: the library recurses for every level of
// elements, and does arithmetic whose width differs from system to system.

#pragma once

#include <cstddef>

namespace SVGLoom::xml {

/// The root is level 1.
inline constexpr int kMaxDepth = 512;

/// How often the characters stand in a text that decide which checks are needed.
struct MarkCounts {
    std::size_t tags = 0;          // "<"
    std::size_t references = 0;    // "&"
    std::size_t declarations = 0;  // "!"
};

MarkCounts CountMarks(const char* text, const char* end);

/// Walks over the text as the XML library does.
///
/// @return where the first element below level kMaxDepth begins; null if there is none, or if the
///         library stops at an error before it
const char* FindTooDeep(const char* text, const char* end);

/// Numbers of character references ("&#38;") beyond 32 bits are replaced, in place, by one that is
/// as invalid but fits: where the library's integers are narrow they would come round to a
/// character.
void TameReferences(char* text, char* end);

}  // namespace SVGLoom::xml
