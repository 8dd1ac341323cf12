#include "dictionary/ValueTables.h"

#include "dictionary/ValuePasses.h"
#include "dictionary/tests/TestSupport.h"

#include <gtest/gtest.h>

namespace morvish_private {
namespace {

using dictionary_test::ExactUnits;

struct NameCase {
    std::u16string_view name;
    char16_t code;
};

// The seven special markers, three controls, and the names of HTML 4.
constexpr NameCase kNames[] = {
    {u"endl", 0x0000},   {u"comment", 0x0000}, {u"copyyear", 0x0000}, {u"mswindows", 0x0000},
    {u"ios", 0x0000},    {u"android", 0x0000}, {u"macos", 0x0000},    {u"tab", 0x0009},
    {u"cr", 0x000D},     {u"lf", 0x000A},      {u"nbsp", 0x00A0},     {u"iexcl", 0x00A1},
    {u"cent", 0x00A2},   {u"pound", 0x00A3},   {u"curren", 0x00A4},   {u"yen", 0x00A5},
    {u"brvbar", 0x00A6}, {u"sect", 0x00A7},    {u"uml", 0x00A8},      {u"copy", 0x00A9},
    {u"ordf", 0x00AA},   {u"laquo", 0x00AB},   {u"not", 0x00AC},      {u"shy", 0x00AD},
    {u"reg", 0x00AE},    {u"macr", 0x00AF},    {u"deg", 0x00B0},      {u"plusmn", 0x00B1},
    {u"sup2", 0x00B2},   {u"sup3", 0x00B3},    {u"acute", 0x00B4},    {u"micro", 0x00B5},
    {u"para", 0x00B6},   {u"middot", 0x00B7},  {u"cedil", 0x00B8},    {u"sup1", 0x00B9},
    {u"ordm", 0x00BA},   {u"raquo", 0x00BB},   {u"frac14", 0x00BC},   {u"frac12", 0x00BD},
    {u"frac34", 0x00BE}, {u"iquest", 0x00BF},  {u"Agrave", 0x00C0},   {u"Aacute", 0x00C1},
    {u"Acirc", 0x00C2},  {u"Atilde", 0x00C3},  {u"Auml", 0x00C4},     {u"Aring", 0x00C5},
    {u"AElig", 0x00C6},  {u"Ccedil", 0x00C7},  {u"Egrave", 0x00C8},   {u"Eacute", 0x00C9},
    {u"Ecirc", 0x00CA},  {u"Euml", 0x00CB},    {u"Igrave", 0x00CC},   {u"Iacute", 0x00CD},
    {u"Icirc", 0x00CE},  {u"Iuml", 0x00CF},    {u"ETH", 0x00D0},      {u"Ntilde", 0x00D1},
    {u"Ograve", 0x00D2}, {u"Oacute", 0x00D3},  {u"Ocirc", 0x00D4},    {u"Otilde", 0x00D5},
    {u"Ouml", 0x00D6},   {u"times", 0x00D7},   {u"Oslash", 0x00D8},   {u"Ugrave", 0x00D9},
    {u"Uacute", 0x00DA}, {u"Ucirc", 0x00DB},   {u"Uuml", 0x00DC},     {u"Yacute", 0x00DD},
    {u"THORN", 0x00DE},  {u"szlig", 0x00DF},   {u"agrave", 0x00E0},   {u"aacute", 0x00E1},
    {u"acirc", 0x00E2},  {u"atilde", 0x00E3},  {u"auml", 0x00E4},     {u"aring", 0x00E5},
    {u"aelig", 0x00E6},  {u"ccedil", 0x00E7},  {u"egrave", 0x00E8},   {u"eacute", 0x00E9},
    {u"ecirc", 0x00EA},  {u"euml", 0x00EB},    {u"igrave", 0x00EC},   {u"iacute", 0x00ED},
    {u"icirc", 0x00EE},  {u"iuml", 0x00EF},    {u"eth", 0x00F0},      {u"ntilde", 0x00F1},
    {u"ograve", 0x00F2}, {u"oacute", 0x00F3},  {u"ocirc", 0x00F4},    {u"otilde", 0x00F5},
    {u"ouml", 0x00F6},   {u"divide", 0x00F7},  {u"oslash", 0x00F8},   {u"ugrave", 0x00F9},
    {u"uacute", 0x00FA}, {u"ucirc", 0x00FB},   {u"uuml", 0x00FC},     {u"yacute", 0x00FD},
    {u"thorn", 0x00FE},  {u"yuml", 0x00FF},    {u"quot", 0x0022},     {u"amp", 0x0026},
    {u"lt", 0x003C},     {u"gt", 0x003E},      {u"OElig", 0x0152},    {u"oelig", 0x0153},
    {u"Scaron", 0x0160}, {u"scaron", 0x0161},  {u"Yuml", 0x0178},     {u"circ", 0x02C6},
    {u"tilde", 0x02DC},  {u"ensp", 0x2002},    {u"emsp", 0x2003},     {u"thinsp", 0x2009},
    {u"zwnj", 0x200C},   {u"zwj", 0x200D},     {u"lrm", 0x200E},      {u"rlm", 0x200F},
    {u"ndash", 0x2013},  {u"mdash", 0x2014},   {u"lsquo", 0x2018},    {u"rsquo", 0x2019},
    {u"sbquo", 0x201A},  {u"ldquo", 0x201C},   {u"rdquo", 0x201D},    {u"bdquo", 0x201E},
    {u"dagger", 0x2020}, {u"Dagger", 0x2021},  {u"permil", 0x2030},   {u"lsaquo", 0x2039},
    {u"rsaquo", 0x203A}, {u"euro", 0x20AC},
};

TEST(ValueTables, MarkersInOrder)
{
    const std::span<const MarkerRow> rows = MarkerTable();
    ASSERT_EQ(rows.size(), 138u);
    ASSERT_EQ(std::size(kNames), 138u);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(rows[i].Name(), kNames[i].name);
        EXPECT_EQ(rows[i].length, kNames[i].name.size());
        EXPECT_EQ(rows[i].code, kNames[i].code);
    }
}

TEST(ValueTables, EveryNameIsFoundAndShown)
{
    for (const NameCase& row : kNames) {
        SCOPED_TRACE(testing::PrintToString(row.name));
        const ExactUnits alone(row.name);
        const MarkerRow* const found = FindMarker(alone.Start(), alone.Size());
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->Name(), row.name);
        // One unit short is another name or none.
        const MarkerRow* const cut = FindMarker(alone.Start(), alone.Size() - 1);
        EXPECT_TRUE(cut == nullptr || cut->Name() != row.name);
        if (row.code == 0)
            continue;
        const std::u16string marker = u"<#{" + std::u16string(row.name) + u"}>";
        EXPECT_EQ(SubstituteMarkers(marker.data(), marker.size()),
                  std::u16string(u"<") + row.code + u">");
    }
}

