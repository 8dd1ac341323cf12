// The classes of characters that all value parsers share, and the steps over them. Bytes outside
// ASCII belong to no class, whatever the locale.

#pragma once

namespace SVGLoom {

/// Space, tab, line feed or carriage return; form feed and vertical tab are none.
constexpr bool IsSpace(char c)
{
    return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}

constexpr bool IsDigit(char c)
{
    return static_cast<unsigned char>(c - '0') < 10;
}

constexpr char ToLower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

constexpr bool IsLetter(char c)
{
    return ToLower(c) >= 'a' && ToLower(c) <= 'z';
}

constexpr bool IsHexDigit(char c)
{
    return IsDigit(c) || (ToLower(c) >= 'a' && ToLower(c) <= 'f');
}

/// Returns true if anything is left behind the white space.
inline bool SkipSpace(const char*& current, const char* end)
{
    while (current != end && IsSpace(*current)) {
        ++current;
    }
    return current != end;
}

/// White space, at most one comma, white space.
inline void SkipSeparator(const char*& current, const char* end)
{
    if (SkipSpace(current, end) && *current == ',') {
        ++current;
        SkipSpace(current, end);
    }
}

}  // namespace SVGLoom
