#include "svgloom/src/NamedColors.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "svgloom/src/Characters.h"

namespace SVGLoom {

namespace {

constexpr Color FromBytes(std::uint32_t rgb)
{
    constexpr float kMost = 255;
    return {static_cast<float>((rgb >> 16) & 0xFF) / kMost,
            static_cast<float>((rgb >> 8) & 0xFF) / kMost, static_cast<float>(rgb & 0xFF) / kMost,
            1};
}

constexpr NamedColor Row(std::string_view name, std::uint32_t rgb)
{
    return {name, FromBytes(rgb)};
}

// The order counts: a name that is the beginning of another comes first and wins, so "greenyellow"
// is "green" with "yellow" left over. Artwork is drawn with that; NamedColors.ShorterNamesWin holds
// it.
constexpr NamedColor kRows[] = {
    Row("aliceblue", 0xF0F8FF),
    Row("antiquewhite", 0xFAEBD7),
    Row("aqua", 0x00FFFF),
    Row("aquamarine", 0x7FFFD4),
    Row("azure", 0xF0FFFF),
    Row("beige", 0xF5F5DC),
    Row("bisque", 0xFFE4C4),
    Row("black", 0x000000),
    Row("blanchedalmond", 0xFFEBCD),
    Row("blue", 0x0000FF),
    Row("blueviolet", 0x8A2BE2),
    Row("brown", 0xA52A2A),
    Row("burlywood", 0xDEB887),
    Row("cadetblue", 0x5F9EA0),
    Row("chartreuse", 0x7FFF00),
    Row("chocolate", 0xD2691E),
    Row("coral", 0xFF7F50),
    Row("cornflowerblue", 0x6495ED),
    Row("cornsilk", 0xFFF8DC),
    Row("crimson", 0xDC143C),
    Row("cyan", 0x00FFFF),
    Row("darkblue", 0x00008B),
    Row("darkcyan", 0x008B8B),
    Row("darkgoldenrod", 0xB8860B),
    Row("darkgray", 0xA9A9A9),
    Row("darkgreen", 0x006400),
    Row("darkgrey", 0xA9A9A9),
    Row("darkkhaki", 0xBDB76B),
    Row("darkmagenta", 0x8B008B),
    Row("darkolivegreen", 0x556B2F),
    Row("darkorange", 0xFF8C00),
    Row("darkorchid", 0x9932CC),
    Row("darkred", 0x8B0000),
    Row("darksalmon", 0xE9967A),
    Row("darkseagreen", 0x8FBC8F),
    Row("darkslateblue", 0x483D8B),
    Row("darkslategray", 0x2F4F4F),
    Row("darkslategrey", 0x2F4F4F),
    Row("darkturquoise", 0x00CED1),
    Row("darkviolet", 0x9400D3),
    Row("deeppink", 0xFF1493),
    Row("deepskyblue", 0x00BFFF),
    Row("dimgray", 0x696969),
    Row("dimgrey", 0x696969),
    Row("dodgerblue", 0x1E90FF),
    Row("firebrick", 0xB22222),
    Row("floralwhite", 0xFFFAF0),
    Row("forestgreen", 0x228B22),
    Row("fuchsia", 0xFF00FF),
    Row("gainsboro", 0xDCDCDC),
    Row("ghostwhite", 0xF8F8FF),
    Row("gold", 0xFFD700),
    Row("goldenrod", 0xDAA520),
    Row("gray", 0x808080),
    Row("green", 0x008000),
    Row("greenyellow", 0xADFF2F),
    Row("grey", 0x808080),
    Row("honeydew", 0xF0FFF0),
    Row("hotpink", 0xFF69B4),
    Row("indianred", 0xCD5C5C),
    Row("indigo", 0x4B0082),
    Row("ivory", 0xFFFFF0),
    Row("khaki", 0xF0E68C),
    Row("lavender", 0xE6E6FA),
    Row("lavenderblush", 0xFFF0F5),
    Row("lawngreen", 0x7CFC00),
    Row("lemonchiffon", 0xFFFACD),
    // A second "darkslateblue" where "lightblue" would stand, on purpose: "lightblue" is no colour
    // here. NamedColors.LightBlueIsNone holds this.
    Row("darkslateblue", 0x483D8B),
    Row("lightcoral", 0xF08080),
    Row("lightcyan", 0xE0FFFF),
    Row("lightgoldenrodyellow", 0xFAFAD2),
    Row("lightgray", 0xD3D3D3),
    Row("lightgreen", 0x90EE90),
    Row("lightgrey", 0xD3D3D3),
    Row("lightpink", 0xFFB6C1),
    Row("lightsalmon", 0xFFA07A),
    Row("lightseagreen", 0x20B2AA),
    Row("lightskyblue", 0x87CEFA),
    Row("lightslategray", 0x778899),
    Row("lightslategrey", 0x778899),
    Row("lightsteelblue", 0xB0C4DE),
    Row("lightyellow", 0xFFFFE0),
    Row("lime", 0x00FF00),
    Row("limegreen", 0x32CD32),
    Row("linen", 0xFAF0E6),
    Row("magenta", 0xFF00FF),
    Row("maroon", 0x800000),
    Row("mediumaquamarine", 0x66CDAA),
    Row("mediumblue", 0x0000CD),
    Row("mediumorchid", 0xBA55D3),
    Row("mediumpurple", 0x9370DB),
    Row("mediumseagreen", 0x3CB371),
    Row("mediumslateblue", 0x7B68EE),
    Row("mediumspringgreen", 0x00FA9A),
    Row("mediumturquoise", 0x48D1CC),
    Row("mediumvioletred", 0xC71585),
    Row("midnightblue", 0x191970),
    Row("mintcream", 0xF5FFFA),
    Row("mistyrose", 0xFFE4E1),
    Row("moccasin", 0xFFE4B5),
    Row("navajowhite", 0xFFDEAD),
    Row("navy", 0x000080),
    Row("oldlace", 0xFDF5E6),
    Row("olive", 0x808000),
    Row("olivedrab", 0x6B8E23),
    Row("orange", 0xFFA500),
    Row("orangered", 0xFF4500),
    Row("orchid", 0xDA70D6),
    Row("palegoldenrod", 0xEEE8AA),
    Row("palegreen", 0x98FB98),
    Row("paleturquoise", 0xAFEEEE),
    Row("palevioletred", 0xDB7093),
    Row("papayawhip", 0xFFEFD5),
    Row("peachpuff", 0xFFDAB9),
    Row("peru", 0xCD853F),
    Row("pink", 0xFFC0CB),
    Row("plum", 0xDDA0DD),
    Row("powderblue", 0xB0E0E6),
    Row("purple", 0x800080),
    Row("rebeccapurple", 0x663399),
    Row("red", 0xFF0000),
    Row("rosybrown", 0xBC8F8F),
    Row("royalblue", 0x4169E1),
    Row("saddlebrown", 0x8B4513),
    Row("salmon", 0xFA8072),
    Row("sandybrown", 0xF4A460),
    Row("seagreen", 0x2E8B57),
    Row("seashell", 0xFFF5EE),
    Row("sienna", 0xA0522D),
    Row("silver", 0xC0C0C0),
    Row("skyblue", 0x87CEEB),
    Row("slateblue", 0x6A5ACD),
    Row("slategray", 0x708090),
    Row("slategrey", 0x708090),
    Row("snow", 0xFFFAFA),
    Row("springgreen", 0x00FF7F),
    Row("steelblue", 0x4682B4),
    Row("tan", 0xD2B48C),
    Row("teal", 0x008080),
    Row("thistle", 0xD8BFD8),
    Row("tomato", 0xFF6347),
    Row("turquoise", 0x40E0D0),
    Row("violet", 0xEE82EE),
    Row("wheat", 0xF5DEB3),
    Row("white", 0xFFFFFF),
    Row("whitesmoke", 0xF5F5F5),
    Row("yellow", 0xFFFF00),
    Row("yellowgreen", 0x9ACD32),
};
static_assert(std::size(kRows) == 148);

constexpr std::size_t kLetters = 26;

/// The rows that begin with one letter, as [first, behind).
struct LetterRange {
    std::uint8_t first = 0;
    std::uint8_t behind = 0;
};

constexpr std::array<LetterRange, kLetters> RangesByLetter()
{
    std::array<LetterRange, kLetters> ranges;
    for (std::size_t i = 0; i < std::size(kRows); ++i) {
        LetterRange& range = ranges[static_cast<std::size_t>(kRows[i].name[0] - 'a')];
        const bool begins = range.behind == 0;
        // The second "darkslateblue" stands apart from its letter and is never the first to match.
        if (begins || kRows[i].name[0] == kRows[i - 1].name[0]) {
            range.first = begins ? static_cast<std::uint8_t>(i) : range.first;
            range.behind = static_cast<std::uint8_t>(i + 1);
        } else if (kRows[i].name[0] > kRows[i - 1].name[0]) {
            range.behind = static_cast<std::uint8_t>(i + 1);  // its letter goes on behind that row
        }
    }
    return ranges;
}

constexpr std::array<LetterRange, kLetters> kRanges = RangesByLetter();

constexpr std::size_t LongestName()
{
    std::size_t longest = 0;
    for (const NamedColor& row : kRows) {
        longest = std::max(longest, row.name.size());
    }
    return longest;
}

}  // namespace

std::span<const NamedColor> NamedColorTable()
{
    return kRows;
}

const NamedColor* FindNamedColor(std::string_view text)
{
    if (text.empty() || !IsLetter(text[0])) {
        return nullptr;
    }
    char lowered[LongestName()];
    const std::size_t length = std::min(text.size(), sizeof lowered);
    std::transform(text.begin(), text.begin() + length, lowered, ToLower);
    const std::string_view word(lowered, length);
    const LetterRange range = kRanges[static_cast<std::size_t>(lowered[0] - 'a')];
    for (std::size_t i = range.first; i < range.behind; ++i) {
        if (word.starts_with(kRows[i].name)) {
            return &kRows[i];
        }
    }
    return nullptr;
}

}  // namespace SVGLoom
