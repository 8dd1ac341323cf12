// The value parsers of the engine: what stands in an attribute or a declaration becomes a number, a
// transform, a colour, a paint or a path. They keep no state, use no locale, and read [current,
// end) only: the text need not end in zero.

#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "svgloom/renderer/SVGRenderer.h"
#include "svgloom/src/Characters.h"
#include "svgloom/src/ColorValue.h"
#include "svgloom/src/GradientTable.h"
#include "svgloom/src/PathNotes.h"

namespace SVGLoom {

class SVGStringParser {
public:
    /// One plain number with optional white space around it and nothing else ("50%" is none).
    /// `value` is written on success only, here and in the next.
    static bool ParseNumber(std::string_view text, float& value);

    /// A number, an optional unit and optional white space around both. A percentage is of
    /// `reference`. Units are case-sensitive; em and ex are none on purpose.
    static bool ParseLength(std::string_view text, float reference, float& value);

    /// Numbers with white space, and at most one comma, between them. An empty text is an empty
    /// list. Anything left over makes the whole list invalid; `values` is empty then.
    static bool ParseNumberList(std::string_view text, std::vector<float>& values);

    /// The same where only the first numbers count: as many as there is room for are written, and
    /// `count` tells how many there are. It is 0 for an invalid list.
    static bool ParseNumberList(std::string_view text, std::span<float> values, std::size_t& count);

    /// The same with lengths in place of numbers.
    static bool ParseLengthList(std::string_view text, float reference, std::vector<float>& values);

    /// Calls use(word) for each word between white space. The words look into `text`.
    template <class Use>
    static void ForEachWord(std::string_view text, const Use& use)
    {
        const char* current = text.data();
        const char* const end = current + text.size();
        while (SkipSpace(current, end)) {
            const char* const start = current;
            while (current != end && !IsSpace(*current)) {
                ++current;
            }
            use(std::string_view(start, static_cast<std::size_t>(current - start)));
        }
    }
    /// The words of ForEachWord.
    static std::vector<std::string_view> SplitWords(std::string_view text);

    /// Applies the functions of a list to `transform` one by one, in the order of the text.
    ///
    /// @param current where reading stopped; on success the end
    /// @return true if the end of the text was reached. What was applied before a failure stays
    ///         applied, so a caller that asks drops the transform then.
    static bool ParseTransform(const char*& current, const char* end, Transform& transform);

    /// Replays path data onto `path`. It stops at the first number or flag that cannot be read;
    /// what came before it stays in the path.
    ///
    /// @param notes receives what an artist did not mean; may be null
    static void ParsePath(std::string_view text, Path& path, PathNotes* notes = nullptr);

    /// Reads one colour, white space before it included. What follows it is left: a caller that
    /// wants the whole value looks whether `current` is the end.
    ///
    /// @param current           one past the colour on success, where reading stopped on failure
    /// @param value             written on success only
    /// @param allowCurrentColor accept "currentColor" (a fallback may be that in any case)
    /// @param result            kSuccess or kInvalid; untouched where nothing but white space is
    /// left
    /// @return true on success
    static bool ParseColor(const char*& current, const char* end, ColorValue& value,
                           bool allowCurrentColor, ParseResult& result);

    /// Reads the whole text as "#" and three or six hexadecimal digits, which ParseColor reads
    /// alike. `color` is written on success only.
    static bool ParseHexColor(std::string_view text, Color& color);

    /// Reads the whole text as a paint. A reference to a gradient copies it into `paint` with the
    /// coordinates that it does not give taken from the size of `viewport`; a gradient with one
    /// stop is that stop's colour. A reference that is not known, without a fallback, is a success
    /// that writes nothing.
    ///
    /// @param paint      written on success only
    /// @param colorValue written together with `paint`: the colour to resolve when it is drawn,
    ///                   empty for a gradient
    /// @return kNone for no paint
    static ParseResult ParsePaint(std::string_view text, const GradientTable& gradients,
                                  const Rect& viewport, Paint& paint,
                                  std::optional<ColorValue>& colorValue);
};

}  // namespace SVGLoom