TEST(ValueTables, FindMarkerTakesThePrefixAndMindsTheCase)
{
    const std::u16string_view copyyear = u"copyyear";
    EXPECT_EQ(FindMarker(copyyear.data(), 8)->Name(), u"copyyear");
    EXPECT_EQ(FindMarker(copyyear.data(), 7)->Name(), u"copy");
    EXPECT_EQ(FindMarker(u"tabular", 7)->Name(), u"tab");
    EXPECT_EQ(FindMarker(u"Copy", 4), nullptr);
    EXPECT_EQ(FindMarker(u"dagger", 6)->code, 0x2020);
    EXPECT_EQ(FindMarker(u"Dagger", 6)->code, 0x2021);
    EXPECT_EQ(FindMarker(u"", 0), nullptr);
    EXPECT_EQ(FindMarker(u"alpha", 5), nullptr);
}

struct CodePointCase {
    std::u16string_view text;
    std::u16string_view prefix;
    char16_t value;
    std::size_t consumed;  // 0 for no reference
};

constexpr CodePointCase kCodePoints[] = {
    {u"U+20AC", u"U+", 0x20AC, 6},
    {u"u20ac", u"u", 0x20AC, 5},
    {u"20AC", u"", 0x20AC, 4},
    {u"9}", u"", 0x9, 1},
    {u"0", u"", 0, 1},
    {u"fFfF", u"", 0xFFFF, 4},
    // At most four digits, wherever the fifth comes from.
    {u"U+1F600", u"U+", 0x1F60, 6},
    {u"12345", u"", 0x1234, 4},
    {u"U+41}", u"U+", 0x41, 4},
    // No digit behind the first prefix that fits: none of the later ones is tried.
    {u"U+}", u"", 0, 0},
    {u"U+g", u"", 0, 0},
    {u"u}", u"", 0, 0},
    {u"u+41", u"", 0, 0},
    // A prefix at the end of the text does not fit, and is no digit either.
    {u"U+", u"", 0, 0},
    {u"u", u"", 0, 0},
    {u"U", u"", 0, 0},
    {u"", u"", 0, 0},
    {u"g", u"", 0, 0},
    // Units above U+00FF are no digits, whatever their low byte.
    {u"\uFF11", u"", 0, 0},
    {u"\u0141", u"", 0, 0},
    {u"1\u0131", u"", 1, 1},
};

TEST(ValueTables, CodePoints)
{
    for (const CodePointCase& row : kCodePoints) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        const ExactUnits text(row.text);
        const CodePointReference got = ParseCodePoint(text.Start(), text.Size());
        EXPECT_EQ(got.consumed, row.consumed);
        ASSERT_EQ(got.prefix != nullptr, row.consumed != 0);
        if (got.prefix != nullptr) {
            EXPECT_EQ(got.prefix->Text(), row.prefix);
            EXPECT_EQ(got.value, row.value);
        }
    }
}

TEST(ValueTables, CaretVariant)
{
    ASSERT_EQ(CaretTableVariant(true).size(), 17u);
    EXPECT_EQ(CaretTableVariant(true)[0].unit, u'e');
    EXPECT_EQ(CaretTableVariant(true)[0].result, 0x00E9);
    ASSERT_EQ(CaretTableVariant(false).size(), 16u);
    EXPECT_EQ(CaretTableVariant(false)[0].unit, u'Q');

    // The choice falls once.
    EXPECT_EQ(caretVariantSwitch, 0);
    EXPECT_EQ(CaretTable().size(), 16u);
    caretVariantSwitch = 1;
    EXPECT_EQ(CaretTable().size(), 16u);
    caretVariantSwitch = 0;
}

}  // namespace
}  // namespace morvish_private
