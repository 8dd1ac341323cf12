// What is looked at before the XML library sees a text: the library recurses for every level of
// elements, and does arithmetic whose width differs from system to system.

#pragma once

#include "svgloom/src/Characters.h"

namespace SVGLoom::xml {

/// The library's classes of characters.
constexpr bool IsElementNameCharacter(char c)
{
    return !IsSpace(c) && c != '/' && c != '>' && c != '?' && c != '\0';
}

constexpr bool IsAttributeNameCharacter(char c)
{
    return IsElementNameCharacter(c) && c != '!' && c != '<' && c != '=';
}

/// The root is level 1.
inline constexpr int kMaxDepth = 512;

/// False if there cannot be an element below level kMaxDepth: each level takes a "<" of its own.
bool HasManyTags(const char* text, const char* end);

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
