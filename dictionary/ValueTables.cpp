#include "dictionary/ValueTables.h"

#include <algorithm>
#include <iterator>

namespace morvish_private {

std::uint8_t caretVariantSwitch = 0;

namespace {

constexpr EscapeRow kBackslashRows[] = {
    {u'"', 0x0022}, {u'n', 0x000A}, {u'r', 0x000D}, {u't', 0x0009}, {u'b', 0x0008},
};

// The first row belongs to the longer variant only.
constexpr EscapeRow kCaretRows[] = {
    {u'e', 0x00E9}, {u'Q', 0x0022}, {u'[', 0x201C}, {u']', 0x201D}, {u'{', 0x2018}, {u'}', 0x2019},
    {u'C', 0x00A9}, {u'R', 0x00AE}, {u'T', 0x2122}, {u'D', 0x00B0}, {u'B', 0x2022}, {u'#', 0x2318},
    {u'!', 0x00AC}, {u'I', 0x2206}, {u'S', 0x2211}, {u'n', 0x000A}, {u'r', 0x000D},
};

template <std::size_t kSize>
constexpr MarkerRow Row(const char16_t (&name)[kSize], char16_t code)
{
    return {kSize - 1, name, code};
}

// A name counts where it begins the text, so a name must stand before every shorter one that it
// begins with ("copyyear" before "copy").
constexpr MarkerRow kMarkerRows[] = {
    Row(u"endl", 0x0000),      Row(u"comment", 0x0000), Row(u"copyyear", 0x0000),
    Row(u"mswindows", 0x0000), Row(u"ios", 0x0000),     Row(u"android", 0x0000),
    Row(u"macos", 0x0000),     Row(u"tab", 0x0009),     Row(u"cr", 0x000D),
    Row(u"lf", 0x000A),        Row(u"nbsp", 0x00A0),    Row(u"iexcl", 0x00A1),
    Row(u"cent", 0x00A2),      Row(u"pound", 0x00A3),   Row(u"curren", 0x00A4),
    Row(u"yen", 0x00A5),       Row(u"brvbar", 0x00A6),  Row(u"sect", 0x00A7),
    Row(u"uml", 0x00A8),       Row(u"copy", 0x00A9),    Row(u"ordf", 0x00AA),
    Row(u"laquo", 0x00AB),     Row(u"not", 0x00AC),     Row(u"shy", 0x00AD),
    Row(u"reg", 0x00AE),       Row(u"macr", 0x00AF),    Row(u"deg", 0x00B0),
    Row(u"plusmn", 0x00B1),    Row(u"sup2", 0x00B2),    Row(u"sup3", 0x00B3),
    Row(u"acute", 0x00B4),     Row(u"micro", 0x00B5),   Row(u"para", 0x00B6),
    Row(u"middot", 0x00B7),    Row(u"cedil", 0x00B8),   Row(u"sup1", 0x00B9),
    Row(u"ordm", 0x00BA),      Row(u"raquo", 0x00BB),   Row(u"frac14", 0x00BC),
    Row(u"frac12", 0x00BD),    Row(u"frac34", 0x00BE),  Row(u"iquest", 0x00BF),
    Row(u"Agrave", 0x00C0),    Row(u"Aacute", 0x00C1),  Row(u"Acirc", 0x00C2),
    Row(u"Atilde", 0x00C3),    Row(u"Auml", 0x00C4),    Row(u"Aring", 0x00C5),
    Row(u"AElig", 0x00C6),     Row(u"Ccedil", 0x00C7),  Row(u"Egrave", 0x00C8),
    Row(u"Eacute", 0x00C9),    Row(u"Ecirc", 0x00CA),   Row(u"Euml", 0x00CB),
    Row(u"Igrave", 0x00CC),    Row(u"Iacute", 0x00CD),  Row(u"Icirc", 0x00CE),
    Row(u"Iuml", 0x00CF),      Row(u"ETH", 0x00D0),     Row(u"Ntilde", 0x00D1),
    Row(u"Ograve", 0x00D2),    Row(u"Oacute", 0x00D3),  Row(u"Ocirc", 0x00D4),
    Row(u"Otilde", 0x00D5),    Row(u"Ouml", 0x00D6),    Row(u"times", 0x00D7),
    Row(u"Oslash", 0x00D8),    Row(u"Ugrave", 0x00D9),  Row(u"Uacute", 0x00DA),
    Row(u"Ucirc", 0x00DB),     Row(u"Uuml", 0x00DC),    Row(u"Yacute", 0x00DD),
    Row(u"THORN", 0x00DE),     Row(u"szlig", 0x00DF),   Row(u"agrave", 0x00E0),
    Row(u"aacute", 0x00E1),    Row(u"acirc", 0x00E2),   Row(u"atilde", 0x00E3),
    Row(u"auml", 0x00E4),      Row(u"aring", 0x00E5),   Row(u"aelig", 0x00E6),
    Row(u"ccedil", 0x00E7),    Row(u"egrave", 0x00E8),  Row(u"eacute", 0x00E9),
    Row(u"ecirc", 0x00EA),     Row(u"euml", 0x00EB),    Row(u"igrave", 0x00EC),
    Row(u"iacute", 0x00ED),    Row(u"icirc", 0x00EE),   Row(u"iuml", 0x00EF),
    Row(u"eth", 0x00F0),       Row(u"ntilde", 0x00F1),  Row(u"ograve", 0x00F2),
    Row(u"oacute", 0x00F3),    Row(u"ocirc", 0x00F4),   Row(u"otilde", 0x00F5),
    Row(u"ouml", 0x00F6),      Row(u"divide", 0x00F7),  Row(u"oslash", 0x00F8),
    Row(u"ugrave", 0x00F9),    Row(u"uacute", 0x00FA),  Row(u"ucirc", 0x00FB),
    Row(u"uuml", 0x00FC),      Row(u"yacute", 0x00FD),  Row(u"thorn", 0x00FE),
    Row(u"yuml", 0x00FF),      Row(u"quot", 0x0022),    Row(u"amp", 0x0026),
    Row(u"lt", 0x003C),        Row(u"gt", 0x003E),      Row(u"OElig", 0x0152),
    Row(u"oelig", 0x0153),     Row(u"Scaron", 0x0160),  Row(u"scaron", 0x0161),
    Row(u"Yuml", 0x0178),      Row(u"circ", 0x02C6),    Row(u"tilde", 0x02DC),
    Row(u"ensp", 0x2002),      Row(u"emsp", 0x2003),    Row(u"thinsp", 0x2009),
    Row(u"zwnj", 0x200C),      Row(u"zwj", 0x200D),     Row(u"lrm", 0x200E),
    Row(u"rlm", 0x200F),       Row(u"ndash", 0x2013),   Row(u"mdash", 0x2014),
    Row(u"lsquo", 0x2018),     Row(u"rsquo", 0x2019),   Row(u"sbquo", 0x201A),
    Row(u"ldquo", 0x201C),     Row(u"rdquo", 0x201D),   Row(u"bdquo", 0x201E),
    Row(u"dagger", 0x2020),    Row(u"Dagger", 0x2021),  Row(u"permil", 0x2030),
    Row(u"lsaquo", 0x2039),    Row(u"rsaquo", 0x203A),  Row(u"euro", 0x20AC),
};

constexpr bool NoRowIsHidden()
{
    for (auto row = std::begin(kMarkerRows); row != std::end(kMarkerRows); ++row) {
        for (auto before = std::begin(kMarkerRows); before != row; ++before) {
            if (row->Name().substr(0, before->length) == before->Name())
                return false;
        }
    }
    return true;
}

static_assert(std::size(kMarkerRows) == 7 + 3 + 96 + 32);
static_assert(NoRowIsHidden());

struct SpecialRow {
    std::u16string_view name;
    SpecialMarker meaning;
};

// "mswindows" is the own platform on every build: a dictionary reads the same everywhere.
constexpr SpecialRow kSpecialRows[] = {
    {u"endl", SpecialMarker::kEndl},           {u"comment", SpecialMarker::kComment},
    {u"copyyear", SpecialMarker::kCopyYear},   {u"mswindows", SpecialMarker::kOwnPlatform},
    {u"ios", SpecialMarker::kOtherPlatform},   {u"android", SpecialMarker::kOtherPlatform},
    {u"macos", SpecialMarker::kOtherPlatform},
};

constexpr CodePointPrefixRow kCodePointPrefixRows[] = {
    {2, u"U+"},
    {1, u"u"},
    {0, u""},
};

constexpr std::size_t kMaxCodePointDigits = 4;

// @return the digit's value, -1 if it is none
int HexDigitValue(char16_t unit)
{
    if (unit >= u'0' && unit <= u'9')
        return unit - u'0';
    if (unit >= u'A' && unit <= u'F')
        return unit - u'A' + 10;
    if (unit >= u'a' && unit <= u'f')
        return unit - u'a' + 10;
    return -1;
}

}  // namespace

std::span<const EscapeRow> BackslashTable()
{
    return kBackslashRows;
}

std::span<const EscapeRow> CaretTable()
{
    static const bool kWithAcute = caretVariantSwitch != 0;
    return CaretTableVariant(kWithAcute);
}

std::span<const EscapeRow> CaretTableVariant(bool withAcute)
{
    return std::span(kCaretRows).subspan(withAcute ? 0 : 1);
}

std::span<const MarkerRow> MarkerTable()
{
    return kMarkerRows;
}

const MarkerRow* FindMarker(const char16_t* text, std::size_t lengthUnits)
{
    const std::u16string_view rest(text, lengthUnits);
    const auto* const found =
        std::find_if(std::begin(kMarkerRows), std::end(kMarkerRows),
                     [&](const MarkerRow& row) { return rest.starts_with(row.Name()); });
    return found == std::end(kMarkerRows) ? nullptr : found;
}

CodePointReference ParseCodePoint(const char16_t* text, std::size_t lengthUnits)
{
    const std::u16string_view rest(text, lengthUnits);
    for (const CodePointPrefixRow& row : kCodePointPrefixRows) {
        if (lengthUnits <= row.length || !rest.starts_with(row.Text()))
            continue;
        const std::u16string_view digits = rest.substr(row.length, kMaxCodePointDigits);
        unsigned value = 0;
        std::size_t count = 0;
        for (; count < digits.size(); ++count) {
            const int digit = HexDigitValue(digits[count]);
            if (digit < 0)
                break;
            value = value * 16 + static_cast<unsigned>(digit);
        }
        // The first prefix that fits decides, even where a later one could be read.
        if (count == 0)
            break;
        return {&row, static_cast<char16_t>(value), row.length + count};
    }
    return {nullptr, 0, 0};
}

SpecialMarker SpecialMarkerOf(const MarkerRow& row)
{
    for (const SpecialRow& special : kSpecialRows) {
        if (row.code == 0 && special.name == row.Name())
            return special.meaning;
    }
    return SpecialMarker::kNone;
}

}  // namespace morvish_private
