#include "dictionary/ValuePasses.h"

#include "dictionary/tests/TestSupport.h"

#include <gtest/gtest.h>

namespace morvish_private {
namespace {

using dictionary_test::ExactUnits;
using namespace std::string_literals;

struct ValueCase {
    std::u16string raw;
    std::u16string want;
};

std::u16string Escape(std::u16string_view raw)
{
    const ExactUnits units(raw);
    return EscapeValue(units.Start(), units.Size());
}

std::u16string Substitute(std::u16string_view raw)
{
    const ExactUnits units(raw);
    return SubstituteMarkers(units.Start(), units.Size());
}

const ValueCase kEscapeCases[] = {
    {u"", u""},
    {u"plain", u"plain"},
    // The backslash table.
    {u"\\\"", u"\""},
    {u"\\n", u"\n"},
    {u"\\r", u"\r"},
    {u"\\t", u"\t"},
    {u"\\b", u"\b"},
    {u"Tab\\there", u"Tab\there"},
    // The caret table.
    {u"^Q", u"\""},
    {u"^[", u"\u201C"},
    {u"^]", u"\u201D"},
    {u"^{", u"\u2018"},
    {u"^}", u"\u2019"},
    {u"^C", u"\u00A9"},
    {u"^R", u"\u00AE"},
    {u"^T", u"\u2122"},
    {u"^D", u"\u00B0"},
    {u"^B", u"\u2022"},
    {u"^#", u"\u2318"},
    {u"^!", u"\u00AC"},
    {u"^I", u"\u2206"},
    {u"^S", u"\u2211"},
    {u"^n", u"\n"},
    {u"^r", u"\r"},
    {u"Say ^Qhi^Q", u"Say \"hi\""},
    // Not in force: the longer variant's code.
    {u"^e", u"^e"},
    // Unknown ones stay as they are, doubled ones become single.
    {u"\\q", u"\\q"},
    {u"^q", u"^q"},
    {u"^1 of ^2", u"^1 of ^2"},
    {u"\\\\", u"\\"},
    {u"^^", u"^"},
    {u"\\\\n", u"\\n"},
    {u"^^Q", u"^Q"},
    {u"\\Q^t", u"\\Q^t"},
    // One escape does not begin within another.
    {u"\\^n", u"\\^n"},
    {u"^\\n", u"^\\n"},
    // At the very end.
    {u"ends in ^", u"ends in ^"},
    {u"ends in \\", u"ends in \\"},
    {u"^", u"^"},
    {u"\\\\\\", u"\\\\"},
    // Units whose low byte is that of an escape are none.
    {u"\\\u016E", u"\\\u016E"},
    // The marker pass follows.
    {u"a\\n#{copy}^C", u"a\n\u00A9\u00A9"},
    {u"\\#{copy}", u"\\\u00A9"},
    {u"^#{copy}", u"\u2318{copy}"},
    {u"#\\{copy}", u"#\\{copy}"},
    {u"#{\\t}", u"#{\t}"},
};

TEST(ValuePasses, Escapes)
{
    for (const ValueCase& row : kEscapeCases) {
        SCOPED_TRACE(testing::PrintToString(row.raw));
        EXPECT_EQ(Escape(row.raw), row.want);
    }
}

const ValueCase kMarkerCases[] = {
    {u"", u""},
    {u"plain", u"plain"},
    {u"\\n^Q", u"\\n^Q"},
    {u"#{copy}", u"\u00A9"},
    {u"#{Copy}", u"#{Copy}"},
    {u"#{copyyear}", u"2026"},
    {u"(#{copyyear})", u"(2026)"},
    {u"a#{endl}b", u"a\r\nb"},
    {u"#{tab}#{cr}#{lf}", u"\t\r\n"},
    // Code points.
    {u"#{U+20AC}", u"\u20AC"},
    {u"#{u20ac}", u"\u20AC"},
    {u"#{20AC}", u"\u20AC"},
    {u"#{A}", u"\n"},
    {u"#{0}", u"\0"s},
    {u"#{D83D}#{DE00}", u"\U0001F600"},
    {u"#{U+1F600}", u"#{U+1F600}"},
    {u"#{U+}", u"#{U+}"},
    {u"#{u}", u"#{u}"},
    // A name goes before a number: "de" is one, "deg" is a name.
    {u"#{de}#{deg}", u"\u00DE\u00B0"},
    // What is no marker stays.
    {u"#", u"#"},
    {u"#{", u"#{"},
    {u"#{}", u"#{}"},
    {u"#{A", u"#{A"},
    {u"#{lt", u"#{lt"},
    {u"#{copy", u"#{copy"},
    {u"#{copy ", u"#{copy "},
    {u"#{tabular}", u"#{tabular}"},
    {u"#copy}", u"#copy}"},
    {u"##{copy}", u"#\u00A9"},
    {u"#{#{copy}}", u"#{\u00A9}"},
    {u"#{nothing}#{copy}", u"#{nothing}\u00A9"},
    {u"a # b", u"a # b"},
    // A comment drops the rest, also what would have been a marker.
    {u"text#{comment} for translators #{copy}", u"text"},
    {u"#{comment}", u""},
    // Platforms. Text without a marker is for all; the own platform's text replaces it.
    {u"Generic#{macos}Mac text", u"Generic"},
    {u"Generic#{mswindows}Win", u"Win"},
    {u"#{macos}Mac#{mswindows}Win", u"Win"},
    {u"#{mswindows}Win#{android}Droid", u"Win"},
    {u"#{mswindows}Win#{macos}Mac#{mswindows}Again", u"Win"},
    {u"#{ios}Phone#{android}Droid#{macos}Mac", u""},
    {u"#{mswindows}One#{mswindows}Two", u"Two"},
    // Nothing but code points is emitted while skipping.
    {u"A#{macos}B#{copy}C#{endl}D#{copyyear}E", u"A"},
    {u"A#{macos}B#{U+0042}C", u"AB"},
    {u"A#{macos}B#{comment}C#{mswindows}D", u"D"},
};

TEST(ValuePasses, Markers)
{
    for (const ValueCase& row : kMarkerCases) {
        SCOPED_TRACE(testing::PrintToString(row.raw));
        EXPECT_EQ(Substitute(row.raw), row.want);
        EXPECT_EQ(Escape(row.raw), row.raw == u"\\n^Q" ? u"\n\"" : row.want);
    }
}

TEST(ValuePasses, LiteralHashLeaks)
{
    // A '#' that is no marker takes along what was skipped since the last marker.
    EXPECT_EQ(Substitute(u"A#{macos}B # C"), u"AB #");
    EXPECT_EQ(Substitute(u"Size#{macos}Size # 1"), u"SizeSize #");
    EXPECT_EQ(Substitute(u"A#{macos}B#{none}C"), u"AB#");
    EXPECT_EQ(Substitute(u"A#{macos}B#{copy}C # D#"), u"AC # D#");
    EXPECT_EQ(Substitute(u"A#{macos}B # C#{mswindows}D"), u"D");
}

TEST(ValuePasses, EveryCutOfAMarkerIsSafe)
{
    const std::u16string text = u"x#{mswindows}#{U+20AC}\\n^Q#{copyyear}#{comment}";
    for (std::size_t length = 0; length <= text.size(); ++length) {
        const std::u16string got = Escape(text.substr(0, length));
        EXPECT_LE(got.size(), length);
    }
}

TEST(ValuePasses, ProcessorIsReusable)
{
    ValueProcessor processor;
    EXPECT_EQ(processor.Process(u"a\\nb"), u"a\nb");
    EXPECT_EQ(processor.Process(u"#{copy}"), u"\u00A9");
    EXPECT_EQ(processor.Process(u""), u"");
    EXPECT_EQ(processor.Process(u"^Q#{lt}"), u"\"<");
    const std::u16string plain = u"plain";
    EXPECT_EQ(processor.Process(plain).data(), plain.data());
}

}  // namespace
}  // namespace morvish_private
