#include "tools/svgloom/StrokeFont.h"

#include "svgloom/renderer/ScrivelSVGPath.h"
#include "svgloom/src/SVGStringParser.h"

#include <algorithm>
#include <new>

namespace svgloom {

namespace {

namespace scrivel = kivui::scrivel;

// Centre lines of the strokes, as path data: x from the leftmost stem, y from the capitals' top at
// 0 to the base line at 8; small letters begin at 2. Stems stand on whole numbers, so that they
// fall on pixels.
struct Glyph {
    char letter;
    float width;  // from the leftmost to the rightmost stem
    std::string_view path;
};

// In the order of ASCII, from space on.
constexpr Glyph kGlyphs[] = {
    {' ', 1, ""},
    {'!', 0, "M0 0V5.5M0 7.9V8"},
    {'"', 2, "M0 0V2M2 0V2"},
    {'#', 5, "M2 0L1 8M4 0L3 8M0 3H5M0 6H5"},
    {'$', 4, "M4 2A2 1.5 0 0 0 2 1A2 1.5 0 0 0 2 4A2 1.5 0 0 1 2 7A2 1.5 0 0 1 0 6M2 -.5V8.5"},
    {'%', 6,
     "M0 1.5A1 1.5 0 0 1 2 1.5A1 1.5 0 0 1 0 1.5ZM4 6.5A1 1.5 0 0 1 6 6.5A1 1.5 0 0 1 4 "
     "6.5ZM5.5 0L.5 8"},
    {'&', 5,
     "M5 8L1.4 3A1.7 1.7 0 0 1 2.2 0A1.6 1.6 0 0 1 3 3L1 4.4A2 2 0 0 0 2 8C3.4 8 4.6 7 5 5"},
    {'\'', 0, "M0 0V2"},
    {'(', 2, "M2 -1C-.6 2 -.6 6 2 9"},
    {')', 2, "M0 -1C2.6 2 2.6 6 0 9"},
    {'*', 4, "M2 0V4M0 1L4 3M0 3L4 1"},
    {'+', 4, "M0 5H4M2 3V7"},
    {',', 1, "M1 7.6L.2 9.4"},
    {'-', 3, "M0 5H3"},
    {'.', 0, "M0 7.9V8"},
    {'/', 3, "M0 9L3 -.5"},
    {'0', 4, "M0 2A2 2 0 0 1 4 2V6A2 2 0 0 1 0 6Z"},
    {'1', 3, "M0 1.6L2 0V8"},
    {'2', 4, "M.1 1.7A2 2 0 0 1 4 2C4 3.8 .8 5.4 0 8H4"},
    {'3', 4, "M.2 1.2A2 2 0 0 1 2 0A1.8 1.9 0 0 1 2 3.8H1.4M2 3.8A2 2.1 0 0 1 2 8A2 2 0 0 1 0 6.8"},
    {'4', 4, "M3 8V0L0 5.6H4"},
    {'5', 4, "M3.8 0H.4V3.4H2A2 2.3 0 0 1 2 8A2 2 0 0 1 0 6.9"},
    {'6', 4, "M3.4 0C1.2 .8 0 2.8 0 5.4V6A2 2 0 0 0 4 6V5.4A2 2 0 0 0 0 5.4"},
    {'7', 4, "M0 0H4L1.4 8"},
    {'8', 4, "M2 3.8A1.8 1.9 0 0 1 2 0A1.8 1.9 0 0 1 2 3.8A2 2.1 0 0 1 2 8A2 2.1 0 0 1 2 3.8"},
    {'9', 4, "M.6 8C2.8 7.2 4 5.2 4 2.6V2A2 2 0 0 0 0 2V2.6A2 2 0 0 0 4 2.6"},
    {':', 0, "M0 3V3.1M0 7.9V8"},
    {';', 1, "M1 3V3.1M1 7.6L.2 9.4"},
    {'<', 4, "M4 2L0 5L4 8"},
    {'=', 4, "M0 4H4M0 6H4"},
    {'>', 4, "M0 2L4 5L0 8"},
    {'?', 4, "M.1 1.6A2 2 0 0 1 4 2C4 3.6 2 3.6 2 5.6M2 7.9V8"},
    {'@', 7,
     "M5 3V5A1 1 0 0 0 7 5V4A3.5 4 0 0 0 0 4A3.5 4 0 0 0 5.4 7.4M5 4A1.4 1.5 0 0 0 2.2 4A1.4 "
     "1.5 0 0 0 5 4"},
    {'A', 6, "M0 8L3 0L6 8M1 5H5"},
    {'B', 5, "M0 0V8H3A2 2.1 0 0 0 3 3.8H0M0 0H2.8A1.8 1.9 0 0 1 2.8 3.8"},
    {'C', 5, "M5 1.6A2.7 2.7 0 0 0 0 2.7V5.3A2.7 2.7 0 0 0 5 6.4"},
    {'D', 5, "M0 0H2A3 3 0 0 1 5 3V5A3 3 0 0 1 2 8H0Z"},
    {'E', 4, "M4 0H0V8H4M0 4H3.4"},
    {'F', 4, "M4 0H0V8M0 4H3.4"},
    {'G', 5, "M5 1.6A2.7 2.7 0 0 0 0 2.7V5.3A2.6 2.7 0 0 0 5 5.6V4H3"},
    {'H', 5, "M0 0V8M5 0V8M0 4H5"},
    {'I', 0, "M0 0V8"},
    {'J', 3, "M3 0V6A1.5 2 0 0 1 0 6"},
    {'K', 5, "M0 0V8M4.6 0L0 4.8M1.7 3.2L5 8"},
    {'L', 4, "M0 0V8H4"},
    {'M', 6, "M0 8V0L3 6L6 0V8"},
    {'N', 5, "M0 8V0L5 8V0"},
    {'O', 5, "M0 2.5A2.5 2.5 0 0 1 5 2.5V5.5A2.5 2.5 0 0 1 0 5.5Z"},
    {'P', 5, "M0 8V0H2.8A2.2 2.2 0 0 1 2.8 4.4H0"},
    {'Q', 5, "M0 2.5A2.5 2.5 0 0 1 5 2.5V5.5A2.5 2.5 0 0 1 0 5.5ZM3.2 6L5.4 8.6"},
    {'R', 5, "M0 8V0H2.8A2.2 2.2 0 0 1 2.8 4.4H0M2.6 4.4L5 8"},
    {'S', 5,
     "M4.8 1.4A2.3 1.8 0 0 0 2.6 0H2.2A2 2 0 0 0 2.2 4H2.8A2 2 0 0 1 2.8 8H2.4A2.3 1.8 0 0 1 "
     ".2 6.6"},
    {'T', 6, "M0 0H6M3 0V8"},
    {'U', 5, "M0 0V5.5A2.5 2.5 0 0 0 5 5.5V0"},
    {'V', 6, "M0 0L3 8L6 0"},
    {'W', 8, "M0 0L2 8L4 1L6 8L8 0"},
    {'X', 5, "M0 0L5 8M5 0L0 8"},
    {'Y', 6, "M0 0L3 4.4L6 0M3 4.4V8"},
    {'Z', 5, "M0 0H5L0 8H5"},
    {'[', 2, "M2 -1H0V9H2"},
    {'\\', 3, "M0 -.5L3 9"},
    {']', 2, "M0 -1H2V9H0"},
    {'^', 4, "M0 2L2 0L4 2"},
    {'_', 4, "M0 9H4"},
    {'`', 1, "M0 0L1 1"},
    {'a', 4, "M0 4A2 2 0 0 1 4 4V6A2 2 0 0 1 0 6ZM4 2V8"},
    {'b', 4, "M0 4A2 2 0 0 1 4 4V6A2 2 0 0 1 0 6ZM0 0V8"},
    {'c', 4, "M3.8 3.2A2 2 0 0 0 0 4V6A2 2 0 0 0 3.8 6.8"},
    {'d', 4, "M0 4A2 2 0 0 1 4 4V6A2 2 0 0 1 0 6ZM4 0V8"},
    {'e', 4, "M0 5H4V4A2 2 0 0 0 0 4V6A2 2 0 0 0 3.8 6.8"},
    {'f', 2, "M2.6 0A1.6 1.6 0 0 0 1 1.6V8M0 2H2.4"},
    {'g', 4, "M0 4A2 2 0 0 1 4 4V6A2 2 0 0 1 0 6ZM4 2V9A2 2 0 0 1 .4 10"},
    {'h', 4, "M0 0V8M0 4A2 2 0 0 1 4 4V8"},
    {'i', 0, "M0 2V8M0 0V.1"},
    {'j', 1, "M1 2V9.4A1.4 1.4 0 0 1 -.4 10.8M1 0V.1"},
    {'k', 4, "M0 0V8M3.6 2L0 5.6M1.4 4.4L4 8"},
    {'l', 1, "M0 0V6.6A1.4 1.4 0 0 0 1.4 8"},
    {'m', 6, "M0 2V8M0 3.5A1.5 1.5 0 0 1 3 3.5V8M3 3.5A1.5 1.5 0 0 1 6 3.5V8"},
    {'n', 4, "M0 2V8M0 4A2 2 0 0 1 4 4V8"},
    {'o', 4, "M0 4A2 2 0 0 1 4 4V6A2 2 0 0 1 0 6Z"},
    {'p', 4, "M0 4A2 2 0 0 1 4 4V6A2 2 0 0 1 0 6ZM0 2V11"},
    {'q', 4, "M0 4A2 2 0 0 1 4 4V6A2 2 0 0 1 0 6ZM4 2V11"},
    {'r', 2, "M0 2V8M0 4A2 2 0 0 1 2 2H2.6"},
    {'s', 4,
     "M3.8 3A1.8 1.4 0 0 0 2 2H1.6A1.5 1.5 0 0 0 1.6 5H2.4A1.5 1.5 0 0 1 2.4 8H2A1.8 1.4 0 0 "
     "1 .1 7"},
    {'t', 2, "M1 0V6.6A1.4 1.4 0 0 0 2.4 8M0 2H2.4"},
    {'u', 4, "M0 2V6A2 2 0 0 0 4 6M4 2V8"},
    {'v', 4, "M0 2L2 8L4 2"},
    {'w', 6, "M0 2L1.5 8L3 2.6L4.5 8L6 2"},
    {'x', 4, "M0 2L4 8M4 2L0 8"},
    {'y', 4, "M0 2L2 8M4 2L2 8L1.2 10A1.5 1.5 0 0 1 0 11"},
    {'z', 4, "M0 2H4L0 8H4"},
    {'{', 2, "M2.4 -1A1.4 1.4 0 0 0 1 .4V2.6L0 4L1 5.4V7.6A1.4 1.4 0 0 0 2.4 9"},
    {'|', 0, "M0 -1V9"},
    {'}', 2, "M-.4 -1A1.4 1.4 0 0 1 1 .4V2.6L2 4L1 5.4V7.6A1.4 1.4 0 0 1 -.4 9"},
    {'~', 4, "M0 5.4C.8 4 1.4 4 2 5C2.6 6 3.2 6 4 4.6"},
};

constexpr bool IsInOrder()
{
    for (std::size_t i = 0; i < std::size(kGlyphs); ++i) {
        if (kGlyphs[i].letter != static_cast<char>(' ' + i))
            return false;
    }
    return std::size(kGlyphs) == '~' - ' ' + 1;
}
static_assert(IsInOrder());

constexpr Glyph kBox = {'\0', 4, "M0 1H4V8H0Z"};

constexpr float kBetween = 3;  // from stem to stem
constexpr float kPenWidth = 1.15f;

const Glyph& GlyphOf(char letter)
{
    return letter >= ' ' && letter <= '~' ? kGlyphs[letter - ' '] : kBox;
}

// Calls visit(glyph) for each character; bytes that go on with a character are none.
template <class Visit>
void ForEachGlyph(std::string_view utf8, Visit&& visit)
{
    for (const char byte : utf8) {
        if ((static_cast<unsigned char>(byte) & 0xC0) != 0x80)
            visit(GlyphOf(byte));
    }
}

void AddGlyph(const Glyph& glyph, float x, float top, float size, scrivel::PathInterface& path)
{
    SVGLoom::ScrivelSVGPath strokes;
    SVGLoom::SVGStringParser::ParsePath(glyph.path, strokes);
    strokes.ForEach([&](SVGLoom::ScrivelSVGPath::Kind kind, const float* n) {
        using Kind = SVGLoom::ScrivelSVGPath::Kind;
        const auto atX = [&](int i) { return x + n[i] * size; };
        const auto atY = [&](int i) { return top + n[i] * size; };
        switch (kind) {
            case Kind::kMove:
                path.MoveTo(atX(0), atY(1));
                break;
            case Kind::kLine:
                path.LineTo(atX(0), atY(1));
                break;
            case Kind::kCurve:
                path.CurveTo(atX(0), atY(1), atX(2), atY(3), atX(4), atY(5));
                break;
            case Kind::kClose:
                path.Close();
                break;
        }
    });
}

}  // namespace

float TextWidth(std::string_view utf8, float size)
{
    float width = 0;
    ForEachGlyph(utf8, [&](const Glyph& glyph) { width += glyph.width + kBetween; });
    return std::max(width - kBetween + 1, 0.0f) * size;  // the last stem takes a pixel
}

void DrawText(scrivel::DrawingTarget& target, std::string_view utf8, float x, float y, float size,
              const SVGLoom::Color& color)
{
    const scrivel::PathP path(target.Factory().CreatePath());
    const scrivel::PenP pen(target.Factory().CreatePen(
        {color.red, color.green, color.blue, color.alpha}, kPenWidth * size));
    if (!path || !pen)
        throw std::bad_alloc();
    // Stems lie in the middle of their pixels.
    float at = x + 0.5f * size;
    const float top = y - (kCapHeight + 0.5f) * size;
    ForEachGlyph(utf8, [&](const Glyph& glyph) {
        AddGlyph(glyph, at, top, size, *path);
        at += (glyph.width + kBetween) * size;
    });
    pen->SetLineJoin(scrivel::LineJoin::kTEPRoundJoin);
    pen->SetLineCap(scrivel::LineCap::kTEPRoundCap);
    target.Surface().StrokePath(*path, *pen);
}

}  // namespace svgloom
