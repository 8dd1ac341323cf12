#include "dictionary/DictionaryLine.h"

#include "dictionary/tests/TestSupport.h"

#include <string>

#include <gtest/gtest.h>

namespace morvish_private {
namespace {

struct LineCase {
    std::u16string line;
    std::u16string want;  // "key|value", or "rejected"
    std::string flags;    // p prefix, q quote, c closing quote, e equals
};

const LineCase kLines[] = {
    {u"\"$$$/A=b\"", u"/A|b", "pqce"},
    {u"$$$/A=b", u"/A|b", "pe"},
    {u"\"$$$/A=b", u"/A|b", "pqe"},
    {u"/A=b", u"/A|b", "e"},
    {u"\"$$$/A\"", u"/A|", "pqc"},
    {u"\"$$$/A=x=y\"", u"/A|x=y", "pqce"},
    // What stands outside the quotes does not count.
    {u"key = \"$$$/A=b\" // c", u"/A|b", "pqce"},
    // A quote behind a backslash is none, also behind two.
    {u"\"$$$/A=\\\"b\\\\\"\"", u"/A|\\\"b\\\\\"", "pqce"},
    {u"\\\"$$$/A=b\"", u"|", "q"},
    {u"\\\"/A=b", u"\\\"/A|b", "e"},
    {u"\"\"", u"|", "qc"},
    {u"=v", u"|v", "e"},
    {u"$$$", u"|", "p"},
    {u"$$$$=v", u"$|v", "pe"},
    {u"$", u"rejected", ""},
    {u"$$/A=b", u"rejected", ""},
    {u"\"$$/A=b\"", u"rejected", "qc"},
    {u"# note", u"# note|", ""},
};

TEST(DictionaryLine, Cases)
{
    for (const LineCase& row : kLines) {
        SCOPED_TRACE(testing::PrintToString(row.line));
        const dictionary_test::ExactUnits units(row.line);
        const LineParts parts = SplitLine({units.Start(), units.Size()});
        const std::u16string have =
            parts.valid ? std::u16string(parts.key) + u"|" + std::u16string(parts.value)
                        : u"rejected";
        EXPECT_EQ(have, row.want);
        std::string flags;
        flags += parts.hasPrefix ? "p" : "";
        flags += parts.hasQuotes ? "q" : "";
        flags += parts.hasClosingQuote ? "c" : "";
        flags += parts.hasEquals ? "e" : "";
        EXPECT_EQ(flags, row.flags);
    }
}

TEST(DictionaryLine, KeysKeepTheLowByte)
{
    std::string key = "what was there";
    NarrowKey(u"/A\u013D\u0100\u20AC", key);
    EXPECT_EQ(key, std::string("/A=\0\xAC", 5));
}

}  // namespace
}  // namespace morvish_private
